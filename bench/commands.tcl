# commands.tcl LIBRARY MINIMAL FOLDER EQUATIONS...: what operations cost on the programs FOLDER/EQUATIONS.ec.
#
# Prints lines of what,equations,value: a query against the minimal string command of library MINIMAL with
# the same words, and what adds to a program against the same in an empty one. The two of a pair are timed
# in turn, over and over, and the median of the ratios counts. For the programs FOLDER/wide-INPUTS.ec prints
# the microseconds that the first profile takes for each character of its text.

set sizes [lassign $argv library minimal folder]
source [file join [file dirname [info script]] results.tcl]
load $library
load $minimal Minimal

# `script` against `base`, each run `count` times in a round.
proc ratio {script base count} {
    set ratios {}
    for {set round 0} {$round < 101} {incr round} {
        set before [lindex [time $base $count] 0]
        set cost [lindex [time $script $count] 0]
        set after [lindex [time $base $count] 0]
        lappend ratios [expr {2 * $cost / ($before + $after)}]
    }
    median $ratios
}

foreach size $sizes {
    ecprg p
    p load [file join $folder $size.ec]
    ecprg empty
    foreach {what words} [list \
        nb-ins                nb-ins \
        in-name               {in-name 5} \
        "loc-name, the first" {loc-name 0} \
        "loc-name, the last"  "loc-name [set last [expr {[p nb-locs] - 1}]]" \
        "loc-type, the last"  "loc-type $last" \
        "exp-type, a handle"  "exp-type [p exp {1 + 2}]"] {
        puts "$what / minimal command;$size;[ratio "p $words" "minimal $words" 500]"
    }
    foreach {what words} {"exp, a short text" {exp "1 + 2"} add-loc {add-loc int}} {
        puts "$what / in an empty program;$size;[ratio "p $words" "empty $words" 20]"
    }
    rename empty {}
    rename p {}
}

foreach file [glob [file join $folder wide-*.ec]] {
    set times {}
    for {set round 0} {$round < 15} {incr round} {
        ecprg p
        p load $file
        lappend times [lindex [time {set profile [p profile]}] 0]
        rename p {}
    }
    regexp {wide-(\d+)} $file _ inputs
    puts "profile;$inputs;[expr {double([median $times]) / [string length $profile]}]"
}
exit
