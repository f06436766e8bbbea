# objects.tcl LIBRARY FOLDER COUNT small|loaded: what COUNT program objects cost: small ones, that are empty and then
# have a declaration and a handle; or others, that are loaded with ten equations and then deleted. Prints lines of
# what,resident bytes an object,milliseconds of processor time for all.

lassign $argv library folder count which
load $library

proc resident {} {
    set channel [open /proc/self/statm]
    set pages [lindex [read $channel] 1]
    close $channel
    expr {4096 * $pages}
}

# Milliseconds, in steps of ten.
proc processor_time {} {
    set channel [open /proc/self/stat]
    set fields [lrange [read $channel] 13 14]
    close $channel
    expr {10 * ([lindex $fields 0] + [lindex $fields 1])}
}

# Prints what `script`, which is given a number, costs for `count` numbers.
proc measure {what script} {
    upvar #0 base base count count file file
    set start [processor_time]
    for {set i 0} {$i < $count} {incr i} {eval $script}
    puts "$what,[expr {([resident] - $base) / double($count)}],[expr {[processor_time] - $start}]"
}

set file [file join $folder ten.ec]
set channel [open $file w]
puts $channel "node ten(a, b : int; c : bool) returns (v0 : int); var v1, v2, v3, v4, v5, v6, v7, v8, v9 : int; let"
for {set i 0} {$i < 10} {incr i} {
    puts $channel "  v$i = if c then 0 -> pre (v$i + a * b) else v[expr {($i + 1) % 10}];"
}
puts $channel tel
close $channel

# In a process that has made one, which loads what all share.
ecprg first
first load $file
set base [resident]
if {$which eq "small"} {
    measure empty {ecprg p$i}
    measure used {p$i add-in int x; p$i exp {x + 1}}
} else {
    measure loaded {ecprg p$i; p$i load $file}
    measure deleted {rename p$i {}}
}
exit
