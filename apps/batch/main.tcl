# main.tcl OPTION... NAME...: tamsel-batch. Finds the files, cuts their list into jobs, lets GNU parallel run a worker for
# each, and tells what became of every file.

foreach part {items options find state plan run formats report} {
    source [file join [file dirname [file normalize [info script]]] $part.tcl]
}

# A signal has come: an exit status for each in a line. Without the process that receives them there is no line.
proc hear_signal {} {
    if {[gets stdin status] < 0} {set status 143}
    fileevent stdin readable {}
    run::stop
    if {$::env(TAMSEL_BATCH_TERMINAL)} {puts stderr ""}
    if {$::state::folder ne ""} {
        set text "tamsel-batch: stopped; [run::done] of $::plan::total files are done"
        if {$::state::is_kept} {append text ", and the same command with --resume goes on"}
        puts stderr $text
    }
    state::leave
    exit $status
}

# Where reports will not be writable nothing needs to begin.
proc check_reports {options} {
    foreach word [concat $::options::reports joblog] {
        set file [dict get $options $word]
        if {$file in {"" -}} continue
        if {[catch {close [open [find::plain $file] a]}]} {options::refuse "cannot write '$file'"}
    }
}

proc prepare {options} {
    check_reports $options
    set output [dict get $options output]
    if {$output ne ""} {
        if {[catch {file mkdir [find::plain $output]}]} {options::refuse "cannot make the folder '$output'"}
        dict set options output [exec realpath -- $output]
    }
    return $options
}

# Returns the exit status.
proc work {options} {
    set options [prepare $options]
    state::settle $options
    run::start $options
    set files [find::programs $options]
    if {[dict get $options output] ne ""} {plan::refuse_collisions $files}
    state::begin $options
    run::probe $options
    plan::cut $files $::find::problems $::run::slots $options
    run::finish
    set counts [report::count $options]
    report::write $options $counts
    if {[dict get $counts lost]} {return 3}
    state::end $options
    expr {$::find::failed ? 3 : [dict get $counts bad] > 0}
}

fconfigure stdin -translation binary -blocking 0
fileevent stdin readable hear_signal
try {
    set options [options::read $argv]
    if {[dict get $options help]} {
        catch {puts [options::usage]}
        exit 0
    }
    set status [work $options]
} trap BATCH {result trouble} {
    puts stderr "tamsel-batch: $result"
    set status [lindex [dict get $trouble -errorcode] 1]
} on error {result trouble} {
    # Status 1 would mean that every file was looked at.
    puts stderr "tamsel-batch: [dict get $trouble -errorinfo]"
    set status 3
}
run::stop
state::leave
exit $status
