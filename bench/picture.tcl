# picture.tcl FOLDER EQUATIONS...: the measurements in FOLDER as an SVG picture on standard output: what an
# equation costs in programs of these sizes, both axes logarithmic. A flat line is a cost that grows as the
# program does.

set sizes [lassign $argv folder]
source [file join [file dirname [info script]] results.tcl]

# What is drawn, from the top of the legend: name, measurement, colour. A limit of the machine is dashed, in
# the colour of what is measured against it.
set curves {
    "load"                         load     #1f5fa8 {}
    "its tokens, interned"         interned #1f5fa8 5,4
    "dump"                         dump     #c2571a {}
    "its pieces, in blocks"        pieces   #c2571a 5,4
    "type"                         type     #2f7d4f {}
    "free"                         free     #7a4b9a {}
}

set width 780
set height 470
lassign {80 560 56 400} left right top bottom

foreach size $sizes {dict set runs $size [read_run $size]}
proc cost {measured size} {expr {[dict get $::runs $size $measured] / $size}}

# The part of a scale with the marks at `parts` of each decade that holds `values`.
proc marks {values parts} {
    set sorted [lsort -real $values]
    set first [expr {int(floor(log10([lindex $sorted 0])))}]
    set last [expr {int(ceil(log10([lindex $sorted end])))}]
    for {set decade $first} {$decade <= $last} {incr decade} {
        foreach part $parts {lappend marks [expr {double("${part}e$decade")}]}
    }
    set from [lsearch -real -bisect $marks [lindex $sorted 0]]
    set to [lsearch -real -bisect $marks [lindex $sorted end]]
    lrange $marks $from [expr {$to + ([lindex $marks $to] < [lindex $sorted end])}]
}
foreach {_ measured _ _} $curves {foreach size $sizes {lappend costs [cost $measured $size]}}
set x_marks [marks $sizes 1]
set y_marks [marks $costs {1 2 5}]

# Where `value` lies between the first and the last mark.
proc place {value marks} {
    lassign [list [lindex $marks 0] [lindex $marks end]] first last
    expr {log($value / $first) / log($last / $first)}
}
proc x_of {size} {format %.1f [expr {$::left + ($::right - $::left) * [place $size $::x_marks]}]}
proc y_of {cost} {format %.1f [expr {$::bottom - ($::bottom - $::top) * [place $cost $::y_marks]}]}

proc line {x1 y1 x2 y2 colour {more ""}} {
    puts "  <line x1=\"$x1\" y1=\"$y1\" x2=\"$x2\" y2=\"$y2\" stroke=\"$colour\" $more/>"
}
proc text {x y anchor words {more ""}} {
    puts "  <text x=\"$x\" y=\"$y\" text-anchor=\"$anchor\" $more>$words</text>"
}
# 1000000 as "1,000,000".
proc grouped {number} {
    while {[regsub {^(\d+)(\d{3})} $number {\1,\2} number]} {}
    return $number
}

puts "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 $width $height\" width=\"$width\" height=\"$height\"\
    font-family=\"DejaVu Sans, Helvetica, Arial, sans-serif\" font-size=\"13\" fill=\"#222\">"
puts "  <rect width=\"$width\" height=\"$height\" fill=\"#fff\"/>"
text $left 30 start "Processor time for each equation of a program" {font-size="16" font-weight="bold"}

foreach mark $x_marks {
    set x [x_of $mark]
    line $x $top $x $bottom #ddd
    text $x [expr {$bottom + 20}] middle [grouped [format %.0f $mark]]
}
foreach mark $y_marks {
    set y [y_of $mark]
    line $left $y $right $y #ddd
    text [expr {$left - 8}] [expr {$y + 4}] end [format %g $mark]
}
line $left $bottom $right $bottom #444
line $left $top $left $bottom #444
text [expr {($left + $right) / 2}] [expr {$bottom + 46}] middle "equations in the program"
text 0 0 middle "microseconds an equation" "transform=\"translate(24,[expr {($top + $bottom) / 2}]) rotate(-90)\""

# The names stand beside the ends of their curves, or below the name before where that is too near.
set names {}
foreach {name measured colour dashes} $curves {
    set points [lmap size $sizes {string cat [x_of $size] , [y_of [cost $measured $size]]}]
    set dashed [expr {$dashes eq "" ? "" : " stroke-dasharray=\"$dashes\""}]
    puts "  <polyline points=\"$points\" fill=\"none\" stroke=\"$colour\" stroke-width=\"2\"$dashed/>"
    foreach point $points {
        lassign [split $point ,] x y
        puts "  <circle cx=\"$x\" cy=\"$y\" r=\"3\" fill=\"[expr {$dashes eq "" ? $colour : "#fff"}]\" stroke=\"$colour\"/>"
    }
    lappend names [list $y $name $colour $dashed]
}
set free_from $top
foreach entry [lsort -real -index 0 $names] {
    lassign $entry end name colour dashed
    set y [expr {max($end, $free_from)}]
    set free_from [expr {$y + 20}]
    line [expr {$right + 4}] $end [expr {$right + 18}] $y #bbb
    line [expr {$right + 20}] $y [expr {$right + 48}] $y $colour "stroke-width=\"2\"$dashed"
    text [expr {$right + 54}] [expr {$y + 4}] start $name "fill=\"$colour\""
}
puts "</svg>"
