# start.tcl: finds the library, reads the command line, starts the browser.

namespace eval ::tamselbrowser {
  variable folder [file dirname [file normalize [info script]]]
  variable usage "usage: tamsel-browser \[OPTION...\] \[FILE.ec...\]
Shows EC programs in a window.

  --export FILE   write a picture to FILE.svg, .png or .pdf, without a window; of the first program
  --name NAME     choose a name; the picture is then of its cone
  --show WHAT     both (needs and users), back (what it needs), forth (what needs it), whole
  --steps NUMBER  how many steps of the cone
  --symbol        of --export: the block symbol instead of the dependencies
  --help          print this"

  # Sources the other files.
  apply {{folder} {
    foreach name {
      shown work files quarel pretty program cone layout style report view-picture view-programs
      view-table view-equation view-symbol view-graph view-source view-expression view-log export
      window
    } {
      uplevel #0 [list source -encoding utf-8 [file join $folder $name.tcl]]
    }
  }} $folder

  # Ends with a message on standard error.
  proc fail {text} {
    puts stderr "tamsel-browser: $text"
    exit 1
  }

  # Loads the library: the package, or in the source tree what was built there.
  proc load_library {} {
    variable folder
    global auto_path env
    # It wants the name of any folder here.
    if {![info exists env(QUAREL_INSTALL)]} {set env(QUAREL_INSTALL) $folder}
    set built [file join [file dirname [file dirname $folder]] build release]
    if {[file exists [file join $built pkgIndex.tcl]]} {lappend auto_path $built}
    uplevel #0 {package require Tamsel}
  }

  # The command line as a dictionary, --name as `name` and so on; `files` are the other words. Fails
  # with a text for the user.
  proc options {words} {
    set options [dict create files {}]
    while {$words ne ""} {
      set words [lassign $words word]
      switch -glob -- $word {
        --help - --symbol {dict set options [string range $word 2 end] 1}
        --export - --name - --show - --steps {
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
    if {[dict exists $options show]
        && ![dict exists $view::graph::scopes [dict get $options show]]} {
      error "--show wants one of [join [dict keys $view::graph::scopes] {, }]"
    }
    if {[dict exists $options steps] && ![regexp {^[1-9]\d*$} [dict get $options steps]]} {
      error "--steps wants a number"
    }
    if {[dict exists $options export] && [dict get $options files] eq ""} {
      error "--export wants a program"
    }
    return $options
  }

  # Makes the window. Tk and the library are loaded.
  proc start {} {
    interp bgerror {} ::tamselbrowser::report::unexpected
    style::apply
    view::picture::make_fonts
    window::create
  }

  # Takes over what the command line says of the picture.
  proc set_picture {options} {
    if {[dict exists $options steps]} {view::graph::want_steps [dict get $options steps]}
    if {[dict exists $options show]} {view::graph::want [dict get $options show]}
  }

  # Chooses the name that the command line gives, once its program has been read.
  proc choose_name {name id} {
    if {$id eq [lindex [program::all] 0] && [shown::name] eq "" && [program::declares $id $name]} {
      shown::choose $name
    }
  }

  # Writes a picture without showing a window.
  proc export_only {options} {
    wm withdraw .
    set id [program::open [lindex [dict get $options files] 0]]
    program::read_details $id
    shown::select $id
    if {[dict exists $options name]} {
      if {![program::declares $id [dict get $options name]]} {
        error "there is no [dict get $options name] in it"
      }
      shown::choose [dict get $options name]
    }
    # A choice would lead from the whole program to a cone.
    set_picture $options
    set path [dict get $options export]
    set format [string tolower [string range [file extension $path] 1 end]]
    set drawn [expr {[dict exists $options symbol] ? "symbol" : "graph"}]
    view::${drawn}::draw $id
    if {[catch {export::write [set view::${drawn}::canvas] $format $path} result detail]} {
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
    if {[catch {package require Tk; load_library} result]} {
      fail "could not start in Tcl [package provide Tcl]: [lindex [split [string trim $result] \n] end]"
    }
    start
    if {[dict exists $options export]} {
      if {[catch {export_only $options} result detail]} {
        fail [report::describe [lindex [dict get $options files] 0] $result $detail]
      }
      exit 0
    }
    set_picture $options
    if {[dict exists $options name]} {
      shown::listen program [namespace code [list choose_name [dict get $options name]]]
    }
    window::open_soon [dict get $options files]
  }
}
