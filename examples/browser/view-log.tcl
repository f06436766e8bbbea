# view-log.tcl: the commands that do in a Tcl shell what the user does in the window.
#
# For what is no single operation the needed procedure is shown first, once; the lines can be pasted
# as they stand into a shell that has loaded the library.

namespace eval ::tamselbrowser::view::log {
  namespace path {::tamselbrowser::view ::tamselbrowser}

  variable frame ""
  variable text ""
  variable defined {}   ;# the helpers that stand in the log
  variable last ""      ;# the last command
  # What a script needs besides the library.
  variable helpers {
    dumped {proc dumped {program} {
  close [file tempfile path]; $program dump $path
  set channel [open $path]; set text [read $channel]; close $channel; file delete $path
  return $text
}}
    equation {proc equation {program name} {
  regexp "\[;t]\\s*((?:\\w+,\\s*)*$name\\s*(?:,\\s*\\w+\\s*)*=\[^;]*);" [dumped $program] -> found
  return $found
}}
    names {proc names {program} {
  foreach kind {in out loc} {
    for {set i 0} {$i < [$program nb-${kind}s]} {incr i} {lappend all [$program $kind-name $i]}
  }
  return $all
}}
    needs {proc needs {program name} {
  set words [regexp -all -inline {\w+} [regsub {^[^=]*=} [equation $program $name] ""]]
  lmap other [names $program] {if {$other ni $words} continue; set other}
}}
    users {proc users {program name} {
  set users {}
  foreach statement [split [regsub {^.*\nlet\n} [dumped $program] ""] ";"] {
    if {[regexp "^(\[\\w,\\s]+)=.*\\m$name\\M" $statement -> left]} {
      lappend users {*}[regexp -all -inline {\w+} $left]
    }
  }
  return $users
}}
  }

  proc append_line {line} {
    variable text
    $text configure -state normal
    $text insert end $line\n
    $text configure -state disabled
    $text see end
  }

  proc say {command} {
    variable last
    if {$command eq $last} return
    set last $command
    append_line $command
  }

  # Shows a command that uses some of the helpers.
  proc say_with {used command} {
    variable defined
    variable helpers
    foreach helper $used {
      if {$helper in $defined} continue
      lappend defined $helper
      append_line [dict get $helpers $helper]
    }
    say $command
  }

  # What asks for a name: its type, and its equation where it has one.
  proc name {id name} {
    set kind [program::fact $id kind $name]
    foreach {word its_kind} $::tamselbrowser::program::sections {
      if {$its_kind eq $kind} {
        program::say $id $word-type [program::fact $id index $name]
      }
    }
    if {[program::fact $id defined $name] ne ""} {
      say_with {dumped equation} [list equation [program::object $id] $name]
    }
  }

  # What lists what a name needs, and what needs it.
  proc neighbours {id name} {
    set object [program::object $id]
    if {[program::fact $id defined $name] ne ""} {
      say_with {dumped equation names needs} [list needs $object $name]
    }
    say_with {dumped users} [list users $object $name]
  }

  # What lists the names that fit a filter.
  proc names_matching {id pattern} {
    if {$pattern eq ""} return
    if {![regexp {[*?\[]} $pattern]} {set pattern *$pattern*}
    say_with names "lsearch -all -inline -glob -nocase \[names\
      [program::object $id]\] [list $pattern]"
  }

  proc contents {} {
    variable text
    $text get 1.0 "end - 1 chars"
  }
  proc copy {} {
    clipboard clear
    clipboard append [contents]
    shown::tell status "The commands are on the clipboard."
  }
  proc clear {} {
    variable text
    variable defined {}
    variable last ""
    $text configure -state normal
    $text delete 1.0 end
    $text configure -state disabled
  }

  proc create {window} {
    variable frame $window
    variable text
    ttk::frame $frame -padding {10 0 10 4}
    ttk::frame $frame.bar
    ttk::label $frame.bar.label -text "The same in Tcl" -style Faint.TLabel
    ttk::button $frame.bar.copy -text "Copy" -command [namespace code copy]
    ttk::button $frame.bar.clear -text "Clear" -command [namespace code clear]
    set text [style::scrolled $frame.lines {text -height 4 -wrap none -relief flat \
      -borderwidth 0 -highlightthickness 0 -padx 8 -pady 4 -font tamselbrowser.code -state disabled} y]
    $text configure -height [expr {[winfo screenheight .] < 700 ? 2 : 4}] \
      -background [style::colour paper] -foreground [style::colour ink]
    pack $frame.bar -fill x -pady {0 4}
    pack $frame.bar.label -side left
    pack $frame.bar.clear $frame.bar.copy -side right -padx {6 0}
    pack $frame.lines -fill both -expand 1
    shown::listen command [namespace code say]
  }
}
