// foundation/errors.h: progress messages under a verbosity level, and reports of errors.
//
// Everything goes to standard error. The state is the process's, for all threads.
#ifndef FOUNDATION_ERRORS_H
#define FOUNDATION_ERRORS_H

#include <atomic>

#include "foundation/text.h"

extern std::atomic<int> VERBOSE;            // verbosity level; 0 is silent
extern std::atomic<int> PIPE;               // 1: a program reads standard error
extern std::atomic<const char*> TOOL_NAME;  // in the headers of errors and warnings; borrowed
extern std::atomic<int> nb_global_error;    // counted by GError
extern char WHEEL[4];                       // the characters of the progress wheel, in turn
extern std::atomic<int> WHEEL_INDEX;        // the one to draw next
extern std::atomic<int> WHEEL_STEP;         // calls since the wheel last moved

void set_verbose_mode();           // level 1
void set_verbose_mode(int level);  // 0: silent
void set_pipe_mode();
void set_errors_tool_name(const char* name);  // borrows `name` for good

// Print and flush a message when the level is not 0, or is at least `level`. All return the level.
// In pipe mode a leading '\r' or '\b' of the format becomes a line that starts with "^R" or "^B".
int Verbose(const char* format, ...) PRINTF_LIKE(1, 2);
int Verbose(int level, const char* format, ...) PRINTF_LIKE(2, 3);
inline int Verbose() { return VERBOSE; }
// Turns a wheel on a terminal once every `period` + 1 calls. Returns the level.
int VerboseWheel(int period);

// Internal and fatal errors: print the message and exit the process with status 1.
[[noreturn]] void IError(const char* format, ...) PRINTF_LIKE(1, 2);
[[noreturn]] void Error(const char* format, ...) PRINTF_LIKE(1, 2);
void Warning(const char* format, ...) PRINTF_LIKE(1, 2);

// Counted errors: GError prints its message as it is and counts it, GErrors gives the count, and
// GErrorRecover exits with status 1 if there was any.
void GError(const char* format, ...) PRINTF_LIKE(1, 2);
int GErrors();
void GErrorRecover();

#endif
