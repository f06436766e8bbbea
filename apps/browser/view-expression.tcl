# view-expression.tcl: a line for an expression, and its type or what is wrong with it as one types.

namespace eval ::tamselbrowser::view::expression {
  namespace path {::tamselbrowser::view ::tamselbrowser}

  variable frame ""
  variable said ""      ;# the expression last shown among the commands

  # Answers what stands in the line. A task.
  proc answer {} {
    variable frame
    variable said
    set expression [string trim [$frame.line get]]
    set id [shown::program]
    if {$expression eq "" || $id eq "" || ![program::is_good $id]} {
      $frame.answer configure -style Faint.TLabel \
        -text [expr {$expression ne "" ? "open a program first" : ""}]
      return
    }
    lassign [judge $id $expression] text style
    if {$style eq "Type.TLabel" && $said ne [list $id $expression]} {
      set said [list $id $expression]
      program::say $id [program::question $id type $expression]
    }
    $frame.answer configure -text $text -style $style
  }

  # The answer to an expression and its style. A task.
  proc judge {id expression} {
    try {
      set text [program::ask $id [program::question $id type $expression]]
      set clock [program::ask $id [program::question $id clock $expression]]
      return [list [expr {$clock eq "true" ? $text : "$text when $clock"}] Type.TLabel]
    } trap TAMSEL {result options} {
      set text [lindex [report::explain $result [dict get $options -errorcode]] 0]
      # The parser names so the end of the text.
      if {[string match "*near '(unknown lexeme...)'" $text]} {
        return [list "not complete" Faint.TLabel]
      }
      return [list $text Error.TLabel]
    }
  }

  proc answer_now {} {
    work::start expression "" [namespace code answer]
  }
  proc answer_soon {} {
    work::when_quiet 250 [namespace code answer_now]
  }
  # Another program is current: what stands in the line may mean something else.
  proc current {id} {
    answer_soon
  }

  proc create {window} {
    variable frame $window
    ttk::frame $frame -padding [list [style::px 10] [style::px 3]]
    ttk::label $frame.label -text "Type of" -style Faint.TLabel
    ttk::entry $frame.line -font tamselbrowser.code -width 20
    ttk::label $frame.answer -width 30 -anchor w
    grid $frame.label $frame.line $frame.answer -sticky ew -padx [list 0 [style::px 8]]
    grid columnconfigure $frame [list $frame.line] -weight 2
    grid columnconfigure $frame [list $frame.answer] -weight 1
    bind $frame.line <KeyRelease> [namespace code answer_soon]
    bind $frame.line <Return> [namespace code answer_now]
    shown::listen program [namespace code current]
  }
}
