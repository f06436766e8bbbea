# answers.tcl: the processes that have the programs, and how they are asked.
#
# Each program has a process of its own, answer.tcl, so that the window lives on whatever the library is
# doing, and so that what takes too long, or never ends, can be given up. A task waits for its
# answer while others run; outside of tasks the process is waited for.

namespace eval ::tamselbrowser::answers {
  namespace path ::tamselbrowser

  variable spare ""   ;# a process that was started ahead
  variable is_ready 0 ;# whether that has been heard to have the library
  variable queue      ;# channel -> the tickets of those who wait for its next answers, in order
  array set queue {}
  variable partial    ;# channel -> {CODE SIZE} of the answer that is arriving
  array set partial {}
  variable text       ;# channel -> what has arrived of it
  array set text {}
  variable kept       ;# ticket -> the answer to one who waits outside of tasks
  array set kept {}

  # Starts a process.
  proc launch {} {
    variable queue
    variable partial
    variable ::tamselbrowser::folder
    set channel [open |[list [info nameofexecutable] [file join $folder answer.tcl] 2>@stderr] r+]
    fconfigure $channel -encoding utf-8 -translation lf -blocking 0 -buffering full
    set queue($channel) {}
    set partial($channel) {}
    return $channel
  }

  # Starts one ahead of its use.
  proc prepare {} {
    variable spare
    variable is_ready
    if {$spare ne ""} return
    set spare [launch]
    set is_ready 0
  }

  # Waits until a process has the library. Fails with what keeps it from that.
  proc welcome {channel} {
    fileevent $channel readable [namespace code [list arrive $channel]]
    try {
      wait $channel
    } on error {result options} {
      finish $channel
      return -options $options $result
    }
  }

  # The same for the one that was started ahead. To be called outside of tasks.
  proc ready {} {
    variable spare
    variable is_ready
    prepare
    if {!$is_ready} {welcome $spare}
    set is_ready 1
  }

  # A process that has the library.
  proc begin {} {
    variable spare
    variable is_ready
    prepare
    lassign [list $spare $is_ready] channel was_ready
    set spare ""
    if {!$was_ready} {welcome $channel}
    return $channel
  }

  # Ends a process, whatever it is doing.
  proc finish {channel} {
    variable queue
    variable partial
    if {![info exists queue($channel)]} return
    set waiting $queue($channel)
    unset queue($channel) partial($channel)
    catch {exec kill {*}[pid $channel] 2>@1}
    catch {close $channel}
    foreach ticket $waiting {deliver $ticket [list 1 [list "gone" {TAMSELBROWSER GONE}]]}
  }
  proc finish_all {} {
    variable queue
    foreach channel [array names queue] {finish $channel}
  }

  # A process has ended by itself, which none should.
  proc end_early {channel} {
    finish $channel
    program::lose $channel
  }

  proc deliver {ticket answer} {
    variable kept
    if {[string match own* $ticket]} {
      set kept($ticket) $answer
    } else {
      work::resume $ticket $answer
    }
  }

  # Something of an answer has arrived.
  proc arrive {channel} {
    variable queue
    variable partial
    variable text
    if {$partial($channel) eq ""} {
      if {[gets $channel partial($channel)] < 0} {
        if {[eof $channel]} {end_early $channel}
        return
      }
      set text($channel) ""
    }
    lassign $partial($channel) code size
    append text($channel) \
      [read $channel [expr {min(65536, $size - [string length $text($channel)])}]]
    if {[string length $text($channel)] < $size} {
      if {[eof $channel]} {end_early $channel}
      return
    }
    set partial($channel) {}
    set queue($channel) [lassign $queue($channel) ticket]
    deliver $ticket [list $code $text($channel)]
  }

  # Waits for the answer that comes after those that are waited for. Fails as the script failed.
  proc wait {channel} {
    variable queue
    variable kept
    if {![info exists queue($channel)]} {throw {TAMSELBROWSER GONE} "gone"}
    if {[info coroutine] ne ""} {
      lappend queue($channel) [set ticket [work::ticket]]
      lassign [work::wait $ticket] code text
    } else {
      lappend queue($channel) [set ticket own[clock microseconds]]
      while {![info exists kept($ticket)]} {
        fconfigure $channel -blocking 1
        arrive $channel
        if {[info exists queue($channel)]} {fconfigure $channel -blocking 0}
      }
      lassign $kept($ticket) code text
      unset kept($ticket)
    }
    if {$code == 1} {
      lassign $text result error_code
      return -code error -errorcode $error_code $result
    }
    return $text
  }

  # What a script answers in a process.
  proc ask {channel script} {
    variable queue
    if {![info exists queue($channel)]} {throw {TAMSELBROWSER GONE} "gone"}
    puts -nonewline $channel "[string length $script]\n$script"
    flush $channel
    wait $channel
  }
}
