# worker.tcl [JOB]: checks and converts the files of a job that have no record yet; without a job only
# looks whether it could.
#
# What it cannot do goes to standard output, and the exit status is then 1. What is wrong with a file is
# no failure: it is in the file's record.

source [file join [file dirname [info script]] state.tcl]

set job [lindex $argv 0]
set state $env(TAMSEL_BATCH_STATE)
set host [info hostname]

proc give_up {text} {
    fconfigure stdout -translation binary
    puts "[info hostname]: $text"
    exit 1
}

# Ends this worker, and all that begin later, where the disk is at fault and not a file: the other files
# would fail as well.
proc stop_all {text} {
    catch {
        set channel [open_bytes $::state/stopped w]
        puts $channel "[info hostname]: $text"
        close $channel
    }
    file delete $::state/starts/$::job  ;# no death
    exit 1
}

# The library's messages are written by C to descriptor 2, which the next file to be opened becomes. They
# are the only place that tells what a program that loads has for holes.
proc catch_messages {} {
    close stderr
    set ::messages [file tempfile path]
    file delete $path
    fconfigure $::messages -translation binary -buffering none
}

proc forget_messages {} {
    seek $::messages 0
    chan truncate $::messages 0
}

proc written_messages {} {
    seek $::messages 0
    read $::messages
}

# The message about the program that was loaded from `file` at level 1; empty if all is well. It ends the
# line that notes of the library on its own limits, such as clocks that it cannot tell, may begin; those
# come at level 0 too.
proc message_about {file} {
    # A word of a Tcl command is UTF-8, also where it stands for bytes.
    set before "loading [encoding convertto utf-8 $file] ....\n"
    set text [written_messages]
    set start [string first $before $text]
    if {$start < 0} {stop_all "cannot write temporary files: what the library says is lost"}
    set text [string range $text $start+[string length $before] end]
    if {[string index $text end] ne "\n"} {return ""}
    verbose 0
    forget_messages
    program load $file
    set notes [written_messages]
    verbose 1
    string range $text [string length $notes] end-1
}

# A record of a problem. `line` may be empty.
proc problem {file status kind line message} {
    set record [dict create file $file status $status kind $kind message $message]
    if {$line ne ""} {dict set record line $line}
    return $record
}

# The same for an error of the library.
proc failure {file result code} {
    lassign $code - kind
    set line ""
    switch $kind {
        SYNTAX {lassign $code - - line message}
        IO {set message [lindex $code 4]}
        default {set message [string map {"=> " ""} [lindex [split $result \n] end]]}
    }
    problem $file error $kind $line [encoding convertto utf-8 $message]
}

# The name beside `target` under which its text grows. Nobody else takes it: not a process that did the
# same job before, nor one that still does it on a host that was given up.
proc growing_name {target} {
    return [string range $target 0 [string last / $target]].tamsel-batch-$::job-$::host-[pid]
}

# Removes what processes that died over this file have left.
proc sweep {target} {
    set folder [string range $target 0 [string last / $target]]
    if {[file isdirectory $folder]} {
        file delete {*}[glob -nocomplain -types f -directory $folder .tamsel-batch-$::job-*]
    }
}

# Writes the program that is loaded, whole or not at all. Fails as the system and the library do.
proc convert {target} {
    set folder [string range $target 0 [string last / $target]]
    if {![info exists ::made($folder)]} {
        file mkdir $folder
        set ::made($folder) 1
    }
    # A rename would move the text into it.
    if {[file isdirectory $target]} {throw {POSIX EISDIR {illegal operation on a directory}} ""}
    set growing [growing_name $target]
    try {
        program dump $growing
        file rename -force $growing $target
    } on error {result options} {
        file delete $growing
        return -options $options $result
    }
}

# Checks a file and converts it. Returns its record.
proc handle {file} {
    forget_messages
    try {
        program load $file
    } trap TAMSEL {result options} {
        return [failure $file $result [dict get $options -errorcode]]
    }
    set record [dict create file $file status good]
    set message [message_about $file]
    if {$message ne ""} {
        set line ""
        regexp {line '?(\d+)} $message - line
        set record [problem $file [expr {$::strict ? "error" : "warning"}] HOLES $line $message]
    }
    if {$::output eq "" || [dict get $record status] eq "error"} {return $record}

    set target $::output/[output_name $file]
    try {
        convert $target
        return [dict replace $record output $target]
    } trap {TAMSEL IO} {- options} {
        lassign [dict get $options -errorcode] - - word - why
    } trap POSIX {- options} {
        lassign [dict get $options -errorcode] - word why
    }
    if {$word in {ENOSPC EDQUOT EROFS EIO}} {stop_all "cannot write $target: $why"}
    problem $file error IO "" "cannot write $target: $why"
}

# Handles what is left of the job.
proc work {} {
    set records [read_items records/$::job]
    foreach record $records {set done([dict get $record file]) 1}
    set starts [read_items starts/$::job]
    set left [lmap file [read_items jobs/$::job] {
        if {[info exists done($file)]} continue
        set file
    }]
    if {[llength $left] == 0} return

    set starting [open_items starts/$::job]
    add_item $starting [list [array size done] $::host [pid]]
    close $starting
    set recording [open_items records/$::job]
    cd $::folder
    if {$::output ne ""} {sweep $::output/[output_name [lindex $left 0]]}
    # One death may come from outside. The second in the same place is the file's.
    if {[llength [lsearch -all -exact -index 0 $starts [array size done]]] >= 2} {
        set left [lassign $left file]
        add_item $recording [problem $file error DEATH "" "every process that reads this file dies"]
    }
    foreach file $left {add_item $recording [handle $file]}
}

if {[catch {package require Tamsel} result]} {give_up "Tcl [package provide Tcl] cannot load Tamsel: $result"}
if {[catch {
    cd $state
    lassign [read_items settings] folder output strict
    cd $folder
    cd $state
} result]} {give_up $result}
if {[file exists stopped]} {exit 1}
if {$job ne ""} {
    try {
        catch_messages
        ecprg program
        verbose 1
        work
    } on error {- options} {
        give_up [dict get $options -errorinfo]
    }
}
exit 0
