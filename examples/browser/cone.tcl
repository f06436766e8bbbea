# cone.tcl: which part of the dependencies to draw.
#
# A picture has items (names with a box), edges between them, and labels: names that are used so
# widely, or are so plain, that they are written into the boxes that need them instead of wired.

namespace eval ::tamselbrowser::cone {
  namespace path ::tamselbrowser

  variable most_items 150  ;# boxes in a picture
  variable most_wires 12   ;# a name that more equations need becomes a label

  # Whether the wires of a name are replaced by labels.
  proc is_label {id name} {
    variable most_wires
    expr {[program::fact $id kind $name] eq "constant"
      || [program::use_count $id $name] > $most_wires}
  }

  # Up to `most_items` names within `depth` steps of `centre`, itself and the nearest first, as the keys
  # of a dictionary. `way` is the operation of program that leads on: needs or users. Labels are not
  # followed.
  proc collect {id centre depth way} {
    variable most_items
    dict set items $centre 1
    set edge [list $centre]
    for {set step 1} {$step <= $depth && $edge ne ""} {incr step} {
      set next {}
      foreach name $edge {
        foreach other [dict keys [program::$way $id $name]] {
          if {[dict exists $items $other] || [is_label $id $other]} continue
          if {[dict size $items] >= $most_items} {return $items}
          dict set items $other 1
          lappend next $other
        }
      }
      set edge $next
    }
    return $items
  }

  # The names of the cone about one: what it needs and what needs it, as far as `ways` has needs and
  # users; each way on its own, so that what merely shares a need with it stays out.
  proc about {id centre depth ways} {
    variable most_items
    set found [lmap way $ways {lrange [dict keys [collect $id $centre $depth $way]] 1 end}]
    set longest [tcl::mathfunc::max {*}[lmap names $found {llength $names}]]
    dict set items $centre 1
    # In turns, so that neither way takes all the room.
    for {set i 0} {$i < $longest} {incr i} {
      foreach names $found {
        if {$i < [llength $names] && [dict size $items] < $most_items} {
          dict set items [lindex $names $i] 1
        }
      }
    }
    dict keys $items
  }

  # The first `most_items` of the whole program: outputs with what they need, then what is left.
  proc whole {id} {
    variable most_items
    set items {}
    foreach name [program::names_of $id output] {
      if {[dict size $items] >= $most_items} break
      set items [dict merge $items [collect $id $name $most_items needs]]
    }
    foreach name [program::details $id names] {
      if {[dict size $items] >= $most_items} break
      dict set items $name 0
    }
    lrange [dict keys $items] 0 $most_items-1
  }

  # What is to be drawn of some items, a dictionary:
  #   edges   list of {FROM TO DELAYED}
  #   labels  item -> the names that are written into its box
  #   hidden  item -> {how many that it needs, how many that need it, are not drawn}
  # The wires of `centre` are drawn in any case.
  proc picture {id items centre} {
    set drawn {}
    foreach item $items {dict set drawn $item 1}
    set edges {}
    set labels {}
    set hidden {}
    foreach item $items {
      set before 0
      set after 0
      dict for {name delayed} [program::needs $id $item] {
        if {$name ne $centre && [is_label $id $name]} {
          dict lappend labels $item $name
        } elseif {[dict exists $drawn $name]} {
          lappend edges [list $name $item $delayed]
        } else {
          incr before
        }
      }
      if {![is_label $id $item]} {
        dict for {name _} [program::users $id $item] {
          if {![dict exists $drawn $name]} {incr after}
        }
      }
      dict set hidden $item [list $before $after]
    }
    dict create items $items edges $edges labels $labels hidden $hidden
  }
}
