# style.tcl: fonts, colours and the look of the widgets.

namespace eval ::tamselbrowser::style {
  variable colours {
    paper #ffffff  ink #1f2733  faint #6b7685  line #c9d0d9  frame #f4f5f7  accent #2563c4
    error #b3261e  error_line #fbe0dd  good #1d7a46  notice #fff4d6
    needed #2563c4  needed_far #8fb0e3  needed_fill #dfeafb
    using #d0680a   using_far #e6b078   using_fill #fdebd8
    input #e6f4ea   input_edge #6fa884
    output #f0e9fa  output_edge #9c82c4
    local #ffffff   local_edge #a7b0bc
    constant #fbf3dc constant_edge #c7a64f
    type #eef1f5 type_edge #a7b0bc function #eef1f5 function_edge #a7b0bc
    chosen #1f2733  wire #a7b0bc  wire_dim #dfe3e8
    keyword #7a3e9d comment #5d7d5d number #0b6b75 found #ffc94d hit #ffeeb5 here #e8f0fe
  }

  variable sizes {}  ;# font -> points that the platform gives it

  proc colour {name} {
    variable colours
    dict get $colours $name
  }

  # A font that differs from the platform's in the given options. Its name is good in every -font.
  proc derive {name from args} {
    set name tamselbrowser.$name
    if {$name ni [font names]} {font create $name}
    font configure $name {*}[font actual $from] {*}$args
    return $name
  }

  # So many pixels as a screen of 96 dpi would have.
  proc px {number} {
    expr {round($number * [tk scaling] * 72 / 96.0)}
  }

  # The width of so many letters of the usual size.
  proc letters {number} {
    expr {round($number * [font measure TkDefaultFont n])}
  }

  # Takes the platform's fonts `larger` points larger than they are.
  proc set_fonts {larger} {
    variable sizes
    foreach font {TkDefaultFont TkTextFont TkMenuFont TkHeadingFont TkFixedFont} {
      # In points, also where the platform says pixels.
      if {![dict exists $sizes $font]} {
        set size [font actual $font -size]
        dict set sizes $font [expr {$size < 0 ? round(-$size / [tk scaling]) : $size}]
      }
      font configure $font -size [expr {max(5, [dict get $sizes $font] + $larger)}]
    }
    set size [font actual TkDefaultFont -size]
    derive bold TkDefaultFont -weight bold
    derive small TkDefaultFont -size [expr {max(5, $size - 1)}]
    derive code TkFixedFont
    derive title TkDefaultFont -size [expr {$size + 3}] -weight bold
    ttk::style configure Treeview -rowheight [expr {[font metrics TkDefaultFont -linespace] + [px 6]}]
  }

  # X11 has no look of its own; there the theme "clam" is taken, with quieter colours.
  proc set_theme {} {
    if {[tk windowingsystem] ne "x11"} return
    ttk::style theme use clam
    foreach name {paper ink faint line frame accent} {set $name [colour $name]}
    ttk::style configure . -background $frame -foreground $ink -bordercolor $line \
      -lightcolor $frame -darkcolor $frame -troughcolor #e6e9ed -selectbackground $accent \
      -selectforeground $paper -insertcolor $ink -fieldbackground $paper -focuscolor $accent
    ttk::style map . -foreground [list disabled #9aa3ad]
    . configure -background $frame
    theme_buttons $paper $frame $ink $faint
    theme_fields $paper $ink $accent
    theme_trees $paper $frame $faint $accent
    theme_scrollbars $paper $accent
    theme_menus $paper $accent
  }

  proc theme_buttons {paper frame ink faint} {
    set padding [list [px 8] [px 2]]
    ttk::style configure TButton -background $paper -padding $padding -width 0
    ttk::style map TButton -background [list pressed #dfe3e8 active #eef1f5 disabled $frame]
    ttk::style configure TMenubutton -background $paper -padding $padding -width 0
    ttk::style map TMenubutton -background [list active #eef1f5]
    ttk::style configure TNotebook -background $frame -tabmargins [list 2 [px 3] 2 0]
    set padding [list [px 11] [px 4]]
    ttk::style configure TNotebook.Tab -padding $padding -background #e6e9ed -foreground $faint
    ttk::style map TNotebook.Tab -background [list selected $paper] \
      -foreground [list selected $ink] -padding [list selected $padding]
  }

  proc theme_fields {paper ink accent} {
    ttk::style configure TEntry -padding [px 3]
    ttk::style configure TCombobox -padding [px 2] -arrowsize [px 13]
    ttk::style configure TSpinbox -padding [px 2] -arrowsize [px 10]
    # The theme's own says white on a dark ground for one that has the focus.
    ttk::style map TCombobox -fieldbackground [list readonly $paper] \
      -foreground [list {readonly focus} $ink readonly $ink] \
      -selectbackground [list readonly $paper] -selectforeground [list readonly $ink]
    option add *TCombobox*Listbox.background $paper
    option add *TCombobox*Listbox.selectBackground $accent
  }

  proc theme_trees {paper frame faint accent} {
    # Its frame has the border.
    ttk::style layout Treeview {Treeview.treearea -sticky nswe}
    ttk::style configure Treeview -background $paper -fieldbackground $paper -indent [px 16]
    ttk::style configure Item -indicatorsize [px 12]
    ttk::style map Treeview -background [list selected $accent] -foreground [list selected $paper]
    ttk::style configure Treeview.Heading -background $frame -relief flat -padding [px 3] \
      -foreground $faint
    ttk::style map Treeview.Heading -background [list active #e6e9ed]
  }

  # Thin ones, without arrows.
  proc theme_scrollbars {paper accent} {
    ttk::style configure Horizontal.TProgressbar -background $accent -thickness [px 8]
    foreach {way side} {Vertical ns Horizontal ew} {
      ttk::style layout $way.TScrollbar [list $way.Scrollbar.trough -sticky $side \
        -children [list $way.Scrollbar.thumb -expand 1 -sticky nsew]]
    }
    ttk::style configure TScrollbar -background #c3cad3 -troughcolor $paper -bordercolor $paper \
      -lightcolor #c3cad3 -darkcolor #c3cad3 -arrowsize [px 11] -gripcount 0
    ttk::style map TScrollbar -background [list disabled $paper active #9aa3ad] \
      -lightcolor [list disabled $paper] -darkcolor [list disabled $paper]
  }

  proc theme_menus {paper accent} {
    option add *Menu.background $paper
    option add *Menu.relief flat
    option add *Menu.activeBackground $accent
    option add *Menu.activeForeground $paper
  }

  proc apply {larger} {
    set_theme
    set_fonts $larger
    ttk::style configure Faint.TLabel -foreground [colour faint]
    ttk::style configure Title.TLabel -font tamselbrowser.title
    ttk::style configure Error.TLabel -foreground [colour error]
    ttk::style configure Type.TLabel -foreground [colour good] -font tamselbrowser.bold
    ttk::style configure Paper.TFrame -background [colour paper]
    ttk::style configure Card.TFrame -background [colour paper] -borderwidth 1 -relief flat
    ttk::style configure Paper.TLabel -background [colour paper]
    ttk::style configure Tip.TLabel -background [colour notice] -padding [px 4]
    ttk::style configure Notice.TFrame -background [colour notice]
    ttk::style configure Notice.TLabel -background [colour notice]
  }

  # A widget with a vertical scrollbar in a frame of a style, and a horizontal one unless `ways` is
  # "y". `command` with the path of the widget as its second word makes it. Returns that path.
  proc scrolled {frame command {ways xy} {look Card.TFrame}} {
    ttk::frame $frame -style $look
    if {$look eq "Card.TFrame"} {$frame configure -padding 1}
    set widget $frame.widget
    uplevel 1 [linsert $command 1 $widget]
    grid $widget -row 0 -column 0 -sticky nsew
    foreach way [split $ways ""] side {vertical horizontal} {
      if {$way eq "x"} {
        ttk::scrollbar $frame.x -orient horizontal -command [list $widget xview]
        $widget configure -xscrollcommand [list $frame.x set]
        grid $frame.x -row 1 -column 0 -sticky ew
      } elseif {$way eq "y"} {
        ttk::scrollbar $frame.y -orient vertical -command [list $widget yview]
        $widget configure -yscrollcommand [list $frame.y set]
        grid $frame.y -row 0 -column 1 -sticky ns
      }
    }
    grid rowconfigure $frame 0 -weight 1
    grid columnconfigure $frame 0 -weight 1
    return $widget
  }

  # `text`, cut so that it is at most `width` wide in a font: pixels, or points as in 100p.
  proc shortened {text font width} {
    set width [winfo pixels . $width]
    if {[font measure $font $text] <= $width} {return $text}
    # Nothing longer can fit, whatever the letters.
    set text [string range $text 0 [expr {$width}]]
    set low 0
    set high [string length $text]
    while {$low < $high} {
      set middle [expr {($low + $high + 1) / 2}]
      if {[font measure $font "[string range $text 0 $middle-1]…"] <= $width} {
        set low $middle
      } else {
        set high [expr {$middle - 1}]
      }
    }
    return "[string range $text 0 $low-1]…"
  }

  # Shows a dialog over the main window: a heading, below it the widget .what that `script` makes in
  # it, and a button to close it. It does not wait for the user.
  proc dialog {window title heading script} {
    destroy $window
    toplevel $window -background [colour frame] -padx [px 18] -pady [px 14]
    wm title $window $title
    wm transient $window .
    ttk::label $window.heading -text $heading -style Title.TLabel -wraplength [px 560] -justify left
    uplevel 1 $script
    ttk::button $window.close -text "Close" -command [list destroy $window] -default active
    grid $window.heading -sticky w -pady {0 10}
    grid $window.what -sticky nsew
    grid $window.close -sticky e -pady {12 0}
    grid columnconfigure $window 0 -weight 1
    grid rowconfigure $window 1 -weight 1
    foreach key {Return Escape} {bind $window <$key> [list destroy $window]}
    # Also where no window manager places it.
    update idletasks
    set x [expr {[winfo rootx .] + max(0, [winfo width .] - [winfo reqwidth $window]) / 2}]
    set y [expr {[winfo rooty .] + max(0, [winfo height .] - [winfo reqheight $window]) / 3}]
    wm geometry $window +$x+$y
    focus $window.close
  }
}
