# options.tcl: the command line.

namespace eval options {
    # Short, word, argument, what it has to be, its value unless given, what --help says. Without an argument the value
    # is 0 or 1; that of a list grows with each.
    variable table {
        {o output FOLDER any {} {write Quarel texts there: what FOLDER/a/b.ec holds goes to a/b.quarel}}
        {{} strict {} {} 0 {write none of a program with errors, as a name that is not declared is one}}
        {{} check {} {} 0 {tell all findings: types, clocks, cycles and unused names, too}}
        {{} fail-on SEVERITY severity error {end with status 1 from there on: error, warning or note; error unless given}}
        {{} timeout S seconds {} {pass over a file that takes longer than S seconds}}
        {{} files0-from FILE any {} {take the names in FILE, too, each with a NUL byte behind it; - is standard input}}
        {{} exclude PATTERN list {} {leave out files and folders so called; with a slash: at that path below FOLDER}}
        {j jobs N count {} {run N processes on each host; as many as it has cores unless given}}
        {n files-per-job N count {} {hand each process N files at a time; 1000 unless given, or fewer where that makes
            less than two jobs a core}}
        {{} sshloginfile FILE any {} {run on the hosts that FILE lists, one a line, as GNU parallel takes them
            ("4/user@host", ":" for this one); they share this host's folders}}
        {{} shard K/N shard 1/1 {only the K-th of N parts of the files, counted from 1: for schedulers}}
        {{} resume {} {} 0 {pass over what an earlier run that was stopped has done, if there was one}}
        {{} incremental {} {} 0 {pass over what any earlier run has done and has not changed, and keep that in mind}}
        {{} state FOLDER any {} {keep there what these two need; .tamsel-batch in the output folder, or else in
            the current one, unless given}}
        {{} report FILE report {} {write the lines about problems to FILE, not to standard output}}
        {{} json FILE report {} {write all as one JSON document to FILE; - is standard output, here and below}}
        {{} jsonl FILE report {} {write a line of JSON for each file, good ones too}}
        {{} junit FILE report {} {write all as JUnit XML}}
        {{} sarif FILE report {} {write the problems as SARIF 2.1.0}}
        {{} joblog FILE report {} {write what GNU parallel notes of each job: host, times, status}}
        {{} no-progress {} {} 0 {show no progress; there is some only on a terminal}}
        {h help {} {} 0 {print this}}
    }
    variable reports {report json jsonl junit sarif}
}

proc options::refuse {text} {throw {BATCH 2} "$text; see tamsel-batch --help"}

proc options::usage {} {
    set lines {}
    foreach row $::options::table {
        lassign $row short word argument - - help
        set option "  [expr {$short eq "" ? "   " : "-$short,"}] --[string trim "$word $argument"]"
        foreach line [split $help \n] {
            lappend lines [format "%-26s %s" $option [string trim $line]]
            set option ""
        }
    }
    return [string map [list @OPTIONS@ [join $lines \n]] {usage: tamsel-batch [OPTION...] [--] FOLDER|FILE...

Checks EC programs: all files FILE, and those called *.ec below each FOLDER. With --output also writes each that
loads as Quarel text. Prints a line for each problem,
    NAME:LINE:COLUMN: SEVERITY: REASON
and at the end, on standard error, how many there were.

@OPTIONS@

Exit status: 0 nothing is as bad as --fail-on says, 1 something is, 2 the command line is wrong, 3 the run itself failed
and some files could not be looked at (workers died, a host or a disk failed), 130 stopped by Ctrl-C, 129 and 143
by the signals HUP and TERM.

Environment: QUAREL_INSTALL and TCLLIBPATH as for Tamsel itself; TCLSH, the shell that runs the workers, unless set the
first of tclsh8.6, tclsh9.0 and tclsh that there is; TMPDIR.}]
}

# What is wrong with the value of an option, as "needs ..."; empty if nothing is.
proc options::fault {kind value} {
    switch $kind {
        count {if {![regexp {^[1-9]\d{0,8}$} $value]} {return "needs a number from 1"}}
        seconds {if {![regexp {^\d*\.?\d*$} $value] || ![regexp {[1-9]} $value]} {return "needs a number of seconds"}}
        severity {if {$value ni {error warning note}} {return "needs error, warning or note"}}
        shard {
            if {![regexp {^([1-9]\d{0,8})/([1-9]\d{0,8})$} $value - part parts] || $part > $parts} {
                return "needs K/N with K from 1 to N"
            }
        }
    }
}

# The row of an option as it was written, which may be the beginning of its word.
proc options::row {option} {
    variable table
    if {![string match --* $option]} {
        set rows [lsearch -all -inline -exact -index 0 $table [string index $option 1]]
    } else {
        set word [string range $option 2 end]
        set rows [lsearch -all -inline -exact -index 1 $table $word]
        if {![llength $rows]} {
            set rows [lmap row $table {
                if {[string first $word [lindex $row 1]] != 0} continue
                set row
            }]
        }
    }
    if {[llength $rows] != 1} {refuse "there is [expr {[llength $rows] ? "more than one" : "no"}] option '$option'"}
    return [lindex $rows 0]
}

# Takes an option, and its argument, from the front of `words`. Returns its word and value.
proc options::take {wordsVar} {
    upvar 1 $wordsVar words
    set words [lassign $words option]
    set given [regexp {^(--[^=]*)=(.*)$} $option - option value]
    if {!$given && ![string match --* $option] && [string length $option] > 2} {
        set given 1
        set value [string range $option 2 end]
    }
    lassign [row $option] - word argument kind
    if {$argument eq ""} {
        if {$given} {refuse "--$word takes no argument"}
        return [list $word $kind 1]
    }
    if {!$given} {
        if {![llength $words]} {refuse "--$word needs an argument"}
        set words [lassign $words value]
    }
    set fault [fault $kind $value]
    if {$fault ne ""} {refuse "--$word $fault, not '$value'"}
    list $word $kind $value
}

# Returns a dict of all options, and `names`, the other words.
proc options::read {words} {
    variable table
    set options [dict create names {}]
    foreach row $table {dict set options [lindex $row 1] [lindex $row 4]}
    while {[llength $words]} {
        set word [lindex $words 0]
        if {$word eq "--"} {
            dict lappend options names {*}[lrange $words 1 end]
            break
        } elseif {![string match -?* $word]} {
            dict lappend options names $word
            set words [lrange $words 1 end]
            continue
        }
        lassign [take words] word kind value
        dict [expr {$kind eq "list" ? "lappend" : "set"}] options $word $value
    }
    if {![dict get $options help] && ![llength [dict get $options names]] && [dict get $options files0-from] eq ""} {
        refuse "no folder and no file is given"
    }
    return $options
}
