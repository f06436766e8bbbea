// Operations that declare things in a program, and that read and check expressions against it.

#include <cstring>

#include "foundation/errors.h"
#include "reader/reader.h"
#include "tcl/program.h"
#include "tcl/syntax_error.h"

using namespace tamsel;

// A new symbol: the prefix and a number that makes it one. The numbers never go back.
int EcPrgVar::built_new_ident(const char* prefix) {
  do {
    ++new_ident_count;
  } while (symbols->find("%s%d", prefix, new_ident_count) != 0);
  return symbols->add("%s%d", prefix, new_ident_count);
}

// Interns a name that was not there; false where it was, and is not one that has gone.
bool EcPrgVar::take_name(const char* word, int* symbol) {
  if (symbols->find_then_add(symbol, "%s", formatted_name(word).c_str()) == 0) return true;
  if (!prg->is_retired(*symbol)) return false;
  prg->set_retired(*symbol, false);
  return true;
}

int EcPrgVar::used_name_error(const Operation& operation, const char* word) {
  return call_error({{"LOOKUP", "USED", word}}, "%s %s : already used identifier '%s'",
                    command_name(), operation.word, word);
}

// Finds the type called `word`.
int EcPrgVar::find_type(const Operation& operation, const char* word, EcType** type) {
  const int symbol = symbols->find_text(formatted_name(word).c_str());
  *type = symbol != 0 ? prg->get_named_type(symbol) : nullptr;
  if (*type != nullptr) return TCL_OK;
  return call_error({{"LOOKUP", "TYPE", word}}, "%s %s : unknown type '%s'", command_name(),
                    operation.word, word);
}

int EcPrgVar::addvar(const Operation& operation, int nparams, const char* params[]) {
  EcType* type;
  if (find_type(operation, params[0], &type) != TCL_OK) return TCL_ERROR;
  int symbol;
  if (nparams == 1)
    symbol = built_new_ident("_XX");
  else if (!take_name(params[1], &symbol))
    return used_name_error(operation, params[1]);

  operation.section->add_variable(prg.get(), symbol, type);
  if (editor != nullptr) editor->note_declaration(symbol);
  const char* name = symbols->name(symbol);
  Verbose(2, "=> %s %s : %s\n", operation.word, name, params[0]);
  return text_result(name);
}

int EcPrgVar::addfunc(const Operation& operation, int nparams, const char* params[]) {
  int symbol;
  if (!take_name(params[0], &symbol)) return used_name_error(operation, params[0]);

  // From here on the name stays taken, also when a later step fails.
  std::vector<int> types[2];  // inputs, outputs
  int side = 0;
  for (int i = 1; i < nparams; ++i) {
    if (side == 0 && std::strcmp(params[i], ":") == 0) {
      side = 1;
      continue;
    }
    EcType* type;
    if (find_type(operation, params[i], &type) != TCL_OK) return TCL_ERROR;
    types[side].push_back(type->name);
  }
  if (types[0].empty() || types[1].empty()) return usage_error(operation);
  if (types[1].size() > 1)
    return call_error({{"TYPE", "TUPLE"}}, "Sorry, functions outputing tuples are not implemented");
  EcType* result = prg->define_type(types[1].data(), 1);
  EcType* param = prg->define_type(types[0].data(), static_cast<int>(types[0].size()));
  prg->add_usr_func(symbol, param, result, nullptr, nullptr);
  if (editor != nullptr) editor->note_declaration(symbol);
  const char* name = symbols->name(symbol);
  Verbose(2, "=> %s %s \n", operation.word, name);
  return text_result(name);
}

// Finds the expression that `word` is: a handle of this object, or else a text.
int EcPrgVar::find_exp(const Operation& operation, const char* word, Exp** e) {
  *e = string2exp(word);
  if (*e == nullptr) return parse_exp(operation, word, e);
  if (!is_stale(word)) return TCL_OK;
  return call_error({{"STATE", "HANDLE", word}}, "%s %s : %s", command_name(), operation.word,
                    stale_message);
}

int EcPrgVar::parse_exp(const Operation& operation, const char* text, Exp** e) {
  *e = prg->exp_parse(text);
  if (*e != nullptr) return TCL_OK;
  const char* message = prg->error_message;
  const SyntaxError syntax(message);
  ErrorCode code = {{"TYPE", "EXPRESSION", message}};
  if (prg->exp_refusal == ExpRefusal::syntax) code = syntax.code();
  if (prg->exp_refusal == ExpRefusal::busy) code = {{"STATE", "BUSY"}};
  if (prg->exp_refusal == ExpRefusal::name) code = {{"LOOKUP", "IDENT", message}};
  return call_error(code, "%s %s : %s", command_name(), operation.word, message);
}

// The expression goes to standard output, what stands around it to standard error.
void EcPrgVar::show_exp(Exp* e) {
  if (Verbose() > 1) prg->print_exp(e);
}

int EcPrgVar::build_exp(const Operation& operation, int, const char* params[]) {
  Exp* e;
  if (parse_exp(operation, params[0], &e) != TCL_OK) return TCL_ERROR;
  const char* handle = exp2string(e);
  Verbose(2, "=> %s %s: %s {", operation.word, params[0], handle);
  show_exp(e);
  Verbose(2, "} : %s\n", type_name(prg->type(e)));
  return text_result(handle);
}

int EcPrgVar::equation(const Operation& operation, int, const char* params[]) {
  const char* name = params[0];
  const ErrorCode bad_name = {{"LOOKUP", "IDENT", name}};
  const int symbol = symbols->find_text(formatted_name(name).c_str());
  if (symbol == 0 || prg->is_retired(symbol))
    return call_error(bad_name, "%s %s : undeclared identifier '%s'", command_name(),
                      operation.word, name);
  const IdentInfo* ident = prg->ident(symbol);
  if (ident == nullptr)
    return call_error(bad_name, "%s %s : unexpected identifier '%s'", command_name(),
                      operation.word, name);
  if (ident->mode != OUTPUT_mode && ident->mode != LOCAL_mode)
    return call_error(bad_name, "%s %s : identifier '%s' is not output or local", command_name(),
                      operation.word, name);

  const EcPrg::Mark before = prg->mark();
  Exp* e;
  if (find_exp(operation, params[1], &e) != TCL_OK) return TCL_ERROR;
  const EcType* type = prg->type(e);
  if (type != ident->type) {
    const char* found = type_name(type);  // asked first: the type may be the expression's own
    prg->roll_back(before);
    return call_error({{"TYPE", "EQUATION", name}}, "%s %s : bad type combination '%s = %s'",
                      command_name(), operation.word, type_name(ident->type), found);
  }
  const char* handle = exp2string(e);
  Verbose(2, "=> %s %s %s = (", operation.word, name, handle);
  show_exp(e);
  Verbose(2, ") : %s\n", type_name(type));
  return text_result(handle);
}

// What was built of a text is needed no more: nothing leads to it.
int EcPrgVar::exp_type(const Operation& operation, int, const char* params[]) {
  const EcPrg::Mark before = prg->mark();
  Exp* e;
  if (find_exp(operation, params[0], &e) != TCL_OK) return TCL_ERROR;
  const char* name = type_name(prg->type(e));
  if (Verbose() > 1) Verbose(2, "=> %s %s : %s = (", operation.word, params[0], name);
  show_exp(e);
  prg->roll_back(before);
  return text_result(name);
}
