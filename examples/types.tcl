# types.tcl [FILE.ec]: a calculator of types over standard input, with the names of a program.
#
# A line `name : type` declares a variable, any other is an expression, and its type is the answer. Try
#     printf 'x : real\nx * 2.0 > 1.0\nx * 2\nelapsed +\n' | tclsh types.tcl watchdog.ec
# which prints what is in expected/types.out.

package require Tamsel

ecprg scope
if {$argc > 0} {scope load [lindex $argv 0]}

while {[gets stdin line] >= 0} {
    if {[string trim $line] eq ""} continue
    try {
        if {[regexp {^\s*(\w+)\s*:\s*(\w+)\s*$} $line - name type]} {
            set answer "[scope add-loc $type $name] is declared"
        } else {
            set answer [scope exp-type $line]
        }
    } trap TAMSEL {text} {
        set answer [regsub {.*\n=> scope [a-z-]+ : } $text "? "]
    }
    if {[catch {puts $answer}]} exit  ;# nobody reads any more
}
exit
