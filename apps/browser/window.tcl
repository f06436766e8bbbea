# window.tcl: the main window: menus, panes, the line that tells of changed files, the status line.

namespace eval ::tamselbrowser::window {
  namespace path ::tamselbrowser

  variable changed ""     ;# the program that the notice is about, "" where there is none
  variable larger 0       ;# points that the letters are larger than the platform's
  variable types {{"EC programs" {.ec .ectext}} {"All files" *}}
  variable most_files 2000

  # The programs among files and folders, those of folders by name, as far down as there are any. Looks
  # no further where there are too many. A task.
  proc files_of {paths} {
    variable most_files
    set files {}
    set folders {}
    foreach path $paths {
      if {[file isdirectory $path]} {lappend folders $path} else {lappend files $path}
    }
    for {set i 0} {$i < [llength $folders] && [llength $files] <= $most_files} {incr i} {
      set folder [lindex $folders $i]
      lappend files {*}[lsort -dictionary [glob -nocomplain -types f -directory $folder *.ec *.ectext]]
      # A link may lead round.
      foreach below [lsort [glob -nocomplain -types d -directory $folder *]] {
        if {[file type $below] eq "directory"} {lappend folders $below}
      }
      work::pause -1 0
    }
    return $files
  }

  # Lists files, shows the first of them with a name chosen, and reads the others that were named
  # themselves. A task.
  proc open_files {paths {name ""}} {
    variable most_files
    set failures {}
    set ids {}
    set files [files_of $paths]
    foreach file [lrange $files 0 $most_files-1] {
      try {
        lappend ids [program::open $file]
      } on error {result options} {
        lappend failures [list $file $result $options]
      }
      work::pause [llength $ids] 0
    }
    state::remember [lmap id $ids {program::its $id file}]
    if {$ids ne ""} {shown::select [lindex $ids 0] $name}
    if {$failures ne ""} {
      set count [llength $failures]
      shown::tell failed [expr {$count == 1 ? "Could not open [file tail [lindex $failures 0 0]]"
        : "Could not open $count files"}] $failures
    }
    if {$ids eq "" && $failures eq ""} {shown::tell status "There are no EC programs."}
    if {[llength $files] > $most_files} {
      shown::tell status "There are more programs than $most_files; the first of them are listed."
    }
    set named [lmap path $paths {file normalize $path}]
    foreach id [lrange $ids 1 end] {
      if {[program::exists $id] && [program::its $id file] in $named} {read_ahead $id}
    }
  }
  # Reads a program that was named itself, so that what is wrong with it is told. A task.
  proc read_ahead {id} {
    while {[work::titles] ni [list {} {Opening}]} {work::rest 10}
    if {[program::its $id state] eq "listed"} {program::load $id}
  }
  proc open_soon {paths {name ""}} {
    if {$paths eq ""} return
    # A key of its own: what is being opened is not given up for more.
    work::start [list open $paths] Opening [namespace code [list open_files $paths $name]]
  }

  proc open_dialog {} {
    variable types
    open_soon [tk_getOpenFile -multiple 1 -title "Open EC programs" -filetypes $types]
  }
  proc open_folder {} {
    set folder [tk_chooseDirectory -title "Open the EC programs of a folder" -mustexist 1]
    if {$folder ne ""} {open_soon [list $folder]}
  }

  proc fill_recent {menu} {
    $menu delete 0 end
    foreach file [state::recent] {
      $menu add command -label $file -command [namespace code [list open_soon [list $file]]]
    }
    if {[$menu index end] in {none {}}} {$menu add command -label "None yet" -state disabled}
  }

  proc close_current {} {
    set id [shown::program]
    if {$id eq ""} return
    set at [lsearch -exact [program::all] $id]
    program::close $id
    shown::select [lindex [program::all] [expr {min($at, [llength [program::all]] - 1)}]]
    check_files
  }

  # Tells of the first file that changed since it was read, until the user has answered.
  proc check_files {} {
    variable changed ""
    foreach id [program::all] {
      if {![program::has_changed $id]} continue
      set changed $id
      set file [program::its $id file]
      set is_there [file exists $file]
      .notice.text configure -text [expr {$is_there ? "[file tail $file] has changed on disk."
        : "[file tail $file] is no longer where it was."}]
      .notice.reload state [expr {$is_there ? "!disabled" : "disabled"}]
      grid .notice
      return
    }
    grid remove .notice
  }
  # Reads a program's file again.
  proc reload {id} {
    if {$id eq ""} return
    program::ignore_change $id
    if {$id eq [shown::program]} {shown::read_again $id} else {shown::select $id}
    check_files
  }
  proc reload_changed {} {
    variable changed
    reload $changed
  }
  proc ignore_changed {} {
    variable changed
    if {$changed ne ""} {program::ignore_change $changed}
    check_files
  }

  # Writes the picture of the tab in sight, of the dependencies where that has none. The figure is
  # made anew for the file, without what limits the window. A task.
  proc export_to {format path} {
    set id [shown::program]
    if {$id eq "" || ![program::is_good $id]} {
      shown::tell status "There is no picture yet."
      return
    }
    set figure [view::graph::wanted_figure $id]
    if {[.body.right.tabs select] eq ".body.right.tabs.symbol"} {dict set figure scope symbol}
    try {
      figure::write $id $figure $format $path
      program::say $id [figure::command $id $figure $path]
      shown::tell status "Wrote $path"
    } trap TAMSELBROWSER {result options} {
      return -options $options $result
    } on error {result options} {
      shown::tell failed "Could not write the picture" [list [list $path $result $options]]
    }
  }
  proc export_soon {format path} {
    work::start export "Writing [file tail $path]" [namespace code [list export_to $format $path]]
  }
  proc export {format} {
    set id [shown::program]
    if {$id eq ""} return
    set path [tk_getSaveFile -title "Export the picture" -defaultextension .$format \
      -initialfile [file rootname [program::label $id]].$format]
    if {$path ne ""} {export_soon $format $path}
  }

  # Tells of long work.
  proc progress {title fraction} {
    if {$title eq ""} {
      .status.bar stop
      grid remove .status.bar .status.stop
      if {[string match "*\u2026" [.status.text cget -text]]} {.status.text configure -text ""}
      return
    }
    .status.text configure -text "$title\u2026"
    if {$fraction < 0} {
      .status.bar configure -mode indeterminate
      .status.bar step 4
    } else {
      .status.bar configure -mode determinate -value [expr {100 * $fraction}]
    }
    grid .status.bar .status.stop
  }
  proc status {text} {
    .status.text configure -text $text
  }

  # Says in the title which program is shown, and in the tab how much is wrong with it.
  proc current {id} {
    wm title . [expr {$id eq "" ? "Tamsel" : "[program::label $id] \u2013 Tamsel"}]
    # What it says may be about another.
    status ""
    .body.right.below tab 1 -text "Findings"
  }
  proc found {id} {
    if {$id ne [shown::program]} return
    .body.right.below tab 1 -text "Findings ([program::severe $id])"
    set words [view::programs::finding_counts $id]
    if {$words ne "" && [program::its $id trouble] eq ""} {
      status "[program::label $id]: $words (F8 leads from one to the next)"
    }
  }

  # Brings a view into sight.
  proc look {what} {
    set tabs [expr {$what in {graph symbol source} ? ".body.right.tabs" : ".body.right.below"}]
    $tabs select $tabs.$what
  }
  # Brings one into sight, and the keys to it.
  proc go_to {what widget} {
    if {$what ne ""} {look $what}
    focus $widget
    if {[winfo class $widget] in {TEntry Entry}} {$widget selection range 0 end}
  }

  # Makes all letters larger or smaller.
  proc resize_letters {by} {
    variable larger
    set larger [expr {$by == 0 ? 0 : min(24, max(-4, $larger + $by))}]
    style::set_fonts $larger
    view::table::size_columns
    event generate .body.left.table.rows.widget <Configure>
    view::graph::fit
  }

  proc help {} {
    style::dialog .help "Tamsel browser" "What mouse and keys do" {ttk::label .help.what -text [join {
      {Tree: choose a program, one kind of its names, or its findings.}
      {Table: type a part of a name, or a pattern with * and ?; Return goes to the first; a heading sorts.}
      {Dependencies: click a name for its equation; double click or Return for its cone; +3 opens three more.}
      {In it arrows lead from box to box, with Shift they scroll; + and - zoom, 0 is full size, Home all.}
      {Wheel to zoom, drag to move. A right click on a name, or Shift+F10, has what can be done with it.}
      {Equation, source and lists: click a name to choose it. Alt+Left and Alt+Right go back and forward.}
      {F8, Shift+F8: the next and the previous finding. Escape: stop what takes long.}
      {Ctrl+1 to 6: the views. Ctrl+L: filter. Ctrl+F: find. Ctrl+E: type of an expression. F6: next pane.}
      {Ctrl+], Ctrl+[: more and fewer steps. Ctrl++, Ctrl+-, Ctrl+0: larger, smaller, usual letters.}
    } \n]}
  }

  # Adds entries to a menu: rows of {LABEL KEY SCRIPT}, "-" for a line. Keys work in all the window.
  proc add_entries {menu rows} {
    foreach {label key script} $rows {
      if {$label eq "-"} {
        $menu add separator
        continue
      }
      $menu add command -label $label -command $script -accelerator $key
      if {$key ne ""} {
        set key [string map {Ctrl+ Control- Alt+ Alt- Shift+ Shift- \] bracketright \[ bracketleft} $key]
        regsub -- {-([1-9])$} $key {-Key-\1} key
        bind . <$key> "$script; break"
      }
    }
  }

  proc create_file_menu {} {
    menu .menu.file.recent -tearoff 0 -postcommand [namespace code {fill_recent .menu.file.recent}]
    menu .menu.file.export -tearoff 0
    foreach format {svg png pdf dot json} {
      .menu.file.export add command -label [string toupper $format]\u2026 \
        -command [namespace code [list export $format]]
    }
    add_entries .menu.file [list Open\u2026 Ctrl+o [namespace code open_dialog] \
      "Open folder\u2026" Ctrl+Shift+O [namespace code open_folder]]
    .menu.file add cascade -label "Open recent" -menu .menu.file.recent
    add_entries .menu.file [list \
      Reload Ctrl+r [namespace code {reload [shown::program]}] \
      Close Ctrl+w [namespace code close_current]]
    .menu.file add cascade -label "Export the picture" -menu .menu.file.export
    add_entries .menu.file [list - {} {} Quit Ctrl+q [namespace code quit]]
  }

  proc create_view_menu {} {
    set number 0
    foreach {what label} {
      graph Dependencies symbol "Block symbol" source Source name Name findings Findings log "Tcl lines"
    } {
      add_entries .menu.view [list $label Ctrl+[incr number] [namespace code [list look $what]]]
    }
    add_entries .menu.view [list - {} {} \
      "More steps" Ctrl+\] {::tamselbrowser::view::graph::deepen 1} \
      "Fewer steps" Ctrl+\[ {::tamselbrowser::view::graph::deepen -1} \
      - {} {} \
      "Larger letters" Ctrl+plus [namespace code {resize_letters 1}] \
      "Smaller letters" Ctrl+minus [namespace code {resize_letters -1}] \
      "Usual letters" Ctrl+0 [namespace code {resize_letters 0}]]
    bind . <Control-equal> "[namespace code {resize_letters 1}]; break"
  }

  proc create_go_menu {} {
    add_entries .menu.go [list \
      Back Alt+Left {::tamselbrowser::shown::go -1} \
      Forward Alt+Right {::tamselbrowser::shown::go 1} \
      - {} {} \
      "Next finding" F8 {::tamselbrowser::view::findings::go 1} \
      "Previous finding" Shift+F8 {::tamselbrowser::view::findings::go -1} \
      - {} {} \
      "Filter names" Ctrl+l [namespace code {go_to "" .body.left.table.filter}] \
      "Find in the source" Ctrl+f [namespace code {go_to source .body.right.tabs.source.bar.wanted}] \
      "Type of an expression" Ctrl+e [namespace code {go_to "" .expression.line}] \
      "Picture" Ctrl+g [namespace code {go_to graph .body.right.tabs.graph.canvas}] \
      "Programs" Ctrl+t [namespace code {go_to "" .body.left.programs.widget}]]
    bind . <F6> "[namespace code next_pane]; break"
  }
  # The keys go to the next of the large parts.
  proc next_pane {} {
    set panes {
      .body.left.programs .body.left.programs.widget  .body.left.table .body.left.table.rows.widget
      .body.right.tabs .body.right.tabs  .body.right.below .body.right.below  .expression .expression.line
    }
    set at [lsearch -exact [lmap pane [dict keys $panes] {string match $pane* [focus]}] 1]
    focus [lindex [dict values $panes] [expr {($at + 1) % [dict size $panes]}]]
  }

  proc create_menus {} {
    menu .menu -background [style::colour frame] -borderwidth 0
    foreach name {file view go help} {
      menu .menu.$name -tearoff 0
      .menu add cascade -label [string totitle $name] -menu .menu.$name -underline 0
    }
    create_file_menu
    create_view_menu
    create_go_menu
    add_entries .menu.help [list "What mouse and keys do" F1 [namespace code help]]
    bind . <Escape> ::tamselbrowser::work::stop
    . configure -menu .menu
  }

  proc create_notice {} {
    ttk::frame .notice -style Notice.TFrame -padding [list [style::px 10] [style::px 4]]
    ttk::label .notice.text -style Notice.TLabel
    ttk::button .notice.reload -text "Reload" -command [namespace code reload_changed]
    ttk::button .notice.ignore -text "Ignore" -command [namespace code ignore_changed]
    pack .notice.text -side left
    pack .notice.ignore .notice.reload -side right -padx [list [style::px 8] 0]
  }

  # Makes a notebook of views: NAME LABEL and so on.
  proc create_views {tabs views} {
    ttk::notebook $tabs
    ttk::notebook::enableTraversal $tabs
    foreach {name label} $views {
      view::${name}::create $tabs.$name
      $tabs add $tabs.$name -text $label
    }
  }
  proc create_body {} {
    ttk::panedwindow .body -orient horizontal
    ttk::panedwindow .body.left -orient vertical
    view::programs::create .body.left.programs
    view::table::create .body.left.table
    .body.left add .body.left.programs
    .body.left add .body.left.table -weight 1
    ttk::panedwindow .body.right -orient vertical
    create_views .body.right.tabs {graph Dependencies symbol "Block symbol" source Source}
    create_views .body.right.below {name Name findings Findings log "Tcl lines"}
    .body.right add .body.right.tabs -weight 1
    .body.right add .body.right.below
    .body add .body.left
    .body add .body.right -weight 1
  }

  proc create_status {} {
    ttk::frame .status -padding [list [style::px 10] 0 [style::px 10] [style::px 3]]
    ttk::label .status.text -style Faint.TLabel -width 20
    ttk::progressbar .status.bar -length [style::px 160]
    ttk::button .status.stop -text "Stop" -command ::tamselbrowser::work::stop
    grid .status.text .status.bar .status.stop -sticky ew -padx [list 0 [style::px 8]]
    grid columnconfigure .status 0 -weight 1
    # As high with the button as without.
    grid rowconfigure .status 0 -minsize [winfo reqheight .status.stop]
    grid remove .status.bar .status.stop
  }

  # The size of the window and the places of its sashes, as they were kept where they fit.
  proc place {} {
    set width [expr {min([style::px 1280], [winfo screenwidth .] - 20)}]
    set height [expr {min([style::px 800], [winfo screenheight .] - 80)}]
    regexp {^(\d+)x(\d+)} [state::look geometry {^\d+x\d+$} ${width}x$height] -> its_width its_height
    wm geometry . [expr {min($its_width, [winfo screenwidth .])}]x[expr {
      min($its_height, [winfo screenheight .])}]
    wm minsize . [expr {min([style::px 640], $width)}] [expr {min([style::px 420], $height)}]
    update idletasks
    set room [winfo height .body]
    foreach {pane default} [list .body [expr {$width * 3 / 10}] .body.left [expr {$room * 3 / 10}] \
      .body.right [expr {$room - min([style::px 150], $room * 2 / 5)}]] {
      set key sash[string map {. _} $pane]
      set limit [expr {([$pane cget -orient] eq "vertical" ? [winfo height $pane] : [winfo width $pane])
        - [style::px 40]}]
      $pane sashpos 0 [expr {min([state::look $key {^\d+$} $default], max(40, $limit))}]
      update idletasks
    }
  }
  # Keeps them, and ends.
  proc quit {} {
    variable larger
    set look [dict create geometry [regsub {\+.*} [wm geometry .] ""] larger $larger]
    foreach pane {.body .body.left .body.right} {
      dict set look sash[string map {. _} $pane] [$pane sashpos 0]
    }
    state::keep_look $look
    destroy .
  }

  # Makes the main window.
  proc create {} {
    wm title . "Tamsel"
    create_menus
    create_notice
    create_body
    view::expression::create .expression
    create_status
    foreach {window row} {.notice 0 .body 1 .expression 2 .status 3} {
      grid $window -row $row -column 0 -sticky nsew
    }
    grid configure .body -padx [style::px 6] -pady [list [style::px 4] 0]
    grid remove .notice
    grid rowconfigure . 1 -weight 1
    grid columnconfigure . 0 -weight 1
    foreach {event command} {
      progress progress status status program current findings found look look
    } {
      shown::listen $event [namespace code $command]
    }
    shown::listen place [list apply {{line column} {::tamselbrowser::window::look source}}]
    shown::listen failed ::tamselbrowser::report::failed
    place
    bind . <FocusIn> [namespace code {if {"%W" eq "."} check_files}]
    bind . <Destroy> {if {"%W" eq "."} ::tamselbrowser::answers::finish_all}
    wm protocol . WM_DELETE_WINDOW [namespace code quit]
    shown::select ""
  }
}
