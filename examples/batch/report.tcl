# report.tcl problems|json|summary|rest: tells on standard output what became of the files of a run.
#
#   problems   a line for each problem; none for files that were not looked at, which the summary counts
#   json       a line of JSON for each file
#   summary    the counts; the exit status is that of the whole run
#   rest       the counts of a run that was stopped

source [file join [file dirname [info script]] state.tcl]
fconfigure stdout -translation binary

# A character of UTF-8, or a byte of none.
set character {[\x00-\x7f]|[\xc2-\xdf][\x80-\xbf]|\xe0[\xa0-\xbf][\x80-\xbf]|[\xe1-\xec\xee\xef][\x80-\xbf]{2}}
append character {|\xed[\x80-\x9f][\x80-\xbf]|\xf0[\x90-\xbf][\x80-\xbf]{2}|[\xf1-\xf3][\x80-\xbf]{3}}
append character {|\xf4[\x80-\x8f][\x80-\xbf]{2}|[\x80-\xff]}

# A JSON string. A byte that is not UTF-8 becomes \udcXX, which Python's os.fsencode turns back.
proc json_string {bytes} {
    if {![regexp {[\x00-\x1f\x7f-\xff\\"]} $bytes]} {return "\"$bytes\""}
    set text ""
    foreach character [regexp -all -inline $::character $bytes] {
        scan $character %c code
        if {$code < 0x20 || $code == 0x7f} {
            set character [format {\u%04x} $code]
        } elseif {$character in {\" \\}} {
            set character \\$character
        } elseif {$code >= 0x80 && [string length $character] == 1} {
            set character [format {\udc%02x} $code]
        }
        append text $character
    }
    return "\"$text\""
}

proc print_json {record} {
    dict set record file [shown_name [dict get $record file]]
    set fields [lmap {key value} $record {
        string cat [json_string $key] ": " [expr {$key eq "line" ? $value : [json_string $value]}]
    }]
    puts "{[join $fields {, }]}"
}

# One line, whatever is in the name and the message.
proc print_problem {record} {
    set place [shown_name [dict get $record file]]
    if {[dict exists $record line]} {append place :[dict get $record line]}
    puts [string map $::controls "$place: [dict get $record status]: [dict get $record message]"]
}
for {set code 0} {$code < 0x20} {incr code} {
    lappend controls [format %c $code] [format {\x%02x} $code]
}

# Each file's record; `lost` is the status of a file that has none.
set counts [dict create good 0 warning 0 error 0 lost 0]
set mode [lindex $argv 0]
try {
    foreach job [job_names] {
        array unset known
        foreach record [read_items records/$job] {set known([dict get $record file]) $record}
        foreach file [read_items jobs/$job] {
            set record [dict create file $file status lost kind LOST message "not looked at"]
            if {[info exists known($file)]} {set record $known($file)}
            set status [dict get $record status]
            dict incr counts $status
            if {$mode eq "json"} {print_json $record}
            if {$mode eq "problems" && $status in {warning error}} {print_problem $record}
        }
    }
    flush stdout
} trap {POSIX EPIPE} {} {
    # Whoever reads has seen enough.
    exit 0
} trap POSIX {- options} {
    puts stderr "tamsel-batch: cannot write the report: [lindex [dict get $options -errorcode] 2]"
    exit 1
}
dict with counts {
    set total [expr {$good + $warning + $error + $lost}]
    switch $mode {
        rest {
            puts "tamsel-batch: stopped; [expr {$total - $lost}] of $total files are done, and the same\
                command with --resume goes on"
        }
        summary {
            set what "$good good, $warning with warnings, $error with errors"
            if {$lost} {append what ", $lost not looked at: --resume tries these again"}
            puts "tamsel-batch: $total file[expr {$total == 1 ? "" : "s"}]: $what"
            exit [expr {$lost ? 3 : $error ? 1 : 0}]
        }
    }
}
