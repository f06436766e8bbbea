# reach.tcl FILE.ec [NAME ...]: tells what each of the names, or else each input, reaches: how many steps away, the
# nearest first, and which of it are outputs.
#
# What is reached through `pre` alone, and so not in the same cycle, is `later`.
# `reach.tcl watchdog.ec hold` prints what is in expected/reach.out.

package require Tamsel

if {$argc == 0} {
    puts stderr "usage: reach.tcl FILE.ec \[NAME ...]"
    exit 2
}
set names [lassign $argv file]
ecprg node
try {
    node load $file
    if {$names eq ""} {set names [tamsel names node -kind input]}
    foreach name $names {
        set reached [dict remove [tamsel cone node [list $name] -direction users] $name]
        set now [tamsel cone node [list $name] -direction users -now]
        set outputs 0
        dict for {user steps} $reached {
            set kind [dict get [tamsel describe node $user] kind]
            set later [expr {[dict exists $now $user] ? "" : ", later"}]
            incr outputs [expr {$kind eq "output"}]
            puts "[format %4d $steps]  $kind $user$later"
        }
        puts "$name reaches [dict size $reached] names, $outputs of [node nb-outs] outputs"
    }
    flush stdout
} trap TAMSEL text {
    puts stderr [lindex [split $text \n] end]
    exit 1
} trap {POSIX EPIPE} {} {
    # Whoever reads has seen enough.
}
exit
