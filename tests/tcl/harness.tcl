# What every Tcl test file begins with: the library, loaded, and the helpers below. It ends with `finish`.
#
# Environment: TAMSEL_LIBRARY, the library to test; TAMSEL_SOURCE, the root of the source tree.

package require tcltest 2
namespace import ::tcltest::test ::tcltest::cleanupTests

set source_dir $env(TAMSEL_SOURCE)
set scratch [expr {[info exists env(TMPDIR)] ? $env(TMPDIR) : "/tmp"}]
set scratch [file normalize [file join $scratch tamsel-test-[pid]]]
file mkdir $scratch
load $env(TAMSEL_LIBRARY)

# The path of a file called `name` in the scratch folder, with `text` in it.
proc write_file {name text} {
    set path [file join $::scratch $name]
    set channel [open $path w]
    fconfigure $channel -translation binary
    puts -nonewline $channel $text
    close $channel
    return $path
}

# The bytes of a file.
proc read_file {path} {
    set channel [open $path r]
    fconfigure $channel -translation binary
    set text [read $channel]
    close $channel
    return $text
}

# The path of an example.
proc example {name} {
    file join $::source_dir examples $name
}

# A test with a fresh program object `p`.
proc program_test {name description body result} {
    uplevel 1 [list test $name $description -setup {ecprg p} -body $body -cleanup {rename p {}} -result $result]
}

# Runs `script` by the command `shell`, with `args` in argv and nothing on standard input, and returns
# {exit-status standard-output standard-error}. The library prints UTF-8, whatever the locale.
proc run_shell {shell script args} {
    set path [write_file child.tcl [encoding convertto utf-8 "$script\nexit 0\n"]]
    set out [file join $::scratch child.out]
    set err [file join $::scratch child.err]
    set status 0
    if {[catch {exec {*}$shell $path {*}$args < /dev/null > $out 2> $err} _ options]} {
        set code [dict get $options -errorcode]
        set status [expr {[lindex $code 0] eq "CHILDSTATUS" ? [lindex $code 2] : $code}]
    }
    list $status {*}[lmap path [list $out $err] {
        set text [read_file $path]
        # Tcl 9 refuses what is none, such as a NUL of Tcl's.
        catch {set text [encoding convertfrom utf-8 $text]}
        set text
    }]
}

# The same in a tclsh that has loaded the library.
proc run_child {script args} {
    run_shell [list [info nameofexecutable] -encoding utf-8] "load [list $::env(TAMSEL_LIBRARY)]\n$script" {*}$args
}

# All that `script` prints, on whichever channel, in a tclsh that has loaded the library, in the folder of the examples,
# with `input` to read. Handles are no two times the same.
proc shown {script {input {}}} {
    set path [write_file child.tcl [encoding convertto utf-8 \
        "load [list $::env(TAMSEL_LIBRARY)]\ncd [list [example {}]]\n$script\nexit\n"]]
    regsub -all {_exp[0-9A-F]+} [exec [info nameofexecutable] -encoding utf-8 $path << $input 2>@1] HANDLE
}
# The lines of a text that differ from those kept in tests/tcl/expected; none where it is the same. Keeps the text
# where the environment has TAMSEL_KEEP.
proc unlike_kept {name found} {
    set path [file join $::source_dir tests tcl expected $name]
    set found [encoding convertto utf-8 $found\n]
    if {[info exists ::env(TAMSEL_KEEP)]} {write_file $path $found}
    set wrong {}
    foreach line [split $found \n] kept [split [read_file $path] \n] {
        if {$line ne $kept} {append wrong "$line\n    not $kept\n"}
    }
    return $wrong
}

# Runs a tool on its own, without what a sanitized library needs.
proc run_tool {args} {
    exec env -u LD_PRELOAD {*}$args
}

# What this series of Tcl says of a folder that is taken for a file.
catch {open $scratch w}
set is_folder [lindex $errorCode 2]

# The result and errorCode of a script that must fail.
proc failure {script} {
    if {![catch {uplevel 1 $script} result options]} {
        error "succeeded with: $result"
    }
    list $result [dict get $options -errorcode]
}

# For tables: rows of a script and its result, and rows of a script, its error and its errorCode. Both
# return what differs, a line for each such row, and so nothing for a table that holds.
proc wrong_results {rows} {
    set wrong {}
    foreach {script result} $rows {
        set caught [catch {uplevel 1 $script} found]
        if {$caught || $found ne $result} {append wrong "$script\n    gives $found\n    not $result\n"}
    }
    return $wrong
}
proc wrong_failures {rows} {
    set wrong {}
    foreach {script text code} $rows {
        catch {uplevel 1 [list failure $script]} found
        if {$found ne [list $text $code]} {
            append wrong "$script\n    gives $found\n    not [list $text $code]\n"
        }
    }
    return $wrong
}

# The error result of an operation on command `name`.
proc bad_call {name text} {
    return "Dorvik: bad `$name' call\n=> $text"
}

# Reports, cleans up and exits with status 1 if a test failed or none ran.
proc finish {} {
    set failed [expr {$::tcltest::numTests(Failed) > 0 || $::tcltest::numTests(Passed) == 0}]
    # Where Tk is loaded and nobody sits before it, cleanupTests ends the process with status 0.
    ::tcltest::testConstraint interactive 1
    cleanupTests
    file delete -force $::scratch
    exit $failed
}
