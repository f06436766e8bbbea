# view-graph.tcl: the dependency picture.
#
# A box is a name; under it stand its type and the names that are labels for it. A wire runs from
# what is needed to what needs it, dashed where only the past is needed. A click colours what the
# name needs and what needs it, near and, paler, far; a double click draws the cone about it.

namespace eval ::tamselbrowser::view::graph {
  namespace path {::tamselbrowser::view ::tamselbrowser}

  variable frame ""
  variable canvas ""
  variable centre ""         ;# the name the cone is about; "" for the whole program
  variable picture {}        ;# what is drawn, see cone::picture
  variable places {}         ;# name -> {LEFT TOP RIGHT BOTTOM}, at scale 1
  variable wires {}          ;# list of {FROM TO DELAYED POINTS}, at scale 1
  variable texts {}          ;# name -> {NAME DETAIL} as they are drawn
  variable number_of {}      ;# name -> number of its items' tag
  variable is_due 0          ;# whether the picture is to be drawn when it comes into sight
  variable widest 160        ;# pixels of a text in a box
  variable wanted both       ;# what the user wants to see, a key of `scopes`
  variable depth 2           ;# and how many steps of it
  variable small 40          ;# a program of no more names is drawn whole while none is chosen
  variable scopes {
    both "Needs and users"  back "What it needs"  forth "What needs it"  whole "Whole program"
  }

  proc is_drawn {name} {
    variable places
    dict exists $places $name
  }

  # The texts of a box: its name, and its type with the labels; shortened.
  proc box_texts {id name labels} {
    variable widest
    set detail [program::fact $id type $name]
    set clock [program::fact $id clock $name]
    if {$clock ne ""} {append detail " when $clock"}
    if {$labels ne ""} {append detail "  ← [join $labels {, }]"}
    list [style::shortened $name tamselbrowser.name $widest] \
      [style::shortened $detail tamselbrowser.detail $widest]
  }

  # Measures the boxes: name -> {WIDTH HEIGHT}; fills `texts`.
  proc measure {id} {
    variable picture
    variable texts {}
    set height [expr {[font metrics tamselbrowser.name -linespace]
      + [font metrics tamselbrowser.detail -linespace] + 10}]
    set boxes {}
    foreach name [dict get $picture items] {
      set labels {}
      if {[dict exists $picture labels $name]} {set labels [dict get $picture labels $name]}
      set its_texts [box_texts $id $name $labels]
      dict set texts $name $its_texts
      lassign $its_texts title detail
      set width [expr {max([font measure tamselbrowser.name $title],
        [font measure tamselbrowser.detail $detail])}]
      dict set boxes $name [list [expr {max(64, $width + 20)}] $height]
    }
    return $boxes
  }

  # The curve of a wire from a box to itself, a loop on top of it.
  proc loop {box} {
    lassign $box left top right
    set x [expr {$right - 22}]
    set y [expr {$top - 15}]
    list [expr {$x - 9}] $top [expr {$x - 12}] $y [expr {$x + 12}] $y [expr {$x + 9}] $top
  }

  proc draw_wires {} {
    variable canvas
    variable places
    variable wires
    set number 0
    foreach wire $wires {
      lassign $wire from to delayed points
      if {$points eq ""} {set points [loop [dict get $places $to]]}
      $canvas create line {*}$points -smooth raw -arrow last \
        -arrowshape [picture::arrowhead 1.0] \
        -dash [expr {$delayed ? {5 3} : {}}] -tags [list arrow wire:$number]
      incr number
    }
  }

  # A count below a corner says that a box has wires to names that are not drawn.
  proc draw_stub {x y corner count} {
    variable canvas
    if {$count == 0} return
    $canvas create text $x $y -text +$count -tags stub -anchor $corner \
      -font tamselbrowser.detail -fill [style::colour faint]
  }

  proc draw_boxes {} {
    variable canvas
    variable picture
    variable places
    variable texts
    variable number_of {}
    dict for {name box} $places {
      set tag box:[dict size $number_of]
      dict set number_of $name [dict size $number_of]
      lassign $box left top right bottom
      picture::box $canvas {*}$box 6 -tags [list box $tag $tag:shape]
      lassign [dict get $texts $name] title detail
      set x [expr {$left + 10}]
      $canvas create text $x [expr {$top + 4}] -anchor nw -text $title \
        -font tamselbrowser.name -tags [list box title $tag $tag:title]
      $canvas create text $x [expr {$bottom - 5}] -anchor sw -text $detail \
        -font tamselbrowser.detail -tags [list box detail $tag $tag:detail]
      lassign [dict get $picture hidden $name] before after
      draw_stub [expr {$left + 3}] [expr {$bottom + 1}] nw $before
      draw_stub [expr {$right - 3}] [expr {$bottom + 1}] ne $after
    }
  }

  # The drawn names that are reached from one, `way` being program::needs or program::users: a
  # dictionary name -> steps, the name itself apart.
  proc reached {id name way} {
    set steps [dict create $name 0]
    set todo [list $name]
    for {set i 0} {$i < [llength $todo]} {incr i} {
      set at [lindex $todo $i]
      foreach other [dict keys [program::$way $id $at]] {
        if {[dict exists $steps $other] || ![is_drawn $other]} continue
        dict set steps $other [expr {[dict get $steps $at] + 1}]
        lappend todo $other
      }
    }
    dict remove $steps $name
  }

  # What a drawn name is to the chosen one: chosen, needed, needed_far, using, using_far or "".
  proc role {name chosen needed using} {
    if {$name eq $chosen} {return chosen}
    set nearest 1000000
    set role ""
    foreach side {needed using} {
      if {![dict exists [set $side] $name]} continue
      set steps [dict get [set $side] $name]
      if {$steps >= $nearest} continue
      set nearest $steps
      set role [expr {$steps == 1 ? $side : "${side}_far"}]
    }
    return $role
  }

  # Gives a box the look of its role.
  proc colour_box {number kind role} {
    variable canvas
    # Fill, edge, width of the edge, colours of the two texts.
    switch -- $role {
      "" {set look [list $kind ${kind}_edge 1 ink faint]}
      chosen {set look {chosen chosen 2 paper line}}
      needed - using {set look [list ${role}_fill $role 2 ink faint]}
      default {set look [list $kind $role 1.5 ink faint]}
    }
    lassign $look fill edge width ink faint
    $canvas itemconfigure box:$number:shape -width $width \
      -fill [style::colour $fill] -outline [style::colour $edge]
    $canvas itemconfigure box:$number:title -fill [style::colour $ink]
    $canvas itemconfigure box:$number:detail -fill [style::colour $faint]
  }

  # Gives a wire the look of what it is to the chosen name, "" if none is chosen.
  proc colour_wire {number wire chosen needed using} {
    variable canvas
    lassign $wire from to
    set look {wire_dim 1}
    if {$chosen eq ""} {
      set look {wire 1}
    } elseif {$to eq $chosen} {
      set look {needed 2}
    } elseif {$from eq $chosen} {
      set look {using 2}
    } elseif {[dict exists $needed $from] && [dict exists $needed $to]} {
      set look {needed_far 1}
    } elseif {[dict exists $using $from] && [dict exists $using $to]} {
      set look {using_far 1}
    }
    lassign $look colour width
    $canvas itemconfigure wire:$number -width $width -fill [style::colour $colour]
    if {$width > 1} {$canvas raise wire:$number}
  }

  # Colours everything for a name, which may be one that is not drawn, or "".
  proc colour {name} {
    variable canvas
    variable wires
    variable number_of
    set id [shown::program]
    set needed {}
    set using {}
    if {[is_drawn $name]} {
      set needed [reached $id $name needs]
      set using [reached $id $name users]
    } else {
      set name ""
    }
    dict for {box number} $number_of {
      colour_box $number [program::fact $id kind $box] \
        [role $box $name $needed $using]
    }
    set number 0
    foreach wire $wires {
      colour_wire $number $wire $name $needed $using
      incr number
    }
    # The coloured wires stand above the others, and the boxes above all.
    $canvas raise box
  }

  # Says what the picture shows, and how much it leaves out.
  proc caption {id} {
    variable frame
    variable centre
    variable picture
    set shown [llength [dict get $picture items]]
    set all [llength [program::details $id names]]
    set text [expr {$shown == $all ? "all $all names" : "$shown of $all names"}]
    if {$shown >= $::tamselbrowser::cone::most_items && $shown < $all} {
      append text [expr {$centre eq "" ? ", outputs first" : ", the nearest"}]
    }
    $frame.bar.caption configure -text $text
    $frame.bar.centre configure -text [expr {$centre eq "" ? "" : "of [style::shortened \
      $centre tamselbrowser.bold 128p]"}]
  }

  # The output among the first ones whose cone is the largest; "" where there is none.
  proc richest_output {id} {
    variable depth
    set richest ""
    set most 0
    foreach name [lrange [program::names_of $id output] 0 19] {
      set size [dict size [cone::collect $id $name $depth needs]]
      if {$size > $most} {lassign [list $size $name] most richest}
    }
    return $richest
  }

  # The name whose cone is to be drawn; "" for the whole. Where nothing is chosen, a small program is
  # drawn whole, of a large one a cone that shows something.
  proc wanted_centre {id} {
    variable wanted
    variable small
    if {$wanted eq "whole"} {return ""}
    set name [shown::name]
    if {$name eq "" && [llength [program::details $id names]] > $small} {return [richest_output $id]}
    return $name
  }

  # The names to draw.
  proc items {id} {
    variable centre
    variable wanted
    variable depth
    if {$centre eq ""} {return [cone::whole $id]}
    cone::about $id $centre $depth [dict get {both {needs users} back needs forth users} $wanted]
  }

  # Shows the picture; where all of it would be too small to read, the part about the chosen name.
  proc show_readable {} {
    variable canvas
    variable number_of
    variable centre
    set tag all
    foreach name [list $centre [shown::name]] {
      if {[dict exists $number_of $name]} {set tag box:[dict get $number_of $name]}
    }
    picture::fit $canvas 1.0 $tag 0.7
  }

  # Draws the picture of a program. A task.
  proc draw {id} {
    variable canvas
    variable centre
    variable picture
    variable places
    variable wires
    variable number_of {}
    set centre [wanted_centre $id]
    set picture [cone::picture $id [items $id] $centre]
    picture::reset $canvas
    # Nothing is drawn while the places are sought, and clicks may come meanwhile.
    set places {}
    set wires {}
    lassign [layout::place [measure $id] [dict get $picture edges]] new_places wires
    set places $new_places
    draw_wires
    draw_boxes
    caption $id
    colour [shown::name]
    show_readable
  }

  # Draws soon, or when the canvas comes into sight.
  proc draw_soon {} {
    variable canvas
    variable is_due 1
    if {[winfo viewable $canvas]} draw_now
  }
  proc draw_now {} {
    variable is_due
    set id [shown::program]
    if {!$is_due || $id eq "" || ![program::is_read $id]} return
    set is_due 0
    work::start graph "Drawing [program::label $id]" \
      [namespace code [list draw $id]]
  }

  # Another program is current, or the current one was read anew.
  proc current {id} {
    variable canvas
    variable frame
    variable places {}
    variable wires {}
    variable number_of {}
    work::cancel graph
    picture::reset $canvas
    $frame.bar.caption configure -text ""
    $frame.bar.centre configure -text ""
    if {[program::all] eq ""} {
      $canvas create text 0 0 -text "Open an EC program: File, Open… or Ctrl+O" \
        -font tamselbrowser.heading -fill [style::colour faint]
      picture::fit $canvas
    }
  }

  # A name was chosen. The picture stays as it is where that was done in it, or it shows everything.
  proc show_chosen {name origin} {
    variable wanted
    if {[is_drawn $name] && ($origin eq "graph" || $wanted eq "whole")} {
      colour $name
      return
    }
    if {$name ne "" && $wanted eq "whole"} {want both}
    draw_soon
  }

  # Sets what is to be seen, a key of `scopes`.
  proc want {scope} {
    variable frame
    variable scopes
    variable wanted $scope
    $frame.bar.scope set [dict get $scopes $scope]
    $frame.bar.depth state [expr {$scope eq "whole" ? "disabled" : "!disabled"}]
  }

  # Tells which command draws the same.
  proc say {{path ""}} {
    variable centre
    variable wanted
    variable depth
    set name [expr {$wanted eq "whole" ? [shown::name] : $centre}]
    set options [expr {$name eq "" ? "" : [list --name $name]}]
    log::picture [shown::program] [list {*}$options --show $wanted --steps $depth] $path
  }
  proc fit_clicked {} {
    variable canvas
    picture::fit $canvas
    say
  }

  # The user has asked for another picture.
  proc picked {} {
    variable centre
    set id [shown::program]
    if {$id eq "" || ![program::is_read $id]} return
    set centre [wanted_centre $id]
    say
    draw_soon
  }
  # Sets how many steps of a cone are to be seen.
  proc want_steps {number} {
    variable frame
    variable depth $number
    $frame.bar.depth set $number
  }
  proc scope_picked {} {
    variable frame
    variable scopes
    want [lindex [dict keys $scopes] [$frame.bar.scope current]]
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

  # The name under the mouse, or "".
  proc pointed {} {
    variable canvas
    variable number_of
    foreach tag [$canvas gettags current] {
      if {[regexp {^box:(\d+)$} $tag -> number]} {return [lindex [dict keys $number_of] $number]}
    }
    return ""
  }
  proc clicked {} {
    set name [pointed]
    if {$name in [list "" [shown::name]]} return
    set id [shown::program]
    log::name $id $name
    log::neighbours $id $name
    shown::choose $name graph
  }
  proc double_clicked {} {
    variable wanted
    if {[pointed] eq ""} return
    if {$wanted eq "whole"} {want both}
    picked
  }

  proc create_bar {bar} {
    variable scopes
    ttk::frame $bar -padding {8 6} -style Paper.TFrame
    ttk::combobox $bar.scope -state readonly -width 16 -values [dict values $scopes]
    ttk::label $bar.centre -style Paper.TLabel -font tamselbrowser.bold
    ttk::label $bar.steps -text "Steps" -style Paper.TLabel
    ttk::spinbox $bar.depth -from 1 -to 99 -width 3 -command [namespace code depth_picked]
    ttk::label $bar.caption -style Paper.TLabel -foreground [style::colour faint]
    ttk::button $bar.fit -text "Fit" -command [namespace code fit_clicked]
    ttk::menubutton $bar.export -text "Export" -menu $bar.export.menu
    menu $bar.export.menu -tearoff 0
    foreach format {SVG PNG PDF} {
      $bar.export.menu add command -label "$format…" \
        -command [list ::tamselbrowser::window::export [string tolower $format]]
    }
    # What is packed last is cut where the window is narrow.
    pack $bar.export $bar.fit -side right -padx {8 0}
    pack $bar.scope $bar.steps $bar.depth $bar.centre $bar.caption -side left -padx {0 8}
    bind $bar.scope <<ComboboxSelected>> [namespace code scope_picked]
    bind $bar.depth <Return> [namespace code depth_picked]
    bind $bar.depth <FocusOut> [namespace code depth_picked]
  }

  # What the colours say.
  proc create_legend {legend} {
    ttk::frame $legend -padding {8 4} -style Paper.TFrame
    set number 0
    foreach {colour text} {
      input_edge input  output_edge output  local_edge local
      needed "is needed"  using "needs it"
    } {
      set mark $legend.[incr number]
      frame $mark -width 11 -height 11 -background [style::colour $colour]
      ttk::label $mark-text -text $text -style Paper.TLabel -font tamselbrowser.small \
        -foreground [style::colour faint]
      pack $mark -side left -padx {0 5}
      pack $mark-text -side left -padx {0 14}
    }
    ttk::label $legend.more -style Paper.TLabel -font tamselbrowser.small -text \
      "dashed: through pre     ← instead of wires     +3 not drawn" \
      -foreground [style::colour faint]
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
    pack $frame.bar -fill x
    pack $frame.legend -side bottom -fill x
    pack $canvas -fill both -expand 1
    want $wanted
    want_steps $depth
    shown::listen program [namespace code current]
    shown::listen name [namespace code show_chosen]
  }
}
