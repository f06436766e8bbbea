# items.tcl: what all processes of a run share: lists in files, names, records.
#
# A list is a file of items that end in a NUL byte. An item without one was cut off, and does not count.
#
# The state folder, which is the current folder of whoever reads this:
#
#   settings   what the records depend on, and what the readers have to know: a dict
#   known      the records of earlier runs
#   jobs/N     the files of job N, each a list: its name, and its record of an earlier run if there is one
#   records/N  the records of those that are done, in the same order
#   stopped    is there once a reader has found that nothing can be written, and says why if there is room
#   hosts      the lines of --sshloginfile, for GNU parallel
#   lock       is locked by the run that is at work here
#
# A record is a list: the file, a stamp of what it held, whether its text was written, whether that and the rest are of
# an earlier run, and its findings. A finding is a list: severity, kind, line and column from 1, 0 where they are not
# known, names, message.

# A name is a string of bytes, whatever the locale: each character here is one byte.
encoding system iso8859-1

proc open_bytes {path access} {
    set channel [open $path $access]
    fconfigure $channel -translation binary
    return $channel
}

# The items of a list; none where there is no such file.
proc read_items {path} {
    if {![file exists $path]} {return {}}
    set channel [open_bytes $path r]
    set text [read $channel]
    close $channel
    lrange [split $text \0] 0 end-1
}

# A channel for add_item, after the items that the file has.
proc open_items {path} {
    set channel [open_bytes $path {RDWR CREAT APPEND}]
    fconfigure $channel -buffering full -buffersize 1000000
    seek $channel 0
    chan truncate $channel [expr {[string last \0 [read $channel]] + 1}]
    return $channel
}

# The item is in the file when this returns.
proc add_item {channel item} {
    puts -nonewline $channel $item\0
    flush $channel
}

# Removes everything of a folder that is called as one of `patterns`, and the folder if nothing is left.
proc clear_folder {folder args} {
    file delete -force {*}[glob -nocomplain -directory $folder {*}$args]
    catch {file delete $folder}
}

# How a file is called in reports. "/./" parts the folder that was named from what the output mirrors.
proc shown_name {file} {
    set mark [string last /./ $file]
    if {$mark < 0} {return $file}
    string replace $file $mark $mark+2 /
}

# Where a file's Quarel text goes, below the output folder: what follows "/./", or the last part of the name.
proc output_name {file} {
    set mark [string last /./ $file]
    set mark [expr {$mark < 0 ? [string last / $file] + 1 : $mark + 3}]
    regsub {\.[^./]*$} [string range $file $mark end] {} stem
    return $stem.quarel
}

# How the names begin under which texts grow for a run with that state folder.
proc growing_prefix {state} {return .tamsel-batch-[zlib crc32 $state]-}

# The record of a file about which there is one thing to say, and no place in it.
proc failed {file stamp kind message} {
    list $file $stamp 0 0 [list [list error $kind 0 0 {} $message]]
}
