// The commands of the ensemble that change a program, and those that hand it on.

#include <cerrno>

#include "tcl/dorvik.h"
#include "tcl/ensemble.h"

namespace tamsel {

int Question::outcome(bool is_done) {
  if (is_done) return TCL_OK;
  // A copy: a script that runs in the delivery may have another edit refused.
  const Refusal why = object_->program_editor().refusal;
  const char* const name = why.name.c_str();
  switch (why.reason) {
    case Refusal::bad_name:
      return fail({{"USAGE", "NAME", name}}, why.message);
    case Refusal::none:
    case Refusal::bad_list:
      return fail({{"USAGE", "VALUE", name}}, why.message);
    case Refusal::taken:
      return fail({{"LOOKUP", "USED", name}}, why.message);
    case Refusal::unknown:
      return fail({{"LOOKUP", "IDENT", name}}, why.message);
    case Refusal::unknown_type:
      return fail({{"LOOKUP", "TYPE", name}}, why.message);
    case Refusal::no_equation:
      return fail({{"LOOKUP", "DEFINITION", name}}, why.message);
    case Refusal::no_assertion:
      return fail({{"LOOKUP", "INDEX", name}}, why.message);
    case Refusal::ill_typed:
      return fail({{"TYPE", "EQUATION", name}}, why.message);
    case Refusal::ill_asserted:
      return fail({{"TYPE", "EXPRESSION", why.message.c_str()}}, why.message);
    case Refusal::in_use:
      break;
  }
  return fail({{"STATE", "USED", name, why.who.c_str()}}, why.message);
}

int Question::read_texts(Tcl_Obj* list, const char* what, std::vector<std::string>* texts) {
  return each_word(list, what, [=](Tcl_Obj* item) {
    texts->push_back(Tcl_GetString(item));
    return TCL_OK;
  });
}

int Question::read_draft(Tcl_Obj* word, size_t names, std::optional<Draft>* draft) {
  Exp* e;
  if (find_expression(word, &e) != TCL_OK) return TCL_ERROR;
  if (prg_->type(e) == nullptr) {
    prg_->exp_refusal = ExpRefusal::type;
    return refuse_expression();
  }
  draft->emplace(prg_, e, names);
  guest_.reset();
  return TCL_OK;
}

// --- Declarations.

int Question::declare() {
  int kind;
  if (read_word(word(0), name_kind_words, "kind", &kind) != TCL_OK) return TCL_ERROR;
  switch (name_kinds[kind]) {
    case NameKind::type:
      return declare_type();
    case NameKind::function:
      return declare_function();
    default:
      return declare_variable(name_kinds[kind]);
  }
}

int Question::declare_variable(NameKind kind) {
  static const Option options[] = {{"-clock", true}, {nullptr, false}};
  std::string clock;
  if (word_count() < 3) return usage_error();
  if (read_options(3, options, [&](int, Tcl_Obj* value) {
        clock = Tcl_GetString(value);
        return TCL_OK;
      }) != TCL_OK)
    return TCL_ERROR;
  const bool is_done = object_->program_editor().declare(kind, Tcl_GetString(word(1)),
                                                         Tcl_GetString(word(2)), clock);
  return is_done ? give(word(2)) : outcome(false);
}

int Question::declare_type() {
  std::vector<std::string> values;
  for (int i = 2; i < word_count(); ++i) values.push_back(Tcl_GetString(word(i)));
  const bool is_done = object_->program_editor().declare_type(Tcl_GetString(word(1)), values);
  return is_done ? give(word(1)) : outcome(false);
}

// Each is a type, or a name and a type.
int Question::read_parameters(Tcl_Obj* list, std::vector<Editor::Parameter>* parameters) {
  return each_word(list, "parameters", [=](Tcl_Obj* item) {
    std::vector<std::string> words;
    if (read_texts(item, "parameter", &words) != TCL_OK) return TCL_ERROR;
    if (words.empty() || words.size() > 2)
      return value_error("parameter", item, "a type, or a name and a type");
    parameters->push_back({words.size() == 2 ? words[0] : "", words.back()});
    return TCL_OK;
  });
}

int Question::declare_function() {
  if (word_count() != 4) return usage_error();
  std::vector<Editor::Parameter> params;
  std::vector<Editor::Parameter> results;
  if (read_parameters(word(2), &params) != TCL_OK || read_parameters(word(3), &results) != TCL_OK)
    return TCL_ERROR;
  const bool is_done = object_->program_editor().declare_function(
      Tcl_GetString(word(1)), std::move(params), std::move(results));
  return is_done ? give(word(1)) : outcome(false);
}

// --- Equations and assertions.

int Question::define() {
  std::vector<std::string> names;
  std::optional<Draft> right;
  if (read_texts(word(0), "names", &names) != TCL_OK ||
      read_draft(word(1), names.size(), &right) != TCL_OK)
    return TCL_ERROR;
  return outcome(object_->program_editor().define(names, std::move(*right)));
}

int Question::undefine() {
  std::vector<std::string> names;
  for (int i = 0; i < word_count(); ++i) names.push_back(Tcl_GetString(word(i)));
  return outcome(object_->program_editor().undefine(names));
}

int Question::assert_expression() {
  std::optional<Draft> e;
  if (read_draft(word(0), 0, &e) != TCL_OK) return TCL_ERROR;
  int index;
  if (!object_->program_editor().assert_that(std::move(*e), &index)) return outcome(false);
  return give(Tcl_NewIntObj(index));
}

int Question::retract() {
  std::vector<int> indexes;
  for (int i = 0; i < word_count(); ++i) {
    int index;
    if (Tcl_GetIntFromObj(nullptr, word(i), &index) != TCL_OK)
      return value_error("index", word(i), "an integer from 0");
    indexes.push_back(index);
  }
  return outcome(object_->program_editor().retract(indexes));
}

// --- Names.

int Question::rename() {
  if (word_count() % 2 != 0) return usage_error();
  std::vector<std::pair<std::string, std::string>> names;
  for (int i = 0; i < word_count(); i += 2)
    names.emplace_back(Tcl_GetString(word(i)), Tcl_GetString(word(i + 1)));
  return outcome(object_->program_editor().rename(names));
}

int Question::remove() {
  std::vector<std::string> names;
  for (int i = 0; i < word_count(); ++i) names.push_back(Tcl_GetString(word(i)));
  return outcome(object_->program_editor().remove(names));
}

int Question::substitute() {
  static const Option options[] = {{"-in", true}, {nullptr, false}};
  std::vector<std::string> in;
  bool is_everywhere = true;
  std::optional<Draft> value;
  if (read_options(2, options,
                   [&](int, Tcl_Obj* list) {
                     is_everywhere = false;
                     in.clear();
                     return read_texts(list, "names", &in);
                   }) != TCL_OK ||
      read_draft(word(1), 0, &value) != TCL_OK)
    return TCL_ERROR;
  int count;
  if (!object_->program_editor().substitute(Tcl_GetString(word(0)), std::move(*value),
                                            is_everywhere ? nullptr : &in, &count))
    return outcome(false);
  return give(Tcl_NewIntObj(count));
}

// --- The whole program.

int Question::copy() {
  Dorvik* const dorvik = object_->owner;
  auto made = std::make_unique<EcPrgVar>(dorvik);
  EcPrgVar::Program fresh;
  fresh.prg->copy_from(*prg_);
  made->install(std::move(fresh));
  if (dorvik->create_ecprg(Tcl_GetString(word(0)), std::move(made)) != TCL_OK) return TCL_ERROR;
  return give(word(0));
}

int Question::write() {
  std::string text;
  if (read_program_text(1, [&](std::string_view part) { text += part; }) != TCL_OK)
    return TCL_ERROR;
  const char* name = Tcl_GetString(word(0));
  errno = write_by_name(name, text);
  if (errno == 0) return TCL_OK;
  return fail(io_error(name), std::string("can't write file '") + name + "'");
}

}  // namespace tamsel
