# layout.tcl: places boxes in layers from left to right, and wires between them.
#
# What is needed stands left of what needs it. A wire that closes a cycle runs back; those that
# carry a past value (through `pre`) are chosen for that. Wires that pass a layer get a place in it,
# like a very thin box, so that they do not run through the others.
#
# Boxes, and then thin ones, are vertices: numbers from 0, by which lists tell what is known of them.
# An edge is {FROM TO DELAYED}.

namespace eval ::tamselbrowser::layout {
  namespace path ::tamselbrowser

  variable gap_across 16   ;# between two boxes of a layer
  variable thin_gap 7      ;# about a passing wire
  variable gap_along 34    ;# between two layers, at least
  variable rounds 10       ;# of ordering
  variable most_passed 16  ;# layers that a wire finds its way through, fewer where there are many
  variable most_thin 20000 ;# boxes of wires in layers that they pass, or two for each other box

  # Who comes after each vertex: a list of lists. A task.
  proc successors {count edges} {
    set next [lrepeat $count {}]
    foreach edge $edges {
      lset next [lindex $edge 0] end+1 [lindex $edge 1]
      work::pause 0 1
    }
    return $next
  }

  # The vertices in the order in which a depth-first search leaves them, `next` being who comes after
  # each. A task.
  proc postorder {next} {
    set count [llength $next]
    set seen [lrepeat $count 0]
    set tried $seen  ;# how many of those after it have been tried
    set left {}
    for {set root 0} {$root < $count} {incr root} {
      if {[lindex $seen $root]} continue
      lset seen $root 1
      set path [list $root]
      for {set top 0} {$top >= 0} {work::pause [llength $left] $count} {
        set vertex [lindex $path $top]
        set number [lindex $tried $vertex]
        set to [lindex $next $vertex $number]
        if {$to eq ""} {
          lappend left $vertex
          incr top -1
          continue
        }
        lset tried $vertex [incr number]
        if {![lindex $seen $to]} {
          lset seen $to 1
          lset path [incr top] $to
        }
      }
    }
    return $left
  }

  # The strongly connected components of a graph: the number of each vertex's component. What reaches
  # back to a vertex, of those that are left before it, is in its component. A task.
  proc components {vertex_count edges} {
    set before [successors $vertex_count [lmap edge $edges {
      work::pause 0 1
      lreverse [lrange $edge 0 1]
    }]]
    set count 0
    set component [lrepeat $vertex_count 0]
    foreach root [lreverse [postorder [successors $vertex_count $edges]]] {
      if {[lindex $component $root]} continue
      lset component $root [incr count]
      set todo [list $root]
      for {set i 0} {$i < [llength $todo]} {incr i} {
        foreach vertex [lindex $before [lindex $todo $i]] {
          if {[lindex $component $vertex]} continue
          lset component $vertex $count
          lappend todo $vertex
        }
        work::pause $count $vertex_count
      }
    }
    return $component
  }

  # The edges that may decide on the layers: without those that close a cycle. Of a cycle all
  # delayed edges are left out; of one that has none, those that lead back in a depth-first search.
  # A task.
  proc forward_edges {count edges} {
    set component [components $count $edges]
    set kept [lmap edge $edges {
      work::pause 0 1
      lassign $edge from to delayed
      if {$from == $to
          || ($delayed && [lindex $component $from] == [lindex $component $to])} continue
      set edge
    }]
    set left [lrepeat $count 0]
    set number 0
    foreach vertex [postorder [successors $count $kept]] {lset left $vertex [incr number]}
    lmap edge $kept {
      work::pause 0 1
      if {[lindex $left [lindex $edge 1]] > [lindex $left [lindex $edge 0]]} continue
      set edge
    }
  }

  # The layer, from 0, of each vertex: one more than the highest before it; and what nothing stands
  # before moves up to where it is first needed. A task.
  proc layers {count edges} {
    set next [successors $count $edges]
    set layer [lrepeat $count 0]
    set missing $layer
    foreach edge $edges {
      set to [lindex $edge 1]
      lset missing $to [expr {[lindex $missing $to] + 1}]
    }
    set sources [lsearch -all -integer $missing 0]
    set ready $sources
    for {set i 0} {$i < [llength $ready]} {incr i} {
      set vertex [lindex $ready $i]
      set after [expr {[lindex $layer $vertex] + 1}]
      foreach to [lindex $next $vertex] {
        if {[lindex $layer $to] < $after} {lset layer $to $after}
        lset missing $to [set left [expr {[lindex $missing $to] - 1}]]
        if {$left == 0} {lappend ready $to}
      }
      work::pause $i $count
    }
    foreach vertex $sources {
      set followers [lmap to [lindex $next $vertex] {lindex $layer $to}]
      if {$followers ne ""} {
        lset layer $vertex [expr {[tcl::mathfunc::min {*}$followers] - 1}]
      }
    }
    return $layer
  }

  # How many layers a wire may span that is to pass those between, so that there are not too many of
  # these. A task.
  proc longest {edges layer} {
    variable most_passed
    variable most_thin
    set counts [lrepeat [expr {$most_passed + 1}] 0]
    foreach edge $edges {
      set span [expr {abs([lindex $layer [lindex $edge 0]] - [lindex $layer [lindex $edge 1]])}]
      if {$span <= $most_passed} {lset counts $span [expr {[lindex $counts $span] + 1}]}
      work::pause 0 1
    }
    set room [expr {max($most_thin, 2 * [llength $layer])}]
    for {set span 0} {$span <= $most_passed} {incr span} {
      set room [expr {$room - $span * [lindex $counts $span]}]
      if {$room < 0} break
    }
    expr {$span - 1}
  }

  # The layers that a wire passes, from its beginning to its end. One that runs back also passes those
  # of its two ends, to get round them. One that spans more than `most` passes none between.
  proc passed {from to most} {
    set layers {}
    if {$from < $to} {
      if {$to - $from > $most} {return {}}
      for {set i [expr {$from + 1}]} {$i < $to} {incr i} {lappend layers $i}
    } else {
      if {$from - $to > $most} {return [list $from $to]}
      for {set i $from} {$i >= $to} {incr i -1} {lappend layers $i}
    }
    return $layers
  }

  # The places nearest to `wanted`, a list from top to bottom, that keep the distances `apart` (one
  # between each two). Neighbours that get in each other's way form blocks that move as one.
  proc settle {wanted apart} {
    # Of each block, from the top: the sum, number and mean of the wanted places, each less the
    # distance from the top; and the number of the last block.
    set sums {}
    set counts {}
    set means {}
    set last -1
    set offset 0
    set offsets {}
    foreach place $wanted distance [concat 0 $apart] {
      set offset [expr {$offset + $distance}]
      lappend offsets $offset
      set sum [expr {double($place - $offset)}]
      set count 1
      while {$last >= 0 && [lindex $means $last] > $sum / $count} {
        set sum [expr {$sum + [lindex $sums $last]}]
        incr count [lindex $counts $last]
        incr last -1
      }
      incr last
      lset sums $last $sum
      lset counts $last $count
      lset means $last [expr {$sum / $count}]
    }
    set places {}
    foreach count [lrange $counts 0 $last] mean [lrange $means 0 $last] {
      for {} {$count > 0} {incr count -1} {
        lappend places [expr {$mean + [lindex $offsets [llength $places]]}]
      }
    }
    return $places
  }

  # The mean of what a list has at some indexes; `otherwise` where there are none.
  proc mean {indexes values otherwise} {
    set count [llength $indexes]
    if {$count == 0} {return $otherwise}
    if {$count == 1} {return [lindex $values [lindex $indexes 0]]}
    set sum 0.0
    foreach index $indexes {set sum [expr {$sum + [lindex $values $index]}]}
    expr {$sum / $count}
  }

  # Sorts the vertices of a layer by the mean position of their neighbours.
  proc sort_layer {vertices neighbours position} {
    set keys [lmap vertex $vertices {
      mean [lindex $neighbours $vertex] $position [lindex $position $vertex]
    }]
    lmap index [lsort -real -indices $keys] {lindex $vertices $index}
  }

  # Orders the vertices of each layer so that few wires cross. `columns` is the list of layers,
  # `before` and `after` say who is wired to whom in the layers beside. A task.
  proc order {columns before after} {
    variable rounds
    set position [lrepeat [llength $before] 0]
    foreach column $columns {
      set i 0
      foreach vertex $column {lset position $vertex [incr i]}
    }
    for {set round 0} {$round < $rounds} {incr round} {
      set back [expr {$round % 2}]
      foreach i [indexes $columns $back] {
        set column [sort_layer [lindex $columns $i] [expr {$back ? $after : $before}] $position]
        lset columns $i $column
        # Between 0 and 1, as layers of different sizes are compared.
        set step [expr {1.0 / ([llength $column] + 1)}]
        set place 0
        foreach vertex $column {lset position $vertex [set place [expr {$place + $step}]]}
        work::pause $round $rounds
      }
    }
    return $columns
  }

  # A first height of the middle of each vertex of a layer, one below the other, into `middle`, a
  # variable; and the least distances between them.
  proc stack_up {column sizes middle} {
    variable gap_across
    variable thin_gap
    upvar 1 $middle its_middle
    set distances {}
    set last ""
    set y 0
    foreach vertex $column {
      set size [lindex $sizes $vertex]
      if {$last ne ""} {
        set gap [expr {$size == 0 || $last == 0 ? $thin_gap : $gap_across}]
        lappend distances [set distance [expr {($last + $size) / 2.0 + $gap}]]
        set y [expr {$y + $distance}]
      }
      lset its_middle $vertex $y
      set last $size
      work::pause 0 1
    }
    return $distances
  }

  # The indexes of a list, or the same from the end.
  proc indexes {list is_back} {
    set indexes {}
    for {set i 0} {$i < [llength $list]} {incr i} {lappend indexes $i}
    expr {$is_back ? [lreverse $indexes] : $indexes}
  }

  # The height of the middle of each vertex, `sizes` being their heights. A task.
  proc heights {columns before after sizes} {
    set middle $sizes
    set apart [lmap column $columns {stack_up $column $sizes middle}]
    foreach needed $before using $after {lappend both [concat $needed $using]}
    # Each vertex would like to be at the mean height of those that it is wired to.
    foreach ways {before after before after before after both both both} {
      set neighbours [set $ways]
      foreach i [indexes $columns [expr {$ways eq "after"}]] {
        set wanted [lmap vertex [lindex $columns $i] {
          mean [lindex $neighbours $vertex] $middle [lindex $middle $vertex]
        }]
        foreach vertex [lindex $columns $i] y [settle $wanted [lindex $apart $i]] {
          # Whole pixels: a wire that is nearly level looks broken.
          lset middle $vertex [expr {round($y)}]
        }
        work::pause $i [llength $columns]
      }
    }
    return $middle
  }

  # The left and right ends of the layers, a list of {LEFT RIGHT}, where vertices have these widths.
  proc spans {columns widths edge_counts} {
    variable gap_along
    set x 0
    lmap column $columns count $edge_counts {
      set width [tcl::mathfunc::max 0 {*}[lmap vertex $column {lindex $widths $vertex}]]
      set span [list $x [expr {$x + $width}]]
      # The more wires, the more room to bend.
      set x [expr {$x + $width + $gap_along + min(3 * $count, 90)}]
      set span
    }
  }

  # Adds to `points` a curve to (x, y) that begins and ends level.
  proc bend {points x y} {
    lassign [lrange $points end-1 end] from_x from_y
    set middle [expr {($from_x + $x) / 2.0}]
    list {*}$points $middle $from_y $middle $y $x $y
  }

  # The same round a corner: `side` is where it bulges, 1 right, -1 left.
  proc turn {points x y side} {
    lassign [lrange $points end-1 end] from_x from_y
    set far [expr {($side > 0 ? max($from_x, $x) : min($from_x, $x)) + $side * 26}]
    list {*}$points $far $from_y $far $y $x $y
  }

  # The curve of a wire, as the points of cubic curves. `places` are the {LAYER Y} that it passes.
  proc curve {start end places spans is_back} {
    set points $start
    if {$is_back} {
      foreach place $places {
        lassign $place layer y
        lassign [lindex $spans $layer] left right
        set way [expr {$place eq [lindex $places 0] ? [list turn $points $right $y 1]
          : [list bend $points $right $y]}]
        set points [bend [{*}$way] $left $y]
      }
      return [turn $points {*}$end -1]
    }
    foreach place $places {
      lassign $place layer y
      lassign [lindex $spans $layer] left right
      set points [bend [bend $points $left $y] $right $y]
    }
    bend $points {*}$end
  }

  # How far from the middle of its box each wire arrives, so that arrowheads stand side by side, in
  # the order of where the wires come from.
  proc arrivals {edges passing middle} {
    set arriving {}
    set wire 0
    foreach edge $edges thin $passing {
      lassign $edge from to
      if {$from != $to} {
        set last [expr {$thin eq "" ? $from : [lindex $thin end]}]
        dict lappend arriving $to [list [lindex $middle $last] $wire]
      }
      work::pause 0 1
      incr wire
    }
    set shifts [lrepeat [llength $edges] 0]
    dict for {to wires} $arriving {
      work::pause 0 1
      set count [llength $wires]
      set step [expr {$count > 1 ? min(8.0, 24.0 / ($count - 1)) : 0}]
      set shift [expr {-$step * ($count - 1) / 2.0}]
      foreach pair [lsort -real -index 0 $wires] {
        lset shifts [lindex $pair 1] $shift
        set shift [expr {$shift + $step}]
      }
    }
    return $shifts
  }

  # Gives each wire thin boxes in the layers that it passes. Returns {LAYER COLUMNS BEFORE AFTER COUNTS
  # PASSING}: the layer of each vertex, the vertices of each layer, who is wired to whom in the layers
  # beside, how many wires begin in each layer, and the thin boxes of each wire. A task.
  proc thread {edges layer} {
    set longest [longest $edges $layer]
    set columns [lrepeat [expr {[tcl::mathfunc::max {*}$layer] + 1}] {}]
    set counts [lrepeat [llength $columns] 0]
    set before [lrepeat [llength $layer] {}]
    set after $before
    set vertex -1
    foreach its_layer $layer {lset columns $its_layer end+1 [incr vertex]}
    set passing {}
    foreach edge $edges {
      lassign $edge from to
      set thin {}
      if {$from != $to} {
        lassign [list [lindex $layer $from] [lindex $layer $to]] start end
        set first [expr {min($start, $end)}]
        lset counts $first [expr {[lindex $counts $first] + 1}]
        foreach its_layer [passed $start $end $longest] {
          lappend thin [incr vertex]
          lappend layer $its_layer
          lset columns $its_layer end+1 $vertex
          lappend before {}
          lappend after {}
        }
        foreach a [list $from {*}$thin] b [list {*}$thin $to] {
          if {$start >= $end} {lassign [list $b $a] a b}
          lset after $a end+1 $b
          lset before $b end+1 $a
        }
      }
      lappend passing $thin
      work::pause [llength $passing] [llength $edges]
    }
    list $layer $columns $before $after $counts $passing
  }

  # Where the boxes are: {LEFT TOP RIGHT BOTTOM} of each, `sizes` being their heights. They are as wide
  # as their layer, so that no wire cuts the corner of a wider neighbour.
  proc box_places {sizes layer middle spans} {
    lmap size $sizes its_layer [lrange $layer 0 [llength $sizes]-1] y [lrange $middle 0 [llength $sizes]-1] {
      lassign [lindex $spans $its_layer] left right
      set half [expr {$size / 2.0}]
      list $left [expr {$y - $half}] $right [expr {$y + $half}]
    }
  }

  # The curves of the wires, none of one that leads to its own box. A task.
  proc wires {edges passing layer middle spans} {
    set curves {}
    foreach edge $edges thin $passing shift [arrivals $edges $passing $middle] {
      lassign $edge from to
      set points {}
      if {$from != $to} {
        lassign [list [lindex $layer $from] [lindex $layer $to]] start end
        set points [curve [list [lindex $spans $start 1] [lindex $middle $from]] \
          [list [lindex $spans $end 0] [expr {[lindex $middle $to] + $shift}]] \
          [lmap vertex $thin {list [lindex $layer $vertex] [lindex $middle $vertex]}] \
          $spans [expr {$start >= $end}]]
      }
      lappend curves $points
      work::pause [llength $curves] [llength $edges]
    }
    return $curves
  }

  # Places a picture. `boxes` is name -> {WIDTH HEIGHT}, `wires` a list of {FROM TO DELAYED} without
  # doubles. Returns {PLACES WIRES}: name -> {LEFT TOP RIGHT BOTTOM}, and a list of
  # {FROM TO DELAYED POINTS}; the wire of a name to itself has no points. A task.
  proc place {boxes wires} {
    set widths {}
    set sizes {}
    dict for {name box} $boxes {
      dict set number $name [llength $sizes]
      lappend widths [lindex $box 0]
      lappend sizes [lindex $box 1]
    }
    if {$sizes eq ""} {return {{} {}}}
    set edges [lmap wire $wires {
      work::pause 0 1
      lassign $wire from to delayed
      list [dict get $number $from] [dict get $number $to] $delayed
    }]
    set layer [layers [llength $sizes] [forward_edges [llength $sizes] $edges]]
    lassign [thread $edges $layer] layer columns before after counts passing
    set thin [lrepeat [expr {[llength $layer] - [llength $sizes]}] 0]
    set columns [order $columns $before $after]
    set middle [heights $columns $before $after [concat $sizes $thin]]
    set spans [spans $columns [concat $widths $thin] $counts]
    set places {}
    foreach name [dict keys $boxes] place [box_places $sizes $layer $middle $spans] {
      dict set places $name $place
    }
    list $places [lmap wire $wires points [wires $edges $passing $layer $middle $spans] {
      work::pause 0 1
      list {*}$wire $points
    }]
  }
}
