# view-source.tcl: the file, or the program as EC or Quarel text, with line numbers, coloured words and search.
#
# Lines are coloured when they come into sight; comments, which can span lines, when the text is put
# in. A click on a name shows its equation and chooses it.

namespace eval ::tamselbrowser::view::source {
  namespace path {::tamselbrowser::view ::tamselbrowser}

  variable frame ""
  variable text ""
  variable shows file       ;# a key of `texts`
  variable texts {file "EC file"  ec "EC text, tidy"  quarel "Quarel text"}
  variable is_due 0         ;# whether it is to be put in when it comes into sight
  variable is_there 0       ;# whether all of it is
  variable coloured         ;# line -> 1 where its words are coloured
  array set coloured {}
  variable place {}         ;# {LINE COLUMN} that is to be seen once the text is there
  variable sought ""        ;# what was looked for last
  variable hits {}          ;# the places where it stands
  variable hit -1           ;# the number of the one that is shown
  variable longest_line 4000
  variable most_hits 10000
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

  # A line cut where it is too long for the widget and for readers: between words, so that what is
  # left has no names that are not there.
  proc cut {line} {
    variable longest_line
    set length [string length $line]
    if {$length <= $longest_line} {return $line}
    regexp {^(.*\W)\w*$} [string range $line 0 $longest_line-1] -> line
    return "$line \u2026 ([expr {$length - [string length $line]}] characters more)"
  }

  # Takes what is there away.
  proc clear {} {
    variable text
    variable coloured
    variable hits {}
    variable hit -1
    variable is_there 0
    array unset coloured
    $text configure -state normal
    $text delete 1.0 end
    $text configure -state disabled
    show_numbers
  }

  # Puts lines at the end of what is there. `in_comment`, a variable, is as in `comments`.
  proc add {lines in_comment} {
    variable text
    upvar 1 $in_comment open
    if {$lines eq ""} return
    set piece [join $lines \n]\n
    set at [$text index "end - 1 char"]
    $text configure -state normal
    $text insert end $piece
    $text configure -state disabled
    foreach range [comments $piece open] {
      lassign $range first last
      $text tag add comment "$at + $first chars" "$at + $last chars + 1 chars"
    }
  }

  # Whether the file itself is to be seen. What is no regular file may answer only once, or never.
  proc shows_file {id} {
    variable shows
    expr {[file isfile [program::its $id file]] && ($shows eq "file" || ![program::is_good $id])}
  }

  # Puts the wanted text of a program in, in slices. A task.
  proc put {id} {
    variable is_there
    clear
    try {
      if {[shows_file $id]} {
        put_file [program::its $id file]
      } elseif {[program::is_good $id]} {
        put_text [program::ask $id [question $id]]
      }
    } trap POSIX {result options} {
      shown::tell failed "Could not show the file" \
        [list [list [program::its $id file] $result $options]]
      return
    }
    set is_there 1
    colour_visible
    show_numbers
    arrive $id
    search_soon
  }
  proc put_file {path} {
    set channel [state::open_text $path]
    try {
      set in_comment 0
      set lines {}
      while {[gets $channel line] >= 0} {
        lappend lines [cut [string trimright $line \r]]
        if {[llength $lines] == 100} {
          add $lines in_comment
          set lines {}
          work::pause [tell $channel] [file size $path]
        }
      }
      add $lines in_comment
    } finally {
      close $channel
    }
  }
  proc put_text {content} {
    set in_comment 0
    set size [string length $content]
    for {set start 0} {$start < $size} {set start [expr {$end + 1}]} {
      set end [string first \n $content [expr {$start + 8000}]]
      if {$end < 0} {set end $size}
      add [lmap line [split [string range $content $start $end-1] \n] {cut $line}] in_comment
      work::pause $start $size
    }
  }
  proc question {id} {
    variable shows
    program::question $id text -format [expr {$shows eq "file" ? "ec" : $shows}]
  }

  # Shows the present program's text soon, or when the view comes into sight.
  proc show_soon {} {
    variable text
    variable is_due 1
    variable is_there 0
    if {[winfo viewable $text]} show_now
  }
  proc show_now {} {
    variable is_due
    set id [shown::program]
    if {!$is_due || $id eq "" || [program::its $id state] eq "listed"} return
    set is_due 0
    work::start source "Showing [program::label $id]" [namespace code [list put $id]]
  }
  proc current {id} {
    variable place {}
    work::cancel source
    work::cancel search
    clear
    show_soon
  }

  # Draws the numbers of the lines in sight.
  proc show_numbers {} {
    variable text
    variable frame
    set numbers $frame.numbers
    $numbers delete all
    set digits [string length [lindex [split [$text index "end - 1 char"] .] 0]]
    $numbers configure -width [expr {[font measure tamselbrowser.code 0] * max(3, $digits) + 8}]
    set right [expr {[$numbers cget -width] - 4}]
    for {set at [$text index @0,0]} {[set line [$text dlineinfo $at]] ne ""} {
      set at [$text index "$at + 1 line"]
    } {
      $numbers create text $right [lindex $line 1] -anchor ne -font tamselbrowser.code \
        -fill [style::colour faint] -text [lindex [split $at .] 0]
      if {[$text compare "$at + 1 line" >= "end - 1 char"]} break
    }
  }

  # Scrolls to a line and marks it, as one with an error where there is a column.
  proc go_to {line column} {
    variable text
    foreach tag {here wrong} {$text tag remove $tag 1.0 end}
    if {$line == 0} return
    set tag [expr {$column > 0 ? "wrong" : "here"}]
    $text tag add $tag $line.0 "$line.0 + 1 lines"
    # With what follows, as an equation may have several lines.
    $text see "$line.0 + 4 lines"
    $text see $line.0
    $text mark set insert $line.[expr {max(0, $column - 1)}]
    colour_visible
    show_numbers
  }

  # The question for the numbers of the lines that define a name (the last does), or that declare it
  # (the first). A name that is too long for its line stands alone.
  proc lines_question {id name is_equation} {
    set pattern [expr {$is_equation ? "^\\s*\\(?(\\w+, )*$name\\M(, \\w+)*\\)?( =|$)"
      : "\\m$name\\M.*:|\\m(type|function) +$name\\M|^ *${name}( =|\[,;\]|$)"}]
    return "lsearch -all -regexp \[split \[[question $id]\] \\n\] [list $pattern]"
  }

  # Shows the place that is wanted, now that there is a text. A task.
  proc arrive {id} {
    variable place
    if {$place ne ""} {return [go_to {*}$place]}
    set name [shown::name]
    if {$name eq ""} return
    if {[shows_file $id]} {
      return [go_to [expr {[shown::fact equation] ? [shown::fact equation-line] : [shown::fact line]}] 0]
    }
    set is_equation [shown::fact equation]
    set lines [program::ask $id [lines_question $id $name $is_equation]]
    go_to [expr {$lines eq "" ? 0 : [lindex $lines [expr {$is_equation ? "end" : 0}]] + 1}] 0
  }
  proc show_chosen {name {origin ""}} {
    variable is_there
    variable place
    if {$origin eq "findings"} return
    set place {}
    if {$is_there} {work::start arrive "" [namespace code [list arrive [shown::program]]]}
  }
  # A place of the file is to be seen.
  proc show_place {line column} {
    variable is_there
    variable shows
    variable place [list $line $column]
    if {$shows ne "file"} {show_text file}
    if {$is_there} {go_to $line $column}
  }

  # The word of a text widget that was clicked; "" where something was selected instead.
  proc word_at {widget x y} {
    if {[$widget tag ranges sel] ne ""} {return ""}
    set word [$widget get "@$x,$y wordstart" "@$x,$y wordend"]
    expr {[regexp {^\w+$} $word] ? $word : ""}
  }
  proc clicked {x y} {
    variable text
    focus $text
    set word [word_at $text $x $y]
    if {$word ne ""} {shown::choose $word source}
  }

  # Finds all places of what is typed in the search line, and shows one of them. A task.
  proc search {} {
    variable text
    variable frame
    variable sought [$frame.bar.wanted get]
    variable hits {}
    variable hit -1
    variable most_hits
    $text tag remove hit 1.0 end
    $text tag remove found 1.0 end
    if {$sought eq ""} {
      $frame.bar.answer configure -text ""
      return
    }
    set last [lindex [split [$text index end] .] 0]
    for {set line 1} {$line < $last && [llength $hits] < $most_hits} {incr line 200} {
      set its [$text search -all -nocase -- $sought $line.0 "$line.0 + 200 lines"]
      foreach at $its {$text tag add hit $at "$at + [string length $sought] chars"}
      lappend hits {*}$its
      work::pause $line $last
    }
    show_hit [next_hit [$text index insert]]
  }
  # The number of the first hit from a place on.
  proc next_hit {from} {
    variable hits
    variable text
    set number 0
    foreach at $hits {
      if {[$text compare $at >= $from]} {return $number}
      incr number
    }
    return 0
  }
  # Shows a hit, its number from 0, after the last the first.
  proc show_hit {number} {
    variable hits
    variable hit
    variable text
    variable frame
    variable sought
    variable most_hits
    if {$hits eq ""} {
      $frame.bar.answer configure -text "not found"
      return
    }
    set count [llength $hits]
    set hit [expr {$number % $count}]
    set at [lindex $hits $hit]
    $text tag remove found 1.0 end
    $text tag add found $at "$at + [string length $sought] chars"
    $text mark set insert $at
    $text see $at
    $frame.bar.answer configure \
      -text "[expr {$hit + 1}] of $count[expr {$count >= $most_hits ? " or more" : ""}]"
    colour_visible
    show_numbers
  }
  proc step {by} {
    variable hit
    variable sought
    variable frame
    if {[$frame.bar.wanted get] ne $sought} {return [search_soon]}
    show_hit [expr {$hit + $by}]
    say_search
  }
  proc search_soon {} {
    variable is_there
    if {$is_there} {work::start search "" [namespace code search]}
  }
  proc typed {} {
    variable frame
    variable sought
    if {[$frame.bar.wanted get] eq $sought} return
    work::when_quiet 200 [namespace code search_soon]
  }
  # Tells what finds the lines with what was looked for.
  proc say_search {} {
    variable shows
    variable sought
    set id [shown::program]
    if {$sought eq "" || $id eq "" || $shows eq "file"} return
    # A caseless pattern without special characters.
    program::say $id "lsearch -all -inline -regexp \[split \[[question $id]\] \\n\] [list (?iq)$sought]"
  }

  # Shows another of the texts.
  proc show_text {which} {
    variable frame
    variable texts
    variable shows $which
    $frame.bar.shows set [dict get $texts $which]
    show_soon
  }
  proc text_picked {} {
    variable frame
    variable texts
    set which [lindex [dict keys $texts] [$frame.bar.shows current]]
    set id [shown::program]
    show_text $which
    if {$which ne "file" && $id ne ""} {program::say $id [question $id]}
  }

  # The text was scrolled.
  proc scrolled {first last} {
    variable frame
    $frame.text.y set $first $last
    colour_visible
    show_numbers
  }

  proc create_bar {bar} {
    variable texts
    ttk::frame $bar -padding [list [style::px 6] [style::px 3]] -style Paper.TFrame
    ttk::combobox $bar.shows -state readonly -width 12 -values [dict values $texts]
    $bar.shows current 0
    ttk::label $bar.label -text "Find" -style Paper.TLabel
    ttk::entry $bar.wanted -width 14
    ttk::button $bar.previous -text "\u25b2" -command [namespace code {step -1}]
    ttk::button $bar.next -text "\u25bc" -command [namespace code {step 1}]
    ttk::label $bar.answer -style Paper.TLabel -foreground [style::colour faint] -width 14
    tip::text $bar.previous "The place before (Shift+Return)"
    tip::text $bar.next "The next place (Return)"
    grid $bar.shows $bar.label $bar.wanted $bar.previous $bar.next $bar.answer \
      -sticky ew -padx [list 0 [style::px 6]]
    # It gives way where the window is narrow.
    grid columnconfigure $bar [list $bar.wanted] -weight 1
    bind $bar.shows <<ComboboxSelected>> [namespace code text_picked]
    bind $bar.wanted <Return> [namespace code {step 1}]
    bind $bar.wanted <Shift-Return> [namespace code {step -1}]
    bind $bar.wanted <KeyRelease> [namespace code typed]
    bind $bar.wanted <Escape> "%W delete 0 end; [namespace code search_soon]; break"
  }

  proc create_text {} {
    variable frame
    variable text
    set text [style::scrolled $frame.text {text -wrap none -relief flat -width 20 -height 5 \
      -borderwidth 0 -highlightthickness 0 -padx 6 -pady 4 -font tamselbrowser.code \
      -state disabled -cursor arrow} xy Paper.TFrame]
    $text configure -background [style::colour paper] -foreground [style::colour ink]
    make_tags $text
    foreach {tag colour} {here here wrong error_line hit hit found found} {
      $text tag configure $tag -background [style::colour $colour]
    }
    foreach tag {comment found sel} {$text tag raise $tag}
    $text configure -yscrollcommand [namespace code scrolled]
    bind $text <ButtonRelease-1> [namespace code {clicked %x %y}]
    bind $text <Configure> [list after idle [namespace code {colour_visible; show_numbers}]]
    bind $text <Map> [namespace code show_now]
    menu::on $text [namespace code [list word_at $text %x %y]]
  }

  proc create {window} {
    variable frame $window
    ttk::frame $frame -style Paper.TFrame
    create_bar $frame.bar
    canvas $frame.numbers -width 40 -height 10 -highlightthickness 0 -background [style::colour frame]
    create_text
    pack $frame.bar -fill x
    pack $frame.numbers -side left -fill y
    pack $frame.text -fill both -expand 1
    foreach {event command} {program current name show_chosen place show_place} {
      shown::listen $event [namespace code $command]
    }
  }
}
