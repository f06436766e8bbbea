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

  # What an error says: {WHAT LINE}. LINE is 0 unless the error is in one.
  proc explain {result code} {
    lassign $code owner kind line message
    if {$owner eq "TAMSEL" && $kind eq "SYNTAX"} {
      if {$message eq "no node"} {return [list "The file holds no node." 0]}
      return [list $message $line]
    }
    if {$owner eq "TAMSEL" && $kind eq "IO"} {return [list [lindex $code 4] 0]}
    if {$owner eq "POSIX"} {return [list [lindex $code 2] 0]}
    list [message $result] 0
  }

  # Line `line` of a file and the one before it, numbered and shortened; "" where they cannot be read.
  # The reader has looked beyond what it complains of, and counts the line where it stopped.
  proc lines_to {file line} {
    try {
      set lines [split [files::contents $file] \n]
    } on error {} {
      return ""
    }
    set text ""
    foreach number [list [expr {$line - 1}] $line] {
      set its_text [string range [string trimright [lindex $lines $number-1]] 0 100]
      if {$its_text ne ""} {append text "\n    $number: $its_text"}
    }
    return $text
  }

  # One failure as text: where, then what, and the line itself.
  proc describe {file result options} {
    lassign [explain $result [dict get $options -errorcode]] what line
    if {$file eq ""} {return $what}
    if {$line == 0} {return "$file\n$what"}
    return "$file, line $line\n$what[lines_to $file $line]"
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
