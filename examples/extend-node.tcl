# extend-node.tcl [FILE.ec]: loads a program and extends it.
#
# Adds an input `force` and, for each boolean output on the base clock, another one that is true under it too. Without
# a file it takes watchdog.ec; what it prints then is in expected/extend-node.out.

package require Tamsel

proc extend {} {
    puts "before: [node profile]"
    tamsel declare node input bool force
    foreach output [tamsel names node -kind output -type bool] {
        set about [tamsel describe node $output]
        if {[dict get $about clock] ne "true"} continue
        set forced [tamsel declare node output bool ${output}_forced]
        tamsel define node $forced "force or $output"
        puts "$forced = [tamsel definition node $forced]"
    }
    puts "after: [node profile]"
    puts "findings: [llength [tamsel check node]]"
}

set file [lindex $argv 0]
if {$file eq ""} {
    set file [file join [file dirname [info script]] watchdog.ec]
}

ecprg node
try {
    node load $file
    extend
    flush stdout
} trap {TAMSEL SYNTAX} {- options} {
    lassign [dict get $options -errorcode] - - line why
    puts stderr "$file:$line: $why"
    exit 1
} trap TAMSEL text {
    puts stderr [lindex [split $text \n] end]
    exit 1
} trap {POSIX EPIPE} {} {
    # Whoever reads has seen enough.
}
exit
