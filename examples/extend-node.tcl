# extend-node.tcl [FILE.ec]: loads a program and extends it.
#
# Adds an input `force` and, for each boolean output, a local that says what the output would be under it.
# Without a file it takes watchdog.ec; what it prints then is in expected/extend-node.out.

package require Tamsel

set file [lindex $argv 0]
if {$file eq ""} {
    set file [file join [file dirname [info script]] watchdog.ec]
}

ecprg node
if {[catch {node load $file} message]} {
    puts stderr [lindex [split $message \n] end]
    if {[lrange $::errorCode 0 1] eq "TAMSEL SYNTAX"} {
        lassign $::errorCode - - line why
        puts stderr "$file:$line: $why"
    }
    exit 1
}
puts "before: [node profile]"

node add-in bool force
for {set i 0} {$i < [node nb-outs]} {incr i} {
    set output [node out-name $i]
    if {[node out-type $i] ne "bool"} continue
    set forced [node add-loc bool ${output}_forced]
    set handle [node eq $forced "force or $output"]
    puts "$forced: a [node exp-type $handle]"
}

puts "after: [node profile]"
set locals {}
for {set i 0} {$i < [node nb-locs]} {incr i} {lappend locals [node loc-name $i]}
puts "locals: $locals"
exit
