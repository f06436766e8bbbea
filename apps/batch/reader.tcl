# reader.tcl STATE [JOB]: checks and converts the files of a job that have no record yet; without a job only looks
# whether it could.
#
# What it cannot do goes to standard output, and the exit status is then 1. What is wrong with a file is no failure: it
# is in the file's record. It ends when its standard input is closed, since its worker is then gone.

source [file join [file dirname [info script]] items.tcl]
lassign $argv state job

proc give_up {text} {
    fconfigure stdout -translation binary
    puts "[info hostname]: $text"
    exit 1
}

# Ends this reader, and all that begin later, where the disk is at fault and not a file: the other files would fail as
# well.
proc stop_all {text} {
    catch {
        set channel [open_bytes $::state/stopped w]
        puts $channel "[info hostname]: $text"
        close $channel
    }
    exit 1
}

# The bytes of a file; empty where it is none or cannot be read. Anything but a file could be read only once.
proc bytes_of {file} {
    if {![file isfile $file]} {return ""}
    try {
        set channel [open_bytes $file r]
        set bytes [read $channel]
        close $channel
        return $bytes
    } trap POSIX {} {
        return ""
    }
}

# Tells one content from another; empty where there is none.
proc stamp_of {bytes} {
    if {$bytes eq ""} {return ""}
    return [zlib crc32 $bytes]-[zlib adler32 $bytes]-[string length $bytes]
}

# The columns of the words of a line, each where it first stands, from 1. As the library does, it counts characters
# and not the bytes that continue one.
proc columns {line} {
    regsub -all {[\x80-\xbf]} $line {} line
    set columns [dict create]
    foreach place [regexp -all -inline -indices {[A-Za-z0-9_]+} $line] {
        lassign $place first last
        set word [string range $line $first $last]
        if {![dict exists $columns $word]} {dict set columns $word [expr {$first + 1}]}
    }
    return $columns
}

# The findings of the library on the program that is loaded, which `file` holds, in the order of their places.
proc findings {file} {
    if {$::check} {
        set told [tamsel check program]
    } else {
        set told [lmap message [tamsel messages program] {dict create kind hole names [dict get $message name] {*}$message}]
    }
    if {[llength $told] == 0} return
    set lines [split [bytes_of $file] \n]
    set findings [lmap finding $told {
        set line [dict get $finding line]
        set name [lindex [dict get $finding names] 0]
        if {$line > 0 && ![info exists columns($line)]} {set columns($line) [columns [lindex $lines $line-1]]}
        set column [expr {$line == 0 ? 0 : [dict exists $columns($line) $name] ? [dict get $columns($line) $name] : 1}]
        list [dict get $finding severity] [dict get $finding kind] $line $column \
            [encoding convertto utf-8 [dict get $finding names]] [encoding convertto utf-8 [dict get $finding message]]
    }]
    lsort -integer -index 2 [lsort -integer -index 3 $findings]
}

# The one finding on a program that could not be loaded.
proc refusal {result code} {
    set place {0 0}
    switch [lindex $code 1] {
        SYNTAX {set place [lassign $code - kind - message]}
        IO {lassign $code - kind - - message}
        default {
            set kind [lindex $code 1]
            set message [string map {"=> " ""} [lindex [split $result \n] end]]
        }
    }
    list error [string tolower $kind] {*}$place {} [encoding convertto utf-8 $message]
}

# The folder of a name, with the slash behind it.
proc folder_of {name} {string range $name 0 [string last / $name]}

# The name beside `target` under which its text grows. Nobody else takes it: not a process that did the
# same job before, nor one that still does it on a host that was given up.
proc growing_name {target} {return [folder_of $target]$::prefix$::host-[pid]}

# Removes what processes that died over this file have left.
proc sweep {target} {
    if {[file isdirectory [folder_of $target]]} {
        file delete {*}[glob -nocomplain -types f -directory [folder_of $target] $::prefix*]
    }
}

# Writes the program that is loaded, whole or not at all. Fails as the system and the library do.
proc convert {target} {
    set folder [folder_of $target]
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

# Removes what an earlier run has written of a program that is broken now.
proc withdraw {target} {
    if {[file isfile $target]} {file delete $target}
}

# One of these two. Returns the finding where it fails, and nothing else.
proc attempt {what target} {
    try {
        $what $target
        return
    } trap {TAMSEL IO} {- options} {
        lassign [dict get $options -errorcode] - - word - why
    } trap POSIX {- options} {
        lassign [dict get $options -errorcode] - word why
    }
    if {$word in {ENOSPC EDQUOT EROFS EIO}} {stop_all "cannot write $target: $why"}
    list error io 0 0 {} "cannot write $target: $why"
}

# Checks a file and converts it. Returns its record, which is `old` where that still holds.
proc handle {file old} {
    set target [expr {$::output eq "" ? "" : "$::output/[output_name $file]"}]
    set stamp [expr {$::stamped ? [stamp_of [bytes_of $file]] : ""}]
    lassign $old - known written
    if {$stamp ne "" && $stamp eq $known && (!$written || [file isfile $target])} {return [lreplace $old 3 3 1]}

    set loaded 1
    try {
        program load $file
        set findings [findings $file]
    } trap TAMSEL {result options} {
        set findings [list [refusal $result [dict get $options -errorcode]]]
        set loaded 0
    }
    set written 0
    if {$target ne ""} {
        set written [expr {$loaded && !($::strict && [lsearch -exact -index 0 $findings error] >= 0)}]
        set failure [attempt [expr {$written ? "convert" : "withdraw"}] $target]
        if {$failure ne ""} {
            lappend findings $failure
            set written 0
        }
    }
    list $file $stamp $written 0 $findings
}

# Handles what is left of the job.
proc work {} {
    set recording [open_items records/$::job]
    set left [lrange [read_items jobs/$::job] [llength [read_items records/$::job]] end]
    cd [dict get $::settings folder]
    if {$::output ne "" && [llength $left]} {sweep $::output/[output_name [lindex $left 0 0]]}
    fconfigure stdin -blocking 0
    foreach item $left {
        lassign $item file old
        set record [handle $file $old]
        read stdin
        if {[eof stdin]} return
        add_item $recording $record
    }
}

if {[catch {package require Tamsel} result]} {give_up "Tcl [package provide Tcl] cannot load Tamsel: $result"}
if {[catch {
    cd $state
    set settings [lindex [read_items settings] 0]
    foreach name {output strict check stamped} {set $name [dict get $settings $name]}
    cd [dict get $settings folder]
    cd $state
} result]} {give_up $result}
if {[file exists stopped]} {exit 1}
if {$job ne ""} {
    set host [info hostname]
    set prefix [growing_prefix $state]$job-
    try {
        ecprg program
        verbose 0
        work
    } on error {- options} {
        give_up [dict get $options -errorinfo]
    }
}
exit 0
