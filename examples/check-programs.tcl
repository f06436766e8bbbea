# check-programs.tcl FILE|FOLDER ...: loads EC programs and tells what is wrong, and where, as compilers do.
#
# Of a folder, its *.ec files. The exit status is 1 where something is wrong. `check-programs.tcl broken .`
# in this folder prints what is in expected/check-programs.out.

package require Tamsel

# What keeps `file` from loading, behind the file's name and the line; empty if nothing does.
proc fault {file} {
    ecprg program
    try {
        program load $file
        return ""
    } trap {TAMSEL SYNTAX} {- options} {
        lassign [dict get $options -errorcode] - - line message
        return "$file:$line: $message"
    } trap {TAMSEL IO} {- options} {
        return "$file: [lindex [dict get $options -errorcode] end]"
    } finally {
        rename program {}
    }
}

set files [concat {*}[lmap path $argv {
    expr {[file isdirectory $path] ? [lsort [glob -nocomplain -directory $path *.ec]] : [list $path]}
}]]
set faulty 0
foreach file $files {
    if {[set fault [fault $file]] ne ""} {
        puts $fault
        incr faulty
    }
}
puts "[llength $files] programs, $faulty with faults"
exit [expr {$faulty > 0}]
