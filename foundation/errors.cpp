#include "foundation/errors.h"

#include <unistd.h>
#include <cstdio>
#include <cstdlib>

std::atomic<int> VERBOSE{0};
std::atomic<int> PIPE{0};
std::atomic<const char*> TOOL_NAME{" "};
std::atomic<int> nb_global_error{0};
char WHEEL[4] = {'|', '/', '-', '\\'};
std::atomic<int> WHEEL_INDEX{0};
std::atomic<int> WHEEL_STEP{1};

void set_verbose_mode() { set_verbose_mode(1); }

void set_verbose_mode(int level) { VERBOSE = level; }

void set_pipe_mode() { PIPE = 1; }

void set_errors_tool_name(const char* name) { TOOL_NAME = name; }

// A program that reads the messages gets lines with a mark instead of characters that move a
// cursor.
PRINTF_LIKE(1, 0)
static void print_progress(const char* format, va_list args) {
  if (PIPE && *format == '\r') {
    fputs(" \n^R", stderr);
    ++format;
  } else if (PIPE && *format == '\b') {
    fputs("\n^B", stderr);
    ++format;
  }
  vfprintf(stderr, format, args);
  fflush(stderr);
}

int Verbose(const char* format, ...) {
  if (VERBOSE == 0) return VERBOSE;
  va_list args;
  va_start(args, format);
  print_progress(format, args);
  va_end(args);
  return VERBOSE;
}

int Verbose(int level, const char* format, ...) {
  if (VERBOSE < level) return VERBOSE;
  va_list args;
  va_start(args, format);
  print_progress(format, args);
  va_end(args);
  return VERBOSE;
}

int VerboseWheel(int period) {
  if (VERBOSE == 0 || !isatty(STDERR_FILENO)) return VERBOSE;
  if (WHEEL_STEP < period) {
    ++WHEEL_STEP;
    return VERBOSE;
  }
  WHEEL_STEP = 0;
  const int index = WHEEL_INDEX;
  WHEEL_INDEX = (index + 1) % 4;
  fprintf(stderr, "%c\b", WHEEL[index]);
  fflush(stderr);
  return VERBOSE;
}

PRINTF_LIKE(1, 0)
static void print_message(const char* format, va_list args) {
  vfprintf(stderr, format, args);
  fputc('\n', stderr);
}

void IError(const char* format, ...) {
  fputs("Sorry, Internal Error :\n", stderr);
  va_list args;
  va_start(args, format);
  print_message(format, args);
  va_end(args);
  exit(1);
}

void Error(const char* format, ...) {
  fprintf(stderr, "%s Error :\n", TOOL_NAME.load());
  va_list args;
  va_start(args, format);
  print_message(format, args);
  va_end(args);
  exit(1);
}

void Warning(const char* format, ...) {
  fprintf(stderr, "%s Warning :\n", TOOL_NAME.load());
  va_list args;
  va_start(args, format);
  print_message(format, args);
  va_end(args);
}

void GError(const char* format, ...) {
  va_list args;
  va_start(args, format);
  vfprintf(stderr, format, args);
  va_end(args);
  ++nb_global_error;
}

int GErrors() { return nb_global_error; }

void GErrorRecover() {
  if (nb_global_error == 0) return;
  fprintf(stderr, "*** %d Errors stop\n", GErrors());
  exit(1);
}
