# report.tcl: says what went wrong, and where, to the user.

namespace eval ::tamselbrowser::report {
  namespace path ::tamselbrowser

  variable most_shown 20  ;# failures in one dialog

  # The message of an error: of the library's without the call that it names.
  proc message {result} {
    if {![string match "Dorvik: *" $result]} {
      return [string map {"\nchild process exited abnormally" ""} $result]
    }
    regsub {^=> (?:\S+ )?[-\w]+ ?: } [lindex [split $result \n] end] ""
  }

  # What an error says: {WHAT LINE COLUMN}, the places 0 unless the error is at one.
  proc explain {result code} {
    lassign $code owner kind line message at_line at_column
    if {$owner eq "TAMSEL" && $kind eq "SYNTAX"} {
      if {$message eq "no node"} {return [list "The file holds no node." 0 0]}
      # The token that could not be read, where it is known; else where the reader stopped.
      if {![string is integer -strict $at_column]} {return [list $message $line 0]}
      return [list $message $at_line $at_column]
    }
    if {$owner eq "TAMSEL" && $kind eq "IO"} {return [list $message 0 0]}
    if {$owner eq "POSIX"} {return [list [lindex $code 2] 0 0]}
    list [message $result] 0 0
  }

  # An error as a finding like those of `tamsel check`, with a column besides.
  proc finding {result options} {
    lassign [explain $result [dict get $options -errorcode]] what line column
    dict create kind syntax severity error names {} line $line column $column message $what
  }

  # One failure as text: where, then what.
  proc describe {file result options} {
    lassign [explain $result [dict get $options -errorcode]] what line
    if {$file eq ""} {return $what}
    place $file $line $what
  }
  proc place {file line what} {
    return "$file[expr {$line > 0 ? ", line $line" : ""}]\n$what"
  }

  # Shows a dialog; `action` is what could not be done, `failures` a list of {FILE RESULT OPTIONS}.
  # It does not wait for the user.
  proc failed {action failures} {
    variable most_shown
    set texts [lmap failure [lrange $failures 0 $most_shown-1] {describe {*}$failure}]
    set more [expr {[llength $failures] - $most_shown}]
    if {$more > 0} {lappend texts "and $more more"}
    style::dialog .error "Tamsel" $action [namespace code [list list_texts [join $texts \n\n]]]
  }
  proc list_texts {text} {
    set widget [style::scrolled .error.what \
      [list text -width 72 -wrap word -relief flat -padx 10 -pady 8 -font TkDefaultFont \
        -background [style::colour paper] -foreground [style::colour ink]] y]
    $widget insert end $text
    # As high as it needs to be, within reason.
    $widget configure -state disabled \
      -height [expr {min(18, max(3, [regexp -all \n $text] + 2))}]
  }

  # For what no one foresaw, in place of Tk's dialog with its trace.
  proc unexpected {result options} {
    failed "Something went wrong" [list [list "" $result $options]]
  }
}
