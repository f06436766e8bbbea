# quarel.tcl: reads the Quarel text that `dump` writes.
#
# The text is fully parenthesised and ";" ends or separates everything, so it is cut there and each
# piece is looked at once. No piece is parsed further than to its names: the cost is linear.

namespace eval ::tamselbrowser::quarel {
  namespace path ::tamselbrowser

  variable piece_size 65536  ;# characters that are cut at a time

  # How often `character` is in `text`.
  proc occurrences {character text} {
    expr {[string length $text] - [string length [string map [list $character ""] $text]]}
  }

  # The names among `words` that `declared`, an array, has, as a dictionary: name -> 0.
  proc names_among {words declared} {
    upvar 1 $declared known
    set needs {}
    foreach word $words {
      if {[info exists known($word)]} {dict set needs $word 0}
    }
    return $needs
  }

  # The declared names of an expression, as a dictionary: name -> 1 if each of its places is below a
  # `pre`, so that only its past is needed, else 0.
  proc needs {expression declared} {
    upvar 1 $declared known
    if {![regexp {\mpre\M} $expression]} {
      return [names_among [regexp -all -inline {[\w.]+} $expression] known]
    }
    set needs {}
    set depth 0
    set delayed_from -1  ;# the depth at which the outermost `pre` stands; -1: outside of any
    foreach word [regexp -all -inline {[\w.]+|[()]} $expression] {
      switch -- $word {
        ( {incr depth}
        ) {if {[incr depth -1] == $delayed_from} {set delayed_from -1}}
        pre {if {$delayed_from < 0} {set delayed_from $depth}}
        default {
          if {![info exists known($word)]} continue
          if {$delayed_from < 0} {
            dict set needs $word 0
          } elseif {![dict exists $needs $word]} {
            dict set needs $word 1
          }
        }
      }
    }
    return $needs
  }

  # Reads one piece of a function's declaration, which has several; the last one completes it.
  proc read_function {piece line facts} {
    namespace upvar $facts pending pending functions functions line_of line_of
    if {[regexp {^\s*function\s+(\w+)} $piece whole name]} {
      set line_of($name) [expr {$line + [occurrences \n $whole]}]
    }
    append pending $piece ";"
    if {![regexp {(\w+)\s*\(([^()]*)\)\s*returns\s*\(([^()]*)\)} $pending \
        -> name parameters results]} return
    set pending ""
    foreach part {parameters results} {
      set $part [lmap {_ type} [regexp -all -inline {:\s*([\w?]+)} [set $part]] {set type}]
    }
    lappend functions [list $name [string trim "$parameters : $results"]]
  }

  # Reads one piece of what stands before `let`, which begins in `line`. `section`, a variable, is the
  # word that the present section began with, and is kept up to date.
  proc read_declaration {piece line facts section} {
    upvar 1 $section current
    namespace upvar $facts kind kind type type clock clock line_of line_of
    regexp {^\s*(type|const|function|node|var)\M} $piece -> current
    if {$current eq "type"} return
    if {$current eq "function"} {
      read_function $piece $line $facts
      return
    }
    # One declaration, or two about the word `returns`.
    foreach {_ name_at type_at clock_at} [regexp -all -inline -indices \
      {(\w+)\s*:\s*([\w?]+)(?:\s*\)\s*when\s+(\w+))?} $piece] {
      set name [string range $piece {*}$name_at]
      if {$current eq "const"} {
        set kind($name) constant
        set type($name) [string range $piece {*}$type_at]
      }
      if {[lindex $clock_at 0] >= 0} {set clock($name) [string range $piece {*}$clock_at]}
      set line_of($name) \
        [expr {$line + [occurrences \n [string range $piece 0 [lindex $name_at 0]]]}]
    }
  }

  # Reads an equation or an assertion, which begins in `line`, at character `first` of the text.
  proc read_equation {piece line first facts} {
    namespace upvar $facts kind kind line_of line_of defined defined users users \
      equation_names equation_names equation_needs equation_needs equation_range equation_range
    set names {}
    set split -1
    if {![string match "assert\[ \n\]*" $piece]} {
      set split [string first = $piece]
      if {$split < 0} return
      set names [regexp -all -inline {\w+} [string range $piece 0 $split-1]]
    }
    set number [llength $equation_names]
    foreach name $names {
      set defined($name) $number
      set line_of($name) $line
    }
    set needed [needs [string range $piece $split+1 end] kind]
    dict for {name _} $needed {lappend users($name) $number}
    lappend equation_names $names
    lappend equation_needs $needed
    lappend equation_range [list $first [expr {$first + [string length $piece] - 1}]]
  }

  # Reads a whole text into the arrays and lists of namespace `facts`, whose array `kind` has the
  # inputs, outputs and locals already. A task. It adds:
  #   kind(NAME), type(NAME)  of constants
  #   functions               a list of {NAME TYPES}, TYPES as `func-decl` writes them
  #   clock(NAME)             of what is not on the base clock
  #   line_of(NAME)           the line, from 1, of its equation, else of its declaration
  #   equation_names          for each equation, from 0, the names it defines; none for an assertion
  #   equation_needs          for each the names that it needs, see `needs`
  #   equation_range          for each the first and last character in the text
  #   defined(NAME)           the number of its equation
  #   users(NAME)             the numbers of the equations and assertions that need it
  proc read {text facts} {
    variable piece_size
    set size [string length $text]
    set section ""  ;# "let" in the body
    set line 1
    set place 0     ;# of the piece's first character
    set rest ""     ;# what stands between the last ";" seen and `end`
    for {set end 0} {$end < $size} {} {
      append rest [string range $text $end [expr {$end + $piece_size - 1}]]
      incr end $piece_size
      set pieces [split $rest ";"]
      set rest [lindex $pieces end]
      foreach piece [lrange $pieces 0 end-1] {
        if {$section ne "let" && [regexp {^\s*let\M} $piece begin]} {
          set section let
          set piece "[string repeat " " [string length $begin]][string range $piece \
            [string length $begin] end]"
          incr line [occurrences \n $begin]
        }
        if {$section eq "let"} {
          set trimmed [string trimleft $piece]
          set blanks [expr {[string length $piece] - [string length $trimmed]}]
          set lines [occurrences \n [string range $piece 0 $blanks-1]]
          read_equation $trimmed [expr {$line + $lines}] [expr {$place + $blanks}] $facts
        } else {
          read_declaration $piece $line $facts section
        }
        incr line [occurrences \n $piece]
        incr place [expr {[string length $piece] + 1}]
        work::pause $place $size
      }
    }
  }
}
