# clean.tcl [-rename TABLE] [-into FOLDER] FILE.ec ...: cleans EC programs.
#
# Drops what no output and no assertion needs, puts the equation of a local that is mentioned once in the place of
# that mention, and gives other names by TABLE, a list of old and new names, of which a program need not have all. The
# EC text goes to standard output behind comments that tell what was done, or into a file of that name in FOLDER.
# `clean.tcl -rename 'elapsed age bite alarm' watchdog.ec operators.ec` prints what is in expected/clean.out.

package require Tamsel

# What outputs and assertions need, and what that runs on.
proc needed {program} {
    set names [tamsel names $program -kind output]
    foreach assertion [tamsel assertions $program] {lappend names {*}[dict get $assertion needs]}
    set known -1
    while {$known < [llength $names]} {
        set known [llength $names]
        set names [dict keys [tamsel cone $program $names]]
        foreach name $names {
            set about [tamsel describe $program $name]
            # The others of a tuple equation have to stay with it.
            lappend names {*}[dict get $about with]
            if {[dict get $about clock] ne "true"} {lappend names [dict get $about clock]}
        }
        set names [lsort -unique $names]
    }
    return $names
}

# Takes the names away that nothing mentions; a type or a function may be free when another one has gone.
proc drop_unmentioned {program} {
    set dropped {}
    foreach kind {function constant type} {
        foreach name [tamsel names $program -kind $kind] {
            try {
                tamsel remove $program $name
                lappend dropped $name
            } trap {TAMSEL STATE USED} {} {}
        }
    }
    return $dropped
}

proc drop {program} {
    set needed [needed $program]
    set dropped [lmap name [tamsel names $program -kind local] {
        if {$name in $needed} continue
        set name
    }]
    if {$dropped ne {}} {tamsel remove $program {*}$dropped}
    concat $dropped [drop_unmentioned $program]
}

# How often the expression that defines `user` mentions `name`.
proc mentions {program user name} {
    set count 0
    foreach {operator - label} [tamsel definition $program $user -as tree] {
        incr count [expr {$operator eq "name" && $label eq $name}]
    }
    return $count
}

# Whether the one mention of a local has now given way to its equation.
proc inline_local {program name} {
    set users [tamsel users $program $name]
    if {[dict get [tamsel describe $program $name] with] ne [list $name] || $users eq {} || $name in $users} {return 0}
    set user [lindex $users 0]
    set others [dict get [tamsel describe $program $user] with]
    if {[llength $users] != [llength $others] || [mentions $program $user $name] != 1} {return 0}
    set before [tamsel definition $program $user]
    tamsel substitute $program $name [tamsel definition $program $name] -in $user
    try {
        # What stands behind `when` has to be a name.
        tamsel clock $program [tamsel definition $program $user]
    } trap {TAMSEL CLOCK} {} {
        tamsel define $program $others $before
        return 0
    }
    tamsel remove $program $name
    return 1
}

proc inline {program} {
    # Neither assertions nor clocks are to change.
    set kept [concat {*}[lmap assertion [tamsel assertions $program] {dict get $assertion needs}]]
    foreach kind {input output local} {
        foreach name [tamsel names $program -kind $kind] {
            lappend kept [dict get [tamsel describe $program $name] clock]
        }
    }
    lmap name [tamsel names $program -kind local -defined 1] {
        if {$name in $kept || ![inline_local $program $name]} continue
        set name
    }
}

# All at once, so that two names can swap.
proc rename_by {program table} {
    set pairs {}
    foreach name [tamsel names $program] {
        if {[dict exists $table $name]} {lappend pairs $name [dict get $table $name]}
    }
    if {$pairs ne {}} {tamsel rename $program {*}$pairs}
    return $pairs
}

proc clean {file table folder} {
    ecprg program
    program load $file
    if {[tamsel check program -only {hole type clock cycle}] ne {}} {
        puts stderr "$file: has errors, and stays as it is"
        return 0
    }
    set done [list dropped [drop program] inlined [inline program] renamed [rename_by program $table]]
    puts "-- $file"
    foreach {what names} $done {
        if {$names ne {}} {puts "-- $what: $names"}
    }
    if {$folder eq ""} {
        puts -nonewline [tamsel text program -format ec]
    } else {
        tamsel write program [file join $folder [file tail $file]] -format ec
    }
    return 1
}

set options [dict create -rename {} -into {}]
while {[dict exists $options [lindex $argv 0]]} {
    dict set options {*}[lrange $argv 0 1]
    set argv [lrange $argv 2 end]
}
if {$argv eq {} || [catch {dict size [dict get $options -rename]}]} {
    puts stderr "usage: clean.tcl \[-rename TABLE] \[-into FOLDER] FILE.ec ..."
    exit 2
}
set bad 0
try {
    foreach file $argv {
        try {
            incr bad [expr {![clean $file [dict get $options -rename] [dict get $options -into]]}]
        } trap TAMSEL {text options_of} {
            puts stderr "$file: [lindex [split $text \n] end]"
            incr bad
        }
    }
    flush stdout
} trap {POSIX EPIPE} {} {
    # Whoever reads has seen enough.
}
exit [expr {$bad > 0}]
