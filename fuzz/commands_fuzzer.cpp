// Commands of Tcl, driven through a real interpreter. Each line of the input is a list of words;
// the word $N stands for the result of the Nth command, $c for a channel.
//
// The interpreter knows nothing but this library's commands, `rename`, `trace` and `catch`, of
// `interp` what hides commands and shows them again, and
//   run N     runs line N again: what timers, traces and Ctrl-C can do besides the free text
//   wait      lets timers fire
//   ctrl-c    raises SIGINT
//   gone      deletes the interpreter
// In the end a copy of a program says of itself what the program says, whatever was done to it.
// No word can name a file outside the scratch folder, which is the current folder: "/" and "\" are
// blanked out.

#include <tcl.h>
#undef Tcl_InitStubs

#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "foundation/errors.h"
#include "fuzz/fuzz.h"
#include "tcl/dorvik.h"
#include "tcl/tcl_timer.h"

extern "C" const char* Tcl_InitStubs(Tcl_Interp* interp, const char* version, int exact);

namespace {

// An interpreter of its own, which nothing of an input gets at, plays them all in `child`.
const char player[] = R"tcl(
proc play text {
    foreach path [glob -nocomplain * .*] {if {$path ni {. ..}} {file delete -force ./$path}}
    set file [open sample.ec w]
    puts -nonewline $file {type color = (red, green); const k : int; function f (a : int) returns (r : int);
        node n (a : int; (b : bool) when c; c : bool) returns (o : int);
        var l : bool; let o = a -> pre o + 1; assert b; l = c; tel}
    close $file
    set ::lines [split $text \n]
    set ::results {}
    set ::commands 0  ;# of this input, those of `run` included
    set ::waits 0
    set ::open_traces 0
    set ::has_traces 0
    set ::channel [open sample.ec]
    make_child
    foreach line $::lines {
        if {[catch {evaluate $line} result] > 1} {error "another code comes out of a command"}
        lappend ::results $result
    }
    close $::channel
    foreach object {p q} {judge $object}
    catch {interp delete child}
    raise
}

# Leaves no command but those that cannot loop or reach out.
proc make_child {} {
    interp create -safe child
    interp marktrusted child
    interp share {} $::channel child
    foreach name [child hidden] {child expose $name}
    child eval {rename trace {tcl trace}; rename interp {tcl interp}}
    set names [child eval {info commands}]
    child eval {namespace delete ::tcl ::oo}  ;# with which some of them go
    foreach name $names {
        if {$name ni {rename catch {tcl trace} {tcl interp}}} {catch {child eval [list rename $name {}]}}
    }
    foreach {name command} {run run wait wait ctrl-c interrupt gone gone trace trace_it traced traced interp hide_it} {
        child alias $name $command
    }
    serve
}
proc evaluate line {
    if {[incr ::commands] > 100 || ![interp exists child] || [catch {llength $line}]} return
    child eval [lmap word $line {
        if {$word eq {$c}} {
            set ::channel
        } elseif {[regexp {^\$(\d{1,4})} $word - number]} {
            lindex $::results [scan $number %d]
        } else {
            set word
        }
    }]
}

# A copy has neither gaps in its lists nor an index of users that was kept in step. Traces might
# change the one and not the other.
proc judge object {
    if {$::has_traces || ![interp exists child] || [catch {child eval [list ::tamsel::copy $object { copy}]}]} return
    if {[told $object] ne [told { copy}]} {error "$object: [told $object]\nits copy: [told { copy}]"}
}
proc told object {
    set names [child eval [list ::tamsel::names $object]]
    set questions {{text -format quarel} {text -format ec} {text -format json} assertions check messages}
    foreach name $names {lappend questions [list describe $name] [list users $name]}
    lmap question $questions {
        list $question [catch {child eval [list ::tamsel::[lindex $question 0] $object {*}[lrange $question 1 end]]} text] $text
    }
}

proc run {{number 0} args} {
    if {![string is integer -strict $number]} {set number 0}
    evaluate [lindex $::lines [expr {$number % [llength $::lines]}]]
}
proc wait args {
    if {[incr ::waits] <= 2} {after 1; update}
}
proc interrupt args {
    if {[incr ::commands] <= 100} raise
}
proc gone args {
    if {!$::open_traces} {interp delete child}
}
# Tcl itself panics when an execution trace deletes the interpreter. So those run their scripts
# through `traced`, under which `gone` does nothing.
proc trace_it args {
    if {[llength $args] == 5 && [string match e* [lindex $args 1]]} {lset args 4 [list traced [lindex $args 4]]}
    set ::has_traces 1
    child eval [list {tcl trace} {*}$args]
}
proc traced {script args} {
    if {[incr ::commands] > 100} return
    incr ::open_traces
    try {child eval $script $args} finally {incr ::open_traces -1}
}
# What `interp` does to this interpreter itself.
proc hide_it {word path args} {
    if {$path eq "" && $word in {hide expose hidden invokehidden}} {
        child eval [list {tcl interp} $word {} {*}$args]
    }
}
)tcl";

Tcl_Interp* interp;

int interrupt(ClientData, Tcl_Interp*, int, Tcl_Obj* const[]) { return std::raise(SIGINT); }

int serve(ClientData, Tcl_Interp*, int, Tcl_Obj* const[]) {
  Tcl_Interp* child = Tcl_GetSlave(interp, "child");
  Tcl_InitStubs(child, REQUIRED_TCL, 0);
  TimeHandler_Init(child);
  return run_dorvik_Init(child);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char*** argv) {
  Tcl_FindExecutable((*argv)[0]);
  static std::string folder =
      (std::filesystem::temp_directory_path() / "tamsel-fuzz-XXXXXX").string();
  require(mkdtemp(folder.data()) != nullptr, "there is room for a scratch folder");
  std::filesystem::current_path(folder);
  std::atexit([] { std::filesystem::remove_all(folder); });
  interp = Tcl_CreateInterp();
  Tcl_CreateObjCommand(interp, "raise", interrupt, nullptr, nullptr);
  Tcl_CreateObjCommand(interp, "serve", serve, nullptr, nullptr);
  require(Tcl_Eval(interp, player) == TCL_OK, Tcl_GetStringResult(interp));
  return 0;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string text = text_of(data, size);
  for (char& c : text)
    if (c == '/' || c == '\\' || c == '\0') c = ' ';
  Tcl_Obj* const words[] = {Tcl_NewStringObj("play", -1),
                            Tcl_NewStringObj(text.data(), static_cast<int>(text.size()))};
  for (Tcl_Obj* word : words) Tcl_IncrRefCount(word);
  require(Tcl_EvalObjv(interp, 2, words, 0) == TCL_OK, Tcl_GetStringResult(interp));
  for (Tcl_Obj* word : words) Tcl_DecrRefCount(word);
  // These live until the process ends, which for a million sessions is too long.
  Dorvik* done = last_dorvik;
  last_dorvik = done->previous;
  Tcl_DecrRefCount(done->sigint_script);
  delete done;
  set_verbose_mode(0);
  return 0;
}
