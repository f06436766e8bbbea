#include "tcl/dorvik.h"

#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <utility>

#include "foundation/errors.h"
#include "reader/reader.h"
#include "tcl/ensemble.h"
#include "tcl/program.h"
#include "tcl/tcl_init_quarel.h"
#include "tcl/tcl_timer.h"

using namespace tamsel;

Dorvik* last_dorvik;

// One global command.
struct GlobalCommand {
  const char* name;
  Tcl_CmdProc* procedure;
  const char* usage;
  const char* help[2];  // lines of the help text, after the name
};

namespace {

int DORVIK_help(void*, Tcl_Interp*, int, const char*[]);
int DORVIK_verbose(void*, Tcl_Interp*, int, const char*[]);
int DORVIK_sigint(void*, Tcl_Interp*, int, const char*[]);
int DORVIK_ecprg(void*, Tcl_Interp*, int, const char*[]);

// In the order in which help prints them.
const GlobalCommand global_commands[] = {
    {"help", DORVIK_help, "", {"  -- print help", nullptr}},
    {"verbose",
     DORVIK_verbose,
     "[<int>]",
     {"          -- set verbose mode to 1 (normal)",
      " [<int>]  -- set verbose mode (0=silent) (>0=more and more)"}},
    {"sigint",
     DORVIK_sigint,
     "<proc name>",
     {" <tcl proc name>  --defines the <ctrl-c> handler", nullptr}},
    {"ecprg",
     DORVIK_ecprg,
     "<ecprg name> [<node name>]",
     {" <manager name> [<node name>]  --creates a node manager", nullptr}},
};

Dorvik* dorvik_of(void* data) { return static_cast<Dorvik::Command*>(data)->dorvik; }

int usage_error(void* data, const char* name) {
  return dorvik_of(data)->cmd_error(name, "%s", static_cast<Dorvik::Command*>(data)->row->usage);
}

int DORVIK_help(void*, Tcl_Interp*, int, const char*[]) {
  std::puts("dorvik commands are:");
  for (int i = 0; i < operation_count; ++i)
    std::printf("<ecprg> %s%s\n", operations[i].word, operations[i].help);
  for (const GlobalCommand& command : global_commands)
    for (const char* line : command.help)
      if (line != nullptr) std::printf("%s%s\n", command.name, line);
  std::fflush(stdout);
  return TCL_OK;
}

int DORVIK_verbose(void* data, Tcl_Interp* interp, int argc, const char* argv[]) {
  return run_command(interp, [=] {
    int level = 1;
    if (argc > 2 || (argc == 2 && monatoi(argv[1], &level) != 0)) return usage_error(data, argv[0]);
    set_verbose_mode(level);
    Verbose("verbose mode set to %d\n", level);
    return TCL_OK;
  });
}

int DORVIK_sigint(void* data, Tcl_Interp* interp, int argc, const char* argv[]) {
  return run_command(interp, [=] {
    if (argc != 2) return usage_error(data, argv[0]);
    dorvik_of(data)->set_sigint_script(argv[1]);
    return TCL_OK;
  });
}

int DORVIK_ecprg(void* data, Tcl_Interp* interp, int argc, const char* argv[]) {
  return run_command(interp, [=] {
    if (argc < 2) return usage_error(data, argv[0]);
    return dorvik_of(data)->create_ecprg(argv[1], argc - 2, argv + 2);
  });
}

// Ctrl-C is for the thread that loaded the library first, while it lives.
std::atomic<pthread_t> sigint_thread;
std::atomic<bool> has_sigint_thread;

// Whether this is that thread, which it is from now on where there was none yet.
bool is_sigint_thread() {
  static const bool is_first [[maybe_unused]] = [] {
    sigint_thread = pthread_self();
    return has_sigint_thread = true;
  }();
  static thread_local const struct Life {
    bool is_for_sigint = pthread_equal(pthread_self(), sigint_thread) != 0 && has_sigint_thread;
    ~Life() {
      if (is_for_sigint) has_sigint_thread = false;
    }
  } life;
  return life.is_for_sigint;
}

// How many want Ctrl-C to wait, on the thread that it is for, and whether it does.
volatile std::sig_atomic_t ctrl_c_holds = 0;
volatile std::sig_atomic_t ctrl_c_waits = 0;

// Evaluates the script inside the signal handler: an application that computes for hours without
// entering the event loop can be stopped all the same. The system may have stopped any thread for
// it.
void DORVIK_general_sigint(int) {
  const int error = errno;
  if (has_sigint_thread && pthread_equal(pthread_self(), sigint_thread) == 0)
    pthread_kill(sigint_thread, SIGINT);
  else if (has_sigint_thread && ctrl_c_holds > 0)
    ctrl_c_waits = 1;
  else if (has_sigint_thread && last_dorvik != nullptr)
    last_dorvik->run_sigint_script();
  std::signal(SIGINT, DORVIK_general_sigint);
  errno = error;
}

// Those of other threads, which are as long-lived.
Dorvik* last_of_others;
std::mutex others;

// The name in its namespace that Tcl gives to a command created as `name`.
const char* tail_of(const char* name) {
  while (const char* separator = std::strstr(name, "::"))
    for (name = separator + 2; *name == ':';) ++name;
  return name;
}

// Deletes the command that a new one called `name` is to replace. Tcl does so by itself, but what a
// trace on the deletion then puts in its place is thrown away without a call of its delete
// procedure. False where the command comes back again and again, or is just being renamed: it is
// found under its old name as well then, which would lead nowhere once it is deleted.
bool make_way(Tcl_Interp* interp, const char* name) {
  const char* tail = tail_of(name);
  std::string space(name, tail);
  while (!space.empty() && space.back() == ':') space.pop_back();
  const int scope = std::strstr(name, "::") != nullptr ? TCL_NAMESPACE_ONLY : TCL_GLOBAL_ONLY;
  for (int attempts = 10; attempts > 0; --attempts) {
    Tcl_Command known = Tcl_FindCommand(interp, name, nullptr, scope);
    if (known == nullptr) return true;
    const Tcl_Namespace* its = space.empty() ? Tcl_GetGlobalNamespace(interp)
                                             : Tcl_FindNamespace(interp, space.c_str(), nullptr, 0);
    Tcl_CmdInfo info;
    if (std::strcmp(Tcl_GetCommandName(interp, known), tail) != 0 ||
        Tcl_GetCommandInfoFromToken(known, &info) == 0 || info.namespacePtr != its)
      return false;
    Tcl_DeleteCommandFromToken(interp, known);
  }
  return false;
}

int creation_error(Tcl_Interp* interp, const char* name) {
  return deliver_error(interp, {{"STATE", "COMMAND", name}},
                       std::string("can't create command '") + name + "'");
}

// Objects that are still there have lost their command without being told.
void forget_interp(void* data, Tcl_Interp*) {
  Dorvik* dorvik = static_cast<Dorvik*>(data);
  while (EcPrgVar* left = dorvik->programs) {
    dorvik->remove_ecprg(left);
    left->release();
  }
  dorvik->ensemble.reset();
  dorvik->interp = nullptr;
}

// What both entry points do once the stubs are bound.
int provide_package(Tcl_Interp* interp) {
  if (Tcl_PkgProvideEx(interp, "Tamsel", TAMSEL_VERSION, nullptr) != TCL_OK) return TCL_ERROR;
  if (Tcl_InitQuarel(interp) != TCL_OK) return TCL_ERROR;
  if (TimeHandler_Init(interp) != 0) return TCL_ERROR;
  prepare_reader();
  return run_command(interp, [=] { return run_dorvik_Init(interp) == 0 ? TCL_OK : TCL_ERROR; });
}

}  // namespace

int Dorvik_Init(Tcl_Interp* interp) {
  if (Tcl_InitStubs(interp, REQUIRED_TCL, 0) == nullptr) return TCL_ERROR;
  if (Tk_InitStubs(interp, REQUIRED_TCL, 0) == nullptr) return TCL_ERROR;
  return provide_package(interp);
}

int Dorvikbatch_Init(Tcl_Interp* interp) {
  if (Tcl_InitStubs(interp, REQUIRED_TCL, 0) == nullptr) return TCL_ERROR;
  return provide_package(interp);
}

int run_dorvik_Init(Tcl_Interp* interp) {
  new Dorvik(interp);  // stays reachable through the others of its thread
  return 0;
}

Dorvik::Dorvik(Tcl_Interp* served) : interp(served), programs(nullptr), previous(nullptr) {
  for (const GlobalCommand& row : global_commands) commands.push_back({this, &row});
  Tcl_CallWhenDeleted(interp, forget_interp, this);
  sigint_script = Tcl_NewStringObj("puts \"dorvik: ctrl-c exit...\"\nexit", -1);
  Tcl_IncrRefCount(sigint_script);
  for (Command& command : commands)
    Tcl_CreateCommand(interp, command.row->name, command.row->procedure, &command, nullptr);
  ensemble = std::make_unique<tamsel::Ensemble>(interp);
  if (is_sigint_thread()) {
    previous = last_dorvik;
    last_dorvik = this;
    std::signal(SIGINT, DORVIK_general_sigint);
  } else {
    const std::lock_guard<std::mutex> lock(others);
    previous = last_of_others;
    last_of_others = this;
  }
}

Dorvik::~Dorvik() = default;

CtrlCWaits::CtrlCWaits() {
  if (is_sigint_thread()) ctrl_c_holds = ctrl_c_holds + 1;
}

CtrlCWaits::~CtrlCWaits() {
  if (!is_sigint_thread()) return;
  ctrl_c_holds = ctrl_c_holds - 1;
  if (ctrl_c_holds > 0 || ctrl_c_waits == 0) return;
  ctrl_c_waits = 0;
  std::raise(SIGINT);
}

int Dorvik::error(const char* format, ...) {
  va_list args;
  va_start(args, format);
  const std::string text = format_text(format, args);
  va_end(args);
  return deliver_error(interp, {{"STATE"}}, text);
}

int Dorvik::cmd_error(const char* command, const char* format, ...) {
  va_list args;
  va_start(args, format);
  const std::string usage = format_text(format, args);
  va_end(args);
  const std::string name = command;
  return deliver_error(
      interp, {{"USAGE", command}},
      "Dorvik: bad use of `" + name + "' command\n=> usage: " + name + " " + usage);
}

int Dorvik::create_ecprg(const char* name, int nparams, const char* params[]) {
  auto fresh = std::make_unique<EcPrgVar>(this);
  EcPrgVar* object = fresh.get();
  const bool has_node = nparams <= 1;
  if (has_node) fresh->make_node(nparams == 1 ? params[0] : tail_of(name));
  if (create_ecprg(name, std::move(fresh)) != TCL_OK) return TCL_ERROR;
  if (!has_node) object->call("init", nparams, params);
  return TCL_OK;
}

// The object is whole before one of that name is deleted: from there on nothing runs out of memory.
int Dorvik::create_ecprg(const char* name, std::unique_ptr<EcPrgVar> fresh) {
  if (!make_way(interp, name)) return creation_error(interp, name);
  EcPrgVar* object = fresh.get();
  Tcl_Command command = Tcl_CreateCommand(interp, name, ECPRG_call, object, ECPRG_delete);
  if (command == nullptr) return creation_error(interp, name);
  object->set_command(command);
  programs = EcPrgVar::add(programs, fresh.release());
  Verbose("creation of : %s\n", object->command_name());
  print_ecprgs();
  if (object->prg != nullptr) object->report_program(object->command_name(), "initialized");
  return TCL_OK;
}

EcPrgVar* Dorvik::remove_ecprg(EcPrgVar* p) { return programs = EcPrgVar::remove(programs, p); }

void Dorvik::print_ecprgs() {
  if (Verbose() <= 1) return;
  const std::vector<void*> hidden = hidden_commands(interp);
  Verbose(2, "current ecprg list :");
  for (const EcPrgVar* object = programs; object != nullptr; object = object->next)
    if (object->has_command(hidden)) Verbose(2, " %s", object->command_name());
  Verbose(2, "\n");
}

void Dorvik::set_sigint_script(const char* script) {
  // Ours before Ctrl-C can find it; the replaced one may be running.
  Tcl_Obj* fresh = Tcl_NewStringObj(script, -1);
  Tcl_IncrRefCount(fresh);
  Tcl_Obj* replaced = std::exchange(sigint_script, fresh);
  Tcl_DecrRefCount(replaced);
}

void Dorvik::run_sigint_script() {
  if (interp != nullptr) evaluate_aside(interp, sigint_script);
}

int monatoi(const char* text, int* value) {
  const char* end;
  *value = read_int(text, &end);
  return end == text;
}
