// tcl/support.h: what every command of this library asks of Tcl. What differs between the series of
// Tcl is settled here; for the rest, the sources use what 8.6 and 9 have alike, so no ClientData.
#ifndef TCL_SUPPORT_H
#define TCL_SUPPORT_H

#include <tcl.h>
#include <tk.h>

#include <cstdio>
#include <functional>
#include <new>
#include <string>
#include <vector>

// The version to ask of the stubs. From Tcl 9 on, "8.5" alone would refuse every 9.
#if TCL_MAJOR_VERSION >= 9
#define REQUIRED_TCL "8.5-"
#else
#define REQUIRED_TCL "8.5"
#endif

// What Tcl counts the items of a list with.
#if TCL_MAJOR_VERSION >= 9
using ListSize = Tcl_Size;
#else
using ListSize = int;
#endif

// What the variable errorCode says after the word TAMSEL: the kind of the error (USAGE, LOOKUP,
// STATE, SYNTAX, TYPE, CLOCK or IO), then details. Borrowed texts; the first null ends them.
struct ErrorCode {
  const char* words[6];
};

// The errorCode of the failed system call that has just set errno, on the file or channel `name`.
ErrorCode io_error(const char* name);

// Leaves `text` as the interpreter's result, whole, and `code` in errorCode. Returns TCL_ERROR.
// Scripts may run in it (a trace on errorCode), so nothing that they can delete may be used after
// it.
int deliver_error(Tcl_Interp* interp, const ErrorCode& code, const std::string& text);

// Evaluates `script` beside whatever the interpreter is doing: its result and error state are
// afterwards as before. Returns the result of the script; empty where it failed, or where the
// interpreter is being deleted and nothing was done.
std::string evaluate_aside(Tcl_Interp* interp, Tcl_Obj* script);

// Does `work` while the hidden command `name` is shown under another name; nothing where there is
// none of that name.
void show_hidden(Tcl_Interp* interp, const char* name,
                 const std::function<void(const char* shown_name)>& work);

// The client data of the hidden commands. Scripts may run in it.
std::vector<void*> hidden_commands(Tcl_Interp* interp);

int report_out_of_memory(Tcl_Interp* interp);

// Runs the body of a command procedure. Memory that runs out under it becomes a Tcl error.
template <class Command>
int run_command(Tcl_Interp* interp, Command command) {
  try {
    return command();
  } catch (const std::bad_alloc&) {
    return report_out_of_memory(interp);
  }
}

// Opens the file that a word of a script names, which has its name in the encoding of the system; a
// word that this cannot hold names none. As fopen does, hands over the stream, or answers null and
// sets errno.
FILE* open_by_name(const char* word, const char* mode);

// Puts `text` in the place of what is in the file of that name, which then has all of it or is as
// before. A link stays, and leads to the new file; what is no regular file (a device, a pipe) is
// written to. Answers 0 or the errno of what failed.
int write_by_name(const char* word, const std::string& text);

#endif
