# menu.tcl: what can be done with a name, as a menu wherever names are.

namespace eval ::tamselbrowser::menu {
  namespace path ::tamselbrowser

  # Gives a widget the menu: `command` answers the name under the mouse, or "" for the chosen one. It
  # may have %x and %y.
  proc on {widget command} {
    bind $widget <Button-3> [namespace code "post \[$command\] %X %Y"]
    foreach key {Menu Shift-F10} {
      bind $widget <$key> [namespace code {post "" [winfo rootx %W] [winfo rooty %W]}]
    }
  }

  proc post {name x y} {
    if {$name eq ""} {set name [shown::name]}
    set id [shown::program]
    if {$name eq "" || $id eq "" || ![program::is_good $id]} return
    fill $id $name
    tk_popup .context $x $y
  }

  # Makes the menu of a name.
  proc fill {id name} {
    destroy .context
    set menu [::menu .context -tearoff 0]
    set chosen [shown::name]
    foreach {label command} [list \
      "Copy name" [list copy $name] \
      "Copy equation" [list copy_equation $id $name] \
      - {} \
      "Show users" [list list_names $id $name users "users of"] \
      "Show what it needs" [list list_names $id $name needs "needs of"] \
      "Draw its cone" [list shown::tell draw $name] \
      "Draw the path from $chosen" [list shown::tell path $chosen $name] \
      - {} \
      "Go to its declaration" [list go_to $id $name line] \
      "Go to its equation" [list go_to $id $name equation-line] \
      "Open in \$EDITOR" [list edit $id $name]] {
      if {$label eq "-"} {
        $menu add separator
      } else {
        $menu add command -label $label -command [namespace code $command]
      }
    }
    if {$chosen in [list "" $name]} {$menu entryconfigure "Draw the path*" -state disabled}
    return $menu
  }

  proc copy {text} {
    clipboard clear
    clipboard append $text
    shown::tell status "Copied: [string range $text 0 80]"
  }
  proc copy_equation {id name} {
    work::start copy "" [namespace code [list find_equation $id $name]]
  }
  proc find_equation {id name} {
    set about [shown::ask_about $id $name]
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

  # Shows where the file declares or defines a name.
  proc go_to {id name key} {
    work::start place "" [namespace code [list find_place $id $name $key]]
  }
  proc find_place {id name key} {
    set line [dict get [shown::ask_about $id $name] $key]
    if {$line > 0} {shown::tell place $line 0}
  }

  # Opens the file where a name is defined. An editor of the terminal gets one.
  proc edit {id name} {
    work::start edit "" [namespace code [list start_editor $id $name]]
  }
  proc start_editor {id name} {
    global env
    set about [shown::ask_about $id $name]
    set line [expr {[dict get $about equation] ? [dict get $about equation-line]
      : [dict get $about line]}]
    foreach {variable terminal} {VISUAL {} EDITOR {x-terminal-emulator -e}} {
      if {![info exists env($variable)] || $env($variable) eq ""} continue
      if {$terminal ne "" && [auto_execok [lindex $terminal 0]] eq ""} {set terminal {}}
      exec {*}$terminal {*}$env($variable) +$line [program::its $id file] &
      return
    }
    shown::tell status "There is no editor: set EDITOR or VISUAL."
  }
}
