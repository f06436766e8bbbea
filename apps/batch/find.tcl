# find.tcl: the files of a run.

namespace eval find {
    variable problems {}  ;# records of folders that cannot be read
    variable failed 0     ;# whether something was missed in another way
}

# Not to be taken for an option, an operator of find or a home.
proc find::plain {name} {
    if {[regexp {^[[:alnum:]_./]} $name]} {return $name}
    return ./$name
}

# The names in a list that each end in a NUL byte, the last perhaps not.
proc find::listed {path} {
    try {
        # Standard input is main.tcl's own pipe, and the user's is beside it.
        set channel [open_bytes [expr {$path eq "-" ? "/dev/fd/3" : $path}] r]
        set names [split [read $channel] \0]
        close $channel
    } trap POSIX {- options} {
        options::refuse "cannot read the names in '$path': [lindex [dict get $options -errorcode] 2]"
    }
    lmap name $names {
        if {$name eq ""} continue
        plain $name
    }
}

# Whether a name that was given as a file is excluded.
proc find::is_excluded {name patterns} {
    foreach pattern $patterns {
        if {[string first / $pattern] < 0} {set name [string range $name [string last / $name]+1 end]}
        if {[string match $pattern $name]} {return 1}
    }
    return 0
}

# The words for find that pass over what is excluded.
proc find::exclusion {patterns} {
    set tests {}
    foreach pattern $patterns {
        lappend tests -o {*}[expr {[string first / $pattern] < 0 ? [list -name $pattern]
            : [list -path */./[string trim $pattern /]]}]
    }
    if {![llength $tests]} return
    concat ! -name . ( [lrange $tests 1 end] ) -prune -o
}

# Runs find, and lets signals be heard meanwhile. Returns what it printed.
proc find::search {words} {
    variable failed
    set channel [open |[concat find -H $words [list 2>@stderr]] r]
    fconfigure $channel -translation binary -blocking 0
    fileevent $channel readable [list apply {{channel} {
        append ::find::found [read $channel]
        if {[eof $channel]} {set ::find::ended 1}
    }} $channel]
    set ::find::found ""
    vwait ::find::ended
    fconfigure $channel -blocking 1
    if {[catch {close $channel}]} {set failed 1}
    lrange [split $::find::found \0] 0 end-1
}

# The programs below folders. "/./" parts the folder that was named from what the output mirrors.
proc find::below {folders patterns} {
    variable problems
    set files {}
    set tops [lmap folder $folders {string cat [expr {$folder eq "/" ? "" : [string trimright $folder /]}] /.}]
    # The first letter is the type of what a link leads to: N nothing, L in a circle. A link to nowhere is no good
    # file, and is reported as such. X is a folder that cannot be read.
    for {set i 0} {$i < [llength $tops]} {incr i 500} {
        foreach item [search [concat [lrange $tops $i $i+499] [exclusion $patterns] {
            -type d ! ( -readable -executable ) -prune -printf X%p\\0
            -o -name *.ec ( -type f -o -type l ) -printf %Y%p\\0
        }]] {
            set name [string range $item 1 end]
            switch [string index $item 0] {
                X {lappend problems [failed [string trimright $name .] "" io "permission denied"]}
                f - N - L - ? {lappend files $name}
            }
        }
    }
    return $files
}

# Each once, whatever ways lead to it; sorted by name.
proc find::unique {files} {
    set kept {}
    foreach file $files {
        set slash [string last / $file]
        set folder [string range $file 0 $slash]
        if {![info exists real($folder)]} {set real($folder) [file normalize $folder.]}
        set key $real($folder)/[string range $file $slash+1 end]
        if {[info exists seen($key)]} continue
        set seen($key) 1
        lappend kept $file
    }
    lsort $kept
}

# All files of a run, by its options.
proc find::programs {options} {
    variable problems
    set patterns [dict get $options exclude]
    set names [lmap name [dict get $options names] {
        if {[catch {file lstat $name about}]} {options::refuse "there is no '$name'"}
        plain $name
    }]
    if {[dict get $options files0-from] ne ""} {lappend names {*}[listed [dict get $options files0-from]]}
    set folders {}
    set files {}
    foreach name $names {
        if {![file isdirectory $name]} {
            if {![is_excluded $name $patterns]} {lappend files $name}
        } elseif {[file readable $name] && [file executable $name]} {
            lappend folders $name
        } else {
            lappend problems [failed $name "" io "permission denied"]
        }
    }
    set files [unique [concat [below $folders $patterns] $files]]
    if {![llength $files] && ![llength $problems] && [dict get $options files0-from] eq ""} {
        options::refuse "there is no file called *.ec"
    }
    return $files
}
