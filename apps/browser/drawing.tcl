# drawing.tcl: pictures as shapes, which canvases show and files hold; made without a display.
#
# A drawing is a dictionary:
#   title    a text
#   kind     graph or symbol
#   shapes   a list, from the lowest to the highest, of
#     box TAGS LEFT TOP RIGHT BOTTOM RADIUS FILL EDGE WIDTH
#     curve TAGS POINTS COLOUR WIDTH IS_DASHED IS_ARROW      cubic curves one after the other
#     text TAGS X Y ANCHOR FONT COLOUR STRING                FONT is name, detail or heading
#   names    a list of dictionaries with name, kind, type, clock, box (LEFT TOP RIGHT BOTTOM)
#   wires    a list of {FROM TO DELAYED POINTS}
# Tags join what belongs together: box:3, with box:3:shape, box:3:title and box:3:detail, is the box
# of the third name from 0, wire:3 a wire, stub:before:3 and stub:after:3 counts at the corners.

namespace eval ::tamselbrowser::drawing {
  namespace path ::tamselbrowser

  variable fonts {name 13 detail 11 heading 15}  ;# and their sizes in pixels
  variable widest 180                            ;# pixels of a text in a box
  variable printing {""}                         ;# the tasks that make files
  # Widths of the characters in Helvetica, in thousandths of its size; the last is that of others.
  variable widths [lrepeat 32 556]
  lappend widths {*}{
    278 278 355 556 556 889 667 191 333 333 389 584 278 333 278 278 556 556 556 556 556 556 556 556
    556 556 278 278 584 584 584 556 1015 667 667 722 722 667 611 778 722 278 500 667 556 833 722 778
    667 778 722 667 611 722 667 944 667 667 611 278 278 278 469 556 333 556 556 500 556 556 278 556
    556 222 222 500 222 833 556 556 556 556 333 500 278 556 500 722 500 500 500 334 260 334 584 556
  }
  # What the colours of boxes and wires say.
  variable legend {
    input_edge input  output_edge output  local_edge local  needed "is needed"  using "needs it"
  }
  variable legend_more "dashed: through pre     \u2039 instead of wires     +3 not drawn"

  # The width of a text where a file is made: that of Helvetica, which every printer has.
  proc printed_width {font text} {
    variable fonts
    variable widths
    set sum 0
    if {[string is ascii $text]} {
      binary scan $text cu* codes
    } else {
      set codes [lmap character [split $text ""] {expr {min([scan $character %c], 127)}}]
    }
    foreach code $codes {incr sum [lindex $widths $code]}
    expr {$sum * [dict get $fonts $font] * ($font eq "heading" ? 1.08 : 1.0) / 1000}
  }

  # The width of a text: on the screen, but for tasks that make files, and where there is no task.
  proc width {font text} {
    variable printing
    if {[info coroutine] in $printing} {return [printed_width $font $text]}
    view::picture::width $font $text
  }

  # Runs a script in whose task texts are measured as in files.
  proc printed {script} {
    variable printing
    lappend printing [info coroutine]
    try {
      return [uplevel 1 $script]
    } finally {
      set printing [lsearch -all -inline -exact -not $printing [info coroutine]]
      if {"" ni $printing} {lappend printing ""}
    }
  }

  # `text`, cut so that it is at most `widest` wide in a font.
  proc shortened {font text widest} {
    # Nothing longer can fit, whatever the letters.
    set low 0
    set high [expr {min([string length $text], int($widest))}]
    if {$high == [string length $text] && [width $font $text] <= $widest} {return $text}
    while {$low < $high} {
      set middle [expr {($low + $high + 1) / 2}]
      if {[width $font "[string range $text 0 $middle-1]\u2026"] <= $widest} {
        set low $middle
      } else {
        set high [expr {$middle - 1}]
      }
    }
    return "[string range $text 0 $low-1]\u2026"
  }

  # The role of a name, "" for none.
  proc role {roles name} {
    expr {[dict exists $roles $name] ? [dict get $roles $name] : ""}
  }

  # The look of a box of a kind of name that plays a role, see `roles`: colours of its inside and its
  # edge, the width of that, colours of the two texts.
  proc box_look {kind role} {
    switch -- $role {
      "" {set look [list $kind ${kind}_edge 1 ink faint]}
      chosen {set look {chosen chosen 2 paper line}}
      needed - using {set look [list ${role}_fill $role 2 ink faint]}
      default {set look [list $kind $role 1.5 ink faint]}
    }
    lassign $look fill edge width ink faint
    list [style::colour $fill] [style::colour $edge] $width [style::colour $ink] \
      [style::colour $faint]
  }

  # The colour and the width of a wire between names that play roles.
  proc wire_look {from to roles} {
    set look {wire_dim 1}
    set from_role [role $roles $from]
    set to_role [role $roles $to]
    if {$roles eq ""} {
      set look {wire 1}
    } elseif {$to_role eq "chosen"} {
      set look {needed 2}
    } elseif {$from_role eq "chosen"} {
      set look {using 2}
    } elseif {[string match needed* $from_role] && [string match needed* $to_role]} {
      set look {needed_far 1}
    } elseif {[string match using* $from_role] && [string match using* $to_role]} {
      set look {using_far 1}
    }
    list [style::colour [lindex $look 0]] [lindex $look 1]
  }

  # What the names of a picture are to one of them: name -> chosen, needed, needed_far, using or
  # using_far; without those that it neither needs nor is needed by, and empty for another name.
  # A task.
  proc roles {picture name} {
    if {$name ni [dict get $picture items]} {return {}}
    set roles [dict create $name chosen]
    set steps [dict create $name 0]
    foreach {role from to} {needed 1 0 using 0 1} {
      set next {}
      foreach edge [dict get $picture edges] {
        dict lappend next [lindex $edge $from] [lindex $edge $to]
        work::pause 0 1
      }
      set found [dict create $name 0]
      set todo [list $name]
      for {set i 0} {$i < [llength $todo]} {incr i} {
        set at [lindex $todo $i]
        if {![dict exists $next $at]} continue
        set its [expr {[dict get $found $at] + 1}]
        foreach other [dict get $next $at] {
          if {[dict exists $found $other]} continue
          dict set found $other $its
          lappend todo $other
          # The nearer way counts.
          if {[dict exists $steps $other] && [dict get $steps $other] <= $its} continue
          dict set steps $other $its
          dict set roles $other [expr {$its == 1 ? $role : "${role}_far"}]
        }
        work::pause 0 1
      }
    }
    return $roles
  }

  # The texts of a box: its name, and its type with the labels; shortened.
  proc box_texts {name fact labels} {
    variable widest
    lassign $fact _ type clock
    set detail [expr {$type eq "" ? "?" : $type}]
    if {$clock ni {"" true}} {append detail " when $clock"}
    if {$labels ne ""} {append detail "  \u2039 [join [lrange $labels 0 30] {, }]"}
    list [shortened name $name $widest] [shortened detail $detail $widest]
  }

  # The curve of a wire from a box to itself, a loop on top of it.
  proc loop {box} {
    lassign $box left top right
    set x [expr {$right - 22}]
    set y [expr {$top - 15}]
    list [expr {$x - 9}] $top [expr {$x - 12}] $y [expr {$x + 12}] $y [expr {$x + 9}] $top
  }

  # The shapes of the box of name `number`.
  proc box_shapes {number fact role place texts before after} {
    lassign [box_look [lindex $fact 0] $role] fill edge width ink faint
    lassign $place left top right bottom
    set tags [list box box:$number]
    set x [expr {$left + 10}]
    set shapes [list \
      [list box [list {*}$tags box:$number:shape] {*}$place 6 $fill $edge $width] \
      [list text [list {*}$tags box:$number:title] $x [expr {$top + 4}] nw name $ink \
        [lindex $texts 0]] \
      [list text [list {*}$tags box:$number:detail] $x [expr {$bottom - 5}] sw detail $faint \
        [lindex $texts 1]]]
    foreach {side count x anchor} [list before $before [expr {$left + 3}] nw \
      after $after [expr {$right - 3}] ne] {
      if {$count == 0} continue
      lappend shapes [list text [list stub stub:$side:$number] $x [expr {$bottom + 1}] $anchor \
        detail [style::colour faint] +$count]
    }
    return $shapes
  }

  # The value of a key in a dictionary of a picture, or another.
  proc part {picture dictionary key {otherwise {}}} {
    if {[dict exists $picture $dictionary $key]} {return [dict get $picture $dictionary $key]}
    return $otherwise
  }

  # The texts and sizes of the boxes of a picture: {NAME->TEXTS NAME->{WIDTH HEIGHT}}. A task.
  proc measured {picture} {
    set texts {}
    set boxes {}
    foreach name [dict get $picture items] {
      set its [box_texts $name [part $picture facts $name] [part $picture labels $name]]
      dict set texts $name $its
      set width [expr {max([width name [lindex $its 0]], [width detail [lindex $its 1]])}]
      dict set boxes $name [list [expr {max(64, ceil($width) + 20)}] 44]
      work::pause 0 1
    }
    list $texts $boxes
  }

  # The drawing of a picture of cone.tcl, coloured for a name, which may be "". A task.
  proc graph {title picture chosen} {
    lassign [measured $picture] texts boxes
    lassign [layout::place $boxes [dict get $picture edges]] places wires
    set roles [roles $picture $chosen]
    set shapes {}
    set drawn {}
    set number -1
    foreach wire $wires {
      lassign $wire from to delayed points
      if {$points eq ""} {lset wire 3 [set points [loop [dict get $places $to]]]}
      lappend drawn $wire
      lassign [wire_look $from $to $roles] colour width
      lappend shapes [list curve [list wire wire:[incr number]] $points $colour $width $delayed 1]
      work::pause 0 1
    }
    set names {}
    set number -1
    dict for {name place} $places {
      set fact [part $picture facts $name]
      lappend shapes {*}[box_shapes [incr number] $fact [role $roles $name] $place \
        [dict get $texts $name] [llength [part $picture before $name]] \
        [part $picture after $name 0]]
      lappend names [dict create name $name kind [lindex $fact 0] type [lindex $fact 1] \
        clock [lindex $fact 2] box $place]
      work::pause 0 1
    }
    dict create title $title kind graph shapes $shapes names $names wires $drawn
  }

  # The shapes of the ports of one side of a block, and what is told of them. `edge` is the side,
  # `way` 1 right, -1 left; `ports` a list of {NAME TYPE CLOCK}.
  proc port_shapes {ports edge top row way kind first} {
    variable widest
    set y [expr {$top + $row / 2.0}]
    lassign [expr {$way > 0 ? {e w} : {w e}}] inner outer
    set shapes {}
    set names {}
    foreach port $ports {
      lassign $port name type clock
      set tip [expr {$edge + $way * 34}]
      # The signal flows to the right on both sides.
      lassign [lsort -real [list $edge $tip]] from to
      set third [expr {($to - $from) / 3.0}]
      lappend shapes [list curve wire [list $from $y [expr {$from + $third}] $y \
        [expr {$to - $third}] $y $to $y] [style::colour ${kind}_edge] 2 0 1] \
        [list text [list box box:$first port] [expr {$edge - $way * 12}] $y $inner name \
          [style::colour ink] [shortened name $name $widest]] \
        [list text type [expr {$tip + $way * 8}] $y $outer detail [style::colour faint] \
          [shortened detail [expr {$clock in {"" true} ? $type : "$type when $clock"}] $widest]]
      lappend names [dict create name $name kind $kind type $type clock $clock \
        box [list $from [expr {$y - $row / 2.0}] $to [expr {$y + $row / 2.0}]]]
      incr first
      set y [expr {$y + $row}]
    }
    list $shapes $names
  }

  # The drawing of a node as a block: inputs and outputs are lists of {NAME TYPE CLOCK}.
  proc symbol {title inputs outputs} {
    variable widest
    set title [shortened heading $title 300]
    lassign [lmap ports [list $inputs $outputs] {
      tcl::mathfunc::max 0 {*}[lmap port $ports {
        expr {min($widest, [width name [lindex $port 0]])}
      }]
    }] left_width right_width
    set row 24
    set head 46
    set rows [expr {max([llength $inputs], [llength $outputs], 1)}]
    set width [expr {max($left_width + $right_width + 90, [width heading $title] + 60)}]
    set height [expr {$head + $rows * $row + 12}]
    set edge [style::colour local_edge]
    set shapes [list \
      [list box block 0 0 $width $height 8 [style::colour frame] $edge 1.5] \
      [list text title [expr {$width / 2.0}] [expr {$head / 2.0}] center heading \
        [style::colour ink] $title] \
      [list curve rule [list 0 $head [expr {$width / 3.0}] $head [expr {$width / 1.5}] $head \
        $width $head] $edge 1 0 0]]
    set names {}
    foreach {ports at way kind} [list $inputs 0 -1 input $outputs $width 1 output] {
      # The shorter side stands in the middle.
      set top [expr {$head + 6 + ($rows - [llength $ports]) * $row / 2.0}]
      lassign [port_shapes $ports $at $top $row $way $kind [llength $names]] more its_names
      lappend shapes {*}$more
      lappend names {*}$its_names
    }
    dict create title $title kind symbol shapes $shapes names $names wires {}
  }

  proc bounds {x y} {
    list [tcl::mathfunc::min {*}$x] [tcl::mathfunc::min {*}$y] \
      [tcl::mathfunc::max {*}$x] [tcl::mathfunc::max {*}$y]
  }

  # The box about some shapes: {LEFT TOP RIGHT BOTTOM}. A task.
  proc extent {shapes} {
    variable fonts
    set x {}
    set y {}
    foreach shape $shapes {
      switch -- [lindex $shape 0] {
        box {
          lappend x [lindex $shape 2] [lindex $shape 4]
          lappend y [lindex $shape 3] [lindex $shape 5]
        }
        curve {foreach {a b} [lindex $shape 2] {lappend x $a; lappend y $b}}
        text {
          lassign $shape _ _ a b anchor font _ string
          set width [width $font $string]
          set before [expr {[string match *w $anchor] ? 0 : $anchor eq "center" ? 0.5 : 1}]
          lappend x [expr {$a - $before * $width}] [expr {$a + (1 - $before) * $width}]
          lappend y [expr {$b - [dict get $fonts $font]}] [expr {$b + [dict get $fonts $font]}]
        }
      }
      if {[llength $x] > 1000} {
        lassign [bounds $x $y] left top right bottom
        lassign [list [list $left $right] [list $top $bottom]] x y
        work::pause 0 1
      }
    }
    if {$x eq ""} {return {0 0 1 1}}
    bounds $x $y
  }

  # A drawing with its title above and, of a graph, the legend below: {SHAPES BOX}, the box being that
  # about the shapes. A task.
  proc titled {drawing} {
    set box [extent [dict get $drawing shapes]]
    lassign $box left top right bottom
    set words [list [list text title $left [expr {$top - 22}] w heading [style::colour ink] \
      [dict get $drawing title]]]
    if {[dict get $drawing kind] eq "graph"} {
      lappend words {*}[legend_shapes $left [expr {$bottom + 26}]]
    }
    lassign [extent $words] its_left its_top its_right its_bottom
    list [concat [dict get $drawing shapes] $words] \
      [bounds [list $left $its_left $right $its_right] [list $top $its_top $bottom $its_bottom]]
  }
  proc legend_shapes {x y} {
    variable legend
    variable legend_more
    set faint [style::colour faint]
    set shapes {}
    foreach {colour text} $legend {
      set colour [style::colour $colour]
      lappend shapes [list box legend $x [expr {$y - 5}] [expr {$x + 11}] [expr {$y + 6}] 2 \
        $colour $colour 1] [list text legend [expr {$x + 16}] $y w detail $faint $text]
      set x [expr {$x + 34 + [width detail $text]}]
    }
    lappend shapes [list text legend $x $y w detail $faint $legend_more]
  }
}
