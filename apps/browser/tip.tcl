# tip.tcl: texts that appear when the mouse rests on something.

namespace eval ::tamselbrowser::tip {
  namespace path ::tamselbrowser

  variable delay 600   ;# milliseconds
  variable timer ""

  # Shows what `command` answers when the mouse rests on a widget; nothing where that is empty.
  proc on {widget command} {
    bind $widget <Motion> +[namespace code [list wait $command]]
    foreach event {Leave Button Key Unmap} {bind $widget <$event> +[namespace code hide]}
  }
  # The same for a text that is always the same.
  proc text {widget text} {
    on $widget [list join [list $text]]
  }

  proc wait {command} {
    variable delay
    variable timer
    hide
    set timer [after $delay [namespace code [list show $command]]]
  }
  proc hide {} {
    variable timer
    after cancel $timer
    destroy .tip
  }
  proc show {command} {
    set text [uplevel #0 $command]
    if {$text eq ""} return
    toplevel .tip -background [style::colour line] -padx 1 -pady 1
    wm overrideredirect .tip 1
    pack [ttk::label .tip.text -text $text -style Tip.TLabel -wraplength [style::px 420] \
      -justify left]
    update idletasks
    lassign [winfo pointerxy .] x y
    set x [expr {max(0, min($x + 12, [winfo screenwidth .] - [winfo reqwidth .tip]))}]
    set y [expr {$y + 18 + [winfo reqheight .tip] > [winfo screenheight .]
      ? $y - 8 - [winfo reqheight .tip] : $y + 18}]
    wm geometry .tip +$x+$y
  }
}
