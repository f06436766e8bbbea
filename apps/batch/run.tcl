# run.tcl: GNU parallel, which runs a worker for each job, and how far they are.

namespace eval run {
    variable parallel ""    ;# its channel while it runs
    variable command        ;# what it runs
    variable slots 1        ;# how many workers there may be at once, as far as is known
    variable began
    variable known 0        ;# how many files were done when it began
    variable progress 0     ;# whether to show any
    variable complete {}    ;# the jobs that are known to be done
    variable complete_count 0
    variable logins {}      ;# the hosts of --sshloginfile, as their lines have them
    variable probes {}      ;# the channels to those that have not yet said whether a worker could work there
    variable useless 0      ;# whether none could on one of them
}

# What parallel is told about hosts.
proc run::hosts {options} {
    set path [dict get $options sshloginfile]
    if {$path eq ""} {return {--sshlogin :}}
    set words [list --sshloginfile $::state::folder/hosts]
    foreach name [passed_on] {lappend words --env $name}
    return $words
}

# The variables of the environment that workers on other hosts have, too.
proc run::passed_on {} {
    lmap name [concat {LC_ALL TCLSH TCLLIBPATH QUAREL_INSTALL} [array names ::env TAMSEL_*]] {
        if {![info exists ::env($name)]} continue
        set name
    }
}

# Reads the list of hosts, once, since it may be a pipe. Returns how many there are.
proc run::read_hosts {path} {
    variable logins
    try {
        set channel [open_bytes $path r]
        set lines [read $channel]
        close $channel
    } trap POSIX {} {
        options::refuse "cannot read the list of hosts '$path'"
    }
    set logins [lsearch -all -inline -regexp [split $lines \n] {^[^#]}]
    if {![llength $logins]} {options::refuse "there is no host in '$path'"}
    set channel [open_bytes $::state::folder/hosts w]
    puts -nonewline $channel $lines
    close $channel
    llength $logins
}

# Loads the library where the workers of this host will do so: that it can be loaded, and which it is.
proc run::load_library {options} {
    if {![catch {package require Tamsel} result]} {
        # Ctrl-C comes through standard input.
        proc ::ignore_signal args {}
        sigint ignore_signal
    } elseif {[dict get $options sshloginfile] eq ""} {
        state::give_up "Tcl [package provide Tcl] cannot load Tamsel: $result\
            (where it is not installed, TCLLIBPATH names its folder, in braces)"
    }
}

# The command that runs a shell on a host, given its line; none for lines of a kind that only GNU parallel reads.
proc run::shell_on {login} {
    regsub {^\d+/} [string trim $login] {} login
    set ssh [expr {[info exists ::env(PARALLEL_SSH)] ? $::env(PARALLEL_SSH) : "ssh"}]
    if {$login eq ":"} {return sh}
    if {[regexp {^\w[\w.@-]*$} $login]} {return [concat $ssh $login sh]}
    if {[regexp {^[\w./-]+ [\w./@:=+ -]+$} $login]} {return [concat $login sh]}
}

# Looks whether a worker could work on every host, all at once. GNU parallel would need two more starts of its own for
# that. The jobs of a host that is not looked at, or goes down later, are done by another.
proc run::probe {options} {
    variable logins
    variable probes
    variable useless
    # On standard input, as login shells differ in how they quote.
    set script ""
    foreach name [passed_on] {append script "export $name='[string map {' '\\''} $::env($name)]'\n"}
    append script {exec "$TCLSH" "$TAMSEL_BATCH_HOME/reader.tcl" "$TAMSEL_BATCH_STATE" </dev/null}
    foreach login $logins {
        set command [shell_on $login]
        if {![llength $command]} continue
        if {[catch {open |[concat $command [list << $script 2>@1]] r} host]} {
            puts stderr "$login: $host"
            set useless 1
            continue
        }
        fconfigure $host -translation binary -blocking 0
        fileevent $host readable [list run::hear_host $host $login]
        lappend probes $host
    }
    while {[llength $probes]} {vwait ::run::probes}
    if {$useless} {
        state::withdraw
        state::give_up "a host in '[dict get $options sshloginfile]' is of no use;\
            it needs ssh without questions, Tamsel, GNU parallel and these folders"
    }
}

# A host has something to say, or has found that a worker could work there.
proc run::hear_host {host login} {
    variable probes
    variable useless
    if {[gets $host line] >= 0} {
        puts stderr "$login: $line"
    } elseif {[eof $host]} {
        fconfigure $host -blocking 1
        if {[catch {close $host}]} {set useless 1}
        set probes [lsearch -all -inline -exact -not $probes $host]
    }
}

# Starts parallel, which needs a while, before the jobs are known: it reads their names from its channel. The lock
# comes to it as its standard error and is passed on as descriptor 9.
proc run::start {options} {
    variable parallel
    variable slots
    variable progress
    if {![llength [auto_execok parallel]]} {state::give_up "there is no 'parallel' (Debian: apt-get install parallel)"}
    array set ::env [list TAMSEL_BATCH_STATE $::state::folder PARALLEL_SHELL /bin/sh TMPDIR /tmp \
        SSH_ASKPASS false SSH_ASKPASS_REQUIRE force]
    set jobs [dict get $options jobs]
    set slots [expr {$jobs eq "" ? [exec nproc] : $jobs}]
    set words {--plain -u -r --retries 10 --termseq KILL,25}
    if {[dict get $options sshloginfile] ne ""} {
        set slots [expr {$slots * [read_hosts [dict get $options sshloginfile]]}]
        if {$jobs ne ""} {lappend words --jobs $jobs}
    } else {
        lappend words --jobs $slots
    }
    if {[dict get $options joblog] ne ""} {lappend words --joblog [dict get $options joblog]}
    set progress [expr {$::env(TAMSEL_BATCH_TERMINAL) && ![dict get $options no-progress]}]
    set work {exec "$TCLSH" "$TAMSEL_BATCH_HOME/worker.tcl" "$TAMSEL_BATCH_STATE"}
    set lock [expr {$::state::is_kept ? $::state::lock : "stderr"}]
    set parallel [open |[list sh -c {exec 9>&2 2>&1 "$@"} sh parallel {*}$words {*}[hosts $options] $work 2>@$lock] r+]
    fconfigure $parallel -translation binary -blocking 0
    fileevent $parallel readable run::hear
    load_library $options
}

# Passes on what workers and parallel have to say.
proc run::hear {} {
    variable parallel
    if {[gets $parallel line] >= 0} {
        clear
        puts stderr $line
    } elseif {[eof $parallel]} {
        set ::run::ended 1
    }
}

# The number of files that have a record, of this run or an earlier one.
proc run::done {} {
    variable complete
    variable complete_count
    set count 0
    foreach job $::plan::jobs {
        if {[dict exists $complete $job]} continue
        set done [llength [read_items $::state::folder/records/$job]]
        if {$done && $done == [llength [read_items $::state::folder/jobs/$job]]} {
            dict set complete $job 1
            incr complete_count $done
        } else {
            incr count [expr {max($done, [dict get $::plan::known $job])}]
        }
    }
    expr {$complete_count + $count}
}

# Seconds as people read them.
proc run::duration {seconds} {
    if {$seconds < 60} {return "$seconds s"}
    if {$seconds < 3600} {return "[expr {$seconds / 60}] min"}
    return "[expr {$seconds / 3600}] h [expr {$seconds % 3600 / 60}] min"
}

proc run::show {} {
    variable began
    variable known
    set done [done]
    set text "$done of $::plan::total files"
    if {$done > $known} {
        set spent [expr {[clock milliseconds] - $began}]
        append text ", [duration [expr {$spent * ($::plan::total - $done) / ($done - $known) / 1000}]] left"
    }
    puts -nonewline stderr "\r$text\033\[K"
    after 250 run::show
}

proc run::clear {} {
    if {$::run::progress} {puts -nonewline stderr "\r\033\[K"}
}

# Hands the jobs to parallel and waits for its end. What failed has no record.
proc run::finish {} {
    variable parallel
    variable began
    set began [clock milliseconds]
    fconfigure $parallel -blocking 1
    foreach job $::plan::jobs {puts $parallel $job}
    flush $parallel
    close $parallel write
    fconfigure $parallel -blocking 0
    if {$::run::progress} {
        set ::run::known [done]
        show
    }
    vwait ::run::ended
    leave
}

# The end of parallel, which does not heed the signal before it runs jobs.
proc run::leave {} {
    variable parallel
    if {$parallel eq ""} return
    after cancel run::show
    clear
    fconfigure $parallel -blocking 1
    catch {close $parallel}
    set parallel ""
}

proc run::stop {} {
    variable parallel
    variable probes
    foreach host $probes {catch {exec sh -c "kill [pid $host]" 2>/dev/null}}
    if {$parallel eq ""} return
    catch {close $parallel write}
    set process [pid $parallel]
    while {![catch {exec sh -c "kill $process" 2>/dev/null}] && ![info exists ::run::ended]} {
        after 100 {set ::run::waited 1}
        vwait ::run::waited
    }
    leave
}
