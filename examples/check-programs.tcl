# check-programs.tcl FILE|FOLDER ...: loads EC programs and tells what is wrong, and where, as compilers do.
#
# Of a folder, its *.ec files. The exit status is 1 where something is wrong. `check-programs.tcl broken .`
# in this folder prints what is in expected/check-programs.out.

package require Tamsel

# What keeps `file` from loading, after the file's name and the line; empty if nothing does.
proc fault {file} {
    ecprg program
    try {
        program load $file
        return ""
    } trap {TAMSEL SYNTAX} {- options} {
        lassign [dict get $options -errorcode] - - line message
        return "$file:$line: [encoding convertto utf-8 $message]"
    } trap {TAMSEL IO} {- options} {
        return "$file: [lindex [dict get $options -errorcode] end]"
    } finally {
        rename program {}
    }
}

# A name is its bytes from here on: it need not be a text in the encoding of the system.
set argv [lmap path $argv {encoding convertto [encoding system] $path}]
encoding system iso8859-1
fconfigure stdout -encoding iso8859-1

set files [concat {*}[lmap path $argv {
    expr {[file isdirectory $path] ? [lsort [glob -nocomplain -directory $path *.ec]] : [list $path]}
}]]
set faulty 0
try {
    foreach file $files {
        if {[set fault [fault $file]] ne ""} {
            puts $fault
            incr faulty
        }
    }
    puts "[llength $files] programs, $faulty with faults"
    flush stdout
} trap {POSIX EPIPE} {} {
    # Whoever reads has seen enough.
}
exit [expr {$faulty > 0}]
