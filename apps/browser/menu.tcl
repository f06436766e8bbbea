# menu.tcl: what can be done with a name, as a menu wherever names are.

namespace eval ::tamselbrowser::menu {
  namespace path ::tamselbrowser

  variable about {}  ;# what is known of the name that the menu is for, see shown.tcl

  # Gives a widget the menu: `command` answers the name under the mouse. It may have %x and %y. Keys
  # are for the chosen name.
  proc on {widget command} {
    bind $widget <Button-3> [namespace code "post \[$command\] %X %Y"]
    foreach key {Menu Shift-F10} {
      # Not F10 as well, which opens the menus of the window.
      bind $widget <$key> "[namespace code {post [shown::name] [winfo rootx %W] [winfo rooty %W]}]; break"
    }
  }

  proc post {name x y} {
    set id [shown::program]
    if {$name eq "" || $id eq "" || ![program::is_good $id]} return
    work::start menu "" [namespace code [list post_filled $id $name $x $y]]
  }
  # A text that is no name has no menu. A task.
  proc post_filled {id name x y} {
    try {
      fill $id $name
    } trap {TAMSEL LOOKUP} {} return
    tk_popup .context $x $y
  }

  # Makes the menu of a name: rows of a label, whether there is anything to do, a command. Fails where
  # the program does not declare it.
  proc fill {id name} {
    variable about [shown::ask_about $id $name]
    set chosen [shown::name]
    set has_equation [dict get $about equation]
    set is_drawn [expr {[dict get $about kind] ni {function type}}]
    destroy .context
    set menu [::menu .context -tearoff 0]
    foreach {label is_apt command} [list \
      "Copy name" 1 [list copy $name] \
      "Copy equation" $has_equation [list copy_equation $name] \
      - 1 {} \
      "Show users" [dict get $about user_count] [list list_names $id $name users "users of"] \
      "Show what it needs" $has_equation [list list_names $id $name needs "needs of"] \
      "Draw its cone" $is_drawn [list shown::tell draw $name] \
      "Draw the path from $chosen" [expr {$is_drawn && $chosen ni [list "" $name]}] \
        [list shown::tell path $chosen $name] \
      - 1 {} \
      "Go to its declaration" [dict get $about line] [list go_to line] \
      "Go to its equation" $has_equation [list go_to equation-line] \
      "Open in \$EDITOR" 1 [list edit $id]] {
      if {$label eq "-"} {
        $menu add separator
      } else {
        $menu add command -label $label -command [namespace code $command] \
          -state [expr {$is_apt ? "normal" : "disabled"}]
      }
    }
    return $menu
  }

  proc copy {text} {
    clipboard clear
    clipboard append $text
    shown::tell status "Copied: [string range $text 0 80]"
  }
  proc copy_equation {name} {
    variable about
    copy [equation $name $about]
  }

  # The equation of a name, "" where it has none.
  proc equation {name about} {
    if {![dict get $about equation]} {return ""}
    set names [join [dict get $about with] ", "]
    if {[llength [dict get $about with]] > 1} {set names "($names)"}
    return "$names = [dict get $about definition]"
  }

  # Lists names in the table.
  proc list_names {id name subcommand title} {
    shown::tell rows "$title $name" [program::question $id $subcommand $name]
  }

  # Shows where the file declares or defines the name.
  proc go_to {key} {
    variable about
    shown::tell place [dict get $about $key] 0
  }

  # Opens the file where the name is defined. An editor of the terminal gets one.
  proc edit {id} {
    global env
    variable about
    set line [dict get $about [expr {[dict get $about equation] ? "equation-line" : "line"}]]
    foreach {variable terminal} {VISUAL {} EDITOR {x-terminal-emulator -e}} {
      if {![info exists env($variable)] || $env($variable) eq ""} continue
      if {$terminal ne "" && [auto_execok [lindex $terminal 0]] eq ""} {set terminal {}}
      try {
        exec {*}$terminal {*}$env($variable) +$line [program::its $id file] &
      } on error {result options} {
        shown::tell failed "Could not start the editor" [list [list $env($variable) $result $options]]
      }
      return
    }
    shown::tell status "There is no editor: set EDITOR or VISUAL."
  }
}
