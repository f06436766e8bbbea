// The ensemble, and what its commands have in common: words, options, objects, names, expressions.

#include "tcl/ensemble.h"

#include <climits>

#include "reader/reader.h"
#include "tcl/syntax_error.h"

namespace tamsel {

// clang-format off
const Subcommand subcommands[] = {
    // word, handler, words from, to, usage, what it wants
    {"assert", &Question::assert_expression, 1, 1, "program expression", Wants::change},
    {"assertions", &Question::assertions, 0, 0, "program", Wants::program},
    {"check", &Question::check_program, 0, 2, "program ?-only kinds?", Wants::program},
    {"clock", &Question::clock, 1, 1, "program expression", Wants::program},
    {"cone", &Question::cone, 1, -1,
        "program names ?-direction needs|users? ?-depth count? ?-now?", Wants::program},
    {"copy", &Question::copy, 1, 1, "program newProgram", Wants::program},
    {"declare", &Question::declare, 2, -1,
        "program kind ?arg ...?", Wants::change},
    {"define", &Question::define, 2, 2, "program names expression", Wants::change},
    {"definition", &Question::definition, 1, 3,
        "program name ?-as text|full|tree?", Wants::program},
    {"describe", &Question::describe_name, 1, 1, "program name", Wants::program},
    {"format", &Question::format, 1, 3, "program expression ?-as text|full|tree?", Wants::program},
    {"messages", &Question::messages, 0, 0, "program", Wants::program},
    {"names", &Question::names, 0, -1,
        "program ?-kind kind? ?-type type? ?-clock name? ?-defined boolean? ?--? ?pattern?",
        Wants::program},
    {"needs", &Question::needs, 1, 2, "program name ?-now?", Wants::program},
    {"read", &Question::read, 1, 1, "program text", Wants::object},
    {"remove", &Question::remove, 1, -1, "program name ?name ...?", Wants::change},
    {"rename", &Question::rename, 2, -1, "program old new ?old new ...?", Wants::change},
    {"retract", &Question::retract, 1, -1, "program index ?index ...?", Wants::change},
    {"substitute", &Question::substitute, 2, 4,
        "program name expression ?-in names?", Wants::change},
    {"text", &Question::text, 0, 2, "program ?-format quarel|ec|json?", Wants::program},
    {"type", &Question::type, 1, 1, "program expression", Wants::program},
    {"undefine", &Question::undefine, 1, -1, "program name ?name ...?", Wants::change},
    {"users", &Question::users, 1, 2, "program name ?-now?", Wants::program},
    {"write", &Question::write, 1, 3, "program file ?-format quarel|ec|json?", Wants::program},
};
// clang-format on
const int subcommand_count = sizeof subcommands / sizeof subcommands[0];

Ensemble::Ensemble(Tcl_Interp* served) : interp(served) {
  constexpr const char* name = "::tamsel";
  Tcl_Namespace* space = Tcl_FindNamespace(interp, name, nullptr, TCL_GLOBAL_ONLY);
  if (space == nullptr) space = Tcl_CreateNamespace(interp, name, nullptr, nullptr);
  Tcl_Obj* map = Tcl_NewDictObj();
  commands_.reserve(static_cast<size_t>(subcommand_count));
  for (int i = 0; i < subcommand_count; ++i) {
    commands_.push_back({this, &subcommands[i]});
    const std::string command = std::string(name) + "::" + subcommands[i].word;
    Tcl_CreateObjCommand(interp, command.c_str(), run, &commands_.back(), nullptr);
    Tcl_DictObjPut(nullptr, map, Tcl_NewStringObj(subcommands[i].word, -1),
                   Tcl_NewStringObj(command.c_str(), -1));
  }
  Tcl_Command ensemble = Tcl_CreateEnsemble(interp, name, space, TCL_ENSEMBLE_PREFIX);
  Tcl_SetEnsembleMappingDict(interp, ensemble, map);
}

int Ensemble::run(void* data, Tcl_Interp* interp, int objc, Tcl_Obj* const objv[]) {
  const Command* command = static_cast<Command*>(data);
  return run_command(
      interp, [=] { return Question(command->ensemble, *command->row, objc, objv).answer(); });
}

Question::~Question() {
  guest_.reset();
  if (prg_ != nullptr) prg_->silent = was_silent_;
  if (object_ != nullptr) object_->end_call();
}

int Question::answer() {
  if (objc_ < 2 || word_count() < row_.min_words ||
      (row_.max_words >= 0 && word_count() > row_.max_words))
    return usage_error();
  if (find_object() != TCL_OK) return TCL_ERROR;
  if (row_.wants != Wants::change) return (this->*row_.handler)();
  if (object_->calls > 1) {
    const char* text = Tcl_GetString(objv_[1]);
    return fail({{"STATE", "BUSY"}}, std::string("'") + text + "' is in use");
  }
  waits_.emplace();
  return (this->*row_.handler)();
}

// --- Errors.

int Question::usage_error() {
  Tcl_WrongNumArgs(interp_, 1, objv_, row_.usage);
  const std::string text = Tcl_GetStringResult(interp_);
  return fail({{"USAGE", row_.word}}, text);
}

int Question::value_error(const char* what, Tcl_Obj* value, const char* expected) {
  const char* text = Tcl_GetString(value);
  return fail({{"USAGE", "VALUE", text}},
              std::string("bad ") + what + " \"" + text + "\": must be " + expected);
}

// --- Words.

int Question::read_word(Tcl_Obj* value, const char* const words[], const char* what, int* place) {
  if (Tcl_GetIndexFromObjStruct(interp_, value, words, sizeof *words, what, 0, place) == TCL_OK)
    return TCL_OK;
  const std::string text = Tcl_GetStringResult(interp_);
  return fail({{"USAGE", "VALUE", Tcl_GetString(value)}}, text);
}

int Question::read_now(int first, bool* now) {
  static const Option options[] = {{"-now", false}, {nullptr, false}};
  *now = first < word_count();
  return read_options(first, options, [](int, Tcl_Obj*) { return TCL_OK; });
}

int Question::read_names(Tcl_Obj* list, std::vector<int>* names) {
  return each_word(list, "names", [&](Tcl_Obj* item) {
    Description described;
    if (find_name(item, &described) != TCL_OK) return TCL_ERROR;
    names->push_back(described.symbol);
    return TCL_OK;
  });
}

int Question::read_form(int first, ExpressionForm* form) {
  static const Option options[] = {{"-as", true}, {nullptr, false}};
  static const char* const forms[] = {"text", "full", "tree", nullptr};
  int place = 0;
  if (read_options(first, options, [&](int, Tcl_Obj* value) {
        return read_word(value, forms, "form", &place);
      }) != TCL_OK)
    return TCL_ERROR;
  *form = static_cast<ExpressionForm>(place);
  return TCL_OK;
}

// --- What words stand for.

// The object that a command is; null where it is none.
static EcPrgVar* object_of(Tcl_Command command) {
  Tcl_CmdInfo info;
  if (command == nullptr || Tcl_GetCommandInfoFromToken(command, &info) == 0) return nullptr;
  return info.proc == ECPRG_call ? static_cast<EcPrgVar*>(info.clientData) : nullptr;
}

// The command that an imported one stands for.
static Tcl_Command origin_of(Tcl_Interp* interp, Tcl_Obj* word) {
  const Value words[] = {Value("::namespace"), Value("origin"), Value(word)};
  Tcl_Obj* const call[] = {words[0].get(), words[1].get(), words[2].get()};
  if (Tcl_EvalObjv(interp, 3, call, 0) != TCL_OK) return nullptr;
  return Tcl_GetCommandFromObj(interp, Tcl_GetObjResult(interp));
}

int Question::find_object() {
  Tcl_Obj* word = objv_[1];
  object_ = object_of(Tcl_GetCommandFromObj(interp_, word));
  if (object_ == nullptr) object_ = object_of(origin_of(interp_, word));
  if (object_ == nullptr) {
    const char* text = Tcl_GetString(word);
    return fail({{"LOOKUP", "OBJECT", text}}, std::string("'") + text + "' is no program object");
  }
  object_->begin_call();
  if (object_->prg == nullptr && row_.wants != Wants::object) {
    const char* text = Tcl_GetString(word);
    return fail({{"STATE", "PROGRAM", text}}, std::string("'") + text + "' has no program");
  }
  prg_ = object_->prg.get();
  if (prg_ != nullptr) was_silent_ = std::exchange(prg_->silent, true);
  return TCL_OK;
}

int Question::find_name(Tcl_Obj* word, Description* found) {
  const char* text = Tcl_GetString(word);
  const int symbol = prg_->symbols->known(text);
  if (symbol != 0 && describe(prg_, symbol, found)) return TCL_OK;
  return fail({{"LOOKUP", "IDENT", text}}, std::string("nothing is declared as '") + text + "'");
}

int Question::find_expression(Tcl_Obj* word, Exp** e) {
  const char* text = Tcl_GetString(word);
  *e = object_->string2exp(text);
  if (*e != nullptr && object_->is_stale(text))
    return fail({{"STATE", "HANDLE", text}}, stale_message);
  if (*e != nullptr) return TCL_OK;
  guest_.emplace(object_);
  *e = prg_->exp_read(text);
  return *e != nullptr ? TCL_OK : refuse_expression();
}

int Question::refuse_expression() {
  const char* message = prg_->error_message;
  const SyntaxError syntax(message);
  if (prg_->exp_refusal == ExpRefusal::syntax) return fail(syntax.code(), message);
  if (prg_->exp_refusal == ExpRefusal::busy) return fail({{"STATE", "BUSY"}}, message);
  if (prg_->exp_refusal == ExpRefusal::name) return fail({{"LOOKUP", "IDENT", message}}, message);
  return fail({{"TYPE", "EXPRESSION", message}}, message);
}

// --- Answers.

Tcl_Obj* Question::number(int value) const {
  return value >= -1 && value <= 1 ? ensemble_->shared.numbers[value + 1].get()
                                   : Tcl_NewIntObj(value);
}

Tcl_Obj* Question::list_of(const std::vector<int>& names) const {
  if (names.empty()) return ensemble_->shared.empty.get();
  std::vector<Tcl_Obj*> items;
  items.reserve(names.size());
  for (const int symbol : names) items.push_back(Tcl_NewStringObj(name(symbol), -1));
  return Tcl_NewListObj(static_cast<ListSize>(items.size()), items.data());
}

Tcl_Obj* Question::list_of(const std::vector<Parameter>& parameters) const {
  Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
  for (const Parameter& parameter : parameters) {
    Tcl_Obj* const pair[] = {Tcl_NewStringObj(parameter.name != 0 ? name(parameter.name) : "", -1),
                             Tcl_NewStringObj(name(parameter.type), -1)};
    Tcl_ListObjAppendElement(nullptr, list, Tcl_NewListObj(2, pair));
  }
  return list;
}

int Question::give_names(const std::vector<int>& names) { return give(list_of(names)); }

int Question::refuse_long_text() {
  return fail({{"STATE", "SIZE"}}, "the text is longer than a value of Tcl can be");
}

int Question::give_text(const std::string& text) {
  if (text.size() > INT_MAX) return refuse_long_text();
  return give(Tcl_NewStringObj(text.data(), static_cast<int>(text.size())));
}

int Question::give_expression(Exp* e, ExpressionForm form) {
  if (form == ExpressionForm::text) return give_text(ExpressionText().brief(prg_, e));
  if (form == ExpressionForm::full) return give_text(ExpressionText().full(prg_, e));
  ListValue list;
  std::vector<std::pair<const char*, Value>> ops;  // the few that there are, by their texts
  for (const TreeNode& node : tree_of(prg_, e)) {
    size_t i = 0;
    while (i < ops.size() && ops[i].first != node.op) ++i;
    if (i == ops.size()) ops.emplace_back(node.op, Value(node.op));
    list.add(ops[i].second).add(number(node.operands));
    if (node.label[0] == '\0')
      list.add(ensemble_->shared.empty);
    else
      list.add(node.label);
  }
  return give(list.get());
}

}  // namespace tamsel
