# lint.tcl FILE|FOLDER ...: checks EC programs and tells of each finding as compilers do, sorted by place:
#     FILE:LINE:COLUMN: SEVERITY: MESSAGE
#
# Of a folder, its *.ec files. The column is that of the first name that the finding is about, where that stands in
# the line, and else 1. The exit status is 1 where there is an error. `lint.tcl broken .` in this folder prints
# what is in expected/lint.out.

package require Tamsel

# The lines of a file, from 0, as bytes.
proc lines_of {file} {
    set channel [open $file]
    fconfigure $channel -translation binary
    set text [read $channel]
    close $channel
    split $text \n
}

# Where `name` stands in `line` as a word, from 1; 1 where it does not. As the library does, it counts characters and
# not the bytes that continue one.
proc column {line name} {
    if {![regexp "^(.*?)\\m${name}\\M" $line - before]} {return 1}
    expr {1 + [regexp -all {[^\x80-\xbf]} $before]}
}

# What is wrong with the program of `file`: {line column severity message} each.
proc findings {file} {
    ecprg program
    try {
        program load $file
        set lines [lines_of $file]
        return [lmap finding [tamsel check program] {
            dict with finding {
                list $line [column [lindex $lines $line-1] [lindex $names 0]] $severity $message
            }
        }]
    } trap {TAMSEL SYNTAX} {- options} {
        lassign [dict get $options -errorcode] - - - message line column
        return [list [list $line $column error $message]]
    } trap {TAMSEL IO} {- options} {
        return [list [list 1 1 error [lindex [dict get $options -errorcode] end]]]
    } finally {
        rename program {}
    }
}

set files [concat {*}[lmap path $argv {
    expr {[file isdirectory $path] ? [lsort [glob -nocomplain -directory $path *.ec]] : [list $path]}
}]]
set errors 0
try {
    foreach file $files {
        foreach finding [lsort -integer -index 0 [lsort -integer -index 1 [findings $file]]] {
            lassign $finding line column severity message
            puts "$file:$line:$column: $severity: $message"
            incr errors [expr {$severity eq "error"}]
        }
    }
    flush stdout
} trap {POSIX EPIPE} {} {
    # Whoever reads has seen enough.
}
exit [expr {$errors > 0}]
