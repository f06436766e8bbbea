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

  # Line `line` of a file, shortened; "" where it cannot be read.
  proc line_of {file line} {
    try {
      set found [lindex [split [files::contents $file] \n] $line-1]
      return [string range [string trim $found] 0 100]
    } on error {} {
      return ""
    }
  }

  # One failure as text: where, then what, and the line itself.
  proc describe {file result options} {
    lassign [explain $result [dict get $options -errorcode]] what line
    if {$file eq ""} {return $what}
    if {$line == 0} {return "$file\n$what"}
    set text "$file, line $line\n$what"
    set its_line [line_of $file $line]
    if {$its_line ne ""} {append text "\n    $its_line"}
    return $text
  }

  # Shows a dialog; `action` is what could not be done, `failures` a list of {FILE RESULT OPTIONS}.
  # It does not wait for the user.
  proc failed {action failures} {
    variable most_shown
    set texts [lmap failure [lrange $failures 0 $most_shown-1] {describe {*}$failure}]
    set more [expr {[llength $failures] - $most_shown}]
    if {$more > 0} {lappend texts "and $more more"}
    destroy .error
    toplevel .error -background [style::colour frame] -padx 18 -pady 14
    wm title .error "Tamsel"
    wm transient .error .
    ttk::label .error.action -text $action -style Title.TLabel -wraplength 560 -justify left
    set text [style::scrolled .error.what \
      [list text -width 72 -height 6 -wrap word -relief flat -padx 10 -pady 8 \
        -font TkDefaultFont -background [style::colour paper] \
        -foreground [style::colour ink]] y]
    $text insert end [join $texts \n\n]
    # As high as it needs to be, within reason.
    $text configure -state disabled \
      -height [expr {min(18, max(3, [regexp -all \n [join $texts \n\n]] + 2))}]
    ttk::button .error.close -text "Close" -command {destroy .error} -default active
    grid .error.action -sticky w -pady {0 10}
    grid .error.what -sticky nsew
    grid .error.close -sticky e -pady {12 0}
    grid columnconfigure .error 0 -weight 1
    grid rowconfigure .error 1 -weight 1
    bind .error <Return> {destroy .error}
    bind .error <Escape> {destroy .error}
    # Over the main window, also where no window manager places it.
    update idletasks
    set x [expr {[winfo rootx .] + max(0, [winfo width .] - [winfo reqwidth .error]) / 2}]
    set y [expr {[winfo rooty .] + max(0, [winfo height .] - [winfo reqheight .error]) / 3}]
    wm geometry .error +$x+$y
    focus .error.close
  }

  # For what no one foresaw, in place of Tk's dialog with its trace.
  proc unexpected {result options} {
    failed "Something went wrong" [list [list "" $result $options]]
  }
}
