# worker.tcl STATE JOB: lets reader.tcl do a job. A file over which it dies three times, or takes longer than --timeout
# allows, is recorded as such and passed over.
#
# What it cannot do goes to standard output, and the exit status is then 1.

source [file join [file dirname [info script]] items.tcl]
lassign $argv state job
set command [list [info nameofexecutable] [file join [file dirname [file normalize [info script]]] reader.tcl] $state $job]
if {[catch {
    cd $state
    set settings [lindex [read_items settings] 0]
} result]} {
    puts "[info hostname]: $result"
    exit 1
}

# Looks every now and then whether the reader goes on; `size` is how long the records were at `since`.
proc look {size since limit} {
    set now [clock milliseconds]
    set present [expr {[file exists records/$::job] ? [file size records/$::job] : 0}]
    if {$present != $size} {
        set size $present
        set since $now
    } elseif {$now - $since >= $limit} {
        set ::ended TIMEOUT
        return
    }
    after [expr {max(10, min(1000, $limit / 10))}] [list look $size $since $limit]
}

# What the reader has to say is passed on.
proc hear {reader} {
    puts -nonewline [read $reader]
    if {[eof $reader]} {set ::ended END}
}

# Returns how the reader ended: with its exit status, by DEATH or by TIMEOUT.
proc read_job {timeout} {
    set reader [open |[concat $::command [list 2>/dev/null]] r+]
    fconfigure $reader -translation binary -blocking 0
    fileevent $reader readable [list hear $reader]
    if {$timeout ne ""} {look -1 0 [expr {int(ceil($timeout * 1000))}]}
    vwait ::ended
    foreach timer [after info] {after cancel $timer}
    # The shell's own kill is always there.
    if {$::ended eq "TIMEOUT"} {catch {exec sh -c "kill -9 [pid $reader]"}}
    fconfigure $reader -blocking 1
    try {
        close $reader
        return 0
    } trap CHILDSTATUS {- options} {
        return [lindex [dict get $options -errorcode] 2]
    } trap CHILDKILLED {} {
        return [expr {$::ended eq "TIMEOUT" ? "TIMEOUT" : "DEATH"}]
    }
}

# Records of the file that is next that it came to nothing.
proc pass_over {kind message} {
    set recording [open_items records/$::job]
    set next [llength [read_items records/$::job]]
    add_item $recording [failed [lindex [read_items jobs/$::job] $next 0] "" $kind $message]
    close $recording
}

set timeout [dict get $settings timeout]
set deaths {}
while 1 {
    switch [set status [read_job $timeout]] {
        TIMEOUT {pass_over timeout "not done within $timeout second[expr {$timeout == 1 ? "" : "s"}]"}
        DEATH {
            # One death may come from outside, and perhaps a second. The third in the same place is the file's.
            lappend deaths [llength [read_items records/$job]]
            if {[lrange $deaths end-2 end] eq [lrepeat 3 [lindex $deaths end]]} {
                pass_over death "every process that reads this file dies"
            }
        }
        default {exit $status}
    }
}
