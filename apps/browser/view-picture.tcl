# view-picture.tcl: what the canvases of pictures have in common: shapes, zooming, dragging, fitting.
#
# Texts keep their size when a canvas is scaled, so the fonts of pictures are scaled along. At scale 1
# a picture has the pixels of its drawing; on a finer screen it is shown larger by `natural`.

namespace eval ::tamselbrowser::view::picture {
  namespace path {::tamselbrowser::view ::tamselbrowser}

  variable scale     ;# canvas -> how much larger than drawn it is shown
  array set scale {}
  variable waiting   ;# canvas -> what is to be done when it comes into sight
  array set waiting {}
  variable margin 14 ;# about what fits into the window
  variable pressed {0 0}
  variable dragged 0

  # The scale that makes a drawing as large as it is meant to be, letters as large as others.
  proc natural {} {
    expr {[font metrics TkDefaultFont -linespace]
      / double([font metrics tamselbrowser.unit.name -linespace]) * 0.97}
  }

  # The fonts of drawings: tamselbrowser.name and so on, and those of scale 1 to measure by. Tk opens
  # a font that no widget has anew for each question, which takes a hundred times as long.
  proc make_fonts {} {
    dict for {name size} $::tamselbrowser::drawing::fonts {
      set weight [expr {$name eq "heading" ? "bold" : "normal"}]
      style::derive $name TkDefaultFont -weight $weight -size -$size
      label .unit-$name -font [style::derive unit.$name TkDefaultFont -weight $weight -size -$size]
    }
  }
  proc width {font text} {
    font measure tamselbrowser.unit.$font $text
  }

  proc show_fonts {factor} {
    dict for {name size} $::tamselbrowser::drawing::fonts {
      font configure tamselbrowser.$name -size [expr {-max(1, round($size * $factor))}]
    }
  }

  # The shape of an arrowhead at a scale.
  proc arrowhead {scale} {
    lmap length {8 9 3.5} {expr {$length * min(2.0, $scale)}}
  }

  # Scales a canvas by a factor about a point of the window.
  proc zoom {canvas factor {x ""} {y ""}} {
    variable scale
    set new [expr {min(6.0, max(0.08, $scale($canvas) * $factor))}]
    set factor [expr {$new / $scale($canvas)}]
    if {$x eq ""} {
      set x [expr {[winfo width $canvas] / 2}]
      set y [expr {[winfo height $canvas] / 2}]
    }
    $canvas scale all [$canvas canvasx $x] [$canvas canvasy $y] $factor $factor
    set scale($canvas) $new
    show_fonts $new
    $canvas itemconfigure arrow -arrowshape [arrowhead $new]
  }

  # Makes an empty canvas ready to be drawn on at scale 1.
  proc reset {canvas} {
    variable scale
    variable waiting
    unset -nocomplain waiting($canvas)
    $canvas delete all
    set scale($canvas) 1.0
    show_fonts 1.0
  }

  # Puts a shape of a drawing on a canvas.
  proc put_box {canvas tags x1 y1 x2 y2 r fill edge width} {
    # How far the control points of a quarter circle stand from its ends.
    set k [expr {$r * 0.5523}]
    foreach {name x} [list a $x1 d $x2] sign {1 -1} {
      set ${name}r [expr {$x + $sign * $r}]
      set ${name}k [expr {$x + $sign * ($r - $k)}]
    }
    set tr [expr {$y1 + $r}]; set tk [expr {$y1 + $r - $k}]
    set br [expr {$y2 - $r}]; set bk [expr {$y2 - $r + $k}]
    set points [list $ar $y1  $ar $y1 $dr $y1 $dr $y1  $dk $y1 $x2 $tk $x2 $tr \
      $x2 $tr $x2 $br $x2 $br  $x2 $bk $dk $y2 $dr $y2  $dr $y2 $ar $y2 $ar $y2 \
      $ak $y2 $x1 $bk $x1 $br  $x1 $br $x1 $tr $x1 $tr  $x1 $tk $ak $y1 $ar $y1]
    $canvas create polygon $points -smooth raw -tags $tags -fill $fill -outline $edge -width $width
  }
  proc put_curve {canvas tags points colour width is_dashed is_arrow} {
    $canvas create line $points -smooth raw -fill $colour -width $width \
      -dash [expr {$is_dashed ? {5 3} : {}}] -tags [expr {$is_arrow ? [list {*}$tags arrow] : $tags}] \
      -arrow [expr {$is_arrow ? "last" : "none"}] -arrowshape [arrowhead 1.0]
  }
  proc put_text {canvas tags x y anchor font colour string} {
    $canvas create text $x $y -anchor $anchor -font tamselbrowser.$font -fill $colour -text $string \
      -tags $tags
  }

  # Puts a drawing on a canvas at scale 1, before it is `fit`. Returns the items by the last of their
  # tags: a canvas looks through all of its items for a tag. A task.
  proc put {canvas drawing} {
    reset $canvas
    set shapes [dict get $drawing shapes]
    set items {}
    foreach shape $shapes {
      dict set items [lindex $shape 1 end] \
        [put_[lindex $shape 0] $canvas {*}[lrange $shape 1 end]]
      work::pause [dict size $items] [llength $shapes]
    }
    return $items
  }

  # How far something that reaches from `low` to `high` is to move in a window of `size`: what is
  # smaller comes to the middle, what is larger has `focus` there but leaves no blank at its ends.
  proc shift {low high focus size} {
    variable margin
    # By whole pixels, so that level wires stay level.
    if {$high - $low <= $size - 2 * $margin} {return [expr {round(($size - $low - $high) / 2.0)}]}
    expr {round(max($size - $margin - $high, min($margin - $low, $size / 2.0 - $focus)))}
  }

  # Shows everything, at most `largest` times as large as natural and at least `smallest` times; what
  # is larger than the window then has `focus`, a tag, near the middle. A window not in sight waits.
  proc fit {canvas {largest 1.0} {focus all} {smallest 0.08}} {
    variable scale
    variable waiting
    variable margin
    set waiting($canvas) [list fit $canvas $largest $focus $smallest]
    set box [$canvas bbox all]
    if {$box eq "" || ![winfo viewable $canvas]} return
    unset waiting($canvas)
    set width [winfo width $canvas]
    set height [winfo height $canvas]
    # As distances from the upper left corner, about which is scaled. Measured before that, since
    # texts take on their new size later.
    set origin_x [$canvas canvasx 0]
    set origin_y [$canvas canvasy 0]
    lassign [lmap x [list {*}$box {*}[$canvas bbox $focus]] \
      origin [lrepeat 4 $origin_x $origin_y] {expr {$x - $origin}}] x1 y1 x2 y2 fx1 fy1 fx2 fy2
    # A pixel more on each side, as the sizes of fonts are whole.
    set room [expr {2.0 * ($margin + 1)}]
    set factor [expr {min(($width - $room) / max(1, $x2 - $x1), ($height - $room) / max(1, $y2 - $y1))}]
    set wanted [expr {min($largest * [natural],
      max($smallest * [natural], $factor * $scale($canvas)))}]
    set factor [expr {$wanted / $scale($canvas)}]
    zoom $canvas $factor 0 0
    $canvas move all \
      [shift {*}[lmap x [list $x1 $x2 [expr {($fx1 + $fx2) / 2}]] {expr {$factor * $x}}] $width] \
      [shift {*}[lmap y [list $y1 $y2 [expr {($fy1 + $fy2) / 2}]] {expr {$factor * $y}}] $height]
  }

  # Scrolls so far that an item is in sight.
  proc see {canvas tag} {
    lassign [$canvas bbox $tag] x1 y1 x2 y2
    if {$x1 eq ""} return
    foreach {low high first size way} [list \
      $x1 $x2 [$canvas canvasx 0] [winfo width $canvas] xview \
      $y1 $y2 [$canvas canvasy 0] [winfo height $canvas] yview] {
      set by [expr {$low < $first ? $low - $first - 10
        : $high > $first + $size ? $high - $first - $size + 10 : 0}]
      $canvas $way scroll [expr {round($by)}] units
    }
  }

  # A canvas came into sight: its fonts are shown, and what waited is done.
  proc appear {canvas} {
    variable scale
    variable waiting
    show_fonts $scale($canvas)
    if {[info exists waiting($canvas)]} {{*}$waiting($canvas)}
  }

  proc press {canvas x y} {
    variable pressed [list $x $y]
    variable dragged 0
    focus $canvas
    $canvas scan mark $x $y
  }
  proc drag {canvas x y} {
    variable pressed
    variable dragged
    lassign $pressed from_x from_y
    # A hand is not that steady.
    if {abs($x - $from_x) + abs($y - $from_y) > 3} {
      set dragged 1
      $canvas configure -cursor fleur
    }
    if {$dragged} {$canvas scan dragto $x $y 1}
  }
  proc release {canvas clicked} {
    variable dragged
    $canvas configure -cursor ""
    if {!$dragged} {uplevel #0 $clicked}
  }

  # Makes a canvas that zooms with the wheel and keys, drags with the mouse and calls `clicked` at a
  # click.
  proc create {canvas clicked} {
    variable scale
    canvas $canvas -background [style::colour paper] -highlightthickness 1 -takefocus 1 \
      -highlightbackground [style::colour paper] -highlightcolor [style::colour accent] \
      -xscrollincrement 1 -yscrollincrement 1 -width 200 -height 150
    set scale($canvas) 1.0
    bind $canvas <ButtonPress-1> [namespace code {press %W %x %y}]
    bind $canvas <B1-Motion> [namespace code {drag %W %x %y}]
    bind $canvas <ButtonRelease-1> [namespace code [list release %W $clicked]]
    bind $canvas <Button-4> [namespace code {zoom %W 1.15 %x %y}]
    bind $canvas <Button-5> [namespace code {zoom %W [expr {1 / 1.15}] %x %y}]
    bind $canvas <MouseWheel> [namespace code {zoom %W [expr {%D > 0 ? 1.15 : 1 / 1.15}] %x %y}]
    bind $canvas <Configure> [namespace code {appear %W}]
    bind $canvas <Map> [namespace code {appear %W}]
    foreach {key factor} {plus 1.15 equal 1.15 KP_Add 1.15 minus 0.87 KP_Subtract 0.87} {
      bind $canvas <Key-$key> [namespace code [list zoom %W $factor]]
    }
    foreach key {0 KP_0} {
      bind $canvas <Key-$key> [namespace code {zoom %W [expr {[natural] / $scale(%W)}]}]
    }
    bind $canvas <Key-Home> [namespace code {fit %W}]
    foreach {key way by} {Left xview -40 Right xview 40 Up yview -40 Down yview 40} {
      bind $canvas <Shift-Key-$key> [list $canvas $way scroll $by units]
      bind $canvas <Key-$key> [list $canvas $way scroll $by units]
    }
  }
}
