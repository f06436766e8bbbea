# work.tcl: tasks: work that runs beside the window, in slices.
#
# A task is a command in a coroutine. It calls `pause` often, and waits by `wait` for what comes
# later; meanwhile events are served and other tasks run. There is one task of a key at a time, and a
# new one takes its place. A task can be stopped, and then ends where it pauses or waits.

namespace eval ::tamselbrowser::work {
  namespace path ::tamselbrowser

  variable slice 12    ;# milliseconds that a task runs before events are served
  variable tasks {}    ;# key -> {COROUTINE TITLE}; TITLE is "" for what nobody needs to be told of
  variable number 0    ;# of the last task or ticket
  variable began 0     ;# when the present slice did
  variable waiting     ;# ticket -> the coroutine that waits for it
  array set waiting {}
  variable ending      ;# coroutine -> why it is to end: STOPPED by the user or REPLACED by another
  array set ending {}
  variable quiet       ;# command -> the timer that waits for the user to pause
  array set quiet {}

  # A ticket to wait for, of the task that runs.
  proc ticket {} {
    variable number
    variable waiting
    set waiting([incr number]) [info coroutine]
    return $number
  }

  # Waits until `resume` is called with the ticket, and returns the value that it gives. Fails with
  # errorCode {TAMSELBROWSER STOPPED} or {TAMSELBROWSER REPLACED} where the task is to end.
  proc wait {ticket} {
    variable began
    variable ending
    set value [yield]
    set began [clock milliseconds]
    set me [info coroutine]
    if {[info exists ending($me)]} {throw [list TAMSELBROWSER $ending($me)] "stopped"}
    return $value
  }
  proc resume {ticket {value ""}} {
    variable waiting
    if {![info exists waiting($ticket)]} return
    set coroutine $waiting($ticket)
    unset waiting($ticket)
    $coroutine $value
  }

  # Called by a task that has done `done` of `total` steps. Serves events where the slice is over.
  # Outside of a task it does nothing.
  proc pause {done total} {
    variable slice
    variable began
    if {[info coroutine] eq "" || [clock milliseconds] - $began < $slice} return
    say_progress [expr {$total > 0 ? double($done) / $total : -1}]
    rest 1
  }

  # Lets the task wait for a time. Begins with idle handlers, so that what is to be drawn comes first.
  proc rest {milliseconds} {
    set ticket [ticket]
    after idle [list after $milliseconds [namespace code [list resume $ticket]]]
    wait $ticket
  }

  # Tells how far the task that runs is, -1 where that is not known.
  proc say_progress {fraction} {
    variable tasks
    dict for {_ task} $tasks {
      lassign $task coroutine title
      if {$coroutine eq [info coroutine] && $title ne ""} {shown::tell progress $title $fraction}
    }
  }

  # The titles of what runs.
  proc titles {} {
    variable tasks
    lsearch -all -inline -not -exact [lmap task [dict values $tasks] {lindex $task 1}] ""
  }

  # The body of the coroutine.
  proc perform {key title command} {
    variable began [clock milliseconds]
    variable tasks
    variable ending
    set me [info coroutine]
    try {
      uplevel #0 $command
    } trap {TAMSELBROWSER STOPPED} {} {
      shown::tell status "Stopped: $title"
    } trap {TAMSELBROWSER REPLACED} {} {
    } trap {TAMSELBROWSER GONE} {} {
    } on error {result options} {
      shown::tell failed [expr {$title eq "" ? "Something went wrong" : "Not finished: $title"}] [list [list "" $result $options]]
    } finally {
      unset -nocomplain ending($me)
      if {[dict exists $tasks $key] && [lindex [dict get $tasks $key] 0] eq $me} {
        dict unset tasks $key
      }
      if {[titles] eq ""} {shown::tell progress "" 1}
    }
  }

  # Lets a new task begin, unless it was given up before that.
  proc begin {key coroutine title command} {
    variable tasks
    if {![dict exists $tasks $key] || [lindex [dict get $tasks $key] 0] ne $coroutine} return
    coroutine $coroutine [namespace current]::perform $key $title $command
  }

  # Begins a task in place of that of the same key; `title` says to the user what it does.
  proc start {key title command} {
    variable tasks
    variable number
    cancel $key
    set coroutine [namespace current]::task[incr number]
    dict set tasks $key [list $coroutine $title]
    after idle [list after 0 [namespace code [list begin $key $coroutine $title $command]]]
    if {$title ne ""} {after 150 [namespace code [list say_long $key $coroutine $title]]}
  }

  # Tells of a task that has not been quick.
  proc say_long {key coroutine title} {
    variable tasks
    if {[dict exists $tasks $key] && [lindex [dict get $tasks $key] 0] eq $coroutine} {
      shown::tell progress $title -1
    }
  }

  # Ends the task of a key, where it waits or else at its next pause.
  proc end {key why} {
    variable tasks
    variable waiting
    variable ending
    lassign [dict get $tasks $key] coroutine
    dict unset tasks $key
    if {[info commands $coroutine] eq ""} return
    set ending($coroutine) $why
    foreach {ticket its_coroutine} [array get waiting] {
      if {$its_coroutine eq $coroutine} {
        resume $ticket
        return
      }
    }
  }

  # Takes back the task of a key, without a word to the user: what it was for is no longer wanted.
  proc cancel {key} {
    variable tasks
    if {[dict exists $tasks $key]} {end $key REPLACED}
  }

  # Stops what the user was told of.
  proc stop {} {
    variable tasks
    dict for {key task} $tasks {
      if {[lindex $task 1] ne "" && [dict exists $tasks $key]} {end $key STOPPED}
    }
    if {[titles] eq ""} {shown::tell progress "" 1}
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

  # Whether something runs or is to run.
  proc is_busy {} {
    variable tasks
    variable quiet
    expr {[dict size $tasks] > 0 || [array size quiet] > 0}
  }
}
