# view-graph.tcl: the dependency picture.
#
# A box is a name; under it stand its type and the names that are labels for it. A wire runs from
# what is needed to what needs it, dashed where only the past is needed. A click colours what the
# name needs and what needs it, near and, paler, far; a double click draws the cone about it; a click
# on the count at a corner opens three of the names that it stands for.

namespace eval ::tamselbrowser::view::graph {
  namespace path {::tamselbrowser::view ::tamselbrowser}

  variable frame ""
  variable canvas ""
  variable figure {}         ;# what is drawn, see figure.tcl
  variable picture {}        ;# the same, see cone::picture
  variable drawing {}        ;# and its drawing
  variable number_of {}      ;# name -> number of its box
  variable drawn 0           ;# how many pictures have been drawn
  variable item_of {}        ;# tag of a box's part or of a wire -> its item
  variable is_due 0          ;# whether the picture is to be drawn when it comes into sight
  variable wanted both       ;# what the user wants to see, a key of `figure::scopes`
  variable depth 2           ;# and how many steps of it
  variable ends {}           ;# the two names of the path that is wanted instead
  variable small 40          ;# a program of no more names is drawn whole while none is chosen
  variable most_near 150     ;# boxes of a cone
  variable most_in_all 2000  ;# boxes of a whole program; files have all of either

  proc is_drawn {name} {
    variable number_of
    dict exists $number_of $name
  }
  proc names {} {
    variable number_of
    dict keys $number_of
  }

  # Colours everything for a name, which may be one that is not drawn, or "". A task.
  proc colour {name} {
    variable canvas
    variable picture
    variable drawing
    variable number_of
    variable item_of
    variable drawn
    set before $drawn
    if {$drawing eq ""} return
    set roles [drawing::roles $picture $name]
    # Another picture may come meanwhile; it has its own colours.
    if {$drawn != $before} return
    dict for {box number} $number_of {
      set kind [lindex [dict get $picture facts $box] 0]
      lassign [drawing::box_look $kind [drawing::role $roles $box]] fill edge width ink faint
      $canvas itemconfigure [dict get $item_of box:$number:shape] -fill $fill -outline $edge -width $width
      $canvas itemconfigure [dict get $item_of box:$number:title] -fill $ink
      $canvas itemconfigure [dict get $item_of box:$number:detail] -fill $faint
      work::pause 0 1
      if {$drawn != $before} return
    }
    set number -1
    foreach wire [dict get $drawing wires] {
      lassign [drawing::wire_look {*}[lrange $wire 0 1] $roles] colour width
      set item [dict get $item_of wire:[incr number]]
      $canvas itemconfigure $item -width $width -fill $colour
      if {$width > 1} {$canvas raise $item}
      work::pause 0 1
      if {$drawn != $before} return
    }
    # The coloured wires stand above the others, and the boxes above all.
    $canvas raise box
  }

  # Says what the picture shows, and how much it leaves out.
  proc caption {id is_whole} {
    variable frame
    variable figure
    variable picture
    set shown [llength [dict get $picture items]]
    set all 0
    foreach kind {input output local} {incr all [dict get [program::its $id counts] $kind]}
    set text [expr {$shown == $all ? "all $all names" : "$shown of $all names"}]
    if {!$is_whole} {
      append text [expr {[dict get $figure scope] eq "whole" ? ", outputs first" : ", the nearest"}] \
        "; files have all"
    }
    $frame.bar.caption configure -text $text
    dict with figure {}
    set words [expr {$scope eq "path" ? "path from $name to $to" : $scope eq "whole" ? "" : "of $name"}]
    $frame.bar.centre configure -text [style::shortened $words tamselbrowser.bold 200p]
  }

  # What is to be drawn of a program. Where nothing is chosen, a small one is drawn whole, of a large
  # one a cone that shows something. A task.
  proc decide {id extra} {
    variable figure
    variable wanted
    variable depth
    variable ends
    variable small
    variable most_near
    variable most_in_all
    set name [shown::name]
    # Functions and types have no place in pictures.
    if {[shown::fact kind] in {function type}} {
      set name [expr {$figure eq "" ? "" : [dict get $figure name]}]
    }
    set new [dict create scope $wanted name $name to "" steps $depth extra $extra chosen $name \
      most $most_near]
    if {$ends ne ""} {
      return [dict merge $new [dict create scope path name [lindex $ends 0] to [lindex $ends 1]]]
    }
    if {$wanted eq "whole"} {return [dict replace $new most $most_in_all]}
    if {$name ne ""} {return $new}
    set counts [program::its $id counts]
    if {[dict get $counts input] + [dict get $counts output] + [dict get $counts local] > $small} {
      dict set new name [cone::richest_output $id $depth]
    }
    if {[dict get $new name] eq ""} {dict set new scope whole}
    return $new
  }

  # What is to be in a file: what is seen, without what limits a window. A task.
  proc wanted_figure {id} {
    variable figure
    set extra [expr {$figure eq "" ? {} : [dict get $figure extra]}]
    dict replace [decide $id $extra] most 0
  }

  proc fit {} {
    variable canvas
    picture::fit $canvas
  }

  # Shows the picture; where all of it would be too small to read, the part about the chosen name.
  proc show_readable {} {
    variable canvas
    variable number_of
    variable figure
    set tag all
    foreach name [list [dict get $figure name] [shown::name]] {
      if {[is_drawn $name]} {set tag box:[dict get $number_of $name]}
    }
    picture::fit $canvas 1.0 $tag 0.7
  }

  # Draws the picture of a program, with some names more. A task.
  proc draw {id {extra {}}} {
    variable canvas
    variable figure
    variable picture
    variable drawing
    variable number_of
    variable item_of
    variable drawn
    set new [decide $id $extra]
    lassign [figure::picture $id $new] its_picture is_whole
    if {[dict get $its_picture items] eq ""} {
      shown::tell status "Neither of the two names needs the other."
      variable ends {}
      return
    }
    set its_drawing [drawing::graph "" $its_picture ""]
    incr drawn
    # Nothing can be clicked while it is put there.
    set number_of {}
    set drawing {}
    set item_of [picture::put $canvas $its_drawing]
    lassign [list $new $its_picture $its_drawing] figure picture drawing
    foreach name [dict get $drawing names] {
      dict set number_of [dict get $name name] [dict size $number_of]
    }
    caption $id $is_whole
    colour [shown::name]
    show_readable
  }

  # Draws soon, or when the canvas comes into sight.
  proc draw_soon {} {
    variable canvas
    variable is_due 1
    if {[winfo viewable $canvas]} draw_now
  }
  proc draw_now {{extra {}}} {
    variable is_due
    set id [shown::program]
    if {!$is_due || $id eq "" || ![program::is_good $id]} return
    set is_due 0
    work::start graph "Drawing [program::label $id]" [namespace code [list draw $id $extra]]
  }

  # Another program is current, or the current one was read anew.
  proc current {id} {
    variable canvas
    variable frame
    variable drawing {}
    variable drawn
    incr drawn
    variable figure {}
    variable number_of {}
    variable ends {}
    work::cancel graph
    picture::reset $canvas
    $frame.bar.caption configure -text ""
    $frame.bar.centre configure -text ""
    if {[program::all] eq ""} {
      picture::put_text $canvas hint 0 0 center heading [style::colour faint] \
        "Open an EC program: File, Open\u2026 or Ctrl+O"
      picture::fit $canvas
    } elseif {$id ne "" && ![program::is_good $id]} {
      picture::put_text $canvas hint 0 0 center heading [style::colour faint] \
        "[program::label $id] does not load; its source is there."
      picture::fit $canvas
    }
    draw_soon
  }

  # A name was chosen. The picture stays as it is where that was done in it, or it shows everything.
  proc show_chosen {name origin} {
    variable canvas
    variable wanted
    variable ends
    variable drawing
    variable number_of
    if {$name eq "" || [shown::fact kind] in {function type}} {
      colour ""
      return
    }
    if {[is_drawn $name] && ($origin eq "graph" || $wanted eq "whole" || $ends ne "")} {
      colour $name
      picture::see $canvas box:[dict get $number_of $name]
      return
    }
    set ends {}
    if {$wanted eq "whole"} {want both}
    draw_soon
  }

  # Sets what is to be seen, a key of `figure::scopes`.
  proc want {scope} {
    variable frame
    variable wanted $scope
    variable ends {}
    $frame.bar.scope set [dict get $::tamselbrowser::figure::scopes $scope]
    $frame.bar.depth state [expr {$scope eq "whole" ? "disabled" : "!disabled"}]
  }
  # Sets how many steps of a cone are to be seen.
  proc want_steps {number} {
    variable frame
    variable depth $number
    $frame.bar.depth set $number
  }

  # The cone about a name, or the path between two names, is to be seen.
  proc draw_about {name} {
    variable wanted
    if {$wanted eq "whole"} {want both}
    variable ends {}
    if {$name ne [shown::name]} {
      shown::choose $name picture
    } else {
      picked
    }
  }
  proc draw_path {from to} {
    variable ends [list $from $to]
    picked
  }

  # The user has asked for another picture: it is drawn, and the question told.
  proc picked {} {
    set id [shown::program]
    if {$id eq "" || ![program::is_good $id]} return
    draw_soon
    work::start say "" [namespace code [list say $id]]
  }
  proc say {id} {
    if {![program::is_good $id]} return
    program::say $id [figure::question $id [decide $id {}]]
  }
  proc scope_picked {} {
    variable frame
    want [lindex [dict keys $::tamselbrowser::figure::scopes] [$frame.bar.scope current]]
    picked
  }
  proc depth_picked {} {
    variable frame
    variable depth
    set typed [$frame.bar.depth get]
    if {![string is integer -strict $typed] || $typed < 1} {
      $frame.bar.depth set $depth
    } elseif {$typed != $depth} {
      want_steps $typed
      picked
    }
  }
  proc deepen {by} {
    variable depth
    if {$depth + $by < 1} return
    want_steps [expr {$depth + $by}]
    picked
  }

  # Opens three of the names that a count stands for.
  proc open_more {side number} {
    variable picture
    variable figure
    variable is_due
    set id [shown::program]
    set name [lindex [names] $number]
    set more [drawing::part $picture before $name]
    if {$side eq "after"} {
      program::say $id [program::question $id users $name]
      work::start graph "Drawing [program::label $id]" [namespace code [list draw_users $id $name]]
      return
    }
    program::say $id [program::question $id needs $name]
    set is_due 1
    draw_now [concat [dict get $figure extra] [lrange $more 0 2]]
  }
  # The same for those that need a name. A task.
  proc draw_users {id name} {
    variable figure
    set more [lmap user [program::ask $id "lrange \[tamsel users \$p [list $name]\] 0 [
        llength [names]]+3"] {
      if {[is_drawn $user]} continue
      set user
    }]
    draw $id [concat [dict get $figure extra] [lrange $more 0 2]]
  }

  # The name under the mouse, or "".
  proc pointed {} {
    variable canvas
    foreach tag [$canvas gettags current] {
      if {[regexp {^box:(\d+)$} $tag -> number]} {return [lindex [names] $number]}
    }
    return ""
  }
  proc clicked {} {
    variable canvas
    foreach tag [$canvas gettags current] {
      if {[regexp {^stub:(\w+):(\d+)$} $tag -> side number]} {return [open_more $side $number]}
    }
    set name [pointed]
    if {$name ni [list "" [shown::name]]} {shown::choose $name graph}
  }
  proc double_clicked {} {
    if {[pointed] ne ""} {draw_about [pointed]}
  }

  # Chooses the nearest box in a direction, from the chosen one or the centre.
  proc step {dx dy} {
    variable drawing
    variable number_of
    if {$drawing eq ""} return
    set from [expr {[is_drawn [shown::name]] ? [dict get $number_of [shown::name]] : -1}]
    set names [dict get $drawing names]
    lassign [dict get [lindex $names [expr {max(0, $from)}]] box] left top right bottom
    set x [expr {($left + $right) / 2.0}]
    set y [expr {($top + $bottom) / 2.0}]
    set best [dict get [lindex $names 0] name]
    if {$from >= 0} {set best ""}
    set least Inf
    foreach name [expr {$from < 0 ? {} : $names}] {
      lassign [dict get $name box] left top right bottom
      set along [expr {$dx * (($left + $right) / 2.0 - $x) + $dy * (($top + $bottom) / 2.0 - $y)}]
      set across [expr {abs($dy * (($left + $right) / 2.0 - $x))
        + abs($dx * (($top + $bottom) / 2.0 - $y))}]
      if {$along < 1 || $along + 2 * $across >= $least} continue
      set least [expr {$along + 2 * $across}]
      set best [dict get $name name]
    }
    if {$best ne ""} {shown::choose $best graph}
  }

  # What a box says that is too long for it.
  proc tip {} {
    variable picture
    variable canvas
    if {[string match *stub* [$canvas gettags current]]} {return "A click opens three more."}
    set name [pointed]
    if {$name eq ""} return
    lassign [dict get $picture facts $name] kind type clock uses
    set text "$name: $kind, $type[expr {$clock in {"" true} ? "" : " when $clock"}], used by $uses"
    set labels [drawing::part $picture labels $name]
    if {$labels ne ""} {append text "\nneeds besides: [join [lrange $labels 0 30] {, }]"}
    return $text
  }

  proc create_bar {bar} {
    ttk::frame $bar -padding [list [style::px 6] [style::px 3]] -style Paper.TFrame
    ttk::combobox $bar.scope -state readonly -width 15 \
      -values [dict values $::tamselbrowser::figure::scopes]
    ttk::label $bar.centre -style Paper.TLabel -font tamselbrowser.bold
    ttk::label $bar.steps -text "Steps" -style Paper.TLabel
    ttk::spinbox $bar.depth -from 1 -to 99 -width 3 -command [namespace code depth_picked]
    ttk::label $bar.caption -style Paper.TLabel -foreground [style::colour faint]
    ttk::button $bar.fit -text "Fit" -command [namespace code fit]
    # What is packed last is cut where the window is narrow.
    pack $bar.fit -side right -padx [list [style::px 6] 0]
    pack $bar.scope $bar.steps $bar.depth $bar.centre $bar.caption -side left \
      -padx [list 0 [style::px 6]]
    bind $bar.scope <<ComboboxSelected>> [namespace code scope_picked]
    bind $bar.depth <Return> [namespace code depth_picked]
    bind $bar.depth <FocusOut> [namespace code depth_picked]
  }

  # What the colours say.
  proc create_legend {legend} {
    ttk::frame $legend -padding [list [style::px 8] [style::px 2]] -style Paper.TFrame
    set number 0
    foreach {colour text} $::tamselbrowser::drawing::legend {
      set mark $legend.[incr number]
      frame $mark -width [style::px 10] -height [style::px 10] -background [style::colour $colour]
      ttk::label $mark-text -text $text -style Paper.TLabel -font tamselbrowser.small \
        -foreground [style::colour faint]
      pack $mark -side left -padx [list 0 [style::px 4]]
      pack $mark-text -side left -padx [list 0 [style::px 10]]
    }
    ttk::label $legend.more -style Paper.TLabel -font tamselbrowser.small \
      -text $::tamselbrowser::drawing::legend_more -foreground [style::colour faint]
    pack $legend.more -side left
  }

  proc create {window} {
    variable frame $window
    variable canvas $window.canvas
    variable wanted
    variable depth
    ttk::frame $frame -style Paper.TFrame
    create_bar $frame.bar
    create_legend $frame.legend
    picture::create $canvas [namespace code clicked]
    bind $canvas <Double-Button-1> [namespace code double_clicked]
    bind $canvas <Map> +[namespace code draw_now]
    foreach {key dx dy} {Left -1 0 Right 1 0 Up 0 -1 Down 0 1} {
      bind $canvas <Key-$key> [namespace code [list step $dx $dy]]
    }
    bind $canvas <Return> [namespace code {draw_about [shown::name]}]
    tip::on $canvas [namespace code tip]
    menu::on $canvas [namespace code {pointed}]
    pack $frame.bar -fill x
    pack $frame.legend -side bottom -fill x
    pack $canvas -fill both -expand 1
    want $wanted
    want_steps $depth
    foreach {event command} {program current name show_chosen draw draw_about path draw_path} {
      shown::listen $event [namespace code $command]
    }
  }
}
