# state.tcl: the state folder of a run of tamsel-batch, which is the current folder of whoever reads this.
#
#   settings   the folder of the run, its output folder or nothing, 1 if it is strict, its shard, its names
#   found      all files of the run
#   jobs/N     the files of job N
#   records/N  what became of those that are done, each a dict: file, status (good, warning, error); of a
#              problem kind, message and, where known, line; of what is written output
#   starts/N   a number for each process that has begun job N: how many files were done before it
#   stopped    is there once a worker has found that no file can be written, and says why if there is room
#   hosts      the lines of --sshloginfile, for GNU parallel
#
# Each but the last two is a list of items that end in a NUL byte. An item without one was cut off, and does not count.

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
    set channel [open_bytes $path {RDWR CREAT}]
    chan truncate $channel [expr {[string last \0 [read $channel]] + 1}]
    seek $channel 0 end
    return $channel
}

# The item is in the file when this returns.
proc add_item {channel item} {
    puts -nonewline $channel $item\0
    flush $channel
}

# The names of the jobs, in order.
proc job_names {} {
    lsort [glob -nocomplain -tails -directory jobs *]
}

# How a file is called in reports.
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
