# formats.tcl: how a report is written: a class for each format, all with the same four methods.

namespace eval formats {
    # A character of UTF-8, or a byte of none.
    variable character {[\x00-\x7f]|[\xc2-\xdf][\x80-\xbf]|\xe0[\xa0-\xbf][\x80-\xbf]|[\xe1-\xec\xee\xef][\x80-\xbf]{2}}
    append character {|\xed[\x80-\x9f][\x80-\xbf]|\xf0[\x90-\xbf][\x80-\xbf]{2}|[\xf1-\xf3][\x80-\xbf]{3}}
    append character {|\xf4[\x80-\x8f][\x80-\xbf]{2}|[\x80-\xff]}
    variable controls {}  ;# for string map: what would end or disturb a line
    for {set code 0} {$code < 0x20} {incr code} {lappend controls [format %c $code] [format {\x%02x} $code]}
    variable kinds {
        syntax   "The text is not well formed."
        io       "A file or folder cannot be read or written."
        state    "Memory ran out."
        usage    "The text is too large."
        death    "Every process that reads the file dies."
        timeout  "The file takes longer than allowed."
        hole     "Something is not declared, declared or defined twice, or not defined."
        type     "An equation or assertion is ill-typed."
        clock    "A clock is none, or an expression has none."
        cycle    "Equations need one another in the same cycle."
        unused   "Nothing mentions a name."
    }
}

# A JSON string. A byte that is not UTF-8 becomes \udcXX, which Python's os.fsencode turns back.
proc formats::json_string {bytes} {
    if {![regexp {[\x00-\x1f\x7f-\xff\\"]} $bytes]} {return "\"$bytes\""}
    set text ""
    foreach character [regexp -all -inline $::formats::character $bytes] {
        scan $character %c code
        if {$code < 0x20 || $code == 0x7f} {
            set character [format {\u%04x} $code]
        } elseif {$character in {\" \\}} {
            set character \\$character
        } elseif {$code >= 0x80 && [string length $character] == 1} {
            set character [format {\udc%02x} $code]
        }
        append text $character
    }
    return "\"$text\""
}

# A JSON array of what are JSON texts already, and an object of names and such texts.
proc formats::json_list {texts} {return "\[[join $texts {, }]\]"}
proc formats::json_object {args} {
    return "\{[join [lmap {name text} $args {string cat "\"$name\": " $text}] {, }]\}"
}

proc formats::json_finding {finding} {
    lassign $finding severity kind line column names message
    set members [list severity "\"$severity\"" kind "\"$kind\""]
    if {$line} {lappend members line $line column $column}
    json_object {*}$members names [json_list [lmap name $names {json_string $name}]] message [json_string $message]
}

# A file's object.
proc formats::json_file {file record status output} {
    lassign $record name - written unchanged findings
    set members [list file [json_string $file] status "\"$status\""]
    if {$written ne "" && $written} {lappend members output [json_string $output/[output_name $name]]}
    if {$unchanged ne "" && $unchanged} {lappend members unchanged true}
    json_object {*}$members findings [json_list [lmap finding $findings {json_finding $finding}]]
}

# Text for XML, which has no control characters; they and bytes that are not UTF-8 stand as \xNN.
proc formats::xml {bytes} {
    set text ""
    foreach character [regexp -all -inline $::formats::character $bytes] {
        scan $character %c code
        if {($code < 0x20 && $code != 10) || ($code >= 0x80 && [string length $character] == 1)} {
            set character [format {\x%02x} $code]
        }
        append text $character
    }
    string map {& &amp; < &lt; > &gt; \" &quot; \x7f \\x7f \xef\xbf\xbe \\ufffe \xef\xbf\xbf \\uffff} $text
}

proc formats::uri {bytes} {
    set text ""
    foreach character [split $bytes ""] {
        if {![regexp {[A-Za-z0-9._~/-]} $character]} {set character [format %%%02X [scan $character %c]]}
        append text $character
    }
    return $text
}

# A finding as a line for people, whatever is in the name and the message.
proc formats::line {file finding} {
    lassign $finding severity kind line column - message
    if {$line} {append file :$line:$column}
    string map $::formats::controls "$file: $severity: $message"
}

# What all have in common, and the format that is nothing else. Written to `channel`; `counts` are those of the summary.
oo::class create formats::report {
    variable channel options counts
    constructor {given_channel given_options given_counts} {
        set channel $given_channel
        set options $given_options
        set counts $given_counts
    }
    method begin {} {}
    # A file is told by how it is shown, its record and its status.
    method file {file record status} {
        foreach finding [lindex $record 4] {puts $channel [formats::line $file $finding]}
    }
    method end {} {}
}

oo::class create formats::jsonl {
    superclass formats::report
    variable channel options
    method file {file record status} {
        puts $channel [formats::json_file $file $record $status [dict get $options output]]
    }
}

oo::class create formats::json {
    superclass formats::report
    variable channel options counts separator
    method begin {} {
        set separator ""
        puts $channel "\{\"counts\": [formats::json_object {*}$counts],\n\"files\": \["
    }
    method file {file record status} {
        puts -nonewline $channel $separator[formats::json_file $file $record $status [dict get $options output]]
        set separator ",\n"
    }
    method end {} {puts $channel "\n\]\}"}
}

oo::class create formats::junit {
    superclass formats::report
    variable channel options counts
    method begin {} {
        set numbers [format {tests="%d" failures="%d" errors="%d"} \
            [dict get $counts files] [dict get $counts bad] [dict get $counts lost]]
        puts $channel {<?xml version="1.0" encoding="UTF-8"?>}
        puts $channel "<testsuites name=\"tamsel-batch\" $numbers>\n<testsuite name=\"tamsel-batch\" $numbers>"
    }
    method file {file record status} {
        set slash [string last / $file]
        set folder [expr {$slash < 0 ? "." : [string range $file 0 $slash-1]}]
        puts -nonewline $channel "<testcase classname=\"[formats::xml $folder]\"\
            name=\"[formats::xml [string range $file $slash+1 end]]\">"
        if {$status eq "lost"} {puts -nonewline $channel {<error type="lost" message="not looked at"/>}}
        set failing [report::failing [lindex $record 4] [dict get $options fail-on]]
        if {[llength $failing]} {
            lassign [lindex $failing 0] - kind - - - message
            puts $channel "<failure type=\"$kind\" message=\"[formats::xml $message]\">[my lines $file $failing]</failure>"
        } elseif {[llength [lindex $record 4]]} {
            puts $channel "<system-out>[my lines $file [lindex $record 4]]</system-out>"
        }
        puts $channel </testcase>
    }
    method lines {file findings} {formats::xml [join [lmap finding $findings {formats::line $file $finding}] \n]}
    method end {} {puts $channel "</testsuite>\n</testsuites>"}
}

oo::class create formats::sarif {
    superclass formats::report
    variable channel counts separator
    method begin {} {
        set separator ""
        set rules [lmap {kind text} $::formats::kinds {
            formats::json_object id "\"$kind\"" shortDescription [formats::json_object text "\"$text\""]
        }]
        set driver [formats::json_object name {"tamsel-batch"} version "\"[package provide Tamsel]\"" \
            rules [formats::json_list $rules]]
        set root [formats::json_object uri "\"file://[formats::uri [pwd]]/\""]
        set success [expr {[dict get $counts lost] ? "false" : "true"}]
        puts $channel "\{\"\$schema\": \"https://json.schemastore.org/sarif-2.1.0.json\", \"version\": \"2.1.0\",\
            \"runs\": \[\{"
        foreach {name text} [list tool [formats::json_object driver $driver] columnKind {"unicodeCodePoints"} \
            originalUriBaseIds [formats::json_object ROOT $root] \
            invocations [formats::json_list [list [formats::json_object executionSuccessful $success]]]] {
            puts $channel "\"$name\": $text,"
        }
        puts $channel "\"results\": \["
    }
    method file {file record status} {
        set artifact [list uri "\"[formats::uri $file]\""]
        if {![string match /* $file]} {lappend artifact uriBaseId {"ROOT"}}
        foreach finding [lindex $record 4] {
            lassign $finding severity kind line column - message
            set place [list artifactLocation [formats::json_object {*}$artifact]]
            if {$line} {lappend place region [formats::json_object startLine $line startColumn $column]}
            puts -nonewline $channel $separator[formats::json_object ruleId "\"$kind\"" level "\"$severity\"" \
                message [formats::json_object text [formats::json_string $message]] \
                locations [formats::json_list [list [formats::json_object physicalLocation \
                    [formats::json_object {*}$place]]]]]
            set separator ",\n"
        }
    }
    method end {} {puts $channel "\n\]\}\]\}"}
}
