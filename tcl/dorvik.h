// tcl/dorvik.h: the extension as Tcl sees it: its entry points and its global commands.
//
// Everything runs on the interpreter's thread; each thread has the objects of its interpreters.
// Words that come from scripts are never used as formats. Commands, and the operations of program
// objects (tcl/program.h), return TCL_OK, or TCL_ERROR with a result text and an errorCode (see
// tcl/support.h).
#ifndef TCL_DORVIK_H
#define TCL_DORVIK_H

#include <memory>
#include <vector>

#include "foundation/text.h"
#include "tcl/support.h"

class EcPrgVar;
struct GlobalCommand;
namespace tamsel {
class Ensemble;
}

// Binds the stubs of Tcl and Tk, provides package Tamsel 1.0, runs the start-up script and
// registers all commands. TCL_ERROR where a step fails, with that step's message as the result.
extern "C" __attribute__((visibility("default"))) int Dorvik_Init(Tcl_Interp* interp);

// The same without Tk, and so without a display.
extern "C" __attribute__((visibility("default"))) int Dorvikbatch_Init(Tcl_Interp* interp);

// Makes the Dorvik of an interpreter. Returns 0.
int run_dorvik_Init(Tcl_Interp* interp);

// The global commands of one interpreter. Lives until the process ends.
class Dorvik {
 public:
  // Registers help, verbose, sigint, ecprg and the ensemble, and handles SIGINT from now on.
  explicit Dorvik(Tcl_Interp* served);
  ~Dorvik();
  Dorvik(const Dorvik&) = delete;
  Dorvik& operator=(const Dorvik&) = delete;

  // Error results: a text of its own, and the usage of a global command. Both return TCL_ERROR.
  int error(const char* format, ...) PRINTF_LIKE(2, 3);
  int cmd_error(const char* command, const char* format, ...) PRINTF_LIKE(3, 4);

  // Creates a program object as command `name`, and its node called `params[0]` or else like the
  // command. Extra `params` leave it without a program, and init's error text as the result of a
  // call that succeeds.
  int create_ecprg(const char* name, int nparams, const char* params[]);
  // The same for an object that is made already, whose node is in it; says so as for a new one.
  int create_ecprg(const char* name, std::unique_ptr<EcPrgVar> fresh);
  // Takes `p` off the list; returns the new head.
  EcPrgVar* remove_ecprg(EcPrgVar* p);
  // Prints the names of the live program objects at verbosity level 2.
  void print_ecprgs();
  // Replaces the script of Ctrl-C.
  void set_sigint_script(const char* script);
  // Runs it, unless the interpreter is gone.
  void run_sigint_script();

  // What a global command is given as its client data.
  struct Command {
    Dorvik* dorvik;
    const GlobalCommand* row;  // of the table
  };

  std::vector<Command> commands;
  Tcl_Interp* interp;                          // null when it is gone
  Tcl_Obj* sigint_script;                      // this object holds one reference
  std::unique_ptr<tamsel::Ensemble> ensemble;  // null when the interpreter is gone
  EcPrgVar* programs;  // live objects, newest first; owned by their commands
  Dorvik* previous;    // the one made before this one (see last_dorvik), or null
};

// The newest one of the thread that loaded the library first. SIGINT is its.
extern Dorvik* last_dorvik;

// As long as one lives, the script of Ctrl-C waits: a change of a program is done as a whole.
class CtrlCWaits {
 public:
  CtrlCWaits();
  ~CtrlCWaits();
  CtrlCWaits(const CtrlCWaits&) = delete;
  CtrlCWaits& operator=(const CtrlCWaits&) = delete;
};

// strtol in base 10. Returns 0, or 1 where `text` does not begin with a number.
int monatoi(const char* text, int* value);

#endif
