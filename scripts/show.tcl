# scripts/show.tcl FILE...: shows EC programs: what each declares, and its Quarel text.
#
# For a tclsh that finds package Tamsel; needs no display. A file that cannot be shown is reported on
# standard error and passed over; the exit status is then 1.

# Names longer than this do not widen their column.
set widest_column 40

proc fail {text} {
  puts stderr "show: $text"
  exit 1
}

proc heading {count what} {
  puts "\n$count $what[expr {$count == 1 ? "" : "s"}]"
}

# Prints the names and types of the variables that `kind` counts and asks about: in, out or loc.
proc show_variables {program kind what} {
  set count [$program nb-${kind}s]
  set width 0
  set names {}
  for {set i 0} {$i < $count} {incr i} {
    set name [$program $kind-name $i]
    set length [string length $name]
    if {$length <= $::widest_column} {set width [expr {max($width, $length)}]}
    lappend names $name
  }
  heading $count $what
  set i -1
  foreach name $names {
    puts [format "  %-*s  %s" $width $name [$program $kind-type [incr i]]]
  }
}

proc show_functions {program} {
  set count [$program nb-funcs]
  heading $count function
  for {set i 0} {$i < $count} {incr i} {
    puts "  [$program func-decl $i]"
  }
}

proc show {program file} {
  $program load $file
  puts "== $file"
  puts "profile: [$program profile]"
  show_variables $program in input
  show_variables $program out output
  show_variables $program loc local
  show_functions $program
  puts ""
  flush stdout  ;# before what the library prints through a buffer of its own
  $program dump
  puts ""
}

# The last line of a program object's error; of a syntax error also where it is.
proc explain {result code} {
  set text [string map {"=> " ""} [lindex [split $result \n] end]]
  lassign $code owner kind line message
  if {$owner eq "TAMSEL" && $kind eq "SYNTAX"} {append text ", line $line: $message"}
  return $text
}

if {[llength $argv] == 0} {fail "usage: show.tcl FILE..."}
if {[catch {package require Tamsel} result]} {
  fail "could not load the library: $result"
}

set status 0
foreach file $argv {
  ecprg program
  try {
    show program $file
  } trap {TAMSEL IO EPIPE} {} - trap {POSIX EPIPE} {} {
    exit 1  ;# the reader of our output has seen enough
  } trap TAMSEL {result options} {
    puts stderr "show: [explain $result [dict get $options -errorcode]]"
    set status 1
  }
  rename program {}
}
exit $status  ;# also where Tk is loaded, which would go on to wait for events
