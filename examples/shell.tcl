# shell.tcl [FILE.ec ...]: a Tcl shell for EC programs, in which Tab completes what one can say to them.
#
# Loads each file into a program object that is called like it. Tab knows objects, operations, files, types and
# the names in a program; it needs the package tclreadline (in Debian: tcl-tclreadline), without which this is a
# plain prompt. A script that sources this file gets the procedures alone.

package require Tamsel

# The operations, as the library tells them. It prints past Tcl, hence a process of its own.
set help [exec env TAMSEL_TK=0 [info nameofexecutable] << {package require Tamsel; help; exit}]
set operations [lmap {- word} [regexp -all -inline -line {^<ecprg> (\S+)} $help] {set word}]

# The program objects made so far that are still there.
set created {}
trace add execution ecprg leave {apply {{call args} {lappend ::created [lindex $call 1]}}}
proc objects {} {
    lmap name [lsort -unique $::created] {
        if {[info commands $name] eq ""} continue
        set name
    }
}

# The names of an object's variables, of the kinds in, out and loc.
proc names {object kinds} {
    concat {*}[lmap kind $kinds {
        set found {}
        for {set i 0} {$i < [$object nb-${kind}s]} {incr i} {lappend found [$object $kind-name $i]}
        set found
    }]
}

proc files {beginning} {
    # Tcl 9 fails where a name is no text in the encoding of the system.
    if {[catch {glob -nocomplain -- $beginning*} paths]} {return {}}
    lmap path [lsort $paths] {
        expr {[file isdirectory $path] ? "$path/" : $path}
    }
}

# All that may stand where the word `beginning` does, after the words `before` of the same command.
proc possible {before beginning} {
    lassign $before object operation
    if {$before eq {}} {return [objects]}
    if {$object ni [objects]} {return {}}
    if {$operation eq ""} {return $::operations}
    set first [expr {[llength $before] == 2}]
    switch -- $operation {
        load - dump {return [files $beginning]}
        add-in - add-out - add-loc - add-func {return {bool int real}}
        eq {return [names $object [expr {$first ? {out loc} : {in out loc}}]]}
        exp - exp-type {return [names $object {in out loc}]}
    }
}

# What the last word of `line` may become.
proc completions {line} {
    regexp {[^;\n\[]*$} $line command
    regexp {[^\s"{}()]*$} $command beginning
    set before [regexp -all -inline {[^\s"{}()]+} [string range $command 0 end-[string length $beginning]]]
    lsearch -all -inline [possible $before $beginning] [regsub -all {[][*?\\]} $beginning {\\&}]*
}

# The same as tclreadline asks for it: what all have in common, then all, each in place of `text`, which is
# readline's own idea of a word: a part of one, or with the brace, quote or parenthesis before it.
proc complete {text start end line} {
    set line [string range $line 0 $end-1]
    regexp {[^\s"{}()\[;]*$} $line beginning
    set opening [string range $text 0 end-[string length $beginning]]
    set skipped [expr {max(0, [string length $beginning] - [string length $text])}]
    set found [lmap word [completions $line] {string cat $opening [string range $word $skipped end]}]
    if {[llength $found] <= 1} {return $found}
    set common [lindex $found 0]
    foreach word $found {
        while {![string equal -length [string length $common] $common $word]} {
            set common [string range $common 0 end-1]
        }
    }
    return [list $common {*}$found]
}

proc read_line {prompt} {
    if {[info commands ::tclreadline::readline] ne ""} {return [::tclreadline::readline read $prompt]}
    puts -nonewline $prompt
    flush stdout
    if {[gets stdin line] < 0} exit
    return $line
}

proc main {files} {
    # Tcl 9 would end at what a channel's encoding cannot hold.
    foreach channel {stdin stdout stderr} {catch {fconfigure $channel -profile replace}}
    if {![catch {package require tclreadline}]} {
        ::tclreadline::readline initialize /dev/null
        ::tclreadline::readline customcompleter complete
    }
    foreach file $files {
        # Not in place of a command that is there already.
        for {set name [file rootname [file tail $file]]} {[namespace which $name] ne ""} {append name _} {}
        ecprg $name
        if {[catch {$name load $file}]} {
            puts stderr "$file: [lindex $::errorCode end]"
            rename $name {}
        }
    }
    puts "Programs: [join [objects] {, }]. `help` prints all commands, `exit` leaves."
    while 1 {
        set command [read_line "% "]
        while {![info complete $command]} {append command \n [read_line "> "]}
        if {[catch {uplevel #0 $command} result]} {
            puts stderr $result
        } elseif {$result ne ""} {
            puts $result
        }
    }
}

if {[info script] eq $argv0} {
    try {
        main $argv
    } trap {POSIX EPIPE} {} exit
}
