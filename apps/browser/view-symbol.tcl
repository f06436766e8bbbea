# view-symbol.tcl: the node as a block with its ports, inputs left and outputs right.

namespace eval ::tamselbrowser::view::symbol {
  namespace path {::tamselbrowser::view ::tamselbrowser}

  variable canvas ""
  variable is_due 0        ;# whether the symbol is to be drawn when it comes into sight
  variable names {}        ;# of the ports, in the order of their numbers

  # Draws a program's symbol. A task.
  proc draw {id} {
    variable canvas
    variable names
    set drawing [figure::symbol $id]
    set names [lmap name [dict get $drawing names] {dict get $name name}]
    picture::put $canvas $drawing
    picture::fit $canvas 1.25 title 0.6
  }

  # Another program is current: its symbol is drawn now, or when the canvas comes into sight.
  proc current {id} {
    variable canvas
    variable is_due 1
    work::cancel symbol
    $canvas delete all
    draw_due
  }
  proc draw_due {} {
    variable canvas
    variable is_due
    set id [shown::program]
    if {!$is_due || ![winfo viewable $canvas] || $id eq "" || ![program::is_good $id]} return
    set is_due 0
    work::start symbol "Drawing [program::label $id]" [namespace code [list draw $id]]
  }

  # The name of the port under the mouse, or "".
  proc pointed {} {
    variable canvas
    variable names
    foreach tag [$canvas gettags current] {
      if {[regexp {^box:(\d+)$} $tag -> number]} {return [lindex $names $number]}
    }
    return ""
  }
  proc clicked {} {
    if {[pointed] ne ""} {shown::choose [pointed] symbol}
  }

  # Arrow keys go through the ports.
  proc step {by} {
    variable names
    set at [lsearch -exact $names [shown::name]]
    set to [expr {$at < 0 ? 0 : min(max($at + $by, 0), [llength $names] - 1)}]
    if {$names ne ""} {shown::choose [lindex $names $to] symbol}
  }

  proc create {frame} {
    variable canvas $frame.canvas
    ttk::frame $frame -style Paper.TFrame
    picture::create $canvas [namespace code clicked]
    pack $canvas -fill both -expand 1
    bind $canvas <Map> +[namespace code draw_due]
    foreach {key by} {Up -1 Down 1} {bind $canvas <Key-$key> [namespace code [list step $by]]}
    tip::on $canvas [namespace code pointed]
    menu::on $canvas [namespace code pointed]
    shown::listen program [namespace code current]
  }
}
