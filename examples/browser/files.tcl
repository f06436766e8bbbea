# files.tcl: files beside the programs: the recent ones, which are remembered, and passing ones.

namespace eval ::tamselbrowser::files {
  variable most_recent 10

  # Where the recent files are listed, one a line.
  proc recent_path {} {
    global env
    if {[info exists env(XDG_STATE_HOME)] && $env(XDG_STATE_HOME) ne ""} {
      return [file join $env(XDG_STATE_HOME) tamsel recent]
    }
    if {![info exists env(HOME)]} {return ""}
    file join $env(HOME) .local state tamsel recent
  }

  # The recent files that still exist, the last one first. What cannot be read counts as empty.
  proc recent {} {
    try {
      set channel [open [recent_path]]
      set names [split [string trim [read $channel]] \n]
    } on error {} {
      return {}
    } finally {
      catch {close $channel}
    }
    lmap name $names {
      if {$name eq "" || ![file exists $name]} continue
      set name
    }
  }

  # Notes that a file was opened. Where the list cannot be written, nothing is remembered.
  proc remember {file} {
    variable most_recent
    set names [lsearch -all -inline -not -exact [recent] $file]
    set names [lrange [list $file {*}$names] 0 $most_recent-1]
    catch {
      file mkdir [file dirname [recent_path]]
      set channel [open [recent_path] w]
      puts $channel [join $names \n]
    }
    catch {close $channel}
  }

  # The text of a file whose bytes are characters.
  proc contents {path} {
    set channel [open $path]
    try {
      fconfigure $channel -encoding iso8859-1
      return [read $channel]
    } finally {
      close $channel
    }
  }

  # Calls `command` with the path of a new file, and returns the text that it leaves there.
  proc captured {command} {
    close [file tempfile path tamsel]
    try {
      uplevel 1 $command [list $path]
      return [contents $path]
    } finally {
      file delete $path
    }
  }
}
