# view-log.tcl: the commands that do in a Tcl shell what the user does in the window.
#
# For what is no single operation the needed procedure is shown first, once; the lines can be pasted
# as they stand into a shell that has loaded the library. What only moves the window's contents,
# such as scrolling and zooming, has no command.

namespace eval ::tamselbrowser::view::log {
  namespace path {::tamselbrowser::view ::tamselbrowser}

  variable frame ""
  variable text ""
  variable defined {}   ;# the helpers that stand in the log
  variable last ""      ;# the last command
  # What a script needs besides the library.
  variable helpers {
    contents {proc contents {path} {
  set channel [open $path]; fconfigure $channel -encoding iso8859-1
  set text [read $channel]; close $channel
  return $text
}}
    dumped {proc dumped {program} {
  close [file tempfile path]; $program dump $path
  set text [contents $path]; file delete $path
  return $text
}}
    equation {proc equation {program name} {
  regexp "\[;t]\\s*((?:\\w+,\\s*)*$name\\s*(?:,\\s*\\w+\\s*)*=\[^;]*);" [dumped $program] -> found
  return $found
}}
    rows {proc rows {program {wanted *}} {
  set clocked {(\w+)\s*:\s*[\w?]+\s*\)\s*when\s+(\w+)}
  foreach {_ name its_clock} [regexp -all -inline $clocked [dumped $program]] {
    set clock($name) $its_clock
  }
  set rows {}
  foreach {kind word} {input in output out local loc} {
    for {set i 0} {$i < [$program nb-${word}s]} {incr i} {
      set name [$program $word-name $i]
      lappend rows [list $name [$program $word-type $i] [lindex [array get clock $name] 1] $kind]
    }
  }
  for {set i 0} {$i < [$program nb-funcs]} {incr i} {
    set types [lassign [$program func-decl $i] name]
    lappend rows [list $name $types "" function]
  }
  lsearch -all -inline -index 3 $rows $wanted
}}
    needs {proc needs {program name} {
  set words [regexp -all -inline {\w+} [regsub {^[^=]*=} [equation $program $name] ""]]
  lmap row [rows $program] {if {[lindex $row 0] ni $words} continue; lindex $row 0}
}}
    users {proc users {program name} {
  set users {}
  foreach statement [split [regsub {^.*\nlet\n} [dumped $program] ""] ";"] {
    if {[regexp "^(\[\\w,\\s]+)=.*\\m$name\\M" $statement -> left]} {
      lappend users {*}[regexp -all -inline {\w+} $left]
    }
  }
  return $users
}}
  }

  proc append_line {line} {
    variable text
    $text configure -state normal
    $text insert end $line\n
    $text configure -state disabled
    $text see end
  }

  proc say {command} {
    variable last
    if {$command eq $last} return
    set last $command
    append_line $command
  }

  # Shows a command that uses some of the helpers, and those that they use.
  proc say_with {used command} {
    variable defined
    variable helpers
    foreach helper $used {
      if {$helper in $defined} continue
      lappend defined $helper
      append_line [dict get $helpers $helper]
    }
    say $command
  }

  # What asks for a name: its type, and its equation where it has one.
  proc name {id name} {
    set kind [program::fact $id kind $name]
    set word [lindex [dict filter $::tamselbrowser::program::sections value $kind] 0]
    if {$word eq ""} {
      program::say $id exp-type $name
    } else {
      program::say $id $word-type [program::fact $id index $name]
    }
    if {[program::fact $id defined $name] ne ""} {
      say_with {contents dumped equation} [list equation [program::object $id] $name]
    }
  }

  # What asks for a function. Those of several results come last, and no operation knows them.
  proc function {id name} {
    set index [lsearch -exact -index 0 [program::details $id functions] $name]
    if {$index < [program::call $id nb-funcs]} {program::say $id func-decl $index}
  }

  # What lists what a name needs, and what needs it.
  proc neighbours {id name} {
    set object [program::object $id]
    if {[program::fact $id defined $name] ne ""} {
      say_with {contents dumped equation rows needs} [list needs $object $name]
    }
    say_with {contents dumped users} [list users $object $name]
  }

  # What lists the rows of the table: of a kind ("": all) and with names like `pattern`, in an order
  # given as options of lsort ("": as declared).
  proc rows {id kind pattern order} {
    set rows "\[[list rows [program::object $id] {*}$kind]\]"
    if {$pattern ne ""} {
      set rows "\[lsearch -all -inline -glob -nocase -index 0 $rows [list $pattern]\]"
    }
    if {$order ne ""} {set rows "\[lsort $order $rows\]"}
    say_with {contents dumped rows} [string range $rows 1 end-1]
  }

  # What answers the Quarel text, or what the file holds.
  proc content {id is_quarel} {
    if {$id eq ""} return
    if {$is_quarel} {
      program::say $id dump
    } else {
      say_with contents [list contents [program::file_of $id]]
    }
  }

  # What finds a text in their lines.
  proc found {id is_quarel text} {
    set lines [expr {$is_quarel ? [list dumped [program::object $id]]
      : [list contents [program::file_of $id]]}]
    # A caseless pattern without special characters.
    say_with {contents dumped} \
      "lsearch -all -inline -regexp \[split \[$lines\] \\n\] [list (?iq)$text]"
  }

  # What writes a picture: `options` are those of the browser's command line.
  proc picture {id options {path ""}} {
    if {$id eq ""} return
    if {$path eq ""} {set path [program::object $id].svg}
    say [list exec tamsel-browser --export $path {*}$options [program::file_of $id]]
  }

  proc contents {} {
    variable text
    $text get 1.0 "end - 1 chars"
  }
  proc copy {} {
    clipboard clear
    clipboard append [contents]
    shown::tell status "The commands are on the clipboard."
  }
  proc clear {} {
    variable text
    variable defined {}
    variable last ""
    $text configure -state normal
    $text delete 1.0 end
    $text configure -state disabled
  }

  proc create {window} {
    variable frame $window
    variable text
    ttk::frame $frame -padding {10 0 10 4}
    ttk::frame $frame.bar
    ttk::label $frame.bar.label -text "The same in Tcl" -style Faint.TLabel
    ttk::button $frame.bar.copy -text "Copy" -command [namespace code copy]
    ttk::button $frame.bar.clear -text "Clear" -command [namespace code clear]
    set text [style::scrolled $frame.lines {text -wrap none -relief flat \
      -borderwidth 0 -highlightthickness 0 -padx 8 -pady 4 -font tamselbrowser.code -state disabled} y]
    $text configure -height [expr {[winfo screenheight .] < 700 ? 2 : 4}] \
      -background [style::colour paper] -foreground [style::colour ink]
    pack $frame.bar -fill x -pady {0 4}
    pack $frame.bar.label -side left
    pack $frame.bar.clear $frame.bar.copy -side right -padx {6 0}
    pack $frame.lines -fill both -expand 1
    shown::listen command [namespace code say]
  }
}
