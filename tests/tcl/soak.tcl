# tests/tcl/soak.tcl ?<cycles>?: lives a long life, and says what it costs.
#
# Prints the resident memory and the open descriptors after each tenth of its cycles, and fails where
# either has grown since the second; a sanitizer, which is preloaded, holds memory back. By hand, with 100,000 cycles:
#   TAMSEL_LIBRARY=build/release/libdorvik.so TAMSEL_SOURCE=$PWD QUAREL_INSTALL=$PWD
#   scripts/with-display.sh tclsh8.6 tests/tcl/soak.tcl 100000

load $env(TAMSEL_LIBRARY) Dorvikbatch
set is_sanitized [info exists env(LD_PRELOAD)]
set cycles [expr {$argc > 0 ? [lindex $argv 0] : 1000}]
set file [file join $env(TAMSEL_SOURCE) examples elevator.ec]
set source [info script]
set written [open /dev/null w]
set long [string repeat x 2000]

# One handle for the whole life: expressions that stay are printed and typed over and over.
ecprg kept
kept add-in int a
set handle [kept exp "if a > 0 then pre(a + 1) else -a"]
kept dump /dev/null

proc cycle {i} {
    ecprg p n$i
    p load $::file
    p profile
    p exp "1 + $i"
    catch {p exp "1 + nosuch$i"}
    catch {kept exp "[string repeat {a + } 100] nosuch"}
    p add-loc int
    p dump /dev/null
    set channel [open $::file]
    p loadch $channel
    close $channel
    # Some of these fail.
    foreach call {
        {load /nosuch} {load $::source} {load /dev/null} {load /} {loadch $::written} {loadch nosuch}
        {dump /} {dump /nosuch/out} {dump /dev/full} init
    } {
        catch "p $call"
    }
    p exp-type "($i, true)"
    if {$i % 2} {rename p {}}
    # Long, so that one reference too many is seen.
    ecprg $::long
    rename $::long {}
    catch {kept load /nosuch/$::long}
    sigint "puts $::long"
    add_timer 1 "set ::fired 1 ;# $::long"
    vwait ::fired
    abort_timer [add_timer 60000 $::long]
    # An object that Tcl throws away without a word goes with its interpreter.
    if {$i % 10 == 0} {
        interp create c
        load $::env(TAMSEL_LIBRARY) Dorvikbatch c
        c eval {ecprg p; trace add command p delete {apply {args {ecprg p}}}; proc p {} {}}
        interp delete c
    }
    kept exp-type $::handle
    kept exp-type "[string repeat {pre } 100]a"
}

set grown 0
for {set tenth 1} {$tenth <= 10} {incr tenth} {
    for {set i 0} {$i < $cycles / 10} {incr i} {cycle $i}
    set channel [open /proc/self/statm]
    set memory [expr {[lindex [read $channel] 1] * 4}]
    close $channel
    set descriptors [llength [glob /proc/self/fd/*]]
    puts "[expr {$tenth * $cycles / 10}] cycles: $memory kB, $descriptors descriptors"
    if {$tenth == 2} {
        set limit [expr {$memory + 256}]
        set open $descriptors
    }
    if {$tenth > 2 && ((!$is_sanitized && $memory > $limit) || $descriptors > $open)} {set grown 1}
}
exit $grown
