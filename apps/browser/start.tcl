# start.tcl: reads the command line, and starts the browser or writes a picture.

namespace eval ::tamselbrowser {
  variable folder [file dirname [file normalize [info script]]]
  variable usage "usage: tamsel-browser \[OPTION...\] \[FILE.ec|FOLDER...\]
Shows EC programs in a window.

  --export FILE   write a picture to FILE.svg, .png, .pdf, .dot or .json; of the first program,
                  without a window or a display
  --name NAME     choose a name; the picture is then of its cone
  --show WHAT     both (needs and users), back (what it needs), forth (what needs it), whole
  --steps NUMBER  how many steps of the cone
  --path NAME     of --export: the path between this name and that of --name
  --symbol        of --export: the block symbol instead of the dependencies
  --special       open files that are no regular ones, such as pipes, too
  --help          print this"

  # Sources the other files; `sources` has those that need Tk.
  proc source_files {names} {
    variable folder
    foreach name $names {
      uplevel #0 [list source -encoding utf-8 [file join $folder $name.tcl]]
    }
  }
  source_files {
    shown work answers state program cone layout drawing figure export style report
  }
  variable sources {
    tip menu view-picture view-programs view-table view-name view-findings view-symbol view-graph
    view-source view-expression view-log window
  }

  # Ends with a message on standard error.
  proc fail {text} {
    puts stderr "tamsel-browser: $text"
    answers::finish_all
    exit 1
  }

  # The command line as a dictionary, --name as `name` and so on; `files` are the other words. Fails
  # with a text for the user.
  proc options {words} {
    set options [dict create files {}]
    while {$words ne ""} {
      set words [lassign $words word]
      switch -glob -- $word {
        --help - --symbol - --special {dict set options [string range $word 2 end] 1}
        --export - --name - --show - --steps - --path {
          if {$words eq ""} {error "$word needs a word after it"}
          set words [lassign $words value]
          dict set options [string range $word 2 end] $value
        }
        -- {
          dict lappend options files {*}$words
          break
        }
        -?* {error "there is no option $word"}
        default {dict lappend options files $word}
      }
    }
    check_options $options
    return $options
  }
  proc check_options {options} {
    dict with options {}
    if {[info exists show] && ![dict exists $figure::scopes $show]} {
      error "--show wants one of [join [dict keys $figure::scopes] {, }]"
    }
    if {[info exists steps] && ![regexp {^[1-9]\d*$} $steps]} {error "--steps wants a number"}
    if {[info exists export] && $files eq ""} {error "--export wants a program"}
    if {[info exists path] && ![info exists name]} {error "--path wants a --name, too"}
    if {[info exists export] && [info exists show] && $show ne "whole" && ![info exists name]} {
      error "--show $show wants a --name, too"
    }
  }

  # Makes the window. Tk is loaded.
  proc start {} {
    variable sources
    source_files $sources
    set sources {}
    interp bgerror {} ::tamselbrowser::report::unexpected
    set window::larger [state::look larger {^-?\d{1,2}$} 0]
    style::apply $window::larger
    view::picture::make_fonts
    window::create
  }

  # Takes over what the command line says of the picture.
  proc set_picture {options} {
    if {[dict exists $options steps]} {view::graph::want_steps [dict get $options steps]}
    if {[dict exists $options show]} {view::graph::want [dict get $options show]}
  }

  # Fails unless there is a picture about a name.
  proc check_name {id name} {
    try {
      set kind [dict get [program::ask $id [program::question $id describe $name]] kind]
    } trap {TAMSEL LOOKUP} {} {
      error "there is no $name in it"
    }
    if {$kind in {function type}} {error "$name is a $kind; pictures are of variables and constants"}
  }

  # What a picture is to be of, as the command line says; see figure.tcl.
  proc figure {id options} {
    set figure [dict merge {name "" steps 2 show both path ""} $options]
    dict set figure scope [dict get $figure show]
    dict set figure to [dict get $figure path]
    if {[dict get $figure name] eq ""} {
      # Where no part is asked for, all of it is.
      dict set figure scope whole
    }
    if {[dict get $figure path] ne ""} {dict set figure scope path}
    if {[dict exists $options symbol]} {dict set figure scope symbol}
    foreach name [list [dict get $figure name] [dict get $figure path]] {
      if {$name ne ""} {check_name $id $name}
    }
    dict merge [dict filter $figure key scope name to steps] \
      [dict create extra {} chosen [dict get $figure name] most 0]
  }

  # Writes a picture without a window.
  proc export_only {options} {
    set path [dict get $options export]
    set format [string tolower [string range [file extension $path] 1 end]]
    try {
      export::check $format
    } on error {result} {
      fail "$path\n$result"
    }
    set id [program::open [lindex [dict get $options files] 0]]
    program::load $id
    if {![program::is_good $id]} {
      set trouble [program::its $id trouble]
      fail [report::place [program::its $id file] [dict get $trouble line] [dict get $trouble message]]
    }
    set figure [figure $id $options]
    if {[catch {figure::write $id $figure $format $path} result detail]} {
      fail [report::describe $path $result $detail]
    }
  }

  # The program, given the words of its command line.
  proc main {words} {
    variable usage
    if {[catch {options $words} options]} {fail "$options\n$usage"}
    if {[dict exists $options help]} {
      catch {puts $usage}  ;# whoever reads may have seen enough
      exit 0
    }
    set program::takes_special [dict exists $options special]
    # The library is loaded while the window is made.
    answers::prepare
    if {[dict exists $options export]} {
      if {[catch {export_only $options} result detail]} {
        fail [report::describe [lindex [dict get $options files] 0] $result $detail]
      }
      answers::finish_all
      exit 0
    }
    if {[catch {package require Tk} result]} {
      fail "could not start in Tcl [package provide Tcl]: [lindex [split [string trim $result] \n] end]"
    }
    start
    if {[catch answers::ready result]} {
      fail "could not load the library: [lindex [split [string trim $result] \n] end]"
    }
    set_picture $options
    window::open_soon [dict get $options files] \
      [expr {[dict exists $options name] ? [dict get $options name] : ""}]
  }
}
