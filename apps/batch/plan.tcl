# plan.tcl: who does what: the jobs of a run.

namespace eval plan {
    variable jobs {}   ;# the names of the jobs that are to be done, in order
    variable total 0   ;# the number of files in them
    variable known {}  ;# job to how many of its files have a record of an earlier run
}

# No two files may be written to one place.
proc plan::refuse_collisions {files} {
    foreach file $files {
        set target [output_name $file]
        if {[info exists writer($target)]} {
            options::refuse "$writer($target) and [shown_name $file] would both be written to $target"
        }
        set writer($target) [shown_name $file]
    }
}

# Every N-th of the files, so that folders of large programs are spread over all shards.
proc plan::share {files shard} {
    lassign [split $shard /] part parts
    if {$parts == 1} {return $files}
    set mine {}
    for {set i [expr {$part - 1}]} {$i < [llength $files]} {incr i $parts} {lappend mine [lindex $files $i]}
    return $mine
}

# Writes a list of files with what is known of them.
proc plan::write_job {name files} {
    variable known
    dict set known $name 0
    set channel [open_items $::state::folder/jobs/$name]
    foreach file $files {
        set item [list $file]
        if {[info exists ::state::known($file)]} {
            lappend item $::state::known($file)
            dict incr known $name
        }
        puts -nonewline $channel $item\0
    }
    close $channel
}

# Folders that cannot be read make a job that is done.
proc plan::write_problems {problems} {
    if {![llength $problems]} return
    write_job problems [lmap problem $problems {lindex $problem 0}]
    set channel [open_items $::state::folder/records/problems]
    foreach problem $problems {add_item $channel $problem}
    close $channel
}

# Cuts the files into jobs for that many processes.
proc plan::cut {files problems slots options} {
    variable jobs
    variable total
    set shard [dict get $options shard]
    if {[string match 1/* $shard]} {write_problems $problems}
    set files [share $files $shard]
    set total [llength $files]
    set size [dict get $options files-per-job]
    if {$size eq ""} {set size [expr {max(1, min(1000, $total / (2 * $slots)))}]}
    for {set first 0} {$first < $total} {incr first $size} {
        lappend jobs [format %07d [llength $jobs]]
        write_job [lindex $jobs end] [lrange $files $first [expr {$first + $size - 1}]]
        update  ;# hears signals
    }
    # What is new comes first, so that a run that is stopped again and again goes on.
    set jobs [lsort -command {apply {{a b} {expr {[dict get $::plan::known $a] - [dict get $::plan::known $b]}}}} $jobs]
}
