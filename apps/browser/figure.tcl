# figure.tcl: what a picture is to be of, and its drawing; for windows and files alike.
#
# That is a dictionary:
#   scope    both (needs and users), back (what it needs), forth (what needs it), whole, path, symbol
#   name     the name that a cone is about; of a path, one end
#   to       of a path, the other end
#   steps    of a cone
#   extra    names that were opened besides
#   chosen   the name that it is coloured for, or ""
#   most     at most so many names, where they do not all have room; 0 for all

namespace eval ::tamselbrowser::figure {
  namespace path ::tamselbrowser

  variable scopes {
    both "Needs and users"  back "What it needs"  forth "What needs it"  whole "Whole program"
  }
  variable directions {both {needs users} back needs forth users}

  # What a picture is of, in words.
  proc title {id figure} {
    dict with figure {}
    set steps [expr {$steps == 1 ? "1 step" : "$steps steps"}]
    set words [dict get {
      both "What $name needs and what needs it, $steps"  back "What $name needs, $steps"
      forth "What needs $name, $steps"  whole "The whole program"  path "From $name to $to"
      symbol "Block"
    } $scope]
    return "[program::label $id]: [subst -nocommands -nobackslashes $words]"
  }

  # The question whose answer a picture shows, as a line of Tcl.
  proc question {id figure} {
    variable directions
    dict with figure {}
    switch -- $scope {
      whole {return [program::question $id names]}
      path {return [program::question $id cone $name]}
    }
    set lines [lmap direction [dict get $directions $scope] {
      cone::question $id $name $steps $direction
    }]
    if {[llength $lines] == 1} {return [lindex $lines 0]}
    return "list \[[join $lines {] [}]\]"
  }

  # The picture of cone.tcl, and whether nothing was left out for want of room. A task.
  proc picture {id figure} {
    variable directions
    dict with figure {}
    set is_whole 1
    set facts {}
    switch -- $scope {
      whole {lassign [cone::whole $id $most] items is_whole}
      path {set items [cone::path $id $name $to]}
      default {
        lassign [cone::about $id $name $steps [dict get $directions $scope] $most] \
          items is_whole facts
      }
    }
    foreach other $extra {if {$other ni $items} {lappend items $other}}
    set wired [expr {$scope eq "path" ? $items : $scope eq "whole" ? $extra : [list $name {*}$extra]}]
    list [cone::picture $id $items $wired $facts] $is_whole
  }

  # The inputs or outputs of a program: a list of {NAME TYPE CLOCK}. A task.
  proc ports {id kind} {
    set names [program::ask $id "tamsel names \$p -kind $kind"]
    lmap name $names about [program::ask_each $id $names {tamsel describe $p $name}] {
      list $name [dict get $about type] [dict get $about clock]
    }
  }
  proc symbol {id} {
    drawing::symbol [lindex [program::ask $id {$p profile}] 0] [ports $id input] [ports $id output]
  }

  # The drawing for a file. A task.
  proc printed {id figure} {
    if {[dict get $figure scope] eq "symbol"} {return [symbol $id]}
    lassign [picture $id $figure] picture
    if {[dict get $picture items] eq ""} {
      error "neither [dict get $figure name] nor [dict get $figure to] needs the other"
    }
    drawing::graph [title $id $figure] $picture [dict get $figure chosen]
  }

  # Writes a picture to a file. A task.
  proc write {id figure format path} {
    export::check $format
    drawing::printed {export::write [printed $id $figure] $format $path}
  }

  # The command line that writes the same.
  proc command {id figure path} {
    dict with figure {}
    set options {}
    switch -- $scope {
      symbol {lappend options --symbol}
      path {lappend options --name $name --path $to}
      whole {lappend options --show whole}
      default {lappend options --name $name --show $scope --steps $steps}
    }
    list exec tamsel-browser --export $path {*}$options [program::its $id file]
  }
}
