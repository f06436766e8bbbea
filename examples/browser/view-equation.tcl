# view-equation.tcl: the chosen name, and its equation.

namespace eval ::tamselbrowser::view::equation {
  namespace path {::tamselbrowser::view ::tamselbrowser}

  variable frame ""
  variable longest 20000  ;# characters of an equation; nobody reads more

  # What a name is, in words.
  proc describe {id name} {
    foreach array {kind type clock} {set $array [program::fact $id $array $name]}
    set text "$kind : $type"
    if {$clock ne ""} {append text " when $clock"}
    set uses [program::use_count $id $name]
    append text "     needed by [expr {$uses == 1 ? "1 equation" : "$uses equations"}]"
  }

  # What defines it; for a name without equation, why it has none.
  proc definition {id name} {
    variable longest
    set equation [program::equation $id $name]
    if {[string length $equation] > $longest} {
      return "[string range $equation 0 $longest-1]… (the source has the rest)"
    }
    if {$equation ne ""} {return [pretty::equation $equation]}
    switch -- [program::fact $id kind $name] {
      input {return "An input comes from outside."}
      constant {return "A constant is given elsewhere."}
      default {return "The program has no equation for it."}
    }
  }

  proc show {name {origin ""}} {
    variable frame
    set id [shown::program]
    set text ""
    if {$name ne ""} {
      set what [describe $id $name]
      set text [definition $id $name]
    } elseif {$id eq ""} {
      set what "Open an EC program to see it (Ctrl+O)."
    } else {
      set what "Choose a name in the table, the picture or the source to see its equation."
    }
    $frame.head.name configure \
      -text [style::shortened $name tamselbrowser.bold 270p]
    pack forget $frame.head.name
    if {$name ne ""} {pack $frame.head.name -before $frame.head.what -side left -padx {0 10}}
    $frame.head.what configure -text $what
    $frame.text.widget configure -state normal
    $frame.text.widget delete 1.0 end
    $frame.text.widget insert end $text
    # Not the words that say why there is none.
    if {$name ne "" && [program::equation $id $name] ne ""} {
      source::colour_line $frame.text.widget 1
    }
    $frame.text.widget configure -state disabled
  }

  # A click on a name chooses it; that is the way to one that the picture only has as a label.
  proc clicked {x y} {
    variable frame
    source::choose_word [source::word_at $frame.text.widget $x $y] equation
  }

  proc create {window} {
    variable frame $window
    ttk::frame $frame -style Card.TFrame -padding {10 6}
    ttk::frame $frame.head -style Paper.TFrame
    ttk::label $frame.head.name -style Paper.TLabel -font tamselbrowser.bold
    ttk::label $frame.head.what -style Paper.TLabel \
      -foreground [style::colour faint]
    set text [style::scrolled $frame.text {text -height 3 -wrap word -relief flat \
      -borderwidth 0 -highlightthickness 0 -font tamselbrowser.code -state disabled \
      -cursor arrow} y Paper.TFrame]
    $text configure -background [style::colour paper] \
      -foreground [style::colour ink]
    source::make_tags $text
    pack $frame.head.name $frame.head.what -side left -padx {0 10}
    pack $frame.head -fill x -pady {0 4}
    pack $frame.text -fill both -expand 1
    bind $text <ButtonRelease-1> [namespace code {clicked %x %y}]
    shown::listen name [namespace code show]
  }
}
