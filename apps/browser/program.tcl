# program.tcl: the programs that are open, and how they are asked.
#
# All that is known of a program is asked of the ensemble `tamsel` when it is wanted. A program is
# called by its identifier, p1, p2 and so on, and is one of
#   listed    not read yet
#   good      it can be asked
#   broken    its file does not load; `trouble` says why

namespace eval ::tamselbrowser::program {
  namespace path ::tamselbrowser

  variable count 0    ;# programs opened so far
  variable order {}   ;# identifiers of those that are open, in the order of opening
  variable attribute  ;# ID,file; ID,object (its name); ID,process; ID,stamp; ID,state; ID,trouble;
                      ;# ID,counts; ID,findings; ID,severities; ID,said (1 where a line of Tcl has made it)
  array set attribute {}
  variable takes_special 0  ;# whether files that are no regular ones may be read
  variable most_findings 500
  variable kinds {input output local constant function type}

  proc all {} {
    variable order
    return $order
  }
  proc exists {id} {
    variable order
    expr {$id in $order}
  }

  # An attribute of a program, "" where there is none.
  proc its {id what} {
    variable attribute
    if {[info exists attribute($id,$what)]} {return $attribute($id,$what)}
    return ""
  }
  proc set_its {id args} {
    variable attribute
    foreach {what value} $args {set attribute($id,$what) $value}
  }
  proc is_good {id} {
    expr {[its $id state] eq "good"}
  }

  # What to call it before a user.
  proc label {id} {
    file tail [its $id file]
  }

  # A name for the object of a file: the file's own where no other has it.
  proc object_name {file} {
    set name [regsub -all {[^A-Za-z0-9_]} [file rootname [file tail $file]] _]
    if {![regexp {^[A-Za-z_]} $name]} {set name p_$name}
    set taken [lmap id [all] {its $id object}]
    set free $name
    set number 1
    while {[info commands ::$free] ne "" || $free in $taken} {set free ${name}_[incr number]}
    return $free
  }

  # What tells whether a file was written since.
  proc stamp {file} {
    if {![file exists $file]} {return ""}
    list [file mtime $file] [file size $file]
  }

  # Fails where a file is not one to read.
  proc look_at {file} {
    variable takes_special
    file stat $file facts
    if {$facts(type) eq "directory"} {throw {POSIX EISDIR {is a folder}} "is a folder"}
    if {$facts(type) ne "file" && !$takes_special} {
      throw {TAMSELBROWSER SPECIAL} \
        "It is not a regular file ($facts(type)); the option --special would read it."
    }
    if {![file readable $file]} {throw {POSIX EACCES {permission denied}} "permission denied"}
  }

  # Lists a file and returns its identifier; that of before where it is open already. Fails where
  # there is no such file to read.
  proc open {file} {
    variable count
    variable order
    set file [file normalize $file]
    foreach id [all] {
      if {[its $id file] eq $file} {return $id}
    }
    look_at $file
    set id p[incr count]
    set_its $id file $file object [object_name $file] state listed stamp [stamp $file]
    lappend order $id
    shown::tell opened $id
    return $id
  }

  proc close {id} {
    variable order
    variable attribute
    forget $id
    if {[its $id said] ne ""} {shown::tell command [list rename [its $id object] {}]}
    set order [lsearch -all -inline -not -exact $order $id]
    array unset attribute $id,*
    shown::tell closed $id
  }

  # Ends the process of a program, which is then as before it was read.
  proc forget {id} {
    if {[its $id process] ne ""} {answers::finish [its $id process]}
    set_its $id process "" state listed trouble {} counts {} findings {} severities {}
  }

  # The process of a program has ended by itself.
  proc lose {process} {
    foreach id [all] {
      if {[its $id process] ne $process} continue
      forget $id
      shown::tell changed $id
      shown::tell status "The process of [label $id] has ended; choose it to read it again."
    }
  }

  # Reads a program's file. A task; where it is stopped, the program is as before it was listed, and
  # where the file does not load, it is broken.
  proc load {id} {
    set_its $id stamp [stamp [its $id file]]
    set done 0
    try {
      if {[its $id process] eq ""} {set_its $id process [answers::begin]}
      ask $id [list set p [its $id object]]
      ask $id {if {[info commands $p] eq ""} {ecprg $p}}
      ask $id [list [its $id object] load [its $id file]]
      set_its $id state good trouble {}
      say $id "[expr {[its $id said] eq "" ? "ecprg [its $id object]; " : ""}][
        list [its $id object] load [its $id file]]"
      set_its $id said 1
      count_names $id
      set done 1
    } trap TAMSEL {result options} {
      set_its $id state broken trouble [report::finding $result $options]
      set done 1
    } finally {
      if {!$done && [exists $id]} {forget $id}
    }
    shown::tell changed $id
  }

  # Reads the file again; where it no longer loads, the program stays as it was, and `trouble` says
  # why. A task.
  proc reload {id} {
    if {![is_good $id]} {return [load $id]}
    set_its $id stamp [stamp [its $id file]] trouble {} findings {}
    set line [list [its $id object] load [its $id file]]
    try {
      ask $id $line
      say $id $line
      count_names $id
    } trap TAMSEL {result options} {
      set_its $id trouble [report::finding $result $options]
    }
    shown::tell changed $id
  }

  # How many names there are of each kind, and assertions: kind -> number.
  proc count_names {id} {
    variable kinds
    set counts {}
    foreach kind $kinds number [ask $id "lmap kind [list $kinds] {
      llength \[tamsel names \$p -kind \$kind\]}"] {
      dict set counts $kind $number
    }
    dict set counts assertion [ask $id {llength [tamsel assertions $p]}]
    set_its $id counts $counts
  }

  # Seeks what is wrong with a program, once the other tasks leave time for it: the first findings
  # are kept, and how many there are of each severity. A task.
  proc check {id} {
    variable most_findings
    while {[work::titles] ne ""} {work::rest 20}
    set trouble [its $id trouble]
    set severities [dict create error [expr {$trouble ne ""}] note 0]
    set findings [expr {$trouble eq "" ? {} : [list $trouble]}]
    if {[is_good $id]} {
      dict for {severity count} [ask $id {
        set findings [tamsel check $p]
        set severities {}
        foreach finding $findings {dict incr severities [dict get $finding severity]}
        set severities
      }] {dict incr severities $severity $count}
      lappend findings {*}[ask $id "lrange \$findings 0 $most_findings-1"]
    }
    set_its $id findings $findings severities $severities
    shown::tell changed $id
    shown::tell findings $id
  }

  # How many findings there are, of a severity or of any.
  proc severe {id {severity *}} {
    set sum 0
    dict for {its count} [its $id severities] {
      if {[string match $severity $its]} {incr sum $count}
    }
    return $sum
  }

  # Whether the file was written or removed since it was read. `ignore` is for a user who knows.
  proc has_changed {id} {
    expr {[stamp [its $id file]] ne [its $id stamp]}
  }
  proc ignore_change {id} {
    set_its $id stamp [stamp [its $id file]]
  }

  # What a script answers where `p` is the program's object. Fails as the script does.
  proc ask {id script} {
    answers::ask [its $id process] $script
  }

  # What `body` answers for each of some names, where `name` is the name.
  proc ask_each {id names body} {
    ask $id "lmap name [list $names] {$body}"
  }

  # A question to the ensemble, as a line of Tcl for the user.
  proc question {id subcommand args} {
    list tamsel $subcommand [its $id object] {*}$args
  }

  # Shows the user a line of Tcl, unless it would fail as there is no program.
  proc say {id line} {
    if {[is_good $id]} {shown::tell command $line}
  }
}
