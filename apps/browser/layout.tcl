# layout.tcl: places boxes in layers from left to right, and wires between them.
#
# What is needed stands left of what needs it. A wire that closes a cycle runs back; those that
# carry a past value (through `pre`) are chosen for that. Wires that pass a layer get a place in it,
# like a very thin box, so that they do not run through the others.

namespace eval ::tamselbrowser::layout {
  namespace path ::tamselbrowser

  variable gap_across 16   ;# between two boxes of a layer
  variable thin_gap 7      ;# about a passing wire
  variable gap_along 34    ;# between two layers, at least
  variable rounds 10       ;# of ordering
  variable most_passed 16  ;# layers that a wire finds its way through

  proc successors {vertices edges} {
    foreach vertex $vertices {dict set next $vertex {}}
    foreach edge $edges {dict lappend next [lindex $edge 0] [lindex $edge 1]}
    return $next
  }

  # The vertices in the order in which a depth-first search leaves them, `next` being vertex -> list
  # of vertices. A task.
  proc postorder {vertices next} {
    set seen {}
    set left {}
    foreach root $vertices {
      if {[dict exists $seen $root]} continue
      dict set seen $root 1
      set path [list $root]
      set rest [list [dict get $next $root]]
      while {$path ne ""} {
        set todo [lassign [lindex $rest end] to]
        if {[lindex $rest end] eq ""} {
          lappend left [lindex $path end]
          set path [lrange $path[set path {}] 0 end-1]
          set rest [lrange $rest[set rest {}] 0 end-1]
          continue
        }
        lset rest end $todo
        if {![dict exists $seen $to]} {
          dict set seen $to 1
          lappend path $to
          lappend rest [dict get $next $to]
        }
        work::pause [llength $left] [llength $vertices]
      }
    }
    return $left
  }

  # The strongly connected components of a graph: vertex -> number of its component. What reaches back
  # to a vertex, of those that are left before it, is in its component. A task.
  proc components {vertices edges} {
    set before [successors $vertices [lmap edge $edges {lreverse [lrange $edge 0 1]}]]
    set count 0
    set component {}
    foreach root [lreverse [postorder $vertices [successors $vertices $edges]]] {
      if {[dict exists $component $root]} continue
      dict set component $root [incr count]
      set todo [list $root]
      for {set i 0} {$i < [llength $todo]} {incr i} {
        foreach vertex [dict get $before [lindex $todo $i]] {
          if {[dict exists $component $vertex]} continue
          dict set component $vertex $count
          lappend todo $vertex
        }
      }
      work::pause $count [llength $vertices]
    }
    return $component
  }

  # The edges that may decide on the layers: without those that close a cycle. Of a cycle all
  # delayed edges are left out; of one that has none, those that lead back in a depth-first search.
  # A task.
  proc forward_edges {vertices edges} {
    set component [components $vertices $edges]
    set kept [lmap edge $edges {
      lassign $edge from to delayed
      if {$from eq $to
          || ($delayed && [dict get $component $from] == [dict get $component $to])} continue
      set edge
    }]
    set number 0
    foreach vertex [postorder $vertices [successors $vertices $kept]] {
      dict set left $vertex [incr number]
    }
    lmap edge $kept {
      if {[dict get $left [lindex $edge 1]] > [dict get $left [lindex $edge 0]]} continue
      set edge
    }
  }

  # The layer, from 0, of each vertex: one more than the highest before it; and what nothing stands
  # before moves up to where it is first needed. A task.
  proc layers {vertices edges} {
    set next [successors $vertices $edges]
    foreach vertex $vertices {
      dict set layer $vertex 0
      dict set missing $vertex 0
    }
    foreach edge $edges {dict incr missing [lindex $edge 1]}
    set sources [lmap vertex $vertices {
      if {[dict get $missing $vertex] > 0} continue
      set vertex
    }]
    set ready $sources
    for {set i 0} {$i < [llength $ready]} {incr i} {
      set vertex [lindex $ready $i]
      set after [expr {[dict get $layer $vertex] + 1}]
      foreach to [dict get $next $vertex] {
        if {[dict get $layer $to] < $after} {dict set layer $to $after}
        dict incr missing $to -1
        if {[dict get $missing $to] == 0} {lappend ready $to}
      }
      work::pause $i [llength $vertices]
    }
    foreach vertex $sources {
      set followers [lmap to [dict get $next $vertex] {dict get $layer $to}]
      if {$followers ne ""} {
        dict set layer $vertex [expr {[tcl::mathfunc::min {*}$followers] - 1}]
      }
    }
    return $layer
  }

  # The layers that a wire passes, from its beginning to its end. One that runs back also passes those
  # of its two ends, to get round them. A very long one passes none between.
  proc passed {from to} {
    variable most_passed
    set layers {}
    if {$from < $to} {
      if {$to - $from > $most_passed} {return {}}
      for {set i [expr {$from + 1}]} {$i < $to} {incr i} {lappend layers $i}
    } else {
      if {$from - $to > $most_passed} {return [list $from $to]}
      for {set i $from} {$i >= $to} {incr i -1} {lappend layers $i}
    }
    return $layers
  }

  # The places nearest to `wanted`, a list from top to bottom, that keep the distances `apart` (one
  # between each two). Neighbours that get in each other's way form blocks that move as one.
  proc settle {wanted apart} {
    set blocks {}  ;# {sum count mean} of the wanted places, each less the distance from the top
    set offset 0
    set offsets {}
    foreach place $wanted distance [concat 0 $apart] {
      set offset [expr {$offset + $distance}]
      lappend offsets $offset
      set sum [expr {double($place - $offset)}]
      set count 1
      while {$blocks ne "" && [lindex $blocks end 2] > $sum / $count} {
        lassign [lindex $blocks end] its_sum its_count
        set sum [expr {$sum + $its_sum}]
        incr count $its_count
        set blocks [lrange $blocks 0 end-1]
      }
      lappend blocks [list $sum $count [expr {$sum / $count}]]
    }
    set places {}
    foreach block $blocks {
      lassign $block _ count mean
      for {} {$count > 0} {incr count -1} {
        lappend places [expr {$mean + [lindex $offsets [llength $places]]}]
      }
    }
    return $places
  }

  # Sorts the vertices of a layer by the mean position of their neighbours.
  proc sort_layer {vertices neighbours position} {
    set keyed {}
    foreach vertex $vertices {
      set near [dict get $neighbours $vertex]
      set sum 0.0
      foreach other $near {set sum [expr {$sum + [dict get $position $other]}]}
      set key [expr {$near eq "" ? double([dict get $position $vertex]) : $sum / [llength $near]}]
      lappend keyed [list $key $vertex]
    }
    lmap pair [lsort -real -index 0 $keyed] {lindex $pair 1}
  }

  # Orders the vertices of each layer so that few wires cross. `columns` is the list of layers,
  # `before` and `after` say who is wired to whom in the layers beside. A task.
  proc order {columns before after} {
    variable rounds
    foreach column $columns {
      set i 0
      foreach vertex $column {dict set position $vertex [incr i]}
    }
    for {set round 0} {$round < $rounds} {incr round} {
      set back [expr {$round % 2}]
      foreach i [indexes $columns $back] {
        set column [sort_layer [lindex $columns $i] [expr {$back ? $after : $before}] $position]
        lset columns $i $column
        # Between 0 and 1, as layers of different sizes are compared.
        set step [expr {1.0 / ([llength $column] + 1)}]
        set place 0
        foreach vertex $column {dict set position $vertex [set place [expr {$place + $step}]]}
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
      set size [dict get $sizes $vertex]
      if {$last ne ""} {
        set gap [expr {$size == 0 || $last == 0 ? $thin_gap : $gap_across}]
        lappend distances [set distance [expr {($last + $size) / 2.0 + $gap}]]
        set y [expr {$y + $distance}]
      }
      dict set its_middle $vertex $y
      set last $size
      work::pause 0 1
    }
    return $distances
  }

  # Where a vertex would like to be: the mean height of its neighbours.
  proc wanted_height {vertex neighbours middle} {
    set sum 0.0
    set count 0
    foreach near $neighbours {
      foreach other [dict get $near $vertex] {
        set sum [expr {$sum + [dict get $middle $other]}]
        incr count
      }
    }
    expr {$count == 0 ? [dict get $middle $vertex] : $sum / $count}
  }

  # The indexes of a list, or the same from the end.
  proc indexes {list is_back} {
    set indexes {}
    for {set i 0} {$i < [llength $list]} {incr i} {lappend indexes $i}
    expr {$is_back ? [lreverse $indexes] : $indexes}
  }

  # The height of the middle of each vertex, `sizes` being their heights. A task.
  proc heights {columns before after sizes} {
    set middle {}
    set apart [lmap column $columns {stack_up $column $sizes middle}]
    foreach ways {before after before after before after both both both} {
      set neighbours [expr {$ways eq "both" ? [list $before $after] : [list [set $ways]]}]
      foreach i [indexes $columns [expr {$ways eq "after"}]] {
        set wanted [lmap vertex [lindex $columns $i] {wanted_height $vertex $neighbours $middle}]
        foreach vertex [lindex $columns $i] y [settle $wanted [lindex $apart $i]] {
          # Whole pixels: a wire that is nearly level looks broken.
          dict set middle $vertex [expr {round($y)}]
        }
        work::pause $i [llength $columns]
      }
    }
    return $middle
  }

  # The left and right ends of the layers, a list of {LEFT RIGHT}.
  proc spans {columns boxes edge_counts} {
    variable gap_along
    set x 0
    lmap column $columns count $edge_counts {
      set width 0
      foreach vertex $column {
        if {[dict exists $boxes $vertex]} {
          set width [expr {max($width, [lindex [dict get $boxes $vertex] 0])}]
        }
      }
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
      if {$from ne $to} {
        set last [expr {$thin eq "" ? $from : [lindex $thin end]}]
        dict lappend arriving $to [list [dict get $middle $last] $wire]
      }
      work::pause 0 1
      incr wire
    }
    set shifts [lrepeat [llength $edges] 0]
    dict for {to wires} $arriving {
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

  # Gives each wire thin boxes in the layers that it passes. Returns {COLUMNS BEFORE AFTER COUNTS
  # PASSING}: the vertices of each layer, who is wired to whom in the layers beside, how many wires
  # begin in each layer, and the thin boxes of each wire. A task.
  proc thread {names edges layer} {
    set last [tcl::mathfunc::max {*}[dict values $layer]]
    for {set i 0} {$i <= $last} {incr i} {
      set column($i) {}
      set count($i) 0
    }
    foreach name $names {
      lappend column([dict get $layer $name]) $name
      dict set before $name {}
      dict set after $name {}
    }
    set passing {}
    foreach edge $edges {
      lassign $edge from to
      set thin {}
      if {$from ne $to} {
        lassign [list [dict get $layer $from] [dict get $layer $to]] start end
        incr count([expr {min($start, $end)}])
        foreach its_layer [passed $start $end] {
          # The leading blank sets them apart from names.
          lappend thin [set vertex " [llength $passing] $its_layer"]
          lappend column($its_layer) $vertex
          dict set before $vertex {}
          dict set after $vertex {}
        }
        foreach a [list $from {*}$thin] b [list {*}$thin $to] {
          if {$start >= $end} {lassign [list $b $a] a b}
          dict lappend after $a $b
          dict lappend before $b $a
        }
      }
      lappend passing $thin
      work::pause [llength $passing] [llength $edges]
    }
    for {set i 0} {$i <= $last} {incr i} {
      lappend columns $column($i)
      lappend counts $count($i)
    }
    list $columns $before $after $counts $passing
  }

  # Where the boxes are: name -> {LEFT TOP RIGHT BOTTOM}. They are as wide as their layer, so that no
  # wire cuts the corner of a wider neighbour.
  proc box_places {boxes layer middle spans} {
    set places {}
    dict for {name box} $boxes {
      lassign [lindex $spans [dict get $layer $name]] left right
      set half [expr {[lindex $box 1] / 2.0}]
      set y [dict get $middle $name]
      dict set places $name [list $left [expr {$y - $half}] $right [expr {$y + $half}]]
      work::pause 0 1
    }
    return $places
  }

  # The wires: a list of {FROM TO DELAYED POINTS}. A task.
  proc wires {edges passing layer middle spans places} {
    set wires {}
    foreach edge $edges thin $passing shift [arrivals $edges $passing $middle] {
      lassign $edge from to delayed
      set points {}
      if {$from ne $to} {
        set is_back [expr {[dict get $layer $from] >= [dict get $layer $to]}]
        set passed_places [lmap vertex $thin {list [lindex $vertex 1] [dict get $middle $vertex]}]
        set start [list [lindex [dict get $places $from] 2] [dict get $middle $from]]
        set end [list [lindex [dict get $places $to] 0] [expr {[dict get $middle $to] + $shift}]]
        set points [curve $start $end $passed_places $spans $is_back]
      }
      lappend wires [list $from $to $delayed $points]
      work::pause [llength $wires] [llength $edges]
    }
    return $wires
  }

  # Places a picture. `boxes` is name -> {WIDTH HEIGHT}, `edges` a list of {FROM TO DELAYED} without
  # doubles. Returns {PLACES WIRES}: name -> {LEFT TOP RIGHT BOTTOM}, and a list of
  # {FROM TO DELAYED POINTS}; the wire of a name to itself has no points. A task.
  proc place {boxes edges} {
    set names [dict keys $boxes]
    if {$names eq ""} {return {{} {}}}
    set layer [layers $names [forward_edges $names $edges]]
    lassign [thread $names $edges $layer] columns before after counts passing
    dict for {name box} $boxes {dict set sizes $name [lindex $box 1]}
    foreach thin $passing {foreach vertex $thin {dict set sizes $vertex 0}}
    set columns [order $columns $before $after]
    set middle [heights $columns $before $after $sizes]
    set spans [spans $columns $boxes $counts]
    set places [box_places $boxes $layer $middle $spans]
    list $places [wires $edges $passing $layer $middle $spans $places]
  }
}
