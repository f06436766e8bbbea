# doc/format.tcl FORMAT PAGE OUTPUT: writes a page of the manual in doctools' format nroff, html or text.
#
# Where doctools warns, nothing is written and the exit status is 1.

package require doctools

lassign $argv format page output

proc read_page {file} {
    set channel [open $file]
    fconfigure $channel -encoding utf-8
    set text [read $channel]
    close $channel
    return $text
}

# Of examples, doctools drops the empty lines from HTML, and troff lines that begin as its requests do.
proc mark_lines {text mark} {
    set inside 0
    join [lmap line [split $text \n] {
        if {[string match {\[example_*} $line]} {set inside [string match *begin* $line]}
        expr {$inside && [string index $line 0] in {{} '} ? "$mark$line" : $line}
    }] \n
}

set style {
    body {max-width: 50em; margin: 2em auto; padding: 0 1em; font-family: sans-serif; line-height: 1.4}
    h1 {font-size: 1.5em} h2 {font-size: 1.2em; border-bottom: 1px solid #ccc} h3 {font-size: 1.05em}
    pre {background: #f4f4f0; padding: .6em 1em; overflow-x: auto; line-height: 1.25}
    ul.doctools_syntax, ul.doctools_requirements {list-style: none; padding-left: 0}
    dt {margin-top: .6em} dd > p:first-child {margin-top: .2em}
}

doctools::new manual -format $format -file [file tail $page] -module tamsel
if {$format eq "html"} {
    # Pages link each other where one is named with its section.
    set links {}
    foreach other [glob -directory [file dirname $page] *.man] {
        regexp {\[manpage_begin (\S+) (\S+) } [read_page $other] - name section
        lappend links [list ${name}($section) $name.html]
    }
    manual setparam xref $links
    manual setparam meta "<meta charset=\"utf-8\"><style>$style</style>"
}
set mark \3
set unmarked [expr {$format eq "nroff" ? "\\&" : ""}]
set text [string map [list $mark $unmarked] [manual format [mark_lines [read_page $page] $mark]]]
foreach warning [manual warnings] {puts stderr "$page: $warning"}
if {[llength [manual warnings]] > 0} {exit 1}

set channel [open $output w]
fconfigure $channel -encoding utf-8
puts -nonewline $channel $text
close $channel
