# state.tcl: what is kept between runs: recent files, sizes and places; and the contents of files.

namespace eval ::tamselbrowser::state {
  variable most_recent 10
  variable kept {}     ;# what `look` keeps, as it was read

  # Where something is kept; "" where there is no place for it.
  proc path {name} {
    global env
    if {[info exists env(XDG_STATE_HOME)] && $env(XDG_STATE_HOME) ne ""} {
      return [file join $env(XDG_STATE_HOME) tamsel $name]
    }
    if {![info exists env(HOME)]} {return ""}
    file join $env(HOME) .local state tamsel $name
  }

  # The lines of a file that is kept. What cannot be read counts as empty.
  proc lines {name} {
    if {[catch {contents [path $name]} text]} {return {}}
    split [string trim $text] \n
  }

  # Keeps lines; where that cannot be done, nothing is kept.
  proc keep {name lines} {
    catch {
      file mkdir [file dirname [path $name]]
      set channel [open [path $name] w]
      fconfigure $channel -encoding utf-8
      puts $channel [join $lines \n]
    }
    catch {close $channel}
  }

  # The recent files that still exist, the last one first.
  proc recent {} {
    lmap name [lines recent] {
      if {$name eq "" || ![file exists $name]} continue
      set name
    }
  }
  # Notes that files were opened, the last one last.
  proc remember {files} {
    variable most_recent
    set names [recent]
    foreach file [lrange $files end-$most_recent end] {
      set names [list $file {*}[lsearch -all -inline -not -exact $names $file]]
    }
    keep recent [lrange $names 0 $most_recent-1]
  }

  # What was kept of the window as a dictionary, each value fit for `pattern`, else `default`.
  proc look {key pattern default} {
    variable kept
    if {$kept eq ""} {
      foreach line [lines window] {
        if {[regexp {^(\w+) (.*)$} $line -> its_key value]} {dict set kept $its_key $value}
      }
    }
    if {[dict exists $kept $key] && [regexp $pattern [dict get $kept $key]]} {
      return [dict get $kept $key]
    }
    return $default
  }
  proc keep_look {look} {
    keep window [lmap {key value} $look {string cat "$key $value"}]
  }

  # A channel to read a text from. A byte that is no part of UTF-8 is shown as some character.
  proc open_text {path} {
    set channel [open $path]
    fconfigure $channel -encoding utf-8
    # Tcl 9 would refuse it.
    catch {fconfigure $channel -profile replace}
    return $channel
  }
  proc contents {path} {
    set channel [open_text $path]
    try {
      return [read $channel]
    } finally {
      close $channel
    }
  }
}
