# export.tcl: writes drawings as SVG, PDF, DOT, JSON and PNG. Only PNG needs another program.

namespace eval ::tamselbrowser::export {
  namespace path ::tamselbrowser

  variable margin 14
  variable largest 14000  ;# points of a page, beyond which readers of PDF refuse it
  # What makes PNG of one of our formats, as a command line for IN and OUT: the first that there is.
  variable png_makers {
    {svg {rsvg-convert -o OUT IN}}
    {pdf {pdftocairo -png -singlefile -r 96 IN BASE}}
    {pdf {gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=png16m -r96 -dTextAlphaBits=4
      -dGraphicsAlphaBits=4 -sOutputFile=OUT IN}}
    {svg {inkscape --export-type=png --export-filename=OUT IN}}
  }

  proc escape {text} {
    string map {& &amp; < &lt; > &gt; \" &quot;} $text
  }

  # Numbers with one decimal.
  proc short {numbers} {
    format [lrepeat [llength $numbers] %.1f] {*}$numbers
  }

  # Cuts the end of a curve back to where its arrowhead begins: {POINTS HEAD}, HEAD being the four
  # corners of it.
  proc with_head {points} {
    lassign [lrange $points end-3 end] from_x from_y x y
    set distance [expr {max(0.01, hypot($x - $from_x, $y - $from_y))}]
    set ux [expr {($x - $from_x) / $distance}]
    set uy [expr {($y - $from_y) / $distance}]
    lassign [list [expr {$x - 9 * $ux}] [expr {$y - 9 * $uy}]] back_x back_y
    set base_x [expr {$x - 8 * $ux}]
    set base_y [expr {$y - 8 * $uy}]
    list [lreplace $points end-1 end $base_x $base_y] [list $x $y \
      [expr {$back_x - 3.5 * $uy}] [expr {$back_y + 3.5 * $ux}] $base_x $base_y \
      [expr {$back_x + 3.5 * $uy}] [expr {$back_y - 3.5 * $ux}]]
  }

  # Where a text begins: {X Y}, the left end of its base line.
  proc text_origin {x y anchor font string} {
    set size [dict get $::tamselbrowser::drawing::fonts $font]
    if {![string match *w $anchor]} {
      set width [drawing::width $font $string]
      set x [expr {$x - ($anchor eq "center" ? 0.5 : 1) * $width}]
    }
    # From where the text is anchored to its base line, in parts of its size.
    set rise [expr {[string match n* $anchor] ? 0.95 : [string match s* $anchor] ? -0.25 : 0.36}]
    list $x [expr {$y + $rise * $size}]
  }

  # A shape as lines of SVG.
  proc svg_box {_ left top right bottom radius fill edge width} {
    lassign [short [list $left $top [expr {$right - $left}] [expr {$bottom - $top}]]] x y w h
    return "<rect x=\"$x\" y=\"$y\" width=\"$w\" height=\"$h\" rx=\"$radius\" fill=\"$fill\"\
      stroke=\"$edge\" stroke-width=\"$width\"/>"
  }
  proc svg_curve {_ points colour width is_dashed is_arrow} {
    set head ""
    if {$is_arrow} {
      lassign [with_head $points] points corners
      set head "<path d=\"M [short [lrange $corners 0 1]] L [short [lrange $corners 2 end]] Z\"\
        fill=\"$colour\"/>"
    }
    set dash [expr {$is_dashed ? " stroke-dasharray=\"5 3\"" : ""}]
    return "<path d=\"M [short [lrange $points 0 1]] C [short [lrange $points 2 end]]\" fill=\"none\"\
      stroke=\"$colour\" stroke-width=\"$width\"$dash/>$head"
  }
  proc svg_text {_ x y anchor font colour string} {
    lassign [short [text_origin $x $y $anchor $font $string]] x y
    set weight [expr {$font eq "heading" ? " font-weight=\"bold\"" : ""}]
    # Whichever font there is in place of ours, the text is as wide as its box expects.
    return "<text x=\"$x\" y=\"$y\" font-size=\"[dict get $::tamselbrowser::drawing::fonts $font]\"$weight\
      fill=\"$colour\" textLength=\"[short [drawing::width $font $string]]\"\
      lengthAdjust=\"spacingAndGlyphs\">[escape $string]</text>"
  }

  # {LEFT TOP WIDTH HEIGHT} of a box with the margin.
  proc page {box} {
    variable margin
    lassign $box left top right bottom
    list [expr {$left - $margin}] [expr {$top - $margin}] \
      [expr {$right - $left + 2 * $margin}] [expr {$bottom - $top + 2 * $margin}]
  }

  # A drawing as the lines of an SVG file. A task, as are those below.
  proc svg {drawing} {
    lassign [drawing::titled $drawing] shapes box
    lassign [short [page $box]] left top width height
    set lines [list "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"$width\" height=\"$height\"\
      viewBox=\"$left $top $width $height\" font-family=\"Helvetica, Arial, sans-serif\"\
      xml:space=\"preserve\">" "<title>[escape [dict get $drawing title]]</title>" \
      "<rect x=\"$left\" y=\"$top\" width=\"$width\" height=\"$height\" fill=\"#ffffff\"/>"]
    foreach shape $shapes {
      lappend lines [svg_[lindex $shape 0] {*}[lrange $shape 1 end]]
      work::pause [llength $lines] [llength $shapes]
    }
    lappend lines </svg>
  }

  # A colour as PDF says it.
  proc pdf_colour {colour} {
    scan $colour #%2x%2x%2x red green blue
    lmap part [list $red $green $blue] {format %.3f [expr {$part / 255.0}]}
  }
  # The text in the encoding of the fonts; what they do not have is a question mark.
  proc pdf_string {text} {
    set bytes $text
    if {![string is ascii $text]} {set bytes [join [lmap character [split $text ""] {
      if {[catch {encoding convertto cp1252 $character} byte]} {set byte ?}
      set byte
    }] ""]}
    return "([string map {\\ \\\\ ( \\( ) \\)} $bytes])"
  }
  proc pdf_box {_ left top right bottom radius fill edge width} {
    # How far the control points of a quarter circle stand from its ends.
    set k [expr {$radius * 0.4477}]
    lassign [list [expr {$left + $radius}] [expr {$right - $radius}] [expr {$left + $k}] \
      [expr {$right - $k}]] a b ak bk
    lassign [list [expr {$top + $radius}] [expr {$bottom - $radius}] [expr {$top + $k}] \
      [expr {$bottom - $k}]] c d ck dk
    set path "[short [list $a $top]] m [short [list $b $top]] l"
    foreach curve [list [list $bk $top $right $ck $right $c] [list $right $d] \
      [list $right $dk $bk $bottom $b $bottom] [list $a $bottom] \
      [list $ak $bottom $left $dk $left $d] [list $left $c] [list $left $ck $ak $top $a $top]] {
      append path " [short $curve] [expr {[llength $curve] == 2 ? "l" : "c"}]"
    }
    return "[pdf_colour $fill] rg [pdf_colour $edge] RG $width w $path b"
  }
  proc pdf_curve {_ points colour width is_dashed is_arrow} {
    set head ""
    if {$is_arrow} {
      lassign [with_head $points] points corners
      set head " [pdf_colour $colour] rg [short [lrange $corners 0 1]] m"
      foreach {x y} [lrange $corners 2 end] {append head " [short [list $x $y]] l"}
      append head " f"
    }
    set path "[short [lrange $points 0 1]] m"
    foreach {a b c d e f} [lrange $points 2 end] {append path " [short [list $a $b $c $d $e $f]] c"}
    return "[pdf_colour $colour] RG $width w \[[expr {$is_dashed ? "5 3" : ""}]\] 0 d $path S$head"
  }
  proc pdf_text {_ x y anchor font colour string} {
    lassign [short [text_origin $x $y $anchor $font $string]] x y
    set face [expr {$font eq "heading" ? "F2" : "F1"}]
    # Upright, although the page is turned over.
    return "[pdf_colour $colour] rg BT /$face [dict get $::tamselbrowser::drawing::fonts $font] Tf 1 0 0 -1 $x $y Tm\
      [pdf_string $string] Tj ET"
  }

  # A drawing as the lines of a PDF file of one page, as large as the drawing.
  proc pdf {drawing} {
    variable largest
    lassign [drawing::titled $drawing] shapes box
    lassign [page $box] left top width height
    # Pixels of 1/96 inch.
    set scale [expr {min(0.75, $largest / max($width, $height, 1.0))}]
    set lines [list stream [format "%.4f 0 0 %.4f %.1f %.1f cm" $scale [expr {-$scale}] \
      [expr {-$left * $scale}] [expr {($top + $height) * $scale}]]]
    set length [string length [lindex $lines end]]
    foreach shape $shapes {
      lappend lines [set line [pdf_[lindex $shape 0] {*}[lrange $shape 1 end]]]
      incr length [expr {[string length $line] + 1}]
      work::pause [llength $lines] [llength $shapes]
    }
    set size [short [list [expr {$width * $scale}] [expr {$height * $scale}]]]
    pdf_file [list [list "<< /Type /Catalog /Pages 2 0 R >>"] \
      [list "<< /Type /Pages /Kids \[3 0 R\] /Count 1 >>"] \
      [list "<< /Type /Page /Parent 2 0 R /MediaBox \[0 0 $size\] /Contents 4 0 R\
        /Resources << /Font << /F1 5 0 R /F2 6 0 R >> >> >>"] \
      [list "<< /Length $length >>" {*}$lines endstream] \
      {*}[lmap face {Helvetica Helvetica-Bold} {list \
        "<< /Type /Font /Subtype /Type1 /BaseFont /$face /Encoding /WinAnsiEncoding >>"}] \
      [list "<< /Title [pdf_string [dict get $drawing title]] /Producer (tamsel-browser) >>"]]
  }
  # A file of these objects, each a list of lines: the first is the catalog, the last tells of the file.
  proc pdf_file {objects} {
    set lines [list %PDF-1.4]
    set size 9
    set places {}
    foreach object $objects {
      lappend places [format "%010d 00000 n " $size]
      foreach line [list "[llength $places] 0 obj" {*}$object endobj] {
        lappend lines $line
        incr size [expr {[string length $line] + 1}]
        work::pause 0 1
      }
    }
    set count [expr {[llength $objects] + 1}]
    lappend lines xref "0 $count" "0000000000 65535 f " {*}$places trailer \
      "<< /Size $count /Root 1 0 R /Info [llength $objects] 0 R >>" startxref $size %%EOF
  }

  # A text between quotes, as DOT and JSON have it.
  proc quoted {text} {
    set text [string map {\\ \\\\ \" \\\" \n \\n \t \\t} $text]
    return "\"[regsub -all {[\x00-\x1f]} $text ?]\""
  }

  # A drawing as the lines of a graph for Graphviz, with all places: neato -n2 keeps them.
  proc dot {drawing} {
    if {[dict get $drawing kind] ne "graph"} {error "DOT has dependencies, not block symbols."}
    set lines [list "digraph [quoted [dict get $drawing title]] {" \
      "  graph \[label=[quoted [dict get $drawing title]]\]" \
      "  node \[shape=box style=\"rounded,filled\" fixedsize=true fontname=Helvetica fontsize=10\]"]
    foreach name [dict get $drawing names] {
      lassign [dict get $name box] left top right bottom
      lassign [drawing::box_look [dict get $name kind] ""] fill edge
      lappend lines [format {  %s [label=%s pos="%.1f,%.1f!" width=%.3f height=%.3f fillcolor="%s" color="%s"]} \
        [quoted [dict get $name name]] [quoted "[dict get $name name]\n[dict get $name type]"] \
        [expr {($left + $right) / 2.0}] [expr {-($top + $bottom) / 2.0}] \
        [expr {($right - $left) / 72.0}] [expr {($bottom - $top) / 72.0}] $fill $edge]
      work::pause 0 1
    }
    foreach wire [dict get $drawing wires] {
      lassign $wire from to delayed points
      lassign [with_head $points] curve
      lassign [lrange $points end-1 end] x y
      lappend lines "  [quoted $from] -> [quoted $to] \[pos=\"e,[format %.1f,%.1f $x [expr {-$y}]]\
        [lmap {x y} $curve {format %.1f,%.1f $x [expr {-$y}]}]\"[expr {
        $delayed ? { style=dashed} : ""}]\]"
      work::pause [llength $lines] [llength [dict get $drawing wires]]
    }
    lappend lines "}"
  }

  # A drawing as the lines of JSON: its title, the names with their places, the wires with their points.
  proc json {drawing} {
    set lines [list "{\"title\": [quoted [dict get $drawing title]]," "\"names\": \["]
    set left [llength [dict get $drawing names]]
    foreach name [dict get $drawing names] {
      lappend lines "{[join [lmap key {name kind type clock} {
        string cat "\"$key\": [quoted [dict get $name $key]]"
      }] {, }], \"box\": \[[join [short [dict get $name box]] {, }]\]}[expr {
        [incr left -1] ? "," : ""}]"
      work::pause 0 1
    }
    lappend lines "\]," "\"wires\": \["
    set left [llength [dict get $drawing wires]]
    foreach wire [dict get $drawing wires] {
      lassign $wire from to delayed points
      lappend lines "{\"from\": [quoted $from], \"to\": [quoted $to], \"past\":\
        [expr {$delayed ? "true" : "false"}], \"points\": \[[join [short $points] {, }]\]}[expr {
        [incr left -1] ? "," : ""}]"
      work::pause 0 1
    }
    lappend lines "\]}"
  }

  # Runs a program to its end; a task lets others run meanwhile. Fails with what it says where it does.
  proc run {command} {
    set channel [open |[list {*}$command 2>@1]]
    set said ""
    try {
      while {![eof $channel]} {
        if {[info coroutine] ne ""} {
          fconfigure $channel -blocking 0
          fileevent $channel readable \
            [list ::tamselbrowser::work::resume [set ticket [work::ticket]]]
          work::wait $ticket
        }
        append said [read $channel 4096]
      }
      fconfigure $channel -blocking 1
      close $channel
    } trap CHILDSTATUS {} {
      error $said
    } finally {
      catch {close $channel}
    }
  }

  # Writes PNG by another program. Fails where there is none.
  proc write_png {drawing path} {
    variable png_makers
    foreach maker $png_makers {
      lassign $maker format line
      if {[auto_execok [lindex $line 0]] eq ""} continue
      close [file tempfile source tamsel.$format]
      try {
        write $drawing $format $source
        run [string map [list IN $source OUT $path BASE [file rootname $path]] $line]
      } finally {
        file delete $source
      }
      return
    }
    error "PNG is made by one of the programs [join [lmap maker $png_makers {
      lindex $maker 1 0}] {, }], and none of them is installed here. SVG and PDF need nothing else."
  }

  # Fails unless pictures can be written in a format.
  proc check {format} {
    if {$format ni {svg png pdf dot json}} {
      error "pictures are .svg, .png, .pdf, .dot or .json files, not .$format"
    }
  }

  # Writes a drawing to a file in one of the formats. A task.
  proc write {drawing format path} {
    check $format
    if {$format eq "png"} {return [write_png $drawing $path]}
    set lines [$format $drawing]
    set channel [open $path w]
    try {
      if {$format eq "pdf"} {
        fconfigure $channel -translation binary
      } else {
        fconfigure $channel -encoding utf-8
      }
      foreach line $lines {
        puts $channel $line
        work::pause 0 1
      }
      close $channel
    } on error {result options} {
      # Half a picture is none, be it that the disk is full or that the user has stopped it.
      catch {close $channel}
      file delete $path
      return -options $options $result
    }
  }
}
