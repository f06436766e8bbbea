# view-programs.tcl: the tree of programs, with the kinds of names in each, and what is wrong with it.

namespace eval ::tamselbrowser::view::programs {
  namespace path {::tamselbrowser::view ::tamselbrowser}

  variable tree ""
  variable kinds {
    input Inputs  output Outputs  local Locals  constant Constants  function Functions  type Types
    assertion Assertions
  }

  # How many findings there are, in words.
  proc finding_counts {id} {
    join [lmap {severity word} {error error note note} {
      set count [program::severe $id $severity]
      if {$count == 0} continue
      string cat $count " " $word [expr {$count == 1 ? "" : "s"}]
    }] ", "
  }

  # Writes what is known of a program into its rows; of findings, the gravest.
  proc fill {id} {
    variable tree
    variable kinds
    set words [finding_counts $id]
    set state [program::its $id state]
    $tree item $id -text [program::label $id] -tags [expr {$state eq "broken"
      || [program::severe $id error] > 0 ? "wrong" : $state}] \
      -values [list [expr {$state eq "broken" ? "broken" : [lindex [split $words ,] 0]}]]
    set counts [program::its $id counts]
    if {$counts eq ""} {
      $tree delete [$tree children $id]
      return
    }
    foreach {kind word} $kinds {
      if {![$tree exists $id/$kind]} {$tree insert $id end -id $id/$kind -text $word}
      $tree item $id/$kind -values [list [dict get $counts $kind]]
    }
    if {![$tree exists $id/findings]} {$tree insert $id end -id $id/findings -text Findings}
    $tree item $id/findings -values [list [program::severe $id]]
  }

  proc opened {id} {
    variable tree
    $tree insert {} end -id $id
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
    if {[llength [program::all]] == 1} {$tree item $id -open 1}
    if {[lindex [split [lindex [$tree selection] 0] /] 0] ne $id} {$tree selection set [list $id]}
    $tree see $id
  }

  # The user has chosen a row.
  proc chosen {} {
    variable tree
    set row [lindex [$tree selection] 0]
    if {$row eq ""} return
    lassign [split $row /] id kind
    # One whose reading was stopped may be chosen again.
    if {$id ne [shown::program] || [program::its $id state] eq "listed"} {shown::select $id}
    if {$kind eq "findings"} {
      program::say $id [program::question $id check]
      shown::tell look findings
    } elseif {[program::is_good $id]} {
      shown::tell kind $kind
    }
  }

  proc create {frame} {
    variable tree [style::scrolled $frame \
      {ttk::treeview -columns count -show tree -selectmode browse -height 9} y]
    $tree column #0 -width [style::letters 24]
    $tree column count -width [style::letters 9] -anchor e -stretch 0
    $tree tag configure wrong -foreground [style::colour error]
    $tree tag configure listed -foreground [style::colour faint]
    bind $tree <<TreeviewSelect>> [namespace code chosen]
    foreach {event command} {opened opened closed closed changed fill program current} {
      shown::listen $event [namespace code $command]
    }
  }
}
