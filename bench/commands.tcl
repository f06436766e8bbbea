# commands.tcl LIBRARY MINIMAL FOLDER EQUATIONS...: what operations cost on the programs FOLDER/EQUATIONS.ec.
#
# Prints lines of what,equations,value: a query against the minimal string command of library MINIMAL with
# the same words, and what adds to a program against the same in an empty one. The two of a pair are timed
# in turn, over and over, and the median of the ratios counts. For the programs FOLDER/wide-INPUTS.ec prints
# the microseconds that the first profile takes for each character of its text; for edits over and over of one
# equation the bytes that the process grows by with each.

set sizes [lassign $argv library minimal folder]
source [file join [file dirname [info script]] results.tcl]
load $library
load $minimal Minimal

# Before all else, while no memory is free that something else has left.
proc resident {} {
    set channel [open /proc/self/statm]
    set pages [lindex [read $channel] 1]
    close $channel
    expr {$pages * 4096}
}
foreach {what value} {"the same number" 7 "a new number" $i} {
    ecprg p
    p init n
    tamsel declare p output int o
    for {set i 0} {$i < 220000} {incr i} {
        if {$i == 20000} {set before [resident]}
        tamsel define p o "0 -> pre o + [subst $value]"
    }
    puts "edits;$what;[expr {([resident] - $before) / 200000.0}]"
    rename p {}
}

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

# The medians of a few runs of each script, in microseconds of processor time. They are run in turn, so that a
# busy machine is busy for all of them.
proc costs {scripts {rounds 5}} {
    for {set round 0} {$round < $rounds} {incr round} {
        dict for {what script} $scripts {
            set before [spent]
            uplevel #0 $script
            dict lappend costs $what [expr {[spent] - $before}]
        }
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

# The words by which `declare` makes all that p declares, and those by which `define` makes its equations.
proc declarations {} {
    set all {}
    foreach kind {type function constant input output local} {
        foreach name [tamsel names p -kind $kind] {
            set known [tamsel describe p $name]
            dict with known {
                if {$kind eq "type"} {
                    set values [lmap value $constants {
                        if {![dict exists [tamsel describe p $value] rank]} continue
                        set value
                    }]
                    lappend all [list type $name {*}[lreverse $values]]
                } elseif {$kind eq "function"} {
                    lappend all [list function $name $params $results]
                } elseif {![dict exists $known rank]} {
                    lappend all [list $kind $type $name -clock $clock]
                }
            }
        }
    }
    return $all
}
proc definitions {} {
    set all {}
    foreach name [tamsel names p -defined 1] {
        set with [dict get [tamsel describe p $name] with]
        if {[lindex $with 0] eq $name} {lappend all [list $with [tamsel definition p $name]]}
    }
    return $all
}

# Commands that change a program: making one, and then names that change, lose their equations and go. Those of all
# variables are run one by one and in one call; each round of `costs` begins with the program as it was read.
foreach size $sizes {
    set file [file join $folder built.ec]
    ecprg p
    p load [file join $folder sound-$size.ec]
    set declarations [declarations]
    set definitions [definitions]
    set asserted [lmap assertion [tamsel assertions p] {dict get $assertion text}]
    tamsel write p $file -format ec
    set rounds [expr {$size < 1000000 ? 5 : 1}]
    set costs [costs {
        load {p load $file}
        minimal {
            foreach words $declarations {minimal {*}$words}
            foreach words $definitions {minimal {*}$words}
            foreach text $asserted {minimal $text}
        }
        build {
            p init built
            foreach words $declarations {tamsel declare p {*}$words}
            foreach words $definitions {tamsel define p {*}$words}
            foreach text $asserted {tamsel assert p $text}
        }
    } $rounds]
    dict with costs {
        puts "building / 3 loads + minimal commands;$size;[expr {$build / (3 * $load + $minimal)}]"
    }

    set locals [tamsel names p -kind local]
    set defined [tamsel names p -defined 1]
    set indexes {}
    foreach text $asserted {lappend indexes [llength $indexes]}
    set costs [costs {
        load {p load $file}
        "rename, one by one" {foreach name $locals {tamsel rename p $name ${name}_}}
        "rename, in one call" {tamsel rename p {*}[concat {*}[lmap name $locals {list ${name}_ $name}]]}
        "retract 0" {foreach index $indexes {tamsel retract p 0}}
        "undefine, one by one" {foreach name $defined {tamsel undefine p $name}}
        "describe and remove" {foreach name $locals {tamsel describe p $name; p loc-name 0; tamsel remove p $name}}
        again {p load $file}
        "retract, in one call" {tamsel retract p {*}$indexes}
        "undefine, in one call" {tamsel undefine p {*}$defined}
        "remove, in one call" {tamsel remove p {*}$locals}
    } $rounds]
    set load [dict get $costs load]
    dict unset costs load
    dict unset costs again
    dict for {what cost} $costs {puts "$what / load;$size;[expr {$cost / $load}]"}
    rename p {}
    file delete $file
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
