# view-table.tcl: the table of names, filtered and sorted.
#
# All rows of a program stand in the widget; a filter or another order only says which are children
# of the root, in which order. That is quick for any number of rows.

namespace eval ::tamselbrowser::view::table {
  namespace path {::tamselbrowser::view ::tamselbrowser}

  variable frame ""
  variable tree ""
  variable columns {name type clock kind}
  variable rows {}        ;# {NAME TYPE CLOCK KIND ITEM} in the order of declaration
  variable item_of        ;# name -> item, functions apart
  array set item_of {}
  variable kind ""        ;# the only kind to show, "" for all
  variable sorted_by ""   ;# a column, or "" for the order of declaration
  variable direction -increasing
  variable quick 50000    ;# so many rows are sorted as in a dictionary
  variable pattern ""     ;# what the names that are shown are like

  # What names are to be like; "" for all. One with none of *?[ in it is looked for anywhere.
  proc filter {} {
    variable frame
    set pattern [string trim [$frame.filter get]]
    if {$pattern eq "" || [regexp {[*?\[]} $pattern]} {return $pattern}
    return *[string map {\\ \\\\} $pattern]*
  }

  # The options of lsort for the order that is wanted; "" for that of declaration.
  proc order {} {
    variable columns
    variable rows
    variable sorted_by
    variable direction
    variable quick
    if {$sorted_by eq ""} {return ""}
    # v2 before v10, where that does not take seconds.
    set comparison [expr {[llength $rows] > $quick ? "-ascii" : "-dictionary"}]
    list $direction $comparison -index [lsearch -exact $columns $sorted_by]
  }

  # Shows the rows that are wanted in the order that is wanted.
  proc arrange {} {
    variable frame
    variable tree
    variable columns
    variable rows
    variable kind
    variable sorted_by
    variable direction
    variable pattern [filter]
    set wanted [lmap row $rows {
      if {$kind ne "" && [lindex $row 3] ne $kind} continue
      if {$pattern ne "" && ![string match -nocase $pattern [lindex $row 0]]} continue
      set row
    }]
    if {$sorted_by ne ""} {set wanted [lsort {*}[order] $wanted]}
    $tree children {} [lmap row $wanted {lindex $row end}]
    set mark [expr {$direction eq "-increasing" ? " ▲" : " ▼"}]
    foreach column $columns {
      $tree heading $column \
        -text "[string totitle $column][expr {$column eq $sorted_by ? $mark : ""}]"
    }
    set count [llength $wanted]
    $frame.count configure -text [expr {$count == [llength $rows]
      ? "$count" : "$count of [llength $rows]"}]
  }

  # The user has said what to show.
  proc arrange_and_say {} {
    variable tree
    variable kind
    arrange
    $tree yview moveto 0
    set id [shown::program]
    if {$id ne ""} {log::rows $id $kind [filter] [order]}
  }

  proc typed {} {
    variable pattern
    if {[filter] eq $pattern} return
    work::when_quiet 120 [namespace code arrange_and_say]
  }

  # A click on a heading: sorted by it, the other way round, as declared.
  proc sort_by {column} {
    variable sorted_by
    variable direction
    if {$sorted_by ne $column} {
      set sorted_by $column
      set direction -increasing
    } elseif {$direction eq "-increasing"} {
      set direction -decreasing
    } else {
      set sorted_by ""
      set direction -increasing
    }
    arrange_and_say
  }

  # The rows of a program.
  proc collect {id} {
    set number 0
    set found {}
    foreach name [program::details $id names] {
      lappend found [list $name {*}[lmap array {type clock kind} {
        program::fact $id $array $name
      }] [incr number]]
      work::pause 0 1
    }
    foreach function [program::details $id functions] {
      lassign $function name declaration
      lappend found [list $name $declaration "" function [incr number]]
    }
    return $found
  }

  # Fills the table. A task.
  proc fill {id} {
    variable tree
    variable rows
    variable item_of
    set new [collect $id]
    set items [lmap row $rows {lindex $row end}]
    set rows {}
    array unset item_of
    $tree children {} {}
    while {$items ne ""} {
      $tree delete [lrange $items 0 499]
      set items [lrange $items 500 end]
      work::pause 0 1
    }
    set total [llength $new]
    set done 0
    try {
      foreach row $new {
        lassign $row name _ _ kind item
        $tree insert {} end -id $item -values [lrange $row 0 3]
        lappend rows $row
        if {$kind ne "function"} {set item_of($name) $item}
        work::pause [incr done] $total
      }
    } finally {
      # Also where it was stopped: what is there counts and obeys the filter.
      arrange
    }
    show_chosen [shown::name]
  }

  proc current {id} {
    variable tree
    variable rows
    variable item_of
    work::cancel table
    if {$id eq ""} {
      $tree delete [lmap row $rows {lindex $row end}]
      set rows {}
      array unset item_of
      arrange
    } else {
      work::start table "Listing [program::label $id]" \
        [namespace code [list fill $id]]
    }
  }

  proc show_kind {new} {
    variable kind $new
    arrange
  }

  # Selects the row of a name that was chosen elsewhere.
  proc show_chosen {name {origin ""}} {
    variable tree
    variable item_of
    if {$origin eq "table"} return
    set items [expr {[info exists item_of($name)] ? $item_of($name) : {}}]
    if {[$tree selection] eq $items} return
    $tree selection set $items
    # One that the filter holds back has no place to scroll to.
    if {$items ne "" && $items in [$tree children {}]} {$tree see $items}
  }

  # A row has been selected, by the user unless it is that of the chosen name.
  proc selected {} {
    variable tree
    variable rows
    set item [lindex [$tree selection] 0]
    if {$item eq ""} return
    lassign [lindex $rows $item-1] name declaration _ kind
    set id [shown::program]
    if {$name eq [shown::name]} return
    if {$kind eq "function"} {
      log::function $id $name
      shown::tell status "function $name: $declaration"
    } else {
      log::name $id $name
      shown::choose $name table
    }
  }

  proc create {window} {
    variable frame $window
    variable tree
    variable columns
    ttk::frame $frame
    ttk::label $frame.label -text "Filter" -style Faint.TLabel
    ttk::entry $frame.filter
    ttk::label $frame.count -style Faint.TLabel
    set tree [style::scrolled $frame.rows \
      [list ttk::treeview -columns $columns -show headings -selectmode browse] y]
    foreach column $columns width {150 90 70 70} {
      $tree column $column -width $width -minwidth 40
      $tree heading $column -anchor w -command [namespace code [list sort_by $column]]
    }
    grid $frame.label $frame.filter $frame.count -padx {0 6} -pady {8 6} -sticky ew
    grid $frame.rows -columnspan 3 -sticky nsew
    grid columnconfigure $frame 1 -weight 1
    grid rowconfigure $frame 1 -weight 1
    bind $frame.filter <KeyRelease> [namespace code typed]
    bind $frame.filter <Escape> {%W delete 0 end}
    bind $tree <<TreeviewSelect>> [namespace code selected]
    foreach {event command} {program current kind show_kind name show_chosen} {
      shown::listen $event [namespace code $command]
    }
    arrange
  }
}
