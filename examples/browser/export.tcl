# export.tcl: writes a picture as SVG, and the dependency picture as PNG or PDF through Graphviz.
#
# SVG is written from the items of the canvas. Graphviz gets boxes and wires with their places.

namespace eval ::tamselbrowser::export {
  namespace path ::tamselbrowser

  proc escape {text} {
    string map {& &amp; < &lt; > &gt; \" &quot;} $text
  }

  # Coordinates as they were at scale 1, with one decimal.
  proc unscaled {coordinates scale} {
    lmap coordinate $coordinates {format %.1f [expr {$coordinate / $scale}]}
  }

  # The d of a path through points: cubic curves or straight lines.
  proc path {points is_smooth} {
    set d "M [lrange $points 0 1]"
    if {$is_smooth} {append d " C"} else {append d " L"}
    append d " [lrange $points 2 end]"
  }

  # The arrowhead at the end of `points`, a variable, which is then drawn back to its base.
  proc arrowhead {points} {
    upvar 1 $points line
    lassign [view::picture::arrowhead 1.0] neck length half
    lassign [lrange $line end-3 end] from_x from_y x y
    set distance [expr {max(0.01, hypot($x - $from_x, $y - $from_y))}]
    set ux [expr {($x - $from_x) / $distance}]
    set uy [expr {($y - $from_y) / $distance}]
    set back_x [expr {$x - $length * $ux}]
    set back_y [expr {$y - $length * $uy}]
    set line [lreplace $line end-1 end {*}[lmap place \
      [list [expr {$x - $neck * $ux}] [expr {$y - $neck * $uy}]] {format %.1f $place}]]
    format "M %.1f %.1f L %.1f %.1f %.1f %.1f Z" $x $y \
      [expr {$back_x - $half * $uy}] [expr {$back_y + $half * $ux}] \
      [expr {$back_x + $half * $uy}] [expr {$back_y - $half * $ux}]
  }

  proc svg_line {canvas item scale} {
    set points [unscaled [$canvas coords $item] $scale]
    set colour [$canvas itemcget $item -fill]
    set head ""
    if {[$canvas itemcget $item -arrow] eq "last"} {
      set head "<path d=\"[arrowhead points]\" fill=\"$colour\"/>"
    }
    set dash [$canvas itemcget $item -dash]
    set dash [expr {$dash eq "" ? "" : " stroke-dasharray=\"$dash\""}]
    set is_smooth [expr {[$canvas itemcget $item -smooth] ne "0"}]
    return "<path d=\"[path $points $is_smooth]\" fill=\"none\"\
      stroke=\"$colour\" stroke-width=\"[$canvas itemcget $item -width]\"$dash/>$head"
  }

  proc svg_polygon {canvas item scale} {
    set points [unscaled [$canvas coords $item] $scale]
    return "<path d=\"[path $points 1] Z\" fill=\"[$canvas itemcget $item -fill]\"\
      stroke=\"[$canvas itemcget $item -outline]\"\
      stroke-width=\"[$canvas itemcget $item -width]\"/>"
  }

  proc svg_text {canvas item scale} {
    lassign [unscaled [$canvas coords $item] $scale] x y
    set font [$canvas itemcget $item -font]
    set size [dict get $::tamselbrowser::view::picture::fonts $font]
    set anchor [$canvas itemcget $item -anchor]
    # From where the text is anchored to its base line, in parts of its size.
    set rise [expr {[string match n* $anchor] ? 0.95 : [string match s* $anchor] ? -0.25 : 0.36}]
    set side [expr {[string match *e $anchor] && $anchor ne "center" ? "end"
      : [string match *w $anchor] ? "start" : "middle"}]
    return "<text x=\"$x\" y=\"[format %.1f [expr {$y + $rise * $size}]]\" font-size=\"$size\"\
      font-weight=\"[font configure $font -weight]\" text-anchor=\"$side\"\
      fill=\"[$canvas itemcget $item -fill]\">[escape [$canvas itemcget $item -text]]</text>"
  }

  # What is drawn on a canvas of pictures, as the text of an SVG file.
  proc svg {canvas} {
    set scale $::tamselbrowser::view::picture::scale($canvas)
    set box [$canvas bbox all]
    if {$box eq ""} {set box {0 0 1 1}}
    lassign [unscaled $box $scale] x1 y1 x2 y2
    set margin 12
    set width [format %.1f [expr {$x2 - $x1 + 2 * $margin}]]
    set height [format %.1f [expr {$y2 - $y1 + 2 * $margin}]]
    set family [escape [font configure tamselbrowser.name -family]]
    set lines [list "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"$width\" height=\"$height\"\
      viewBox=\"[expr {$x1 - $margin}] [expr {$y1 - $margin}] $width $height\"\
      font-family=\"$family, sans-serif\">" \
      "<rect x=\"[expr {$x1 - $margin}]\" y=\"[expr {$y1 - $margin}]\" width=\"$width\"\
      height=\"$height\" fill=\"[$canvas cget -background]\"/>"]
    foreach item [$canvas find all] {
      lappend lines [svg_[$canvas type $item] $canvas $item $scale]
    }
    join [lappend lines </svg> ""] \n
  }

  # A point as Graphviz counts: upwards.
  proc graphviz_point {x y} {
    format "%.1f,%.1f" $x [expr {-$y}]
  }

  # The dependency picture as a graph whose places are all given.
  proc dot {} {
    namespace upvar ::tamselbrowser::view::graph canvas canvas places places wires wires \
      texts texts number_of number_of
    set family [font configure tamselbrowser.name -family]
    set lines [list "digraph {" "  node \[shape=box style=\"rounded,filled\" fixedsize=true\
      fontname=\"$family\"\]"]
    dict for {name box} $places {
      lassign $box left top right bottom
      set tag box:[dict get $number_of $name]
      lassign [dict get $texts $name] title detail
      set cells ""
      foreach {part text size} [list title $title 13 detail $detail 11] {
        append cells [format {<TR><TD ALIGN="LEFT"><FONT POINT-SIZE="%d" COLOR="%s">%s</FONT></TD></TR>} \
          $size [$canvas itemcget $tag:$part -fill] [escape $text]]
      }
      lappend lines [format {  "%s" [pos="%s!" width=%.3f height=%.3f fillcolor="%s" color="%s"\
        label=<<TABLE BORDER="0" CELLSPACING="0" CELLPADDING="0" WIDTH="%.0f">%s</TABLE>>]} $name \
        [graphviz_point [expr {($left + $right) / 2}] [expr {($top + $bottom) / 2}]] \
        [expr {($right - $left) / 72.0}] [expr {($bottom - $top) / 72.0}] \
        [$canvas itemcget $tag:shape -fill] [$canvas itemcget $tag:shape -outline] \
        [expr {$right - $left - 20}] $cells]
    }
    set number 0
    foreach wire $wires {
      lassign $wire from to delayed points
      if {$points eq ""} {set points [view::graph::loop [dict get $places $to]]}
      set tip [graphviz_point {*}[lrange $points end-1 end]]
      arrowhead points
      set curve [lmap {x y} $points {graphviz_point $x $y}]
      lappend lines "  \"$from\" -> \"$to\" \[pos=\"e,$tip $curve\" arrowsize=0.7\
        style=[expr {$delayed ? "dashed" : "solid"}]\
        color=\"[$canvas itemcget wire:$number -fill]\"\
        penwidth=[$canvas itemcget wire:$number -width]\]"
      incr number
    }
    join [lappend lines "}" ""] \n
  }

  # Writes a picture to a file. `format` is svg, png or pdf; the latter two are of the dependency
  # picture alone. Fails where Graphviz is missing, or the format is another.
  proc write {canvas format path} {
    if {$format ni {svg png pdf}} {error "pictures are .svg, .png or .pdf files, not .$format"}
    if {$format eq "svg"} {
      set channel [open $path w]
      try {
        fconfigure $channel -encoding utf-8
        puts -nonewline $channel [svg $canvas]
      } finally {
        close $channel
      }
      return
    }
    set neato [auto_execok neato]
    if {$neato eq ""} {
      error "PNG and PDF are made by Graphviz, which is not installed here:\
        there is no program neato. SVG needs nothing else."
    }
    set channel [file tempfile graph tamsel.dot]
    try {
      fconfigure $channel -encoding utf-8
      puts -nonewline $channel [dot]
      close $channel
      # What it complains of are fonts; whether it failed its status tells.
      exec -ignorestderr {*}$neato -n2 -T$format -o $path $graph 2>@1
    } finally {
      file delete $graph
    }
  }
}
