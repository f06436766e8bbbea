# view-name.tcl: the chosen name: what it is, its equation, what it needs and what needs it.

namespace eval ::tamselbrowser::view::name {
  namespace path {::tamselbrowser::view ::tamselbrowser}

  variable frame ""
  variable longest 20000  ;# characters of an equation; nobody reads more

  # The parameters or results of a function.
  proc declared {pairs} {
    join [lmap pair $pairs {string trimleft "[lindex $pair 0] : [lindex $pair 1]" " :"}] "; "
  }

  # What a name is, in words.
  proc describe {} {
    set kind [shown::fact kind]
    set line [expr {[shown::fact equation] ? [shown::fact equation-line] : [shown::fact line]}]
    set uses [shown::fact user_count]
    set where "     [expr {$line > 0 ? "line $line, " : ""}]used by [expr {
      $uses == 1 ? "1 equation" : "$uses equations"}]"
    switch -- $kind {
      function {
        return "function ([declared [shown::fact params]]) returns ([declared [shown::fact results]])$where"
      }
      type {return "type$where"}
    }
    set text "$kind : [expr {[shown::fact type] eq "" ? "?" : [shown::fact type]}]"
    if {[shown::fact clock] ni {"" true}} {append text " when [shown::fact clock]"}
    if {[shown::fact rank] ne ""} {append text ", rank [shown::fact rank]"}
    return $text$where
  }

  # What defines it; for a name without equation, why it has none.
  proc definition {name} {
    variable longest
    set equation [menu::equation $name $::tamselbrowser::shown::about]
    if {[string length $equation] > $longest} {
      return "[string range $equation 0 $longest-1]\u2026 (the source has the rest)"
    }
    if {$equation ne ""} {return $equation}
    switch -- [shown::fact kind] {
      input {return "An input comes from outside."}
      constant {
        return [expr {[shown::fact rank] eq "" ? "A constant is given elsewhere."
          : "A value of the enumeration [shown::fact type]."}]
      }
      function {return "A function is given elsewhere."}
      type {return "[shown::name] = ([join [shown::fact constants] {, }])"}
    }
    return "The program has no equation for it."
  }

  proc show {name {origin ""}} {
    variable frame
    if {$name ne ""} {
      set what [describe]
    } elseif {[shown::program] eq ""} {
      set what "Open an EC program to see it (Ctrl+O)."
    } else {
      set what "Choose a name in the table, the picture or the source."
    }
    $frame.head.name configure -text [style::shortened $name tamselbrowser.bold 200p]
    $frame.head.what configure -text $what
    show_equation $name
    foreach {key title count} [list needs Needs [llength [shown::fact needs]] \
      users Users [shown::fact user_count]] {
      $frame.$key.title configure -text [expr {$name eq "" ? $title : "$title ($count)"}]
      $frame.$key.list.widget delete 0 end
      if {$name ne ""} {$frame.$key.list.widget insert end {*}[shown::fact $key]}
    }
    foreach {button steps} {back -1 forward 1} {
      $frame.head.$button state [expr {[shown::can_go $steps] ? "!disabled" : "disabled"}]
    }
  }
  proc show_equation {name} {
    variable frame
    set text $frame.text.widget
    $text configure -state normal
    $text delete 1.0 end
    if {$name ne ""} {$text insert end [definition $name]}
    # Not the words that say why there is none.
    if {$name ne "" && [shown::fact equation]} {source::colour_line $text 1}
    $text configure -state disabled
  }

  # A click on a name chooses it; that is the way to one that the picture only has as a label.
  proc clicked {x y} {
    variable frame
    set word [source::word_at $frame.text.widget $x $y]
    if {$word ne ""} {shown::choose $word equation}
  }
  # A name of a list was chosen.
  proc listed {list} {
    set at [lindex [$list curselection] 0]
    if {$at ne ""} {shown::choose [$list get $at] equation}
  }
  # The name under the mouse in a list, and in the equation.
  proc pointed {list y} {
    if {[$list size] == 0} return
    $list get [$list nearest $y]
  }

  proc create_list {frame title} {
    ttk::frame $frame -style Paper.TFrame
    ttk::label $frame.title -text $title -style Paper.TLabel -foreground [style::colour faint] \
      -width 12
    set list [style::scrolled $frame.list {listbox -width 16 -height 3 -activestyle dotbox \
      -relief flat -borderwidth 0 -highlightthickness 0 -exportselection 0} y Paper.TFrame]
    $list configure -background [style::colour paper] -foreground [style::colour ink] \
      -selectbackground [style::colour accent] -selectforeground [style::colour paper]
    pack $frame.title -anchor w
    pack $frame.list -fill both -expand 1
    bind $list <<ListboxSelect>> [namespace code [list listed $list]]
    menu::on $list [namespace code [list pointed $list %y]]
  }

  proc create_head {head} {
    ttk::frame $head -style Paper.TFrame
    foreach {button text steps tip} {
      back \u2039 -1 "Back (Alt+Left)"  forward \u203a 1 "Forward (Alt+Right)"
    } {
      ttk::button $head.$button -text [subst $text] -command [list ::tamselbrowser::shown::go $steps]
      tip::text $head.$button $tip
    }
    ttk::label $head.name -style Paper.TLabel -font tamselbrowser.bold
    ttk::label $head.what -style Paper.TLabel -foreground [style::colour faint]
    pack $head.back $head.forward -side left -padx [list 0 2]
    pack $head.name $head.what -side left -padx [list [style::px 6] 0]
  }

  proc create {window} {
    variable frame $window
    ttk::frame $frame -style Paper.TFrame -padding [style::px 4]
    create_head $frame.head
    set text [style::scrolled $frame.text {text -height 3 -width 20 -wrap word -relief flat \
      -borderwidth 0 -highlightthickness 0 -font tamselbrowser.code -state disabled \
      -cursor arrow} y Paper.TFrame]
    $text configure -background [style::colour paper] -foreground [style::colour ink]
    source::make_tags $text
    create_list $frame.needs Needs
    create_list $frame.users Users
    grid $frame.head - - -sticky ew -pady [list 0 [style::px 3]]
    grid $frame.text $frame.needs $frame.users -sticky nsew -padx [list 0 [style::px 4]]
    grid columnconfigure $frame 0 -weight 1
    grid rowconfigure $frame 1 -weight 1
    bind $text <ButtonRelease-1> [namespace code {clicked %x %y}]
    menu::on $text [list ::tamselbrowser::view::source::word_at $text %x %y]
    shown::listen name [namespace code show]
    show ""
  }
}
