# report.tcl ?--check? FOLDER EQUATIONS...: the measurements in FOLDER as a table of ratios. With --check,
# exits with status 1 where a cost grows faster than the program.

set check [expr {[lindex $argv 0] eq "--check"}]
set sizes [lassign [lrange $argv $check end] folder]

# The medians of one run of bench_core, in microseconds by name, with its counts of nodes and bytes.
proc read_run {name} {
    set run {}
    set channel [open [file join $::folder $name.csv]]
    foreach line [split [read $channel] \n] {
        set fields [split $line ,]
        if {[regexp {^"(\w+)_median"} $line _ what]} {
            dict set run $what [expr {double([lindex $fields 3])}]
        }
        if {[regexp {^(nodes|memory),(\d+)} $line _ what count]} {dict set run $what [expr {double($count)}]}
    }
    close $channel
    return $run
}

proc row {what goal values} {
    puts [format "%-44s %-8s%s" $what $goal \
        [join [lmap value $values {format %12s $value}] ""]]
}

set runs [lmap size $sizes {read_run $size}]
row "equations" goal $sizes
foreach {what goal shape expression} {
    "load / tokens interned"           3.0 %.2f {$load / $interned}
    "load / every byte read"           -   %.1f {$load / $bytes}
    "dump / its pieces in blocks"      1.5 %.2f {$dump / $pieces}
    "free / load"                      0.1 %.3f {$free / $load}
    "load, ns a node"                  -   %.0f {1000 * $load / $nodes}
    "type, ns a node"                  100 %.0f {1000 * $type / $nodes}
    "memory, bytes a node"             150 %.0f {$memory / $nodes}
} {
    row $what $goal [lmap run $runs {
        dict with run {}
        format $shape [expr $expression]
    }]
}
row "load, colliding / ordinary names" 1.5 [lmap size $sizes {
    format %.2f [expr {[dict get [read_run $size-colliding] load] /
        [dict get [read_run $size-ordinary] load]}]
}]
set channel [open [file join $folder commands.csv]]
foreach line [split [string trim [read $channel]] \n] {
    lassign [split $line ,] name size ratio
    dict lappend commands $name $ratio
}
close $channel
dict for {name ratios} $commands { row "$name / minimal command" - $ratios }

# What a node costs in the largest program against the smallest.
foreach what {load type dump free} {
    lassign [lmap run [list [lindex $runs 0] [lindex $runs end]] {
        expr {[dict get $run $what] / [dict get $run nodes]}
    }] small large
    set growth [expr {$large / $small}]
    puts [format "%-44s %-8s%12.2f" "$what a node, largest / smallest" "" $growth]
    if {$check && $growth > 2.5} {
        puts stderr "bench: $what grows faster than the program: $growth times as much for a node"
        set failed 1
    }
}
exit [info exists failed]
