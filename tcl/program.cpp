#include "tcl/program.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "foundation/errors.h"
#include "foundation/wordindex.h"
#include "model/walk.h"

using namespace tamsel;

static const Section inputs = {
    NameList::inputs, &EcPrg::nb_inputs,
    [](EcPrg* prg, int name, EcType* type) { prg->add_input(name, type, prg->true_clock); }};
static const Section outputs = {
    NameList::outputs, &EcPrg::nb_outputs,
    [](EcPrg* prg, int name, EcType* type) { prg->add_output(name, type, prg->true_clock, 0); }};
static const Section locals = {
    NameList::locals, &EcPrg::nb_locals,
    [](EcPrg* prg, int name, EcType* type) { prg->add_local(name, type, prg->true_clock); }};
static const Section assertions = {NameList::assertions, &EcPrg::nb_assertions};
static const Section functions = {NameList::functions, &EcPrg::nb_functions};

// clang-format off
constexpr Operation operations[] = {
    // word, handler, parameters from, to, usage, effect, section
    //     help, what opens the text
    {"init", &EcPrgVar::init, 0, 1, "[<node-name>]", Effect::replaces, nullptr,
        " [<node name>]  --init an empty quarel node"},
    {"load", &EcPrgVar::load, 1, 1, "<ec-file-name>", Effect::replaces, nullptr,
        " <file.ec>  --load ec program from file", &EcPrgVar::open_file},
    {"loadch", &EcPrgVar::load, 1, 1, "<ec-file-name>", Effect::replaces, nullptr,
        " <fileid>   --load ec program from channel", &EcPrgVar::open_channel},
    {"dump", &EcPrgVar::dump, 0, 1, "[<ec-file-name>]", Effect::asks, nullptr,
        " [<file>]  --dump the structure in quarel format"},
    {"profile", &EcPrgVar::profile, 0, 0, "<index>", Effect::adds, nullptr,
        "  --get the program's profile"},
    {"nb-ins", &EcPrgVar::nbelts, 0, 0, nullptr, Effect::asks, &inputs,
        "   --get the number of inputs"},
    {"nb-outs", &EcPrgVar::nbelts, 0, 0, nullptr, Effect::asks, &outputs,
        "   --get the number of outputs"},
    {"nb-locs", &EcPrgVar::nbelts, 0, 0, nullptr, Effect::asks, &locals,
        "   --get the number of locals"},
    {"nb-asts", &EcPrgVar::nbelts, 0, 0, nullptr, Effect::asks, &assertions,
        "   --get the number of assertions"},
    {"nb-funcs", &EcPrgVar::nbelts, 0, 0, nullptr, Effect::asks, &functions,
        "   --get the number of external functions"},
    {"in-name", &EcPrgVar::varname, 1, 1, "<index>", Effect::asks, &inputs,
        " <0..nb-inputs-1>  --get the name of an input"},
    {"out-name", &EcPrgVar::varname, 1, 1, "<index>", Effect::asks, &outputs,
        " <0..nb-outputs-1> --get the name of an output"},
    {"loc-name", &EcPrgVar::varname, 1, 1, "<index>", Effect::asks, &locals,
        " <0..nb-locals-1>  --get the name of a local"},
    {"in-type", &EcPrgVar::vartype, 1, 1, "<index>", Effect::asks, &inputs,
        " <0..nb-inputs-1>  --get the type of an input"},
    {"out-type", &EcPrgVar::vartype, 1, 1, "<index>", Effect::asks, &outputs,
        " <0..nb-outputs-1> --get the type of an output"},
    {"loc-type", &EcPrgVar::vartype, 1, 1, "<index>", Effect::asks, &locals,
        " <0..nb-locals-1>  --get the type of an loacl"},
    {"add-in", &EcPrgVar::addvar, 1, 2, "<type-name> [<var-name>]", Effect::adds, &inputs,
        " [<ident>]  --creates a new input identifier"},
    {"add-out", &EcPrgVar::addvar, 1, 2, "<type-name> [<var-name>]", Effect::adds, &outputs,
        " [<ident>]  --creates a new output identifier"},
    {"add-loc", &EcPrgVar::addvar, 1, 2, "<type-name> [<var-name>]", Effect::adds, &locals,
        " [<ident>]  --creates a new local identifier"},
    {"func-decl", &EcPrgVar::funcdecl, 1, 1, "<index>", Effect::adds, &functions,
        " <0..nb-funcs-1>  --get the declaration of a function"},
    {"add-func", &EcPrgVar::addfunc, 4, -1, "<type-name> [<var-name>]", Effect::adds, &functions,
        " <name> <type>+ : <type>+ --declares a external function"},
    {"exp", &EcPrgVar::build_exp, 1, 1, "<quarel expression>", Effect::adds, nullptr,
        " <quarel expression>  --parse and build a quarel expression"},
    {"eq", &EcPrgVar::equation, 2, 2, "<var name> <quarel expression>", Effect::adds, nullptr,
        " <var name> <quarel expression>  --defines an equation"},
    {"exp-type", &EcPrgVar::exp_type, 1, 1, "<quarel expression>", Effect::adds, nullptr,
        " <quarel expression>  --get expression type"},
};
// clang-format on
constexpr int operation_count = sizeof operations / sizeof operations[0];

constexpr WordIndex operation_index(operations, &Operation::word);

static const int followed = TCL_TRACE_RENAME | TCL_TRACE_DELETE;

// Of a full name, the one that a hidden command goes by, and one in the global namespace.
static const char* bare(const char* full) {
  return *full != '\0' ? full + std::strlen("::") : full;
}

// Follows the command's name. Tcl forgets the traces of a command that goes, also in the middle of
// a rename, when a trace of somebody else has deleted it: what is taken back here is what that
// rename does not come to. Such a command may have lost the name that it was to get by now, and
// still be found under the old one, or be hidden.
static void follow_command(void* data, Tcl_Interp* interp, const char*, const char*, int flags) {
  EcPrgVar* object = static_cast<EcPrgVar*>(data);
  const bool goes = (flags & TCL_TRACE_DELETE) != 0;
  const char* name = goes ? object->found_name() : nullptr;
  if (name == nullptr) {
    object->note_name();
    if (!goes) return;
    name = object->found_name();
  }
  if (name != nullptr) return object->stop_following(name);
  show_hidden(interp, bare(Tcl_GetString(object->full_name)),
              [object](const char* shown_name) { object->stop_following(shown_name); });
}

void EcPrgVar::stop_following(const char* name) {
  if (is_found_as(name)) Tcl_UntraceCommand(owner->interp, name, followed, follow_command, this);
}

EcPrgVar::~EcPrgVar() {
  if (full_name != nullptr) Tcl_DecrRefCount(full_name);
}

void EcPrgVar::set_command(Tcl_Command token) {
  command = token;
  full_name = Tcl_NewObj();
  Tcl_IncrRefCount(full_name);
  note_name();
  if (const char* name = found_name())
    Tcl_TraceCommand(owner->interp, name, followed, follow_command, this);
}

// Asks Tcl, since what a trace is told is old where an earlier one has renamed the command again.
void EcPrgVar::note_name() {
  Tcl_SetStringObj(full_name, "", 0);
  Tcl_GetCommandFullName(owner->interp, command, full_name);
}

// To Tcl, ":::p" is the same as "::p": it finds a command called ":p" by its bare name alone.
const char* EcPrgVar::found_name() const {
  const char* full = Tcl_GetString(full_name);
  for (const char* name : {full, bare(full)})
    if (is_found_as(name)) return name;
  return nullptr;
}

bool EcPrgVar::is_found_as(const char* name) const {
  Tcl_CmdInfo found;
  return Tcl_GetCommandInfo(owner->interp, name, &found) != 0 && found.clientData == this;
}

bool EcPrgVar::has_command(const std::vector<void*>& hidden) const {
  if (command == nullptr) return false;
  return found_name() != nullptr || std::find(hidden.begin(), hidden.end(), this) != hidden.end();
}

// One after the other, however many a script has replaced.
void EcPrgVar::drop_replaced() {
  while (replaced != nullptr) replaced = std::move(replaced->next);
}

int ECPRG_call(void* data, Tcl_Interp* interp, int argc, const char* argv[]) {
  EcPrgVar* object = static_cast<EcPrgVar*>(data);
  object->begin_call();  // a trace may delete the command meanwhile
  const int result = run_command(interp, [=] {
    if (Verbose() != 0) Verbose("call of : %s\n", object->command_name());
    if (argc < 2) return object->owner->cmd_error(argv[0], "<operation> [<param>*]");
    return object->call(argv[1], argc - 2, argv + 2);
  });
  object->end_call();
  return result;
}

void ECPRG_delete(void* data) {
  EcPrgVar* object = static_cast<EcPrgVar*>(data);
  Verbose("delete of : %s\n", object->command_name());
  object->owner->remove_ecprg(object);
  object->owner->print_ecprgs();
  object->command = nullptr;
  object->release();
}

int EcPrgVar::call(const char* word, int nparams, const char* params[]) {
  const Operation* operation = operation_index.find(word);
  if (operation == nullptr)
    return call_error({{"LOOKUP", "OPERATION", word}}, "unknown operation `%s'", word);
  if (nparams < operation->min_params ||
      (operation->max_params >= 0 && nparams > operation->max_params))
    return usage_error(*operation);
  if (operation->effect != Effect::replaces && prg == nullptr)
    return call_error({{"STATE", word}}, "%s %s: no file loaded", command_name(), word);
  return operation->effect == Effect::adds
             ? add_to_program(*operation, nparams, params)
             : (this->*operation->handler)(*operation, nparams, params);
}

// Runs an operation, and takes back what it has made where memory runs out under it.
int EcPrgVar::add_to_program(const Operation& operation, int nparams, const char* params[]) {
  const EcPrg::Mark program = prg->mark();
  const int names = symbols->nb_symbols;
  const size_t handles = handled_exps.size();
  const int new_idents = new_ident_count;
  try {
    return (this->*operation.handler)(operation, nparams, params);
  } catch (const std::bad_alloc&) {
    prg->roll_back(program);
    symbols->cut_back(names);
    if (exp_names != nullptr) exp_names->cut_back(static_cast<int>(handles));
    handled_exps.resize(handles);
    new_ident_count = new_idents;
    throw;
  }
}

int EcPrgVar::call_error(const ErrorCode& code, const char* format, ...) {
  va_list args;
  va_start(args, format);
  const std::string text = format_text(format, args);
  va_end(args);
  return deliver_error(owner->interp, code,
                       std::string("Dorvik: bad `") + command_name() + "' call\n=> " + text);
}

int EcPrgVar::usage_error(const Operation& operation) {
  const ErrorCode code = {{"USAGE", operation.word}};
  if (operation.usage == nullptr)
    return call_error(code, "%s %s: no parameter expected", command_name(), operation.word);
  return call_error(code, "usage: %s %s %s", command_name(), operation.word, operation.usage);
}

EcPrgVar* EcPrgVar::add(EcPrgVar* list, EcPrgVar* object) {
  object->next = list;
  if (list != nullptr) list->previous = object;
  return object;
}

EcPrgVar* EcPrgVar::remove(EcPrgVar* list, EcPrgVar* object) {
  if (object->previous == nullptr && list != object) return list;
  if (object->next != nullptr) object->next->previous = object->previous;
  if (object->previous == nullptr) return object->next;
  object->previous->next = object->next;
  return list;
}

const char* EcPrgVar::command_name() const {
  return command != nullptr ? Tcl_GetCommandName(owner->interp, command) : "";
}

const char* EcPrgVar::exp2string(Exp* e) {
  if (exp_names == nullptr) exp_names = std::make_unique<SymbolTable>();
  const int number = exp_names->add("_exp%lX", reinterpret_cast<unsigned long>(e));
  if (static_cast<size_t>(number) > handled_exps.size()) handled_exps.push_back(e);
  return exp_names->name(number);
}

Exp* EcPrgVar::string2exp(const char* handle) {
  // As it stands: a text that means another name has a '%', which no handle has.
  const int number = exp_names != nullptr ? exp_names->find_text(handle) : 0;
  return number != 0 ? handled_exps[static_cast<size_t>(number) - 1] : nullptr;
}

namespace {

// Looks for a name that is gone. One that was declared again is another one.
struct StaleVisitor : ExpVisitor {
  explicit StaleVisitor(EcPrg* program) : prg(program) {}

  bool enter(Exp* exp, Exp*, int) {
    if (exp->nb_args == 0) {
      const IdentInfo* ident = prg->ident(exp->ident);
      is_stale |= ident == nullptr || ident->ident_exp != exp;
    } else if (exp->nature == CALL_n) {
      const FuncInfo* function = prg->function(exp->order());
      is_stale |= function == nullptr || function->result_type != exp->type ||
                  function->param_type != exp->args()[0]->type;
    }
    return !is_stale;
  }

  EcPrg* prg;
  bool is_stale = false;
};

}  // namespace

bool EcPrgVar::is_stale(const char* handle) {
  if (prg->removals == 0) return false;
  const size_t place = static_cast<size_t>(exp_names->find_text(handle)) - 1;
  sound_handles.resize(handled_exps.size());
  if (sound_handles[place] == prg->removals) return false;
  StaleVisitor visitor(prg.get());
  walk(handled_exps[place], visitor);
  if (!visitor.is_stale) sound_handles[place] = prg->removals;
  return visitor.is_stale;
}
