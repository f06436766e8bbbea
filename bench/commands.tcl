# commands.tcl LIBRARY MINIMAL FOLDER EQUATIONS...: what operations cost beside the least that a string
# command can cost, on the programs FOLDER/EQUATIONS.ec.
#
# Prints a line for each operation and program: name,equations,ratio. The operation and the minimal
# command are timed in turn, and the median of the ratios counts.

set sizes [lassign $argv library minimal folder]
load $library
load $minimal Minimal

# The median over seven rounds of the time of `script` against that of `base`.
proc ratio {script base count} {
    set ratios {}
    for {set i 0} {$i < 7} {incr i} {
        set cost [lindex [time $script $count] 0]
        lappend ratios [expr {$cost / [lindex [time $base $count] 0]}]
    }
    lindex [lsort -real $ratios] 3
}

foreach size $sizes {
    ecprg p
    p load [file join $folder $size.ec]
    set last [expr {[p nb-locs] - 1}]
    foreach {name script count} [list \
        nb-ins {p nb-ins} 50000 \
        "loc-name of the first" {p loc-name 0} 50000 \
        "loc-name of the last" [list p loc-name $last] 50000 \
        "loc-type of the last" [list p loc-type $last] 50000 \
        exp-type {p exp-type "1 + 2"} 2000] {
        puts "$name,$size,[format %.2f [ratio $script {minimal word word} $count]]"
    }
    rename p {}
}
exit
