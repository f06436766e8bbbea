# view-findings.tcl: what is wrong with the program, as a list that leads to the places.

namespace eval ::tamselbrowser::view::findings {
  namespace path {::tamselbrowser::view ::tamselbrowser}

  variable tree ""
  variable findings {}

  # Lists the findings of a program. A task.
  proc put {id} {
    variable tree
    variable findings
    set new [program::its $id findings]
    set findings $new
    foreach finding $new {
      $tree insert {} end -values [list [dict get $finding line] [dict get $finding severity] \
        [dict get $finding kind] [dict get $finding message]] -tags [dict get $finding severity]
      work::pause 0 1
    }
    set more [expr {[program::severe $id] - [llength $new]}]
    if {$more > 0} {$tree insert {} end -values [list "" "" "" "and $more more"]}
  }
  proc current {id} {
    variable tree
    variable findings {}
    work::cancel findings
    $tree delete [$tree children {}]
  }
  proc known {id} {
    if {$id ne [shown::program]} return
    current $id
    work::start findings "" [namespace code [list put $id]]
  }

  # The user has chosen a finding: its name is chosen, and its place shown.
  proc chosen {} {
    variable tree
    variable findings
    set item [lindex [$tree selection] 0]
    if {$item eq ""} return
    set finding [lindex $findings [$tree index $item]]
    if {$finding eq ""} return
    set name [lindex [dict get $finding names] 0]
    if {$name ne ""} {shown::choose $name findings}
    if {[dict get $finding line] > 0} {
      shown::tell place [dict get $finding line] \
        [expr {[dict exists $finding column] ? [dict get $finding column] : 0}]
    }
  }

  # Goes to the next (1) or the previous (-1) finding.
  proc go {by} {
    variable tree
    set items [$tree children {}]
    if {$items eq ""} return
    set at [lsearch -exact $items [lindex [$tree selection] 0]]
    set at [expr {$at < 0 && $by < 0 ? 0 : $at}]
    set item [lindex $items [expr {($at + $by) % [llength $items]}]]
    $tree selection set [list $item]
    $tree focus $item
    $tree see $item
    shown::tell look findings
  }

  proc create {frame} {
    variable tree [style::scrolled $frame \
      {ttk::treeview -columns {line severity kind message} -show headings -selectmode browse -height 3} y]
    foreach {column width} {line 6 severity 10 kind 8 message 60} {
      $tree heading $column -text [string totitle $column] -anchor w
      $tree column $column -width [style::letters $width] -stretch [expr {$column eq "message"}]
    }
    $tree tag configure error -foreground [style::colour error]
    bind $tree <<TreeviewSelect>> [namespace code chosen]
    shown::listen program [namespace code current]
    shown::listen findings [namespace code known]
  }
}
