// Operations that ask a program and change nothing but its symbol table.

#include <climits>
#include <cstdlib>

#include "foundation/errors.h"
#include "tcl/program.h"

using namespace tamsel;

const char* EcPrgVar::type_name(const EcType* type) const {
  return prg->type_name(type, "<unamed-type>");
}

int EcPrgVar::query_result(const Operation& operation, const char* parameter, const char* result) {
  if (Verbose() > 1) Verbose(2, "=> %s %s: %s\n", operation.word, parameter, result);
  return text_result(result);
}

// strtol in base 10. False where `text` does not begin with a number. Most indexes are a few
// digits, which are read without the care for locales and large numbers that makes strtol slow.
static bool read_index(const char* text, long* index) {
  *index = 0;
  const char* digit = text;
  for (; is_digit(*digit) && digit != text + 9; ++digit) *index = 10 * *index + (*digit - '0');
  if (digit != text && *digit == '\0') return true;
  char* end;
  *index = std::strtol(text, &end, 10);
  return end != text;
}

// Finds the symbol at `index` of the operation's list.
int EcPrgVar::select(const Operation& operation, const char* index, int* symbol) {
  long i;
  if (!read_index(index, &i)) return usage_error(operation);
  const Section& section = *operation.section;
  if (i > INT_MAX || i < 0 || prg->name_at(section.list, static_cast<int>(i), symbol) != 0)
    return call_error({{"LOOKUP", "INDEX", index}}, "%s %s : index out of bounds", command_name(),
                      operation.word);
  return TCL_OK;
}

int EcPrgVar::nbelts(const Operation& operation, int, const char*[]) {
  const int count = prg.get()->*operation.section->count;
  Tcl_SetObjResult(owner->interp, Tcl_NewIntObj(count));
  if (Verbose() > 1) Verbose(2, "=> %s : %d\n", operation.word, count);
  return TCL_OK;
}

int EcPrgVar::varname(const Operation& operation, int, const char* params[]) {
  int symbol;
  if (select(operation, params[0], &symbol) != TCL_OK) return TCL_ERROR;
  return query_result(operation, params[0], symbols->name(symbol));
}

int EcPrgVar::vartype(const Operation& operation, int, const char* params[]) {
  int symbol;
  if (select(operation, params[0], &symbol) != TCL_OK) return TCL_ERROR;
  const IdentInfo* ident = prg->ident(symbol);
  return query_result(operation, params[0], type_name(ident != nullptr ? ident->type : nullptr));
}

int EcPrgVar::funcdecl(const Operation& operation, int, const char* params[]) {
  int symbol;
  if (select(operation, params[0], &symbol) != TCL_OK) return TCL_ERROR;
  const char* name = symbols->name(symbol);
  const FuncInfo* function = prg->function(symbol);
  if (function == nullptr)
    return call_error({{"LOOKUP", "FUNCTION", name}}, "%s %s : unknown function '%s'",
                      command_name(), operation.word, name);
  InternedText text(symbols.get(), &grown_texts, name);
  const auto append_type = [&](const EcType* type) {
    if (type == nullptr || !type->is_tuple) return text.append(" ", prg->type_name(type, "?"));
    for (const int member : values_of(type->members)) text.append(" ", symbols->name(member));
  };
  append_type(function->param_type);
  text.append(" :", "");
  append_type(function->result_type);
  return query_result(operation, params[0], text.intern());
}
