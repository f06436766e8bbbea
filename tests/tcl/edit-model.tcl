# The edits of the ensemble `tamsel`, done a second time, on texts: a program is the list of the calls that make it
# from nothing, each without its object, and an edit makes another list of that.

set variables {input output local constant}

# The calls that make the program of an object, as the questions tell it.
proc calls_of {p} {
    set calls [list [list node [lindex [$p profile] 0]]]
    set types [tamsel names $p -kind type]
    foreach name [concat [tamsel names $p -kind constant] {{}}] {
        # A type stands before its constants, and what is left of them before all else.
        set about [expr {$name eq "" ? {} : [tamsel describe $p $name]}]
        while {$types ne {} && ($about eq {} || [dict get $about type] in $types)} {
            set types [lassign $types type]
            lappend calls [list declare type $type {*}[values_of $p $type]]
        }
        if {$about ne {} && ![dict exists $about rank]} {lappend calls [variable_call $p constant $name]}
    }
    foreach name [tamsel names $p -kind function] {
        set about [tamsel describe $p $name]
        lappend calls [list declare function $name {*}[lmap which {params results} {
            lmap pair [dict get $about $which] {expr {[lindex $pair 0] eq "" ? [lindex $pair 1] : $pair}}
        }]]
    }
    foreach kind {input output local} {
        foreach name [tamsel names $p -kind $kind] {lappend calls [variable_call $p $kind $name]}
    }
    foreach name [tamsel names $p -defined 1] {
        set names [dict get [tamsel describe $p $name] with]
        if {[info exists seen($names)]} continue
        set seen($names) 1
        lappend calls [list define $names [tamsel definition $p $name]]
    }
    foreach assertion [tamsel assertions $p] {lappend calls [list assert [dict get $assertion text]]}
    return $calls
}
# The values of an enumeration in order of rank.
proc values_of {p type} {
    lmap value [dict get [tamsel describe $p $type] constants] {
        if {![dict exists [tamsel describe $p $value] rank]} break
        set value
    }
}
proc variable_call {p kind name} {
    set about [tamsel describe $p $name]
    set clock [dict get $about clock]
    list declare $kind [dict get $about type] $name {*}[expr {$clock eq "true" ? {} : [list -clock $clock]}]
}

# The EC text of such calls.
proc text_of {calls} {
    lassign {} head input output local equations
    foreach call $calls {
        set rest [lassign $call command kind first second]
        if {$command eq "node"} {
            set node $kind
        } elseif {$command eq "define"} {
            append equations "[expr {[llength $kind] == 1 ? $kind : "([join $kind ,])"}] = $first;\n"
        } elseif {$command eq "assert"} {
            append equations "assert $kind;\n"
        } elseif {$kind eq "type"} {
            set values [join [lreverse [lrange $call 3 end]] ,]
            append head "type $first[expr {$values eq "" ? "" : " = ($values)"}];\n"
        } elseif {$kind eq "function"} {
            lassign [lmap list [list $second {*}$rest] {join [lmap pair $list {join $pair :}] ";"}] params results
            append head "function $first ($params) returns ($results);\n"
        } else {
            set declaration "$second : $first"
            if {$rest ne {}} {set declaration "($declaration) when [lindex $rest 1]"}
            if {$kind eq "constant"} {append head "const $declaration;\n"} else {lappend $kind $declaration}
        }
    }
    if {$local ne {}} {set local "var [join $local ";\n"];\n"}
    return "${head}node $node ([join $input ";\n"]) returns ([join $output ";\n"]);\n${local}let\n${equations}tel"
}

# The text of an expression with others in the place of some of its names, and how many have been replaced. The
# name of a function has the parenthesis that follows it.
proc with_words {text words {countVar ""}} {
    if {$countVar ne ""} {upvar 1 $countVar count}
    set start 0
    foreach place [regexp -all -inline -indices {[0-9][0-9.]*(?:[eE][-+]?[0-9]+)?|[A-Za-z_]\w*\(?} $text] {
        set word [string range $text {*}$place]
        if {![dict exists $words $word]} continue
        append result [string range $text $start [lindex $place 0]-1] [dict get $words $word]
        set start [expr {[lindex $place 1] + 1}]
        incr count
    }
    append result [string range $text $start end]
}
proc mentions {text names} {
    with_words $text [concat {*}[lmap name $names {list $name $name}]] count
    info exists count
}
# Of pairs of words the first of which are declared, those of some kinds; and those that stand in expressions.
proc words_of {q words kinds} {
    dict filter $words script {name -} {are_declared $q [list $name] $kinds}
}
proc words_inside {q words} {
    concat [words_of $q $words $::variables] [lmap word [words_of $q $words function] {string cat $word (}]
}
proc mapped {names words} {
    lmap name $names {expr {[dict exists $words $name] ? [dict get $words $name] : $name}}
}

# --- The edits. Each answers what becomes of the calls, and what `tamsel` answers. `q` is an object that holds the
# program. What has to be refused ends in an error with the code REFUSED.

proc edited {q calls edit} {
    set words [lassign $edit command]
    edit_$command $q $calls {*}$words
}
proc need {condition} {
    if {![uplevel 1 [list expr $condition]]} {return -code error -errorcode REFUSED refused}
}
proc are_distinct {names} {expr {[llength $names] == [llength [lsort -unique $names]]}}
proc are_declared {q names {kinds {input output local constant function type}}} {
    foreach name $names {
        if {[catch {dict get [tamsel describe $q $name] kind} kind] || $kind ni $kinds} {return 0}
    }
    return 1
}
# Of lists of parameters.
proc types_of {lists} {lmap pair [concat {*}$lists] {lindex $pair end}}
proc is_word {name} {expr {[regexp {^[A-Za-z_]\w*$} $name] && $name ni {when node int}}}
proc is_new {name} {expr {[is_word $name] && ![regexp {^__assert_\d+$} $name]}}
proc is_free {q name} {expr {[is_new $name] && $name ni [tamsel names $q]}}

proc edit_declare {q calls kind args} {
    if {$kind eq "type"} {
        lassign [list $args {}] names types
    } elseif {$kind eq "function"} {
        set names [lrange $args 0 0]
        set types [types_of [lrange $args 1 end]]
        foreach list [lrange $args 1 end] {
            set params [lmap pair $list {lindex $pair 0}]
            need {[are_distinct $params]}
            foreach name $params {need {[is_word $name]}}
        }
    } else {
        lassign [list [lrange $args 1 1] [lrange $args 0 0]] names types
        foreach clock [lrange $args 3 end] {need {[is_word $clock]}}
    }
    need {[are_distinct $names]}
    foreach name $names {need {[is_free $q $name]}}
    foreach type $types {need {$type in {bool int real} || [are_declared $q [list $type] type]}}
    list [concat $calls [list [list declare $kind {*}$args]]] [lindex $names 0]
}

proc edit_define {q calls names exp} {
    need {$names ne {} && [are_distinct $names] && [are_declared $q $names {output local}]}
    need {![catch {tamsel type $q $exp} type]}
    need {$type eq [lmap name $names {dict get [tamsel describe $q $name] type}]}
    set rest [lmap call $calls {
        if {[lindex $call 0] eq "define"} {
            set shared [lmap name [lindex $call 1] {if {$name ni $names} continue; set name}]
            need {$shared in [list {} [lindex $call 1]]}
            if {$shared ne {}} continue
        }
        set call
    }]
    list [concat $rest [list [list define $names $exp]]] {}
}

proc edit_undefine {q calls args} {
    foreach name $args {need {$name in [tamsel names $q -defined 1]}}
    list [lmap call $calls {
        if {[lindex $call 0] eq "define" && [mentions [lindex $call 1] $args]} continue
        set call
    }] {}
}

proc edit_assert {q calls exp} {
    need {![catch {tamsel type $q $exp} type] && $type eq "bool"}
    list [concat $calls [list [list assert $exp]]] [llength [tamsel assertions $q]]
}

proc edit_retract {q calls args} {
    foreach index $args {need {$index >= 0 && $index < [llength [tamsel assertions $q]]}}
    set index -1
    list [lmap call $calls {
        if {[lindex $call 0] eq "assert" && [incr index] in $args} continue
        set call
    }] {}
}

proc edit_rename {q calls args} {
    set words $args
    set node [lindex $calls 0 1]
    need {[are_distinct [lmap {old -} $args {set old}]]}
    foreach name [dict keys $words] {need {$name eq $node || [are_declared $q [list $name]]}}
    set names [mapped [tamsel names $q] $words]
    need {[are_distinct $names]}
    # The node goes by a variable's name only where it has been read so.
    need {$node in [tamsel names $q] || ![dict exists $words $node] || [dict get $words $node] ni $names}
    foreach name [dict values $words] {need {[is_new $name]}}
    set types [words_of $q $words type]
    set clocks [words_of $q $words $::variables]
    set inside [words_inside $q $words]
    list [lmap call $calls {
        set rest [lassign $call command kind]
        if {$command eq "node"} {list node [mapped [list $kind] $words]} \
        elseif {$command eq "assert"} {list assert [with_words $kind $inside]} \
        elseif {$command eq "define"} {list define [mapped $kind $words] [with_words {*}$rest $inside]} \
        elseif {$kind eq "type"} {list declare type {*}[mapped $rest $words]} \
        elseif {$kind eq "function"} {
            list declare function {*}[mapped [lindex $rest 0] $words] {*}[lmap list [lrange $rest 1 end] {
                lmap pair $list {list [lindex $pair 0] [mapped [lindex $pair 1] $types]}
            }]
        } else {
            list declare $kind {*}[mapped [lindex $rest 0] $types] {*}[mapped [lindex $rest 1] $words] \
                {*}[mapped [lrange $rest 2 end] $clocks]
        }
    }] {}
}

proc edit_remove {q calls args} {
    need {[are_declared $q $args]}
    set names $args
    foreach name $args {if {[are_declared $q [list $name] type]} {lappend names {*}[values_of $q $name]}}
    set words [concat {*}[lmap name $names {list $name $name}]]
    set types [dict keys [words_of $q $words type]]
    set clocks [dict keys [words_of $q $words $::variables]]
    set inside [dict keys [words_inside $q $words]]
    list [lmap call $calls {
        set rest [lassign $call command kind first second]
        switch $command {
            assert {need {![mentions $kind $inside]}}
            define {
                set gone [lmap name $kind {if {$name ni $names} continue; set name}]
                need {$gone in [list {} $kind]}
                if {$gone ne {}} continue
                need {![mentions $first $inside]}
            }
            declare {
                if {[expr {$kind in {type function} ? $first : $second}] in $names} continue
                # A type has its values, a function the types of its parameters, a variable its type and its clock.
                need {![switch $kind {
                    type {mentions [lrange $call 3 end] $names}
                    function {mentions [types_of [list $second {*}$rest]] $types}
                    default {expr {$first in $types || [mentions $rest $clocks]}}
                }]}
            }
        }
        set call
    }] {}
}

proc edit_substitute {q calls name exp {-in -in} {only *}} {
    need {[are_declared $q [list $name] {input output local constant}] && ![catch {tamsel type $q $exp} type]}
    need {$type eq [dict get [tamsel describe $q $name] type]}
    need {$only eq "*" || [are_declared $q $only]}
    set words [list $name ($exp)]
    set count 0
    list [lmap call $calls {
        lassign $call command kind right
        if {$command eq "assert" && $only eq "*"} {list assert [with_words $kind $words count]} \
        elseif {$command eq "define" && ($only eq "*" || [mentions $kind $only])} {
            list define $kind [with_words $right $words count]
        } else {set call}
    }] $count
}
