# build-node.tcl: builds a node from nothing, each equation checked as it is made, and shows its EC text.
#
# The node is a counter with a limit. What it prints is in expected/build-node.out.

package require Tamsel

proc build {} {
    ecprg limiter

    # What goes in and out, and an external function: each answers its name.
    foreach {kind type name} {
        input int step  input int top  input bool reset
        output int count  output bool full
    } {
        tamsel declare limiter $kind $type $name
    }
    tamsel declare limiter function smaller {{left int} {right int}} {{least int}}
    puts "declared: [limiter func-decl 0]"

    # add-loc and its kin find a name that is free.
    set sum [limiter add-loc int]
    puts "a generated name: $sum"

    # An expression is parsed and typed at once. A handle stands for it from then on.
    set next [limiter exp {if reset then 0 else 0 -> pre count + step}]
    puts "the next sum is an [limiter exp-type $next]"

    # What is still to be done is what check says.
    foreach finding [tamsel check limiter -only hole] {puts "to do: [dict get $finding message]"}

    # The equations, from a handle or a text.
    tamsel define limiter $sum $next
    tamsel define limiter count "smaller($sum, top)"
    tamsel define limiter full {count >= top}
    tamsel assert limiter {step >= 0}

    # What does not fit is refused, and changes nothing.
    foreach {name expression} {full {count + 1}  step 1  count {count + }} {
        if {[catch {tamsel define limiter $name $expression} message]} {
            puts "refused: $message"
        }
    }

    tamsel rename limiter $sum sum
    puts "findings: [llength [tamsel check limiter]]"
    puts "profile: [limiter profile]"
    puts -nonewline [tamsel text limiter -format ec]
}

try {
    build
    flush stdout
} trap {POSIX EPIPE} {} {
    # Whoever reads has seen enough.
}
exit
