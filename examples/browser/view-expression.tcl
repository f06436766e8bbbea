# view-expression.tcl: a line for an expression, and its type or what is wrong with it as one types.

namespace eval ::tamselbrowser::view::expression {
  namespace path {::tamselbrowser::view ::tamselbrowser}

  variable frame ""
  variable said ""      ;# the expression last shown among the commands

  # Answers what stands in the line.
  proc answer {} {
    variable frame
    set expression [string trim [$frame.line get]]
    set id [shown::program]
    if {$expression eq "" || $id eq ""} {
      $frame.answer configure -style Faint.TLabel \
        -text [expr {$expression ne "" ? "open a program first" : ""}]
      return
    }
    set style Type.TLabel
    try {
      set text [program::call $id exp-type $expression]
    } trap TAMSEL {result options} {
      set text [lindex [report::explain $result \
        [dict get $options -errorcode]] 0]
      set style Error.TLabel
      # The parser names so the end of the text.
      if {[string match "*near '(unknown lexeme...)'" $text]} {
        set text "not complete"
        set style Faint.TLabel
      }
    }
    $frame.answer configure -text $text -style $style
    say $id $expression
  }

  # Shows the command once for each expression that is answered.
  proc say {id expression} {
    variable said
    if {$said eq [list $id $expression]} return
    set said [list $id $expression]
    program::say $id exp-type $expression
  }

  proc answer_soon {} {
    work::when_quiet 250 [namespace code answer]
  }

  # Another program is current: what stands in the line may mean something else.
  proc current {id} {
    answer_soon
  }

  proc create {window} {
    variable frame $window
    ttk::frame $frame -padding {10 6}
    ttk::label $frame.label -text "Expression" -style Faint.TLabel
    ttk::entry $frame.line -font tamselbrowser.code
    ttk::label $frame.answer -width 46 -anchor w
    grid $frame.label $frame.line $frame.answer -sticky ew -padx {0 8}
    grid columnconfigure $frame 1 -weight 1
    bind $frame.line <KeyRelease> [namespace code answer_soon]
    bind $frame.line <Return> [namespace code answer]
    shown::listen program [namespace code current]
  }
}
