# view-symbol.tcl: the node as a block with its ports, inputs left and outputs right.

namespace eval ::tamselbrowser::view::symbol {
  namespace path {::tamselbrowser::view ::tamselbrowser}

  variable canvas ""
  variable is_due 0        ;# whether the symbol is to be drawn when it comes into sight
  variable most_ports 200  ;# on each side; more would be a wall
  variable widest 260      ;# pixels of a name

  # The ports of a kind: {NAME TYPE CLOCK}, and how many more there are.
  proc ports {id kind} {
    variable most_ports
    set names [program::names_of $id $kind]
    set ports [lmap name [lrange $names 0 $most_ports-1] {
      list $name [program::fact $id type $name] \
        [program::fact $id clock $name]
    }]
    list $ports [expr {max(0, [llength $names] - $most_ports)}]
  }

  # Width of the longest of some texts.
  proc width {texts font} {
    tcl::mathfunc::max 0 {*}[lmap text $texts {font measure $font $text}]
  }

  # What stands outside of a port: its type, and its clock unless it is the base clock.
  proc outside {port} {
    lassign $port _ type clock
    expr {$clock eq "" ? $type : "$type when $clock"}
  }

  # Draws the ports of one side. `edge` is the side of the block, `way` 1 right, -1 left.
  proc draw_side {ports more edge top row way kind} {
    variable canvas
    variable widest
    foreach name {paper ink faint} {set $name [style::colour $name]}
    set line [style::colour ${kind}_edge]
    set inner [expr {$way > 0 ? "e" : "w"}]
    set outer [expr {$way > 0 ? "w" : "e"}]
    set y [expr {$top + $row / 2.0}]
    foreach port $ports {
      set name [lindex $port 0]
      set tip [expr {$edge + $way * 34}]
      # The signal flows to the right on both sides.
      set wire [list $edge $y $tip $y]
      if {$way < 0} {set wire [list $tip $y $edge $y]}
      $canvas create line {*}$wire -fill $line -width 2 -arrow last -tags arrow
      $canvas create text [expr {$edge - $way * 12}] $y -anchor $inner -fill $ink \
        -text [style::shortened $name tamselbrowser.name $widest] \
        -font tamselbrowser.name -tags [list port "name $name"]
      $canvas create text [expr {$tip + $way * 8}] $y -anchor $outer -fill $faint \
        -text [outside $port] -font tamselbrowser.detail -tags type
      set y [expr {$y + $row}]
    }
    if {$more > 0} {
      $canvas create text [expr {$edge - $way * 12}] $y -anchor $inner -fill $faint \
        -text "and $more more" -font tamselbrowser.detail
    }
  }

  # Draws a program's symbol.
  proc draw {id} {
    variable canvas
    variable widest
    picture::reset $canvas
    lassign [ports $id input] inputs more_inputs
    lassign [ports $id output] outputs more_outputs
    set row [expr {[font metrics tamselbrowser.name -linespace] + 9}]
    set title [style::shortened \
      [lindex [program::call $id profile] 0] tamselbrowser.heading $widest]
    foreach side {inputs outputs} {
      set width_of($side) [expr {min($widest, [width [lmap port [set $side] {lindex $port 0}] \
        tamselbrowser.name])}]
    }
    set rows [expr {max([llength $inputs] + ($more_inputs > 0),
      [llength $outputs] + ($more_outputs > 0), 1)}]
    set width [expr {max($width_of(inputs) + $width_of(outputs) + 90,
      [font measure tamselbrowser.heading $title] + 60)}]
    set head 46
    set height [expr {$head + $rows * $row + 12}]
    set edge [style::colour local_edge]
    picture::box $canvas 0 0 $width $height 8 \
      -fill [style::colour frame] -outline $edge -width 1.5
    $canvas create text [expr {$width / 2.0}] [expr {$head / 2.0}] -text $title \
      -font tamselbrowser.heading -fill [style::colour ink] -tags title
    $canvas create line 0 $head $width $head -fill $edge
    # The shorter side stands in the middle.
    set middle [expr {$head + 6 + $rows * $row / 2.0}]
    draw_side $inputs $more_inputs 0 \
      [expr {$middle - ([llength $inputs] + ($more_inputs > 0)) * $row / 2.0}] $row -1 input
    draw_side $outputs $more_outputs $width \
      [expr {$middle - ([llength $outputs] + ($more_outputs > 0)) * $row / 2.0}] $row 1 output
    picture::fit $canvas 1.25 title 0.75
  }

  # Another program is current: its symbol is drawn now, or when the canvas comes into sight.
  proc current {id} {
    variable canvas
    variable is_due 1
    $canvas delete all
    draw_due
  }
  proc draw_due {} {
    variable canvas
    variable is_due
    set id [shown::program]
    if {!$is_due || ![winfo viewable $canvas] || $id eq "" || ![program::is_read $id]} return
    set is_due 0
    draw $id
  }

  # Tells which command draws the same.
  proc say {{path ""}} {
    log::picture [shown::program] --symbol $path
  }

  # A click on a port chooses its name.
  proc clicked {} {
    variable canvas
    foreach tag [$canvas gettags current] {
      if {[string match "name *" $tag]} {
        set name [string range $tag 5 end]
        log::name [shown::program] $name
        shown::choose $name symbol
      }
    }
  }

  proc create {frame} {
    variable canvas $frame.canvas
    ttk::frame $frame -style Paper.TFrame
    picture::create $canvas [namespace code clicked]
    pack $canvas -fill both -expand 1
    bind $canvas <Map> +[namespace code draw_due]
    shown::listen program [namespace code current]
  }
}
