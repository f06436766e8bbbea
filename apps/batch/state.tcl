# state.tcl: the state folder from the outside: where it is, who may use it, what it knows of earlier runs.

namespace eval state {
    variable folder ""
    variable is_kept 0     ;# whether a run that is stopped leaves it
    variable lock          ;# the channel that holds the lock, as do all processes that inherit it
    variable known         ;# file to record, of earlier runs
    array set known {}
}

proc state::give_up {text} {throw {BATCH 3} $text}

# Makes the folder that the options name. Nothing needs to be known of a run that only checks: its folder is its own and
# goes with it. Other hosts have to see it, which only folders near the files promise.
proc state::settle {options} {
    variable folder
    variable is_kept
    set output [dict get $options output]
    set shard [dict get $options shard]
    set is_kept [expr {$output ne "" || [dict get $options resume] || [dict get $options incremental]
        || [dict get $options state] ne ""}]
    if {$is_kept} {
        set folder [dict get $options state]
        if {$folder eq ""} {
            set folder [expr {$output eq "" ? [pwd] : $output}]/.tamsel-batch
            if {$shard ne "1/1"} {append folder -[string map {/ -of-} $shard]}
        }
        set folder [file normalize [find::plain $folder]]
        seize
        return
    }
    set place [expr {[dict get $options sshloginfile] ne "" ? [pwd] : [info exists ::env(TMPDIR)] ? $::env(TMPDIR) : "/tmp"}]
    if {[catch {set folder [exec mktemp -d [file normalize $place]/.tamsel-batch-XXXXXXXX 2>@1]} result]} {give_up $result}
}

# Locks the folder. The lock lasts while this process or one that has inherited it does; those of a run that was
# stopped a moment ago are given the time to end. A run that ends removes its state, and so the lock that others wait for.
proc state::seize {} {
    variable folder
    variable lock
    while 1 {
        try {
            file mkdir $folder
            set lock [open $folder/lock a+]
        } trap POSIX {} {
            options::refuse "cannot write into the folder '$folder'"
        }
        if {[catch {exec flock -w 5 0 <@$lock}]} {
            give_up "another run is at work in '$folder'; --state names another folder"
        }
        if {![catch {exec sh -c {[ /dev/fd/0 -ef "$1" ]} sh $folder/lock <@$lock}]} return
        close $lock
    }
}

# What records depend on.
proc state::settings {options} {
    foreach name {output strict check} {lappend settings $name [dict get $options $name]}
    list folder [pwd] {*}$settings library [package provide Tamsel]
}

# Learns what earlier runs have done, where that still holds under the settings and is wanted, and begins anew.
proc state::begin {options} {
    variable folder
    variable is_kept
    variable known
    set settings [settings $options]
    if {[dict get $options output] ne "" && [file exists $folder/records]} {
        # What processes that were stopped have left.
        exec find [dict get $options output] -type f -name [growing_prefix $folder]* -delete
    }
    set before [lindex [read_items $folder/settings] 0]
    if {[dict size $before]} {
        if {![dict get $options resume] && ![dict get $options incremental]} {
            puts stderr "tamsel-batch: starting anew; --resume would pass over what is done already"
        } elseif {[dict remove $before timeout stamped] ne $settings} {
            puts stderr "tamsel-batch: starting anew; the run in '$folder' had another folder, --output, --strict or\
                --check, or another Tamsel"
        } else {
            remember
        }
    }
    clear_folder $folder settings jobs records stopped
    if {![array size known]} {file delete $folder/known}
    file mkdir $folder/jobs $folder/records
    set channel [open_items $folder/settings]
    add_item $channel [dict merge $settings [list timeout [dict get $options timeout] stamped $is_kept]]
    close $channel
}

# Takes back the beginning of a run that could do nothing.
proc state::withdraw {} {
    variable folder
    variable known
    clear_folder $folder jobs records
    if {![array size known]} {clear_folder $folder settings}
}

# Adds what this run has done to what is known of others, whole or not at all.
proc state::remember {} {
    variable folder
    variable known
    foreach list [list $folder/known {*}[lsort [glob -nocomplain -directory $folder/records *]]] {
        foreach record [read_items $list] {
            if {[lindex $record 1] ne ""} {set known([lindex $record 0]) $record}
        }
    }
    file delete $folder/known.new
    set channel [open_items $folder/known.new]
    foreach file [lsort [array names known]] {
        if {[file exists $file]} {puts -nonewline $channel $known($file)\0}
    }
    close $channel
    file rename -force $folder/known.new $folder/known
}

# Leaves of a run that is over what the next one may want to know.
proc state::end {options} {
    variable folder
    variable is_kept
    if {[dict get $options incremental]} {
        remember
        clear_folder $folder jobs records stopped hosts
    } else {
        forget
    }
}

# Leaves of a run that has failed what the next one can use.
proc state::leave {} {
    variable folder
    variable is_kept
    if {$folder eq ""} return
    if {!$is_kept} forget
    if {![file exists $folder/settings]} {clear_folder $folder hosts lock}
}

# The lock goes last.
proc state::forget {} {
    variable folder
    variable lock
    clear_folder $folder settings known known.new jobs records stopped hosts
    clear_folder $folder lock
}
