# pretty.tcl: writes an expression of the Quarel text, in which every operand has parentheses, with
# those alone that it needs.

namespace eval ::tamselbrowser::pretty {
  # How tightly an operator binds, and what its left and right operands need at least.
  variable infix {
    -> {2 2 3}  or {3 3 4}  xor {3 3 4}  and {4 4 5}
    = {5 6 6}  <> {5 6 6}  < {5 6 6}  <= {5 6 6}  > {5 6 6}  >= {5 6 6}  => {5 6 6}
    + {7 7 8}  - {7 7 8}  * {8 8 9}  / {8 8 9}  % {8 8 9}  div {8 8 9}  mod {8 8 9}
    ** {9 9 10}  when {10 10 11}
  }
  variable prefix {not 6  pre 11  current 11  int 11  real 11  - 11}

  proc tokens {text} {
    regexp -all -inline {\d[\w.]*(?:[eE][-+]\d+)?|\w+|->|<>|<=|>=|=>|\*\*|[-+*/%=<>#(),]} $text
  }

  # The text of an operand, {TEXT STRENGTH}, where strength `least` is needed.
  proc operand {item least} {
    lassign $item text strength
    # Not by expr, which would write numbers in its own way.
    if {$strength < $least} {return "($text)"}
    return $text
  }

  # Puts together what stands between two parentheses, or commas: operators and operands, the latter
  # as {TEXT STRENGTH}. Returns such a pair. Fails on what the writer does not write.
  proc combine {items} {
    variable infix
    variable prefix
    lassign $items first second third
    switch [llength $items] {
      1 {return $first}
      2 {
        set strength [dict get $prefix $first]
        set text [operand $second $strength]
        # Two signs in a row would begin a comment.
        if {$first eq "-" && [string match -* $text]} {set text "($text)"}
        return [list [expr {$first eq "-" ? "-" : "$first "}]$text $strength]
      }
      3 {
        lassign [dict get $infix $second] strength left right
        return [list "[operand $first $left] $second [operand $third $right]" $strength]
      }
      6 {
        lassign $items if condition then yes else no
        return [list "if [lindex $condition 0] then [lindex $yes 0] else [lindex $no 0]" 1]
      }
    }
    error "unexpected expression"
  }

  # The operands of a list between parentheses, combined and joined by commas.
  proc joined {frame} {
    set texts {}
    set items {}
    foreach item [list {*}$frame ,] {
      if {$item eq ","} {
        lappend texts [lindex [combine $items] 0]
        set items {}
      } else {
        lappend items $item
      }
    }
    join $texts ", "
  }

  # Combines a whole text. Each open parenthesis has a frame of items on a stack.
  proc combined {text} {
    variable infix
    variable prefix
    set stack {}
    set frame {}
    foreach token [tokens $text] {
      switch -- $token {
        ( {
          lappend stack $frame
          set frame {}
        }
        ) {
          set inner $frame
          set frame [lindex $stack end]
          set stack [lrange $stack 0 end-1]
          set before [lindex $frame end]
          # A name before a parenthesis is a call's; operators are words that no pair is equal to.
          if {[llength $before] == 2 || $before in {# nor}} {
            set frame [lreplace $frame end end [list "[lindex $before 0]([joined $inner])" 12]]
          } elseif {"," in $inner} {
            lappend frame [list "([joined $inner])" 12]
          } else {
            lappend frame [combine $inner]
          }
        }
        default {
          if {[dict exists $infix $token] || [dict exists $prefix $token]
              || $token in {if then else , # nor}} {
            lappend frame $token
          } else {
            lappend frame [list $token 12]
          }
        }
      }
    }
    lindex [combine $frame] 0
  }

  # `text` with few parentheses; as it is where that cannot be done.
  proc expression {text} {
    try {
      return [combined $text]
    } on error {} {
      return $text
    }
  }

  # The same for an equation.
  proc equation {text} {
    set split [string first = $text]
    set names [string trim [string range $text 0 $split-1]]
    return "$names = [expression [string range $text $split+1 end]]"
  }
}
