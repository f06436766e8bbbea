# work.tcl: long work, cut into slices so that the window stays alive.
#
# A task is a command that calls `pause` often. It runs in a coroutine; tasks run one after the
# other. A task can be stopped, and then ends at its next `pause`.

namespace eval ::tamselbrowser::work {
  namespace path ::tamselbrowser

  variable slice 12    ;# milliseconds that a task runs before events are served
  variable waiting {}  ;# tasks to come, a list of {key title command}
  variable key ""      ;# of the task that runs; empty: none does
  variable title ""
  variable ending ""   ;# why the task is to end: STOPPED by the user or REPLACED by a new one
  variable began 0     ;# when the present slice did
  variable quiet       ;# command -> the timer that waits for the user to pause
  array set quiet {}

  # Ends the task where it was stopped.
  proc check {} {
    variable ending
    if {$ending ne ""} {throw [list TAMSELBROWSER $ending] "stopped"}
  }

  # Called by a task that has done `done` of `total` steps. Serves events where the slice is over.
  # Fails with errorCode {TAMSELBROWSER STOPPED} or {TAMSELBROWSER REPLACED} where the task is to
  # end. Outside of a task it does nothing.
  proc pause {done total} {
    variable slice
    variable began
    variable title
    if {[info coroutine] eq "" || [clock milliseconds] - $began < $slice} return
    shown::tell progress $title [expr {$total > 0 ? double($done) / $total : 0}]
    # By way of an idle handler, so that what is to be drawn comes first.
    after idle [list after 1 [info coroutine]]
    yield
    set began [clock milliseconds]
    check
  }

  # The body of the coroutine.
  proc perform {command} {
    variable key
    variable began [clock milliseconds]
    variable ending ""
    variable title
    try {
      shown::tell progress $title 0
      uplevel #0 $command
    } trap {TAMSELBROWSER STOPPED} {} {
      shown::tell status "Stopped: $title (choose the program again to go on)"
    } trap {TAMSELBROWSER REPLACED} {} {
    } on error {result options} {
      shown::tell failed "Not finished: $title" [list [list "" $result $options]]
    } finally {
      set key ""
      after idle [namespace code advance]
    }
  }

  # Begins the next task unless one runs.
  proc advance {} {
    variable waiting
    variable key
    variable title
    if {$key ne ""} return
    if {$waiting eq ""} {
      shown::tell progress "" 1
      return
    }
    set waiting [lassign $waiting task]
    lassign $task key title command
    coroutine task perform $command
  }

  # Takes back the tasks of a key, without a word to the user: what they were for is no longer wanted.
  proc cancel {task_key} {
    variable waiting
    variable key
    variable ending
    set waiting [lsearch -all -inline -not -exact -index 0 $waiting $task_key]
    if {$key eq $task_key} {set ending REPLACED}
  }

  # Appends a task in place of those of the same key; `title` says to the user what it does.
  proc start {task_key title command} {
    variable waiting
    cancel $task_key
    lappend waiting [list $task_key $title $command]
    after idle [namespace code advance]
  }

  # Stops the task that runs and drops those that wait.
  proc stop {} {
    variable waiting {}
    variable key
    variable ending
    if {$key ne ""} {set ending STOPPED}
  }

  # Runs a command once nobody has wanted it for `delay` milliseconds: for what a user types.
  proc when_quiet {delay command} {
    variable quiet
    if {[info exists quiet($command)]} {after cancel $quiet($command)}
    set quiet($command) [after $delay [namespace code [list perform_quiet $command]]]
  }
  proc perform_quiet {command} {
    variable quiet
    unset quiet($command)
    uplevel #0 $command
  }

  # Whether something runs or waits.
  proc is_busy {} {
    variable waiting
    variable key
    variable quiet
    expr {$key ne "" || $waiting ne "" || [array size quiet] > 0}
  }
}
