# view-programs.tcl: the tree of programs, with the kinds of names in each.

namespace eval ::tamselbrowser::view::programs {
  namespace path {::tamselbrowser::view ::tamselbrowser}

  variable tree ""
  # Kind, its word in the tree, the library's operation that counts it.
  variable kinds {
    input Inputs nb-ins  output Outputs nb-outs  local Locals nb-locs  function Functions nb-funcs
    assertion Assertions nb-asts
  }

  # Writes what is known of a program into its rows.
  proc fill {id} {
    variable tree
    variable kinds
    $tree item $id -text [program::label $id]
    set counts [program::counts $id]
    foreach {kind word _} $kinds {
      if {![$tree exists $id/$kind]} {$tree insert $id end -id $id/$kind -text $word}
      $tree item $id/$kind -values [list [dict get $counts $kind]]
    }
  }

  proc opened {id} {
    variable tree
    $tree insert {} end -id $id -open [expr {[llength [program::all]] == 1}]
    fill $id
  }

  proc closed {id} {
    variable tree
    $tree delete [list $id]
  }

  # Another program is current: its row is the selected one, or one below it.
  proc current {id} {
    variable tree
    if {$id eq ""} return
    fill $id
    if {![string match $id* [lindex [$tree selection] 0]]} {$tree selection set [list $id]}
    $tree see $id
  }

  # The user has chosen a row.
  proc chosen {} {
    variable tree
    variable kinds
    set row [lindex [$tree selection] 0]
    if {$row eq ""} return
    lassign [split $row /] id kind
    # One whose reading was stopped may be chosen again.
    if {$id ne [shown::program]
        || (![program::is_read $id] && ![work::is_busy])} {
      shown::select $id
    }
    if {$kind eq ""} {
      program::say $id profile
    } else {
      foreach {its_kind _ operation} $kinds {
        if {$its_kind eq $kind} {program::say $id $operation}
      }
    }
    shown::tell kind [expr {$kind eq "assertion" ? "" : $kind}]
  }

  proc create {frame} {
    variable tree [style::scrolled $frame \
      {ttk::treeview -columns count -show tree -selectmode browse -height 7} y]
    $tree column #0 -width 260
    $tree column count -width 70 -anchor e -stretch 0
    bind $tree <<TreeviewSelect>> [namespace code chosen]
    foreach {event command} {opened opened closed closed program current} {
      shown::listen $event [namespace code $command]
    }
  }
}
