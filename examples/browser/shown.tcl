# shown.tcl: what is shown: the current program, the chosen name; and who wants to hear of it.
#
# Views do not know one another. They listen to events, with a command that gets the event's words:
#   opened ID, closed ID       a program came, went
#   program ID                 the current program is known now, also when read anew; "": there is none
#   kind KIND                  the table is to show input, output, local, function or "" (all) alone
#   name NAME ORIGIN           another name of it is chosen, or none (""); ORIGIN: in which view
#   command TEXT               a Tcl command that does what the user just did
#   progress TITLE FRACTION    how far the long work is; TITLE is "" when there is none
#   status TEXT                something to say in passing
#   failed ACTION FAILURES     what failed, a list of {FILE RESULT OPTIONS}

namespace eval ::tamselbrowser::shown {
  namespace path ::tamselbrowser

  variable listeners {}  ;# event -> list of commands
  variable program ""    ;# identifier of the current program
  variable name ""       ;# the chosen name

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

  # Chooses a name of the current program; any other text is passed over. `origin` is the view where
  # it was done.
  proc choose {new {origin ""}} {
    variable program
    variable name
    if {$program eq "" || ![program::declares $program $new]} return
    set name $new
    tell name $new $origin
  }

  # Tells that a program has been read. The chosen name stays where it still means something.
  proc program_read {id} {
    variable program
    variable name
    if {$id ne $program} return
    if {![program::declares $id $name]} {set name ""}
    tell program $id
    tell name $name ""
  }

  # Makes a program current (none: ""), and reads what there is to know of it where nobody has yet.
  # Until that is done the views are told that there is none.
  proc select {id} {
    variable program
    variable name
    work::cancel read
    if {$id ne $program} {
      set program $id
      set name ""
    }
    if {$id eq "" || [program::is_read $id]} {
      tell program $id
      tell name $name ""
      return
    }
    # What stands in the views is no longer true.
    tell program ""
    work::start read "Reading [program::label $id]" \
      [namespace code [list read_then_tell $id]]
  }
  proc read_then_tell {id} {
    program::read_details $id
    program_read $id
  }
}
