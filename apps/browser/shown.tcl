# shown.tcl: what is shown: the current program, the chosen name; and who wants to hear of it.
#
# Views do not know one another. They listen to events, with a command that gets the event's words:
#   opened ID, closed ID       a program came, went
#   changed ID                 its state, counts or findings are others
#   program ID                 the current program can be asked, also when read anew; "": there is none
#   findings ID                what is wrong with it is known
#   kind KIND                  the table is to show names of a kind, "" (all), or assertions alone
#   rows TITLE LINE            the table is to show the names that a line of Tcl answers
#   name NAME ORIGIN           another name of it is chosen, or none (""); ORIGIN: in which view
#   place LINE COLUMN          a place of its file is to be seen
#   draw NAME                  the picture is to be about a name
#   path FROM TO               the picture is to be of the path between two names
#   look FOLDER                findings, source and so on are to be seen
#   command TEXT               a line of Tcl that does what the user just did
#   progress TITLE FRACTION    how far the long work is, -1: unknown; TITLE is "" when there is none
#   status TEXT                something to say in passing
#   failed ACTION FAILURES     what failed, a list of {FILE RESULT OPTIONS}

namespace eval ::tamselbrowser::shown {
  namespace path ::tamselbrowser

  variable listeners {}  ;# event -> list of commands
  variable program ""    ;# identifier of the current program
  variable name ""       ;# the chosen name
  variable about {}      ;# what is known of it, see `ask_about`
  variable visited {}    ;# {PROGRAM NAME} that were chosen
  variable at -1         ;# which of them is
  variable most_users 2000

  proc listen {event command} {
    variable listeners
    dict lappend listeners $event $command
  }

  proc tell {event args} {
    variable listeners
    if {![dict exists $listeners $event]} return
    foreach command [dict get $listeners $event] {uplevel #0 $command $args}
  }

  # The current program and the chosen name; empty where there is none.
  proc program {} {
    variable program
    return $program
  }
  proc name {} {
    variable name
    return $name
  }

  # A fact of the chosen name, "" where it has none.
  proc fact {key} {
    variable about
    if {[dict exists $about $key]} {return [dict get $about $key]}
    return ""
  }

  # What is known of a name: what `describe` answers, and its definition, needs, users, user_count.
  # Fails where the program does not declare it.
  proc ask_about {id wanted} {
    variable most_users
    program::ask $id "set name [list $wanted]
      set about \[tamsel describe \$p \$name\]
      set users \[tamsel users \$p \$name\]
      foreach {key answer} {
        definition {tamsel definition \$p \$name}  needs {tamsel needs \$p \$name}
      } {
        if {\[catch \$answer found\]} {set found {}}
        dict set about \$key \$found
      }
      dict set about user_count \[llength \$users\]
      dict set about users \[lrange \$users 0 $most_users-1\]
      set about"
  }

  # Chooses a name of the current program; any other text is passed over. `origin` is the view where
  # it was done.
  proc choose {new {origin ""}} {
    variable program
    if {![program::exists $program] || ![program::is_good $program]} return
    work::start choose "" [namespace code [list find $program $new $origin]]
  }
  proc find {id new origin} {
    variable name
    variable about
    try {
      set found [ask_about $id $new]
    } trap {TAMSEL LOOKUP} {} {
      # A click in a text may be on any word.
      if {$origin eq "history"} {tell status "There is no $new in [program::label $id]."}
      return
    }
    set about $found
    set name $new
    if {$origin ne "history"} {note $id $new}
    if {$origin ne ""} {
      program::say $id [program::question $id \
        [expr {[dict get $about equation] ? "definition" : "describe"}] $name]
    }
    tell name $new $origin
  }

  # Notes what was chosen, after what is shown now.
  proc note {id name} {
    variable visited
    variable at
    if {[lindex $visited $at] eq [list $id $name]} return
    set visited [linsert [lrange $visited 0 $at] end [list $id $name]]
    set at [expr {[llength $visited] - 1}]
  }

  # Whether there is something `steps` steps back (-1) or forward (1), and the way there.
  proc can_go {steps} {
    variable visited
    variable at
    expr {$at + $steps >= 0 && $at + $steps < [llength $visited]}
  }
  proc go {steps} {
    variable visited
    variable at
    variable program
    if {![can_go $steps]} return
    incr at $steps
    lassign [lindex $visited $at] id new
    if {![program::exists $id]} return
    if {$id ne $program} {select $id $new} else {choose $new history}
  }

  # No name is chosen.
  proc choose_none {} {
    variable name ""
    variable about {}
    tell name "" ""
  }

  # Makes a program current (none: ""), which is read where that was not done yet; `wanted` is the
  # name to choose. Until that is done the views are told that there is none.
  proc select {id {wanted ""}} {
    variable program
    if {$id ne $program} {
      foreach key {read choose check} {work::cancel $key}
      set program $id
      tell program ""
      choose_none
    }
    if {$id eq ""} {
      tell program ""
      return
    }
    work::start read "Reading [program::label $id]" [namespace code [list read_then_tell $id $wanted]]
  }

  # Reads a program unless it is good, and shows it. A task.
  proc read_then_tell {id wanted} {
    if {![program::is_good $id]} {program::load $id}
    tell_read $id $wanted
  }
  proc read_again {id} {
    variable name
    work::start read "Reading [program::label $id]" [namespace code [list reload_then_tell $id]]
  }
  proc reload_then_tell {id} {
    variable name
    program::reload $id
    tell_read $id $name
    if {[program::its $id trouble] eq ""} {
      tell status "[program::label $id] was read again."
    }
  }
  proc tell_read {id wanted} {
    variable program
    if {$id ne $program} return
    choose_none
    tell program $id
    if {$wanted ne ""} {choose $wanted history}
    if {[program::its $id trouble] ne ""} {
      set trouble [program::its $id trouble]
      tell status "[program::label $id] does not load: [dict get $trouble message]"
      tell place [dict get $trouble line] [dict get $trouble column]
    }
    work::start check "" [list ::tamselbrowser::program::check $id]
  }
}
