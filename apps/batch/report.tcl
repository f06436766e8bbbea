# report.tcl: what became of every file.

namespace eval report {
    variable ranks {note 1 warning 2 error 3}
}

# The findings that are at least so bad.
proc report::failing {findings severity} {
    variable ranks
    lmap finding $findings {
        if {[dict get $ranks [lindex $finding 0]] < [dict get $ranks $severity]} continue
        set finding
    }
}

# The worst of the findings of a record; `lost` where there is no record.
proc report::status {record} {
    if {![llength $record]} {return lost}
    set severities [lsort [lmap finding [lindex $record 4] {lindex $finding 0}]]
    foreach severity {error warning note} {
        if {$severity in $severities} {return $severity}
    }
    return good
}

# Evaluates the body for each file with its record, which is empty if the file was not looked at, in the order of names.
proc report::each {fileVar recordVar body} {
    upvar 1 $fileVar file $recordVar record
    foreach job [lsort [glob -nocomplain -tails -directory $::state::folder/jobs *]] {
        set items [read_items $::state::folder/jobs/$job]
        foreach item $items record [lrange [read_items $::state::folder/records/$job] 0 [llength $items]-1] {
            set file [lindex $item 0]
            uplevel 1 $body
        }
        update  ;# hears signals
    }
}

# A dict of counts: files of several kinds, then findings.
proc report::count {options} {
    set fail_on [dict get $options fail-on]
    foreach name {files bad lost unchanged error warning note} {dict set counts $name 0}
    each file record {
        dict incr counts files
        if {![llength $record]} {
            dict incr counts lost
            continue
        }
        lassign $record - - - unchanged findings
        dict incr counts unchanged $unchanged
        if {![llength $findings]} continue
        foreach finding $findings {dict incr counts [lindex $finding 0]}
        dict incr counts bad [expr {[llength [failing $findings $fail_on]] > 0}]
    }
    return $counts
}

# Number and word, in the plural where that is right.
proc report::many {count word} {return "$count $word[expr {$count == 1 ? "" : "s"}]"}

proc report::summary {counts} {
    dict with counts {
        set text "[many $files file]: [expr {$files - $bad - $lost}] good, $bad bad"
        if {$lost} {append text ", $lost not looked at"}
        append text "; [many $error error], [many $warning warning], [many $note note]"
        if {$unchanged} {append text "; $unchanged unchanged"}
        if {$lost && $::state::is_kept} {append text "; --resume tries again"}
    }
    return "tamsel-batch: $text"
}

# The reports that are wanted, with their channels: the lines about problems in any case, on standard output where no
# other report goes there.
proc report::open_all {options counts} {
    set open {}
    set is_taken 0
    foreach format $::options::reports {
        set name [dict get $options $format]
        if {$name eq ""} continue
        set channel [expr {$name eq "-" ? "stdout" : [open [find::plain $name] w]}]
        if {$name eq "-"} {set is_taken 1}
        fconfigure $channel -translation binary
        lappend open [formats::$format new $channel $options $counts] $channel
    }
    if {[dict get $options report] eq "" && !$is_taken} {
        fconfigure stdout -translation binary
        lappend open [formats::report new stdout $options $counts] stdout
    }
    return $open
}

# Writes all reports, and the summary. Where one cannot be written a run that is gone on with has nothing else to do.
proc report::write {options counts} {
    try {
        set open [open_all $options $counts]
        foreach {report -} $open {$report begin}
        each file record {
            set status [status $record]
            foreach {report -} $open {$report file [shown_name $file] $record $status}
        }
        foreach {report channel} $open {
            $report end
            flush $channel
            if {$channel ne "stdout"} {close $channel}
        }
    } trap {POSIX EPIPE} {} {
        # Whoever reads has seen enough.
    } trap POSIX {- options} {
        state::give_up "cannot write the report: [lindex [dict get $options -errorcode] 2]"
    }
    if {[file exists $::state::folder/stopped]} {
        set channel [open_bytes $::state::folder/stopped r]
        puts stderr "tamsel-batch: nothing more can be written: [string trim [read $channel]]"
        close $channel
    }
    puts stderr [summary $counts]
}
