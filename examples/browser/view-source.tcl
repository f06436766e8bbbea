# view-source.tcl: the Quarel text, or the EC file, with coloured words, search and jumps.
#
# Lines are coloured when they come into sight; comments, which can span lines, when the text is put
# in. A click on a name shows its equation and chooses it.

namespace eval ::tamselbrowser::view::source {
  namespace path {::tamselbrowser::view ::tamselbrowser}

  variable frame ""
  variable text ""
  variable shows quarel     ;# or "file"
  variable is_due 0         ;# whether it is to be put in when it comes into sight
  variable coloured         ;# line -> 1 where its words are coloured
  array set coloured {}
  variable visited {}       ;# lines to go back to
  variable sought ""        ;# what was looked for last
  variable longest_line 4000
  variable keywords {and assert bool const current div else false function if int let mod node nor
    not or pre real returns tel then true type var when xor}

  # Gives a text widget the tags of words.
  proc make_tags {widget} {
    foreach tag {keyword number comment} {
      $widget tag configure $tag -foreground [style::colour $tag]
    }
  }

  # Colours the words of a line of a text widget.
  proc colour_line {widget line} {
    variable keywords
    set words [$widget get $line.0 "$line.0 lineend"]
    foreach place [regexp -all -inline -indices {\m[\w.]+} $words] {
      lassign $place start end
      set word [string range $words $start $end]
      incr end
      if {[string match {[0-9]*} $word]} {
        $widget tag add number $line.$start $line.$end
      } elseif {$word in $keywords} {
        $widget tag add keyword $line.$start $line.$end
      }
    }
  }

  # Colours the words of the lines in sight.
  proc colour_visible {} {
    variable text
    variable coloured
    set first [lindex [split [$text index @0,0] .] 0]
    set last [lindex [split [$text index @0,[winfo height $text]] .] 0]
    for {set line $first} {$line <= $last} {incr line} {
      if {[info exists coloured($line)]} continue
      set coloured($line) 1
      colour_line $text $line
    }
  }

  # The comments of a piece of text as a list of {START END}, characters from 0. `is_open`, a
  # variable, says whether the piece begins inside a block, and then whether it ends inside one.
  proc comments {piece is_open} {
    upvar 1 $is_open open
    # As if the block began here.
    set before [expr {$open ? "(* " : ""}]
    set places [regexp -all -inline -indices -- \
      {--[^\n]*|\(\*\)|\(\*(?!\))(?:[^*]|\*+[^*)])*(?:\*+\)|\**$)} $before$piece]
    if {$places eq ""} {return {}}
    set shift [string length $before]
    set last [string range $before$piece {*}[lindex $places end]]
    set open [expr {[string match "(\\**" $last] && ![string match "*\\*)" $last] && $last ne "(*)"}]
    lmap place $places {
      lassign $place start end
      list [expr {max(0, $start - $shift)}] [expr {$end - $shift}]
    }
  }

  # Puts a text in, in slices. A task.
  proc put {content} {
    variable text
    variable coloured
    variable longest_line
    variable visited {}
    array unset coloured
    $text configure -state normal
    $text delete 1.0 end
    $text configure -state disabled
    set size [string length $content]
    set in_comment 0
    for {set start 0} {$start < $size} {set start [expr {$end + 1}]} {
      set end [string first \n [string range $content $start+20000 $start+40000]]
      set end [expr {$end < 0 ? $start + 40000 : $start + 20000 + $end}]
      # The widget is slow with very long lines, and nobody reads them.
      set piece [join [lmap line [split [string range $content $start $end] \n] {
        string range $line 0 $longest_line
      }] \n]
      set at [$text index "end - 1 char"]
      # It was in sight, and empty.
      unset -nocomplain coloured([lindex [split $at .] 0])
      $text configure -state normal
      $text insert end $piece
      $text configure -state disabled
      foreach place [comments $piece in_comment] {
        lassign $place first last
        $text tag add comment "$at + $first chars" "$at + $last chars + 1 chars"
      }
      work::pause $start $size
    }
    colour_visible
    show_chosen [shown::name]
  }

  # The text that is to be seen of a program.
  proc content {id} {
    variable shows
    if {$shows eq "quarel"} {return [program::details $id text]}
    string map {\r\n \n} [files::contents [program::file_of $id]]
  }

  # Shows the present program's text soon, or when the view comes into sight.
  proc show_soon {} {
    variable text
    variable is_due 1
    if {[winfo viewable $text]} show_now
  }
  proc show_now {} {
    variable is_due
    variable shows
    set id [shown::program]
    if {!$is_due || $id eq "" || ![program::is_read $id]} return
    set is_due 0
    try {
      set content [content $id]
    } on error {result options} {
      set content ""
      shown::tell failed "Could not show the file" \
        [list [list [program::file_of $id] $result $options]]
    }
    work::start source "Showing [program::label $id]" [namespace code [list put $content]]
  }
  proc current {id} {
    variable text
    work::cancel source
    $text configure -state normal
    $text delete 1.0 end
    $text configure -state disabled
    show_soon
  }

  # The line where a name is defined or declared, 0 if it is nowhere.
  proc line_of {name} {
    variable text
    variable shows
    set id [shown::program]
    if {$id eq "" || $name eq ""} {return 0}
    if {$shows eq "quarel"} {
      set line [program::fact $id line_of $name]
      return [expr {$line eq "" ? 0 : $line}]
    }
    # An equation, alone or in a tuple; else the first place.
    foreach pattern [list "(^|;|let)\\s*\\(?(\\w+,\\s*)*${name}(,\\s*\\w+)*\\)?\\s*=" "\\m$name\\M"] {
      set found [$text search -regexp -count count -- $pattern 1.0]
      if {$found ne ""} {return [lindex [split $found .] 0]}
    }
    return 0
  }

  # Scrolls to a line and marks it.
  proc go_to {line} {
    variable text
    $text tag remove here 1.0 end
    if {$line == 0} return
    $text tag add here $line.0 "$line.0 + 1 lines"
    # With what follows, as an equation may have several lines.
    $text see "$line.0 + 4 lines"
    $text see $line.0
    $text mark set insert $line.0
    colour_visible
  }
  proc show_chosen {name {origin ""}} {
    variable is_due
    if {!$is_due} {go_to [line_of $name]}
  }

  # The word of a text widget that was clicked; "" where something was selected instead.
  proc word_at {widget x y} {
    if {[$widget tag ranges sel] ne ""} {return ""}
    $widget get "@$x,$y wordstart" "@$x,$y wordend"
  }

  # Chooses a word that was clicked in view `origin`, if the program declares it. Returns whether.
  proc choose_word {word origin} {
    set id [shown::program]
    if {$id eq "" || ![program::declares $id $word]} {return 0}
    log::name $id $word
    shown::choose $word $origin
    return 1
  }

  # A click: on a name of the program, a function's too, it jumps.
  proc clicked {x y} {
    variable text
    variable visited
    variable frame
    set from [$text index @0,0]
    set word [word_at $text $x $y]
    if {![choose_word $word source]} {
      if {[line_of $word] == 0} return
      log::function [shown::program] $word
      go_to [line_of $word]
    }
    lappend visited $from
    $frame.bar.back state !disabled
  }

  # To where the last jump came from.
  proc back {} {
    variable text
    variable visited
    variable frame
    if {$visited eq ""} return
    $text yview [lindex $visited end]
    set visited [lrange $visited 0 end-1]
    if {$visited eq ""} {$frame.bar.back state disabled}
    colour_visible
  }

  # Tells which command lists the lines with what was looked for.
  proc say_search {} {
    variable shows
    variable sought
    set id [shown::program]
    if {$sought ne "" && $id ne ""} {log::found $id [expr {$shows eq "quarel"}] $sought}
  }

  # Finds the next or previous place of what is typed in the search line, from the last one on.
  proc search {way} {
    variable text
    variable frame
    variable sought [$frame.bar.wanted get]
    $text tag remove found 1.0 end
    $frame.bar.answer configure -text ""
    if {$sought eq ""} return
    set from [$text index insert]
    set start [expr {$way eq "-forwards" ? "$from + 1 chars" : $from}]
    set place [$text search $way -nocase -- $sought $start]
    if {$place eq ""} {
      $frame.bar.answer configure -text "not found"
      return
    }
    set is_round [$text compare $place [expr {$way eq "-forwards" ? "<=" : ">="}] $from]
    if {$is_round} {$frame.bar.answer configure -text "from the other end"}
    $text tag add found $place "$place + [string length $sought] chars"
    $text mark set insert $place
    $text see $place
    colour_visible
  }

  proc search_clicked {way} {
    search $way
    say_search
  }

  # While it is typed, the place found stays if it still fits.
  proc search_typed {} {
    variable frame
    variable text
    variable sought
    if {[$frame.bar.wanted get] eq $sought} return
    $text mark set insert "insert - 1 chars"
    search -forwards
    work::when_quiet 250 [namespace code say_search]
  }

  proc shows_picked {} {
    variable frame
    variable shows [lindex {quarel file} [$frame.bar.shows current]]
    say
    show_soon
  }

  # Tells which command answers what is shown.
  proc say {} {
    variable shows
    log::content [shown::program] [expr {$shows eq "quarel"}]
  }

  # The text was scrolled.
  proc scrolled {first last} {
    variable frame
    $frame.text.y set $first $last
    colour_visible
  }

  proc create_bar {bar} {
    ttk::frame $bar -padding {8 6} -style Paper.TFrame
    ttk::combobox $bar.shows -state readonly -width 12 -values {"Quarel text" "EC file"}
    $bar.shows current 0
    ttk::button $bar.back -text "Back" -command [namespace code back]
    $bar.back state disabled
    ttk::label $bar.label -text "Find" -style Paper.TLabel
    ttk::entry $bar.wanted -width 24
    ttk::button $bar.previous -text "Previous" -command [namespace code {search_clicked -backwards}]
    ttk::button $bar.next -text "Next" -command [namespace code {search_clicked -forwards}]
    ttk::label $bar.answer -style Paper.TLabel -foreground [style::colour faint]
    grid $bar.shows $bar.back $bar.label $bar.wanted $bar.previous $bar.next $bar.answer \
      -sticky ew -padx {0 8}
    # These give way where the window is narrow.
    grid columnconfigure $bar [list $bar.wanted $bar.answer] -weight 1
    bind $bar.shows <<ComboboxSelected>> [namespace code shows_picked]
    bind $bar.wanted <Return> [namespace code {search_clicked -forwards}]
    bind $bar.wanted <Shift-Return> [namespace code {search_clicked -backwards}]
    bind $bar.wanted <KeyRelease> [namespace code search_typed]
  }

  proc create {window} {
    variable frame $window
    variable text
    ttk::frame $frame -style Paper.TFrame
    create_bar $frame.bar
    set text [style::scrolled $frame.text {text -wrap none -relief flat \
      -borderwidth 0 -highlightthickness 0 -padx 10 -pady 6 -font tamselbrowser.code \
      -state disabled -cursor arrow} xy Paper.TFrame]
    $text configure -background [style::colour paper] \
      -foreground [style::colour ink]
    make_tags $text
    foreach tag {here found} {
      $text tag configure $tag -background [style::colour $tag]
    }
    $text tag raise comment
    $text tag raise found
    $text tag raise sel
    $text configure -yscrollcommand [namespace code scrolled]
    pack $frame.bar -fill x
    pack $frame.text -fill both -expand 1
    bind $text <ButtonRelease-1> [namespace code {clicked %x %y}]
    bind $text <Configure> [list after idle [namespace code colour_visible]]
    bind $text <Map> [namespace code show_now]
    bind $text <Control-f> "focus $frame.bar.wanted; break"
    shown::listen program [namespace code current]
    shown::listen name [namespace code show_chosen]
  }
}
