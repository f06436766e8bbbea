# answer.tcl: the process behind a program: it has the library and the program, and answers scripts.
#
# A script and an answer both begin with a line: the script's has its length in characters, the
# answer's its return code and its length. The answer to an error is a list, {RESULT ERRORCODE}. The
# first answer, that the library is there, is to no script. The process ends where its input does.

# Wants the name of any folder.
if {![info exists env(QUAREL_INSTALL)]} {set env(QUAREL_INSTALL) [pwd]}
# In the source tree, what was built there.
set built [file join [file dirname [file dirname [file dirname [file normalize [info script]]]]] \
  build release]
if {[file exists [file join $built pkgIndex.tcl]]} {lappend auto_path $built}
unset built

foreach channel {stdin stdout} {
  fconfigure $channel -encoding utf-8 -translation lf -buffering full
}

# Runs a script and writes its answer.
proc answer {script} {
  set code [catch {uplevel #0 $script} result options]
  if {$code == 1} {set result [list $result [dict get $options -errorcode]]}
  puts -nonewline "$code [string length $result]\n$result"
  flush stdout
}

answer {package require Tamsel}
while {[gets stdin size] >= 0} {answer [read stdin $size]}
