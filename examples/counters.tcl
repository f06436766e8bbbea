# counters.tcl N [FILE.quarel]: generates a node of N counters in a row, each counting how often the one before
# it has run over, checks it, and writes it in Quarel.
#
# `counters.tcl 3` prints what is in expected/counters.out.

package require Tamsel

lassign $argv count file
if {![string is integer -strict $count] || $count < 1} {
    puts stderr "usage: counters.tcl N \[FILE.quarel]"
    exit 2
}

# Counter 0 counts ticks.
set before tick
for {set i 0} {$i < $count} {incr i} {
    lappend outputs c$i
    lappend locals over$i
    dict set equations c$i "if over$i then 0 else (0 -> pre c$i) + (if $before then 1 else 0)"
    dict set equations over$i "$before and (0 -> pre c$i) + 1 >= limit"
    set before over$i
}
dict for {name value} $equations {append body "    $name = $value;\n"}
set text "
const limit : int;
node counters(tick : bool) returns ([join $outputs ,] : int);
var [join $locals ,] : bool;
let
$body
tel
"

# It goes to the library through a channel. Loading does not type equations; eq does.
set channel [file tempfile path]
puts -nonewline $channel $text
flush $channel
seek $channel 0
ecprg node
node loadch $channel
close $channel
file delete $path
dict for {name value} $equations {node eq $name $value}

if {$file ne ""} {
    node dump $file
} else {
    try {
        node dump
        puts ""
    } trap {TAMSEL IO EPIPE} {} - trap {POSIX EPIPE} {} {
        # Whoever reads has seen enough.
    }
}
exit
