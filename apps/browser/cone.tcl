# cone.tcl: which part of the dependencies to draw.
#
# A picture has items (names with a box), edges between them, and labels: names that are used so
# widely, or are so plain, that they are written into the boxes that need them instead of wired.

namespace eval ::tamselbrowser::cone {
  namespace path ::tamselbrowser

  variable most_wires 12   ;# a name that more equations need becomes a label
  variable most_needs 400  ;# names of one equation that are looked at
  variable batch 500       ;# names that are asked about at once

  # The facts of some names as a dictionary: name -> {KIND TYPE CLOCK USERS NEEDS NOW}, USERS their
  # number; and those of before, which are not asked for again. A task.
  proc facts {id names {facts {}}} {
    variable batch
    variable most_needs
    set names [lmap name $names {
      if {[dict exists $facts $name]} continue
      set name
    }]
    for {set i 0} {$i < [llength $names]} {incr i $batch} {
      set some [lrange $names $i [expr {$i + $batch - 1}]]
      set answers [program::ask_each $id $some "
        set about \[dict merge {type {} clock {}} \[tamsel describe \$p \$name\]\]
        list \[dict get \$about kind\] \[dict get \$about type\] \[dict get \$about clock\] \
          \[llength \[tamsel users \$p \$name\]\] \
          \[lrange \[tamsel needs \$p \$name\] 0 $most_needs-1\] \
          \[lrange \[tamsel needs \$p \$name -now\] 0 $most_needs-1\]"]
      foreach name $some answer $answers {dict set facts $name $answer}
      work::pause $i [llength $names]
    }
    return $facts
  }

  # The facts of names and of what they need, and those of before. A task.
  proc facts_about {id names {facts {}}} {
    set facts [facts $id $names $facts]
    set others {}
    foreach name $names {
      foreach other [lindex [dict get $facts $name] 4] {
        if {![dict exists $facts $other]} {dict set others $other 1}
      }
      work::pause 0 1
    }
    facts $id [dict keys $others] $facts
  }

  # Whether the wires of a name are replaced by labels.
  proc is_label {facts name} {
    variable most_wires
    lassign [dict get $facts $name] kind _ _ uses
    expr {$kind ni {input output local} || $uses > $most_wires}
  }

  # The question that lists a cone, `direction` being needs or users.
  proc question {id centre depth direction} {
    program::question $id cone $centre -depth $depth \
      {*}[expr {$direction eq "users" ? {-direction users} : {}}]
  }

  # The names of one way of a cone, the nearest first, without those that are reached through labels
  # alone; looks at no more than it takes to find `most`, where that is not 0. `facts` is a variable
  # for what was asked for. A task.
  proc reach {id centre depth direction most facts} {
    upvar 1 $facts known
    set last [expr {$most == 0 ? "end" : 4 * $most}]
    set names [program::ask $id "lrange \[dict keys \[[question $id [list $centre] $depth \
      $direction]\]\] 0 $last"]
    set known [facts_about $id $names $known]
    set near [neighbours $known $names $direction]
    set found [dict create $centre 0]
    set todo [list $centre]
    for {set i 0} {$i < [llength $todo]} {incr i} {
      set at [lindex $todo $i]
      set steps [expr {[dict get $found $at] + 1}]
      if {$steps > $depth} break
      foreach name [dict get $near $at] {
        if {[dict exists $found $name] || [is_label $known $name]} continue
        dict set found $name $steps
        lappend todo $name
      }
      work::pause $i [llength $names]
    }
    lrange $todo 1 end
  }

  # Who leads to whom among some names: name -> what it needs, or who needs it. A task.
  proc neighbours {facts names direction} {
    set near {}
    foreach name $names {dict set near $name {}}
    foreach name $names {
      foreach other [lindex [dict get $facts $name] 4] {
        if {![dict exists $near $other]} continue
        if {$direction eq "needs"} {
          dict lappend near $name $other
        } else {
          dict lappend near $other $name
        }
      }
      work::pause 0 1
    }
    return $near
  }

  # The names of the cone about one, at most so many (0: all), and whether these are all:
  # {NAMES IS_WHOLE FACTS}, the facts being of these and of others. `directions` has needs or users or
  # both; each way on its own, so that what merely shares a need stays out. A task.
  proc about {id centre depth directions most} {
    set facts {}
    set ways [lmap direction $directions {reach $id $centre $depth $direction $most facts}]
    set longest [tcl::mathfunc::max {*}[lmap names $ways {llength $names}]]
    dict set items $centre 1
    # In turns, so that neither way takes all the room.
    for {set i 0} {$i < $longest} {incr i} {
      foreach names $ways {
        if {$i >= [llength $names]} continue
        if {$most > 0 && [dict size $items] >= $most} {return [list [dict keys $items] 0 $facts]}
        dict set items [lindex $names $i] 1
      }
      work::pause $i $longest
    }
    list [dict keys $items] 1 $facts
  }

  # The names on a shortest way between two: from what needs to what is needed, whichever is which;
  # none where neither needs the other.
  proc path {id one other} {
    program::ask $id "set ends [list [list $one $other]]
      set way {}
      for {set turn 0} {\$turn < 2 && \$way eq {}} {incr turn; set ends \[lreverse \$ends\]} {
        lassign \$ends from at
        set steps \[tamsel cone \$p \[list \$from\]\]
        if {!\[dict exists \$steps \$at\]} continue
        set way \[list \$at\]
        for {set left \[dict get \$steps \$at\]} {\$left > 0} {incr left -1} {
          foreach user \[tamsel users \$p \$at\] {
            if {\[dict exists \$steps \$user\] && \[dict get \$steps \$user\] < \$left} break
          }
          lappend way \[set at \$user\]
        }
      }
      set way"
  }

  # The variables of the whole program, at most so many (0: all), outputs before the others where not
  # all fit, and whether these are all. A task.
  proc whole {id most} {
    set names {}
    foreach kind {output input local} {
      lappend names {*}[program::ask $id "tamsel names \$p -kind $kind"]
    }
    if {$most == 0 || [llength $names] <= $most} {return [list $names 1]}
    list [lrange $names 0 $most-1] 0
  }

  # The output among the first ones whose cone is the largest; "" where there is none. A task.
  proc richest_output {id depth} {
    set sizes [program::ask $id "lmap name \[lrange \[tamsel names \$p -kind output\] 0 19\] {
      list \$name \[dict size \[tamsel cone \$p \[list \$name\] -depth $depth\]\]}"]
    lindex [lsort -integer -decreasing -index 1 $sizes] 0 0
  }

  # What is to be drawn of some items, a dictionary, where `facts` of names are known. A task.
  #   items   the names
  #   facts   see `facts`
  #   edges   list of {FROM TO DELAYED}, DELAYED where only the past is needed
  #   labels  item -> the names that are written into its box
  #   before, after   item -> the names that it needs, and how many need it, that are not drawn
  # The wires of the names in `wired` are drawn in any case.
  proc picture {id items wired facts} {
    set facts [facts_about $id $items $facts]
    set is_wired {}
    foreach name $wired {dict set is_wired $name 1}
    foreach part {drawn edges labels before after} {set $part {}}
    foreach item $items {dict set drawn $item 0}
    foreach item $items {
      lassign [dict get $facts $item] _ _ _ _ needs now
      foreach name $needs {
        if {![dict exists $is_wired $name] && [is_label $facts $name]} {
          dict lappend labels $item $name
        } elseif {[dict exists $drawn $name]} {
          lappend edges [list $name $item [expr {$name ni $now}]]
          dict incr drawn $name
        } else {
          dict lappend before $item $name
        }
      }
      work::pause 0 1
    }
    foreach item $items {
      set more [expr {[lindex [dict get $facts $item] 3] - [dict get $drawn $item]}]
      if {$more > 0 && ([dict exists $is_wired $item] || ![is_label $facts $item])} {dict set after $item $more}
      work::pause 0 1
    }
    dict create items $items facts $facts edges $edges labels $labels before $before after $after
  }
}
