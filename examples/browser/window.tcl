# window.tcl: the main window: menus, panes, the line that tells of changed files, the status line.

namespace eval ::tamselbrowser::window {
  namespace path ::tamselbrowser

  variable shows_log 1
  variable changed ""     ;# the program that the notice is about, "" where there is none
  variable types {{"EC programs" {.ec .ectext}} {"All files" *}}

  # Opens files, and shows the first that opens. Those that fail are told of together. A task.
  proc open_files {files} {
    set failures {}
    set first ""
    set done 0
    foreach file $files {
      try {
        set id [program::open $file]
        if {$first eq ""} {set first $id}
      } on error {result options} {
        lappend failures [list $file $result $options]
      }
      work::pause [incr done] [llength $files]
    }
    if {$first ne ""} {shown::select $first}
    if {$failures ne ""} {
      set count [llength $failures]
      shown::tell failed [expr {$count == 1
        ? "Could not open [file tail [lindex $failures 0 0]]"
        : "Could not open $count files"}] $failures
    }
  }
  proc open_soon {files} {
    if {$files eq ""} return
    # A key of its own: what is being opened is not given up for more.
    work::start [list open $files] Opening [namespace code [list open_files $files]]
  }

  proc open_dialog {} {
    variable types
    open_soon [tk_getOpenFile -multiple 1 -title "Open EC programs" -filetypes $types]
  }

  proc fill_recent {menu} {
    $menu delete 0 end
    foreach file [files::recent] {
      $menu add command -label $file -command [namespace code [list open_soon [list $file]]]
    }
    if {[$menu index end] in {none {}}} {$menu add command -label "None yet" -state disabled}
  }

  proc close_current {} {
    set id [shown::program]
    if {$id eq ""} return
    program::close $id
    shown::select [lindex [program::all] 0]
    check_files
  }

  # Reads a program's file again.
  proc reload {id} {
    if {$id eq ""} return
    try {
      program::reload $id
      shown::select $id
      shown::tell status "[program::label $id] was read again."
    } on error {result options} {
      set file [program::file_of $id]
      shown::tell failed "Could not reload [file tail $file]; the program stays as it was" \
        [list [list $file $result $options]]
    }
    check_files
  }

  # Tells of the first file that changed since it was read, until the user has answered.
  proc check_files {} {
    variable changed ""
    foreach id [program::all] {
      if {![program::has_changed $id]} continue
      set changed $id
      set file [program::file_of $id]
      set is_there [file exists $file]
      .notice.text configure -text [expr {$is_there ? "[file tail $file] has changed on disk."
        : "[file tail $file] is no longer where it was."}]
      .notice.reload state [expr {$is_there ? "!disabled" : "disabled"}]
      grid .notice
      return
    }
    grid remove .notice
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

  # Writes a picture: of the tab in sight as SVG, of the dependencies as PNG or PDF.
  proc export_to {format path} {
    set tab [.body.right.tabs select]
    set is_symbol [expr {$format eq "svg" && $tab eq ".body.right.tabs.symbol"}]
    set canvas [expr {$is_symbol ? $::tamselbrowser::view::symbol::canvas
      : $::tamselbrowser::view::graph::canvas}]
    try {
      export::write $canvas $format $path
      shown::tell status "Wrote $path"
      view::[expr {$is_symbol ? "symbol" : "graph"}]::say $path
    } on error {result options} {
      shown::tell failed "Could not write the picture" \
        [list [list $path $result $options]]
    }
  }
  proc export {format} {
    set id [shown::program]
    if {$id eq ""} return
    set path [tk_getSaveFile -title "Export the picture" -defaultextension .$format \
      -initialfile [file rootname [program::label $id]].$format]
    if {$path ne ""} {export_to $format $path}
  }

  proc tab_changed {} {
    view::[lindex [split [.body.right.tabs select] .] end]::say
  }

  proc progress {title fraction} {
    if {$title eq ""} {
      grid remove .status.bar .status.stop
      if {[string match "*…" [.status.text cget -text]]} {.status.text configure -text ""}
      return
    }
    .status.text configure -text "$title…"
    .status.bar configure -value [expr {100 * $fraction}]
    grid .status.bar .status.stop
  }
  proc status {text} {
    .status.text configure -text $text
  }

  proc current {id} {
    wm title . [expr {$id eq "" ? "Tamsel" : "[program::label $id] – Tamsel"}]
  }

  proc toggle_log {} {
    variable shows_log
    if {$shows_log} {grid .log} else {grid remove .log}
  }

  proc help {} {
    style::dialog .help "Tamsel browser" "What the mouse does" {ttk::label .help.what -text [join {
      {Tree: choose a program, or one kind of its names.}
      {Table: type a part of a name, or a pattern with * and ?; click a heading to sort.}
      {Dependencies: click a name for its equation; double click to draw its cone.}
      {Wheel to zoom, drag to move, Fit to see it all.}
      {Equation: click a name in it to choose that one.}
      {Source: click a name to jump to its equation, Back to return.}
      {Expression: type one; its type, or what is wrong with it, stands beside it.}
    } \n]}
  }

  # Adds entries to a menu: rows of {LABEL KEY SCRIPT}, "-" for a line. Keys work in all the window.
  proc add_entries {menu rows} {
    foreach {label key script} $rows {
      if {$label eq "-"} {
        $menu add separator
        continue
      }
      $menu add command -label $label -command $script -accelerator [string map {Key- ""} $key]
      if {$key ne ""} {
        bind . <[string map {Ctrl Control + -Key-} $key]> "$script; break"
      }
    }
  }

  proc create_menus {} {
    menu .menu -background [style::colour frame] -borderwidth 0
    foreach name {file view help} {
      menu .menu.$name -tearoff 0
      .menu add cascade -label [string totitle $name] -menu .menu.$name -underline 0
    }
    menu .menu.file.recent -tearoff 0 \
      -postcommand [namespace code {fill_recent .menu.file.recent}]
    add_entries .menu.file [list \
      Open… Ctrl+o [namespace code open_dialog]]
    .menu.file add cascade -label "Open recent" -menu .menu.file.recent
    add_entries .menu.file [list \
      Reload Ctrl+r [namespace code {reload [shown::program]}] \
      Close Ctrl+w [namespace code close_current] \
      - {} {} \
      "Export as SVG…" {} [namespace code {export svg}] \
      "Export as PNG…" {} [namespace code {export png}] \
      "Export as PDF…" {} [namespace code {export pdf}] \
      - {} {} \
      Quit Ctrl+q {destroy .}]
    set number 0
    foreach {tab label} {graph Dependencies symbol "Block symbol" source Source} {
      add_entries .menu.view [list $label Ctrl+[incr number] \
        [list .body.right.tabs select .body.right.tabs.$tab]]
    }
    add_entries .menu.view [list \
      - {} {} \
      "Filter names" Ctrl+l {focus .body.left.table.filter} \
      "Find in the source" Ctrl+f \
        {.body.right.tabs select .body.right.tabs.source; focus .body.right.tabs.source.bar.wanted}]
    .menu.view add checkbutton -label "Show the Tcl commands" \
      -variable [namespace current]::shows_log -command [namespace code toggle_log]
    add_entries .menu.help [list "What the mouse does" F1 [namespace code help]]
    . configure -menu .menu
  }

  proc create_notice {} {
    ttk::frame .notice -style Notice.TFrame -padding {10 5}
    ttk::label .notice.text -style Notice.TLabel
    ttk::button .notice.reload -text "Reload" -command [namespace code reload_changed]
    ttk::button .notice.ignore -text "Ignore" -command [namespace code ignore_changed]
    pack .notice.text -side left
    pack .notice.ignore .notice.reload -side right -padx {8 0}
  }

  proc create_body {} {
    ttk::panedwindow .body -orient horizontal
    ttk::panedwindow .body.left -orient vertical
    view::programs::create .body.left.programs
    view::table::create .body.left.table
    .body.left add .body.left.programs
    .body.left add .body.left.table -weight 1
    ttk::panedwindow .body.right -orient vertical
    set tabs [ttk::notebook .body.right.tabs]
    view::graph::create $tabs.graph
    view::symbol::create $tabs.symbol
    view::source::create $tabs.source
    $tabs add $tabs.graph -text "Dependencies"
    $tabs add $tabs.symbol -text "Block symbol"
    $tabs add $tabs.source -text "Source"
    bind $tabs <<NotebookTabChanged>> [namespace code tab_changed]
    view::equation::create .body.right.equation
    .body.right add $tabs -weight 1
    .body.right add .body.right.equation
    .body add .body.left
    .body add .body.right -weight 1
  }

  proc create_status {} {
    ttk::frame .status -padding {10 0 10 6}
    ttk::label .status.text -style Faint.TLabel
    ttk::progressbar .status.bar -length 180
    ttk::button .status.stop -text "Stop" -command ::tamselbrowser::work::stop
    grid .status.text .status.bar .status.stop -sticky ew -padx {0 8}
    grid columnconfigure .status 0 -weight 1
    # As high with the button as without.
    grid rowconfigure .status 0 -minsize [expr {[font metrics TkDefaultFont -linespace] + 12}]
    grid remove .status.bar .status.stop
  }

  # Makes the main window.
  proc create {} {
    wm title . "Tamsel"
    wm geometry . [expr {min(1280, [winfo screenwidth .] - 40)}]x[expr {
      min(800, [winfo screenheight .] - 120)}]
    wm minsize . 720 480
    create_menus
    create_notice
    create_body
    view::expression::create .expression
    view::log::create .log
    create_status
    foreach {window row} {.notice 0 .body 1 .expression 2 .log 3 .status 4} {
      grid $window -row $row -column 0 -sticky nsew
    }
    grid configure .body -padx 10 -pady {8 2}
    grid remove .notice
    grid rowconfigure . 1 -weight 1
    grid columnconfigure . 0 -weight 1
    foreach {event command} {progress progress status status program current} {
      shown::listen $event [namespace code $command]
    }
    shown::listen failed ::tamselbrowser::report::failed
    # In a narrow window the names leave room for the picture.
    update idletasks
    .body sashpos 0 [expr {min([.body sashpos 0], [winfo width .] * 3 / 8)}]
    bind . <FocusIn> [namespace code {if {"%W" eq "."} check_files}]
    shown::select ""
  }
}
