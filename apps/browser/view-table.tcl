# view-table.tcl: the table of names, filtered and sorted.
#
# The rows are a list in the program's process, the variable `rows`: what a line of Tcl answers. The widget has
# as many rows as are in sight, and asks for these; that is quick for any number of names.

namespace eval ::tamselbrowser::view::table {
  namespace path {::tamselbrowser::view ::tamselbrowser}

  variable frame ""
  variable tree ""
  variable columns {name type clock kind}
  variable kind ""        ;# the only kind to show, "" for all, or assertion
  variable listed {}      ;# {TITLE LINE} of the names that are listed instead
  variable sorted_by ""   ;# a column, or "" for the order of declaration
  variable direction -increasing
  variable pattern ""     ;# what the names that are shown are like
  variable there {}       ;# {PROGRAM IS_ASSERTIONS}, whose rows `rows` has, and whether they are assertions
  variable total 0        ;# rows
  variable first 0        ;# the first one in sight, from 0
  variable at -1          ;# the chosen one, -1 for none

  # What names are to be like; "" for all. One with none of *?[ in it is looked for anywhere.
  proc filter {} {
    variable frame
    set pattern [string trim [$frame.filter get]]
    if {$pattern eq "" || [regexp {[*?\[]} $pattern]} {return $pattern}
    return *[string map {\\ \\\\} $pattern]*
  }

  # The line of Tcl that answers the rows that are wanted in the order that is wanted.
  proc line {id} {
    variable kind
    variable listed
    variable sorted_by
    variable direction
    set pattern [filter]
    if {$kind eq "assertion" && $listed eq ""} {
      set line [program::question $id assertions]
      if {$pattern eq ""} {return $line}
      return "lsearch -all -inline -nocase \[$line\] [list "text *$pattern* clock *"]"
    }
    set line [expr {$listed ne "" ? [lindex $listed 1]
      : [program::question $id names {*}[expr {$kind eq "" ? {} : [list -kind $kind]}]]}]
    if {$pattern ne ""} {
      set line "lsearch -all -inline -nocase \[$line\] [list $pattern]"
    }
    switch -- $sorted_by {
      "" {return $line}
      name {return "lsort -dictionary $direction \[$line\]"}
    }
    return "lmap pair \[lsort -dictionary $direction -index 0 \[lmap name \[$line\] {list \[dict get\
      \[dict merge {$sorted_by {}} \[[program::question $id describe] \$name\]\] $sorted_by\] \$name}\]\]\
      {lindex \$pair 1}"
  }

  # How many rows are in sight at once.
  proc room {} {
    variable tree
    set heading [expr {[font metrics TkHeadingFont -linespace] + [style::px 6] + 2}]
    expr {max(1, ([winfo height $tree] - $heading) / [ttk::style lookup Treeview -rowheight])}
  }

  # Asks for the rows, and shows the first; or, of a new program, those about the chosen name. A task.
  proc list_rows {id} {
    variable frame
    variable kind
    variable listed
    variable there {}
    variable total 0
    variable first 0
    variable at -1
    set is_assertions [expr {$kind eq "assertion" && $listed eq ""}]
    set total [program::ask $id "set rows \[[line $id]\]; llength \$rows"]
    set there [list $id $is_assertions]
    set number [expr {$total == 1 ? "1 row" : "$total rows"}]
    $frame.count configure -text [expr {$listed eq "" ? $number : "[lindex $listed 0]: $number"}]
    find $id [shown::name]
  }

  # Shows the rows from `first` on, once there are any. A task.
  proc fetch {id} {
    variable there
    variable first
    lassign $there its_id is_assertions
    if {$its_id ne $id} return
    set last [expr {$first + [room] - 1}]
    if {$is_assertions} {
      show [lmap assertion [program::ask $id "lrange \$rows $first $last"] {
        list [dict get $assertion text] bool [clock_text [dict get $assertion clock]] assertion
      }]
      return
    }
    show [lmap row [program::ask $id "lmap name \[lrange \$rows $first $last\] {
      list \$name \[tamsel describe \$p \$name\]}"] {
      lassign $row name about
      list $name [type_text $about] [clock_text [dict get [dict merge {clock {}} $about] clock]] \
        [dict get $about kind]
    }]
  }
  proc clock_text {clock} {
    expr {$clock eq "true" ? "" : $clock}
  }
  # The type of a variable, the types of a function, the constants of a type.
  proc type_text {about} {
    switch -- [dict get $about kind] {
      function {
        lassign [lmap side {params results} {lmap pair [dict get $about $side] {lindex $pair 1}}] in out
        return "$in : $out"
      }
      type {return [join [lrange [dict get $about constants] 0 30] {, }]}
    }
    expr {[dict get $about type] eq "" ? "?" : [dict get $about type]}
  }

  # Puts rows into the widget.
  proc show {rows} {
    variable tree
    variable first
    variable at
    set items [$tree children {}]
    $tree delete [lrange $items [llength $rows] end]
    for {set i [llength $items]} {$i < [llength $rows]} {incr i} {$tree insert {} end -id $i}
    set i -1
    foreach row $rows {$tree item [incr i] -values $row}
    $tree selection set [expr {$at >= $first && $at < $first + [llength $rows] ? $at - $first : {}}]
    mark_headings
    tell_scrollbar
  }
  proc mark_headings {} {
    variable tree
    variable columns
    variable sorted_by
    variable direction
    set mark [expr {$direction eq "-increasing" ? " \u25b2" : " \u25bc"}]
    foreach column $columns {
      $tree heading $column \
        -text "[string totitle $column][expr {$column eq $sorted_by ? $mark : ""}]"
    }
  }
  proc tell_scrollbar {} {
    variable frame
    variable total
    variable first
    $frame.rows.y set [expr {double($first) / max(1, $total)}] \
      [expr {min(1.0, double($first + [room]) / max(1, $total))}]
  }

  # Scrolls so that a row is the first, as far as there are rows.
  proc scroll_to {row} {
    variable total
    variable first
    set new [expr {max(0, min($row, $total - [room]))}]
    if {$new == $first} return
    set first $new
    show_soon
  }
  proc show_soon {} {
    set id [shown::program]
    if {$id ne "" && [program::is_good $id]} {work::start rows "" [namespace code [list fetch $id]]}
  }
  proc scroll {how amount {unit ""}} {
    variable total
    variable first
    if {$how eq "moveto"} {return [scroll_to [expr {round($amount * $total)}]]}
    scroll_to [expr {$first + $amount * ($unit eq "pages" ? [room] : 1)}]
  }

  # Makes the list anew for what the user wants; the line that answers it is told where `is_said`.
  proc list_soon {{is_said 1}} {
    variable pattern [filter]
    set id [shown::program]
    if {$id eq "" || ![program::is_good $id]} return
    if {$is_said} {program::say $id [line $id]}
    work::start table "Listing [program::label $id]" [namespace code [list list_rows $id]]
  }

  proc typed {} {
    variable pattern
    if {[filter] ne $pattern} {work::when_quiet 120 [namespace code list_soon]}
  }

  # A click on a heading: sorted by it, the other way round, as declared.
  proc sort_by {column} {
    variable sorted_by
    variable direction
    variable kind
    if {$sorted_by ne $column} {
      set sorted_by $column
      set direction -increasing
    } elseif {$direction eq "-increasing"} {
      set direction -decreasing
    } else {
      set sorted_by ""
      set direction -increasing
    }
    list_soon
  }

  # Another program is current.
  proc current {id} {
    variable frame
    variable listed {}
    variable there {}
    variable total 0
    work::cancel table
    work::cancel rows
    show {}
    $frame.count configure -text ""
    list_soon 0
  }
  proc show_kind {new} {
    variable kind $new
    variable listed {}
    list_soon
  }
  proc show_rows {title line} {
    variable listed [list $title $line]
    variable frame
    $frame.filter delete 0 end
    list_soon
  }
  # Back to all names.
  proc show_all {} {
    variable frame
    $frame.filter delete 0 end
    show_kind ""
  }

  # Brings the row of a name into sight. A task.
  proc find {id name} {
    variable at
    variable first
    variable total
    variable there
    if {[lindex $there 0] ne $id} return
    set at [expr {$name eq "" ? -1 : [program::ask $id "lsearch -exact \$rows [list $name]"]}]
    if {$at >= 0 && ($at < $first || $at >= $first + [room])} {
      set first [expr {max(0, min($at - [room] / 2, $total - [room]))}]
    }
    fetch $id
  }
  proc show_chosen {name {origin ""}} {
    variable tree
    set id [shown::program]
    if {$id eq "" || ![program::is_good $id]} return
    work::start rows "" [namespace code [list find $id $name]]
  }

  # A row is to be chosen, by its number from 0. A task.
  proc choose {id row} {
    variable there
    variable at
    lassign $there its_id is_assertions
    if {$its_id ne $id} return
    set it [program::ask $id "lindex \$rows $row"]
    if {$it eq ""} return
    if {$is_assertions} {
      set at $row
      program::say $id [program::question $id assertions]
      shown::tell place [dict get $it line] 0
    } elseif {$it ne [shown::name]} {
      shown::choose $it table
    }
  }
  proc choose_soon {row} {
    variable total
    if {$total == 0} return
    set row [expr {max(0, min($row, $total - 1))}]
    work::start row "" [namespace code [list choose [shown::program] $row]]
  }

  # A row of the widget has been selected, by the user unless it is that of the chosen name.
  proc selected {} {
    variable tree
    variable first
    variable at
    set item [lindex [$tree selection] 0]
    if {$item ne "" && $first + $item != $at} {choose_soon [expr {$first + $item}]}
  }
  proc move {by} {
    variable at
    choose_soon [expr {$at + $by}]
  }
  # From the filter to the first row that it lets through.
  proc enter {} {
    variable tree
    focus $tree
    choose_soon 0
  }

  # The name under the mouse, or "".
  proc pointed {y} {
    variable tree
    set item [$tree identify row 0 $y]
    if {$item eq ""} {return ""}
    lindex [$tree item $item -values] 0
  }
  # What is cut where the columns are narrow.
  proc tip {} {
    variable tree
    set item [$tree identify row 0 [expr {[winfo pointery $tree] - [winfo rooty $tree]}]]
    if {$item eq ""} return
    lassign [$tree item $item -values] name type clock kind
    return "$name: $kind, $type[expr {$clock eq "" ? "" : " when $clock"}]"
  }

  proc bind_keys {} {
    variable tree
    variable frame
    foreach {key by} {Up -1 Down 1 Home -1000000000 End 1000000000} {
      bind $tree <Key-$key> "[namespace code [list move $by]]; break"
    }
    foreach {key sign} {Prior - Next +} {
      bind $tree <Key-$key> "[namespace code "move ${sign}\[room\]"]; break"
    }
    foreach {event by} {Button-4 -3 Button-5 3} {
      bind $tree <$event> "[namespace code [list scroll scroll $by units]]; break"
    }
    bind $tree <MouseWheel> "[namespace code {scroll scroll [expr {%D > 0 ? -3 : 3}] units}]; break"
    bind $tree <Configure> [namespace code show_soon]
    bind $tree <<TreeviewSelect>> [namespace code selected]
    bind $tree <Return> {::tamselbrowser::shown::tell draw [::tamselbrowser::shown::name]}
    bind $frame.filter <KeyRelease> [namespace code typed]
    bind $frame.filter <Escape> "[namespace code show_all]; break"
    foreach key {Return Down} {bind $frame.filter <$key> [namespace code enter]}
    tip::on $tree [namespace code tip]
    menu::on $tree [namespace code {pointed %y}]
  }

  # Makes the columns as wide as the letters ask for.
  proc size_columns {} {
    variable tree
    variable columns
    foreach column $columns width {18 11 8 9} {$tree column $column -width [style::letters $width]}
  }

  proc create {window} {
    variable frame $window
    variable tree
    variable columns
    ttk::frame $frame
    ttk::label $frame.label -text "Filter" -style Faint.TLabel
    ttk::entry $frame.filter -width 12
    ttk::label $frame.count -style Faint.TLabel -anchor e
    set tree [style::scrolled $frame.rows \
      [list ttk::treeview -columns $columns -show headings -selectmode browse -height 4] ""]
    ttk::scrollbar $frame.rows.y -orient vertical -command [namespace code scroll]
    grid $frame.rows.y -row 0 -column 1 -sticky ns
    foreach column $columns {
      $tree column $column -minwidth [style::px 30]
      $tree heading $column -anchor w -command [namespace code [list sort_by $column]]
    }
    size_columns
    grid $frame.label $frame.filter $frame.count -padx [list 0 [style::px 6]] \
      -pady [style::px 4] -sticky ew
    grid $frame.rows -columnspan 3 -sticky nsew
    grid columnconfigure $frame 1 -weight 1
    grid rowconfigure $frame 1 -weight 1
    bind_keys
    foreach {event command} {
      program current kind show_kind rows show_rows name show_chosen
    } {
      shown::listen $event [namespace code $command]
    }
    mark_headings
  }
}
