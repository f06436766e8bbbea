# plan.tcl K/N SLOTS FILES-PER-JOB OUTPUT: cuts the K-th of N parts of the files that were found into jobs.
#
# A job has FILES-PER-JOB files; where that is empty 500, or so many fewer that each of SLOTS processes gets
# four jobs. OUTPUT is empty where nothing is written. Where there is nothing to do, or two files would be
# written to one place, says so on standard output and ends with status 1.

source [file join [file dirname [info script]] state.tcl]
lassign $argv shard slots files_per_job output

proc refuse {text} {
    fconfigure stdout -translation binary
    puts $text
    exit 1
}

set files [lsort -unique [read_items found]]
if {$files eq {}} {refuse "there is no file called *.ec"}

if {$output ne ""} {
    foreach file $files {
        set target [output_name $file]
        if {[info exists writer($target)]} {
            refuse "$writer($target) and [shown_name $file] would both be written to $target"
        }
        set writer($target) [shown_name $file]
    }
}

lassign [split $shard /] part parts
set mine {}
for {set i [expr {$part - 1}]} {$i < [llength $files]} {incr i $parts} {
    lappend mine [lindex $files $i]
}
if {$files_per_job eq ""} {
    set files_per_job [expr {max(1, min(500, [llength $mine] / (4 * $slots)))}]
}
for {set job 0} {$job * $files_per_job < [llength $mine]} {incr job} {
    set first [expr {$job * $files_per_job}]
    set channel [open_items jobs/[format %07d $job]]
    foreach file [lrange $mine $first [expr {$first + $files_per_job - 1}]] {
        add_item $channel $file
    }
    close $channel
}
