# program.tcl: the programs that are open, and what is known of each.
#
# Everything is asked of the library: names and types of its operations, clocks and equations of the
# text that `dump` writes. A program is called by its identifier, p1, p2 and so on; its facts are
# arrays and lists in a namespace of that name below `of`: kind, type and index by NAME, `names` in
# the order of declaration, and what quarel::read adds.

namespace eval ::tamselbrowser::program {
  namespace path ::tamselbrowser

  variable count 0   ;# programs opened so far
  variable order {}  ;# identifiers of those that are open, in the order of opening
  variable attribute ;# ID,file; ID,object (its command's last name); ID,stamp; ID,read
  array set attribute {}
  # The library's words for what it counts and asks about.
  variable sections {in input out output loc local}

  namespace eval of {}
  namespace eval object {}

  proc all {} {
    variable order
    return $order
  }
  proc exists {id} {
    variable order
    expr {$id in $order}
  }

  # The file that it was read from, the name of its object, and whether its details are known.
  proc file_of {id} {
    variable attribute
    return $attribute($id,file)
  }
  proc object {id} {
    variable attribute
    return $attribute($id,object)
  }
  proc is_read {id} {
    variable attribute
    return $attribute($id,read)
  }

  # What to call it before a user.
  proc label {id} {
    file tail [file_of $id]
  }

  # The identifier of the program that was read from a file, or "".
  proc of_file {file} {
    foreach id [all] {
      if {[file_of $id] eq $file} {return $id}
    }
    return ""
  }

  # Runs an operation of the program's object.
  proc call {id args} {
    [namespace current]::object::[object $id] {*}$args
  }

  # Shows the user a command on the program's object.
  proc say {id args} {
    shown::tell command [list [object $id] {*}$args]
  }

  # A name for the object of a file: the file's own where it is no other command's.
  proc object_name {file} {
    set name [regsub -all {[^A-Za-z0-9_]} [file rootname [file tail $file]] _]
    if {![regexp {^[A-Za-z_]} $name]} {set name p_$name}
    set free $name
    set number 1
    while {[info commands ::$free] ne "" || [info commands object::$free] ne ""} {
      set free ${name}_[incr number]
    }
    return $free
  }

  # What tells whether a file was written since.
  proc stamp {file} {
    if {![file exists $file]} {return ""}
    list [file mtime $file] [file size $file]
  }

  # Opens a file and returns its identifier; that of before where it is open already. Fails with the
  # library's error, and leaves nothing behind then.
  proc open {file} {
    variable count
    variable order
    variable attribute
    set file [file normalize $file]
    set id [of_file $file]
    if {$id ne ""} {return $id}
    set name [object_name $file]
    set command [namespace current]::object::$name
    ecprg $command
    shown::tell command [list ecprg $name]
    shown::tell command [list $name load $file]
    set its_stamp [stamp $file]
    try {
      $command load $file
    } on error {result options} {
      rename $command {}
      shown::tell command [list rename $name {}]
      return -options $options $result
    }
    set id p[incr count]
    lappend order $id
    array set attribute \
      [list $id,file $file $id,object $name $id,stamp $its_stamp $id,read 0]
    files::remember $file
    shown::tell opened $id
    return $id
  }

  proc forget_details {id} {
    variable attribute
    set attribute($id,read) 0
    if {[namespace exists of::$id]} {namespace delete of::$id}
  }

  proc close {id} {
    variable order
    variable attribute
    shown::tell command [list rename [object $id] {}]
    rename object::[object $id] {}
    forget_details $id
    set order [lsearch -all -inline -not -exact $order $id]
    array unset attribute $id,*
    shown::tell closed $id
  }

  # Reads the file again. Fails with the library's error; the program is then as it was.
  proc reload {id} {
    variable attribute
    set its_stamp [stamp [file_of $id]]
    # Taken over although the load may fail: a file is complained about once.
    set attribute($id,stamp) $its_stamp
    say $id load [file_of $id]
    call $id load [file_of $id]
    forget_details $id
  }

  # Whether the file was written or removed since it was read. `ignore` is for a user who knows.
  proc has_changed {id} {
    variable attribute
    expr {[stamp [file_of $id]] ne $attribute($id,stamp)}
  }
  proc ignore_change {id} {
    variable attribute
    set attribute($id,stamp) [stamp [file_of $id]]
  }

  # How many inputs, outputs, locals, functions and assertions it has: kind -> number.
  proc counts {id} {
    variable sections
    set counts {}
    foreach {word its_kind} $sections {dict set counts $its_kind [call $id nb-${word}s]}
    # Those of several results are known of the text alone.
    dict set counts function \
      [expr {[is_read $id] ? [llength [details $id functions]] : [call $id nb-funcs]}]
    dict set counts assertion [call $id nb-asts]
  }

  # Asks for the variables.
  proc read_declarations {id facts} {
    variable sections
    namespace upvar $facts kind kind type type index index names names
    foreach {word its_kind} $sections {
      set number [call $id nb-${word}s]
      for {set i 0} {$i < $number} {incr i} {
        set name [call $id $word-name $i]
        lappend names $name
        set kind($name) $its_kind
        set index($name) $i
        # As the texts write a type that is not declared.
        set type($name) [string map {<unamed-type> ?} [call $id $word-type $i]]
        work::pause $i $number
      }
    }
  }

  # Finds out everything about a program. A task: where it is stopped, nothing is known afterwards.
  proc read_details {id} {
    variable attribute
    forget_details $id
    set facts [namespace current]::of::$id
    namespace eval $facts {
      foreach array {kind type clock index line_of defined users} {
        variable $array
        array set $array {}
      }
      unset array
      foreach list {names functions equation_names equation_needs equation_range} {
        variable $list {}
      }
      unset list
      variable text ""
      variable pending ""
    }
    set done 0
    try {
      read_declarations $id $facts
      set ${facts}::text [files::captured [namespace code [list call $id dump]]]
      quarel::read [set ${facts}::text] $facts
      set done 1
    } finally {
      # The program may have been closed meanwhile.
      if {!$done && [exists $id]} {forget_details $id}
    }
    set attribute($id,read) 1
  }

  # Below, programs whose details are known.

  # Their facts by name: `fact p1 clock elapsed` is "" where nothing is said of it.
  proc fact {id array name} {
    namespace upvar of::$id $array facts
    # Not by expr, which takes some names for numbers.
    if {[info exists facts($name)]} {return $facts($name)}
    return ""
  }

  # Whole lists: `details p1 names`.
  proc details {id list} {
    set of::${id}::$list
  }

  # The names of its inputs, outputs or locals.
  proc names_of {id kind} {
    set counts [counts $id]
    set first [expr {$kind eq "input" ? 0 : [dict get $counts input]
      + ($kind eq "local" ? [dict get $counts output] : 0)}]
    lrange [details $id names] $first [expr {$first + [dict get $counts $kind] - 1}]
  }

  # Whether a name is one of its variables or constants.
  proc declares {id name} {
    expr {[is_read $id] && [fact $id kind $name] ne ""}
  }

  # The names that the equation of one needs, as a dictionary: name -> 1 if only its past is needed.
  proc needs {id name} {
    set number [fact $id defined $name]
    expr {$number eq "" ? {} : [lindex [details $id equation_needs] $number]}
  }

  # The names in whose equations one stands, each with whether only its past is needed; and in how
  # many equations and assertions it stands.
  proc users {id name} {
    set users {}
    foreach number [fact $id users $name] {
      set delayed [dict get [lindex [details $id equation_needs] $number] $name]
      foreach user [lindex [details $id equation_names] $number] {dict set users $user $delayed}
    }
    return $users
  }
  proc use_count {id name} {
    llength [fact $id users $name]
  }

  # The equation of a name as it stands in the Quarel text, on one line; "" where there is none.
  proc equation {id name} {
    set number [fact $id defined $name]
    if {$number eq ""} {return ""}
    string map {\n ""} [string range [details $id text] \
      {*}[lindex [details $id equation_range] $number]]
  }
}
