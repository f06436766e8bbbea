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

# The medians of a few runs of each script, in microseconds. They are run in turn, so that a busy machine is
# busy for all of them.
proc costs {scripts} {
    for {set round 0} {$round < 5} {incr round} {
        dict for {what script} $scripts {dict lappend costs $what [lindex [uplevel #0 [list time $script]] 0]}
    }
    dict map {what runs} $costs {median $runs}
}

# Questions to the ensemble, on programs without errors. Each is compared with what a script would do otherwise.
foreach size $sizes {
    set file [file join $folder sound-$size.ec]
    ecprg p
    p load $file
    set names [tamsel names p]
    set defined [tamsel names p -defined 1]
    tamsel users p [lindex $names 0]
    set costs [costs [list load {p load $file} fresh-check {tamsel check p} dump {p dump $folder/dumped} \
        minimal {foreach name $names {minimal $name}} minimal-defined {foreach name $defined {minimal $name}} \
        names {tamsel names p; foreach name $names {tamsel describe p $name}} \
        definition {foreach name $defined {tamsel definition p $name}} json {tamsel text p -format json} \
        first-users {tamsel users p [lindex $names 0]} users {foreach name $defined {tamsel users p $name}}]]
    dict for {what value} $costs {set $what [expr {double(max($value, 1))}]}
    puts "check / load;$size;[expr {${fresh-check} / $load}]"
    puts "names and a describe for each / minimal command;$size;[expr {$names / $minimal}]"
    puts "definition of all / 1.5 dump + minimal command;$size;[expr {$definition / (1.5 * $dump + ${minimal-defined})}]"
    puts "JSON / dump;$size;[expr {$json / $dump}]"
    puts "index of users / load;$size;[expr {${first-users} / $load}]"
    puts "users, once indexed / minimal command;$size;[expr {$users / ${minimal-defined}}]"
    file delete $folder/dumped
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
