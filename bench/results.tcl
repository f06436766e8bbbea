# What the scripts here share: medians, and reading the measurements in `folder`.

proc median {values} {lindex [lsort -real $values] [expr {[llength $values] / 2}]}

proc lines_of {name} {
    set channel [open [file join $::folder $name]]
    set text [read $channel]
    close $channel
    split [string trim $text] \n
}

# What bench_core says of the program `name`, by name: the medians of processor times in microseconds, and
# counts of nodes and bytes. Whatever was not measured is missing.
proc read_run {name} {
    set run {}
    foreach line [lines_of $name.csv] {
        if {[regexp {^"(\w+)_median"} $line _ what]} {
            dict set run $what [expr {double([lindex [split $line ,] 3])}]
        }
    }
    set once {}
    if {[file exists [file join $::folder $name-once.csv]]} {
        foreach line [lines_of $name-once.csv] {dict lappend once {*}[split $line ,]}
    }
    dict for {what values} $once {dict set run $what [expr {double([median $values])}]}
    return $run
}
