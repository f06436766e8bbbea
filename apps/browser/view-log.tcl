# view-log.tcl: the lines of Tcl that do in a shell what the user does in the window.
#
# They can be pasted as they stand into a shell that has loaded the library. What only moves the
# window's contents, such as scrolling and zooming, has no line.

namespace eval ::tamselbrowser::view::log {
  namespace path {::tamselbrowser::view ::tamselbrowser}

  variable text ""
  variable last ""      ;# the last line

  proc say {line} {
    variable text
    variable last
    if {$line eq $last} return
    set last $line
    $text configure -state normal
    $text insert end $line\n
    $text configure -state disabled
    $text see end
  }

  proc contents {} {
    variable text
    $text get 1.0 "end - 1 chars"
  }
  proc copy {} {
    menu::copy [contents]
  }
  proc clear {} {
    variable text
    variable last ""
    $text configure -state normal
    $text delete 1.0 end
    $text configure -state disabled
  }

  proc create {frame} {
    variable text
    ttk::frame $frame -style Paper.TFrame -padding [style::px 4]
    ttk::frame $frame.bar -style Paper.TFrame
    ttk::button $frame.bar.copy -text "Copy" -command [namespace code copy]
    ttk::button $frame.bar.clear -text "Clear" -command [namespace code clear]
    set text [style::scrolled $frame.lines {text -wrap none -height 3 -width 20 -relief flat \
      -borderwidth 0 -highlightthickness 0 -font tamselbrowser.code -state disabled} y Paper.TFrame]
    $text configure -background [style::colour paper] -foreground [style::colour ink]
    pack $frame.bar -side right -fill y
    pack $frame.bar.copy $frame.bar.clear -fill x -pady 1
    pack $frame.lines -fill both -expand 1
    shown::listen command [namespace code say]
  }
}
