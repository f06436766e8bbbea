# scripts/mutate.tcl ?option value ...? ?FILE...?: changes the library a little, again and again, and looks
# whether the tests notice.
#
#   --seed N    which changes are drawn (1)
#   --count N   how many of them (120, which take up to an hour)
#   --only N,N  of the changes drawn, those with these numbers
#   --list 1    shows the changes drawn, and makes none
#
# FILE, from the root of the tree, narrows the choice from all C++ sources of the library. It works in a copy
# of the tree, in TMPDIR, and prints a line for each change and at the end a table by files. A change that no test
# notices is compiled once more, optimized: where the machine code is the same, so is what it does. The other
# survivors are to be looked at: a few do what the code did before, and each of the rest asks for a test.
#
# To be run in scripts/with-display.sh, or each Tcl test starts a display of its own.

# Operators of change: a name, a pattern for what is changed, and a command that gives the replacements for the
# text that it matches.
set operators {
    relation   { (?:<|<=|>|>=|==|!=) }      {swaps {{ < } { <= }  { <= } { < }  { > } { >= }  { >= } { > }
                                                { == } { != }  { != } { == }}}
    logic      { (?:&&|\|\|) }              {swaps {{ && } { || }  { || } { && }}}
    arithmetic { [-+] }                     {swaps {{ + } { - }  { - } { + }}}
    step       {\+\+|--|\+=|-=}             {swaps {++ --  -- ++  += -=  -= +=}}
    truth      {\m(?:true|false)\M}         {swaps {true false  false true}}
    result     {\mTCL_(?:OK|ERROR)\M}       {swaps {TCL_OK TCL_ERROR  TCL_ERROR TCL_OK}}
    number     {\m\d+\M(?![.'])}            successor
    condition  {(?:if|while) \([^;{}=]*?\)(?=( \{| \w[^;{}]*;|\n[^;{}]*;))}  negation
    statement  {\n +(?:(?:\+\+|--)?[^\s(){}]+(?:\([^;{}]*\)| [-+*/|^]?= [^;{}]*|\+\+|--)?|return);(?=\n)}  removal
}

proc swaps {pairs text} {list [dict get $pairs $text]}
proc successor {text} {expr {[string length $text] > 9 ? {} : [scan $text %d] + 1}}
# Only where the first parenthesis closes with the last character.
proc negation {text} {
    set depth 0
    set start [string first ( $text]
    for {set i $start} {$i < [string length $text]} {incr i} {
        switch -- [string index $text $i] ( {incr depth} ) {incr depth -1}
        if {$depth == 0 && $i < [string length $text] - 1} {return {}}
    }
    if {$depth != 0} {return {}}
    list "[string range $text 0 $start]!([string range $text $start+1 end-1]))"
}
proc removal {text} {list \n\;}

# The text with blanks for comments, literals and the preprocessor's lines, so that no pattern finds them.
proc code_of {text} {
    set pattern {//[^\n]*|"(?:[^"\\\n]|\\.)*"|'(?:[^'\\\n]|\\.)+'|^ *#[^\n]*|R"\(.*?\)"|PRINTF_LIKE\([^)]*\)}
    foreach place [regexp -all -inline -indices -lineanchor $pattern $text] {
        lassign $place from to
        set text [string replace $text $from $to [regsub -all {[^\n]} [string range $text $from $to] " "]]
    }
    return $text
}

proc read_file {path} {
    set channel [open $path]
    set text [read $channel]
    close $channel
    return $text
}
proc write_file {path text} {
    set channel [open $path w]
    puts -nonewline $channel $text
    close $channel
}

# All changes of a file: {file operator from to replacement}.
proc changes_of {root file} {
    set code [code_of [read_file $root/$file]]
    set changes {}
    foreach {operator pattern replacements} $::operators {
        # What looks like a statement in a header declares something.
        if {$operator eq "statement" && [file extension $file] eq ".h"} continue
        foreach place [regexp -all -inline -indices -- $pattern $code] {
            lassign $place from to
            # Of the groups of a pattern only the whole match counts.
            if {$from < 0 || [llength $changes] && [lindex $changes end 1] eq $operator && [lindex $changes end 3] >= $from} continue
            foreach replacement [{*}$replacements [string range $code $from $to]] {
                lappend changes [list $file $operator $from $to $replacement]
            }
        }
    }
    return $changes
}

# `count` elements, drawn by `seed`.
proc draw {list seed count} {
    expr {srand($seed)}
    set drawn {}
    while {[llength $drawn] < $count && $list ne {}} {
        set i [expr {int(rand() * [llength $list])}]
        lappend drawn [lindex $list $i]
        set list [lreplace $list $i $i]
    }
    return $drawn
}

# Whether a command succeeds, in the least urgent way, with 4 GB of memory and `seconds` of a processor for each of
# its processes; on a busy machine that may take ten times as long.
proc succeeds {seconds args} {
    expr {![catch {exec sh -c {
        ulimit -v 4000000 && ulimit -t $1 && seconds=$(($1 * 10)) && shift && exec nice -n 19 timeout -k 5 $seconds "$@"
    } - $seconds {*}$args < /dev/null >& $::log}]}
}
proc builds {targets} {succeeds 600 ninja -C $::build -j 1 {*}$targets}

# What becomes of the tree as it stands: "not built", "caught by ..." or "survived". The quickest tests come first.
proc verdict {} {
    foreach {targets steps} {
        unit_tests  {{unit_tests 30 tests/unit_tests --gtest_fail_fast --gtest_brief=1}}
        {replay_expression replay_file replay_roundtrip}  {{replays 60 ctest --stop-on-failure -R ^replay}}
        analysis_test  {{analysis_test 60 tests/analysis_test --gtest_fail_fast --gtest_brief=1}}
        properties_test  {{properties_test 60 tests/properties_test --gtest_fail_fast --gtest_brief=1}}
        dorvik  {{Tcl 60 ctest --stop-on-failure -R ^tcl -E {browser|soak}}}
    } {
        if {![builds $targets]} {return "not built"}
        foreach step $steps {
            set command [lassign $step name seconds]
            if {![succeeds $seconds env -C $::build {*}$command]} {
                set text [read_file $::log]
                if {[regexp {\[  FAILED  \] (\S+)} $text - test]} {return "caught by $test"}
                if {[regexp {(\S+) \.+\**(?:Failed|Timeout|\w*Exception|Subprocess|SEGFAULT)} $text - test]} {return "caught by $test"}
                return "caught by $name"
            }
        }
    }
    return survived
}

# The optimized machine code of a source file, or a text of its own for what is no source file.
proc machine_code {file} {
    set commands [read_file $::build/compile_commands.json]
    if {![regexp "\"command\": \"(\[^\\n]*) -o \[^ ]+ -c \[^ ]*/$file\"" $commands - command]} {return [incr ::unique]}
    set command [string map {\\\\ \\ \\\" \"} $command]
    set object $::build/optimized.o
    exec sh -c "$command -O2 -g0 -o $object -c $::tree/$file" 2>@1
    set channel [open $object rb]
    set code [read $channel]
    close $channel
    return $code
}

set options {--seed 1 --count 120 --only {} --list 0}
set files $argv
while {[string match --* [lindex $files 0]]} {
    set files [lassign $files option value]
    if {![dict exists $options $option]} {
        puts stderr "usage: mutate.tcl ?--seed N? ?--count N? ?--only N,N? ?--list 1? ?FILE...?"
        exit 2
    }
    dict set options $option $value
}
set source [file dirname [file dirname [file normalize [info script]]]]
cd $source
if {$files eq {}} {set files [glob {{foundation,model,reader,writers,analysis,editing,tcl}/*.{cpp,h}}]}
set changes [concat {*}[lmap file [lsort $files] {changes_of $source $file}]]
puts "[llength $changes] changes can be made"
set changes [draw $changes [dict get $options --seed] [dict get $options --count]]

if {[dict get $options --list]} {
    set number 0
    foreach change $changes {puts "[incr number] $change"}
    exit
}

close [file tempfile tree tamsel-mutants]
file delete $tree
set build $tree/build
set log $tree/log
file mkdir $tree
exec sh -c {git ls-files -z --cached --others --exclude-standard | tar -c --null -T - | tar -x -C "$1"} - $tree
# A test that hangs is one that notices.
write_file $tree/tests/CMakeLists.txt [string map {{TIMEOUT 300} {TIMEOUT 120}} [read_file $tree/tests/CMakeLists.txt]]
set env(QUAREL_INSTALL) $tree
if {![succeeds 60 cmake -S $tree -B $build -G Ninja -DCMAKE_BUILD_TYPE=None \
    -DCMAKE_CXX_FLAGS=-O0 -DCMAKE_EXPORT_COMPILE_COMMANDS=ON] || ![builds {faults threads tree}] || [set unchanged [verdict]] ne "survived"} {
    puts [read_file $log]
    puts stderr "mutate: the tests fail without any change"
    exit 1
}

set number 0
foreach change $changes {
    lassign $change file operator from to replacement
    incr number
    if {[dict get $options --only] ne {} && $number ni [split [dict get $options --only] ,]} continue
    set text [read_file $tree/$file]
    write_file $tree/$file [string replace $text $from $to $replacement]
    set verdict [verdict]
    if {$verdict eq "survived"} {
        set changed [machine_code $file]
        write_file $tree/$file $text
        if {[machine_code $file] eq $changed} {set verdict equivalent}
    }
    write_file $tree/$file $text
    dict incr table $file,[regsub { .*} $verdict {}]
    dict incr table $file,made
    set line [regexp -all \n [string range $text 0 $from]]
    puts "$number: $file:[incr line] $operator {[string trim [string range $text $from $to]]} -> {[string trim $replacement]}: $verdict"
    flush stdout
}

set format {%-30s %6s %6s %9s %11s %10s}
puts [format $format file made caught survived equivalent {not built}]
foreach file [concat [lsort -unique [lmap change $changes {lindex $change 0}]] all] {
    set row {}
    foreach column {made caught survived equivalent not} {
        set n [expr {[dict exists $table $file,$column] ? [dict get $table $file,$column] : 0}]
        if {$file ne "all"} {dict incr table all,$column $n}
        lappend row $n
    }
    puts [format $format $file {*}$row]
}
file delete -force $tree
