// threads LIBRARY SOURCES SCRATCH ROUNDS: four threads, each with an interpreter that has loaded
// the library, load, edit and dump all examples at once, ROUNDS times. Says what went wrong; exits
// with status 1 if anything did.

#include <tcl.h>

#include <atomic>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

static const char script[] = R"tcl(
proc contents {path} {
    set channel [open $path]
    set text [read $channel]
    close $channel
    return $text
}
load $library Dorvikbatch
ecprg kept
kept add-out int o
for {set round 0} {$round < $rounds} {incr round} {
    foreach file [glob $sources/examples/*.ec] {
        set expected $sources/examples/expected/[file rootname [file tail $file]]
        ecprg p
        p load $file
        p dump $out
        if {[contents $out] ne [contents $expected.quarel]} {error "$file: another dump"}
        if {[p profile] ne [string trim [contents $expected.profile]]} {error "$file: another profile"}
        set local [p add-loc int]
        set handle [p exp "if true then $round else pre $local"]
        if {[p eq $local $handle] ne $handle} {error "$file: another handle"}
        if {[p exp-type "($local, 1.5)"] ne "<unamed-type>"} {error "$file: another type"}
        if {![catch {p exp "1 +\n\n *"} message] || ![string match "*line 3 near '\\*'" $message]} {
            error "$file: $message"
        }
        p dump $out
        kept eq o $round
        abort_timer [add_timer 100000 {}]
        rename p {}
    }
    if {![catch {kept load $sources/examples/broken/typo.ec}]} {error "not refused"}
}
)tcl";

int main(int argc, char* argv[]) {
  if (argc != 5) {
    std::fputs("usage: threads LIBRARY SOURCES SCRATCH ROUNDS\n", stderr);
    return 2;
  }
  Tcl_FindExecutable(argv[0]);
  std::atomic<int> failures{0};
  const auto live = [&](int number, const char* rounds) {
    Tcl_Interp* interp = Tcl_CreateInterp();
    const std::string out = std::string(argv[3]) + "/threads-" + std::to_string(number);
    // Paths are in the encoding of the system, which need not be UTF-8.
    const auto set = [&](const char* variable, const char* text) {
      Tcl_DString word;
      Tcl_SetVar(interp, variable, Tcl_ExternalToUtfDString(nullptr, text, -1, &word), 0);
      Tcl_DStringFree(&word);
    };
    set("library", argv[1]);
    set("sources", argv[2]);
    set("out", out.c_str());
    set("rounds", rounds);
    if (Tcl_Eval(interp, script) != TCL_OK) {
      ++failures;
      std::fprintf(stderr, "thread %d: %s\n", number, Tcl_GetStringResult(interp));
    }
    std::remove(out.c_str());
    Tcl_DeleteInterp(interp);
  };
  live(0, "1");  // alone, since Tcl makes its own locks at first use
  std::vector<std::thread> threads;
  for (int number = 0; number < 4; ++number)
    threads.emplace_back([&, number] {
      live(number, argv[4]);
      Tcl_FinalizeThread();
    });
  for (std::thread& thread : threads) thread.join();
  return failures > 0;
}
