# report.tcl ?--check? FOLDER EQUATIONS...: the measurements in FOLDER as tables of ratios. A value beyond its
# goal is marked with '!'. With --check, exits with status 1 where a cost grows faster than the program.

set check [expr {[lindex $argv 0] eq "--check"}]
set sizes [lassign [lrange $argv $check end] folder]
source [file join [file dirname [info script]] results.tcl]

proc heading {title columns} {
    puts [format "\n%-46s%5s%s" $title goal [join [lmap column $columns {format " %10s " $column}] ""]]
}

# A line of a table. `goal` is the most that a value may be, or "-"; it holds for programs of `from` equations
# and more, where `sizes` are those of the values. A value may be empty.
proc row {what goal shape values {from 0} {sizes ""}} {
    set line [format "%-46s%5s" $what $goal]
    foreach value $values size $sizes {
        set missed [expr {$goal ne "-" && $value ne "" && $value > $goal && ($size eq "" || $size >= $from)}]
        set shown [if {$value eq ""} {string cat -} {format $shape $value}]
        append line [format %11s%s $shown [string index " !" $missed]]
    }
    puts $line
}

# The value of `expression` for each of `runs`, with its measurements as variables; empty where it lacks one.
proc of_runs {runs expression} {
    lmap run $runs {
        dict with run {}
        set value ""
        catch {set value [expr $expression]}
        unset -nocomplain {*}[dict keys $run]
        set value
    }
}

# The last of `values` against the first.
proc growth {values} {expr {[lindex $values end] / [lindex $values 0]}}

set runs [lmap size $sizes {read_run $size}]
foreach line [lines_of commands.csv] {
    lassign [split $line ";"] what size value
    switch $what {
        profile {dict set profile $size $value}
        edits {dict set edits $size $value}
        default {dict lappend commands $what $value}
    }
}
# What each of many objects costs: bytes and, for all, milliseconds.
set objects {}
foreach line [lines_of objects.csv] {
    lassign [split $line ,] what bytes time
    dict set objects $what [dict create bytes $bytes time $time]
}
set bytes_an_edit 4.0  ;# at most, which is the noise of pages
set collisions [expr {[dict get [read_run colliding] load] / [dict get [read_run ordinary] load]}]

if {$check} {
    # Each beside what grows with the program as it should, so that neither caches nor a busy machine count.
    set rows {}
    foreach {what expression} {
        "load / tokens interned" {$load / $interned}
        "type / load"            {$type / $load}
        "free / load"            {$free / $load}
        "dump / its pieces"      {$dump / $pieces}
    } {
        lappend rows $what [growth [of_runs $runs $expression]]
    }
    dict for {what values} $commands {lappend rows $what [growth $values]}
    lappend rows "profile, a character" [growth [lmap inputs [lsort -integer [dict keys $profile]] {
        dict get $profile $inputs
    }]]
    lappend rows "load, colliding / ordinary names" $collisions
    lappend rows "load / tokens interned, names from anywhere" [growth [of_runs [lmap size $sizes {
        read_run scattered-$size
    }] {$load / $interned}]]

    set status 0
    heading "bytes that an equation takes with each edit" value
    dict for {what bytes} $edits {
        row $what $bytes_an_edit %.1f $bytes
        if {$bytes > $bytes_an_edit} {set status 1}
    }
    heading "the largest program against the smallest" [list [lindex $sizes end]/[lindex $sizes 0]]
    foreach {what factor} $rows {
        row $what 3.0 %.2f $factor
        if {$factor > 3.0} {set status 1}
    }
    heading memory bytes
    set largest [lindex $runs end]
    foreach {what goal shape value} [list \
        "after load, resident, a node"          75    %.0f [dict get $largest resident]/[dict get $largest nodes] \
        "peak of a load / after it"             1.1   %.2f [dict get $largest peak]/[dict get $largest resident] \
        "an empty object"                       6144  %.0f [dict get $objects empty bytes] \
        "one with a declaration and a handle"   12288 %.0f [dict get $objects used bytes]] {
        set value [expr $value]
        row $what $goal $shape $value
        if {$value > $goal} {set status 1}
    }
    exit $status
}

# One program a column. `sizes` are their equations, where the goals depend on them.
proc table {title columns runs {sizes ""}} {
    heading $title $columns
    foreach {what goal from shape expression} {
        "load / tokens interned"           2.0  10000  %.2f {$load / $interned}
        "load / tokens"                    -    0      %.2f {$load / $tokens}
        "load / every byte read"           -    0      %.0f {$load / $bytes}
        "load, ns a node"                  -    0      %.0f {1000 * $load / $nodes}
        "load once / by flex and Bison"    0.33 100000 %.2f {$once / $plain_load}
        "type, ns a node"                  30   0      %.0f {1000 * $type / $nodes}
        "dump / its pieces in blocks"      1.2  0      %.2f {$dump / $pieces}
        "dump once / by stdio"             0.5  100000 %.2f {$dump_once / $plain_dump}
        "free / load"                      0.10 0      %.3f {$free / $load}
        "memory allocated, bytes a node"   -    0      %.0f {$allocated / $nodes}
        "memory resident, bytes a node"    75   100000 %.0f {$resident / $nodes}
        "peak of a load / memory after it" 1.1  100000 %.2f {$peak / $resident}
    } {
        row $what $goal $shape [of_runs $runs $expression] $from $sizes
    }
}

table equations $sizes $runs $sizes
set base [lindex $sizes [expr {max(0, [lsearch $sizes 10000])}]]
foreach {what goal measured} {
    "load in a fresh process, an equation"  1.15 once
    "load, an equation"                     -   load
    "type, an equation"                     -   type
    "dump, an equation"                     -   dump
    "free, an equation"                     -   free
} {
    set costs [lmap size $sizes run $runs {expr {[dict get $run $measured] / $size}}]
    set unit [lindex $costs [lsearch $sizes $base]]
    row "$what / at $base" $goal %.2f [lmap size $sizes cost $costs {
        expr {$size < $base ? "" : $cost / $unit}
    }]
}
dict for {what values} $commands {
    row $what [switch -glob $what {
        check* {string cat 0.5} names* {string cat 4.0} definition* {string cat 1.0} JSON* {string cat 2.0}
        users* {string cat 2.0} building* {string cat 1.0} *minimal* {string cat 1.1} exp,* {string cat 1.3} default {string cat -}
    }] \
        %.2f $values
}

set shapes {small large long-names scattered ordinary colliding chain}
table "shapes: expressions, names, a chain" $shapes [lmap shape $shapes {read_run $shape}]
row "load, colliding / ordinary names" 1.5 %.2f $collisions
heading "many objects" {bytes "ms for all"}
foreach {what goal} {empty 6144 used 12288 loaded - deleted -} {
    row $what $goal %.0f [dict values [dict get $objects $what]]
}
heading "profile of so many inputs" [set wide [lsort -integer [dict keys $profile]]]
row "ns a character" - %.1f [lmap inputs $wide {expr {1000 * [dict get $profile $inputs]}}]
heading "bytes that an equation takes with each edit" [dict keys $edits]
row "resident" $bytes_an_edit %.1f [dict values $edits]
