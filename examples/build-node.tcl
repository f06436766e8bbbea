# build-node.tcl: builds a node from nothing, with its expressions checked as they are made.
#
# The node is a counter with a limit. What it prints is in expected/build-node.out.

package require Tamsel

ecprg limiter

# What goes in and out. add-in and its kin answer the name.
limiter add-in int step
limiter add-in int top
limiter add-in bool reset
limiter add-out int count
limiter add-out bool full
set sum [limiter add-loc int]
puts "a generated name: $sum"

# An external function of two ints, with an int for result.
limiter add-func smaller int int : int
puts "declared: [limiter func-decl 0]"

# An expression is parsed and typed at once. A handle stands for it from then on.
set next [limiter exp {if reset then 0 else 0 -> pre count + step}]
puts "the next sum is an [limiter exp-type $next]"

# eq checks that an equation is well typed, from a handle or a text. It records none in the program.
foreach {name expression} [list $sum $next count "smaller($sum, top)" full {count >= top}] {
    limiter eq $name $expression
    puts "$name is well typed"
}

# What does not fit is refused, and leaves nothing behind.
foreach {name expression} {full {count + 1}  step 1  count {count + }} {
    if {[catch {limiter eq $name $expression} message]} {
        puts "refused: [lindex [split $message \n] end]"
    }
}

puts "profile: [limiter profile]"
flush stdout
limiter dump
puts ""
exit
