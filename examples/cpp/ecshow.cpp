// ecshow FILE: reads an EC program, types its equations and writes it again as EC text.
//
// The exit status is 1 where the file holds no well-formed program, or an equation is ill-typed.
#include <cstdio>

#include "reader/reader.h"

namespace {

// Whether the right side of the variable's equation has its type.
bool well_typed(EcPrg& program, const IdentInfo& variable) {
  Exp* right = variable.definition;
  // A tuple equation has several variables, and its right side the type of none of them.
  if (right == nullptr || variable.tuple_names != nullptr) return true;
  // The reader takes the variable's type for that of the right side. Forgotten, it is computed.
  if (right->nb_args > 0) right->type = nullptr;
  const EcType* type = program.type(right);
  if (type != nullptr && type != variable.type)
    program.error("its value is of type '%s'", program.type_name(type, "?"));
  return type == variable.type;
}

// Prints the type and the clock of each variable of `names`, and what is wrong with its equation.
// Returns how many equations are ill-typed.
int show_variables(EcPrg& program, IntList* names) {
  int wrong = 0;
  IntIterator next(names);
  while (const int name = next()) {
    const IdentInfo* variable = program.ident(name);
    std::printf("-- %s : %s when %s", program.symbols->name(name),
                program.type_name(variable->type, "?"), program.symbols->name(variable->clock));
    if (!well_typed(program, *variable)) {
      ++wrong;
      std::printf("  -- ill-typed: %s", program.error_message);
    }
    std::printf("\n");
  }
  return wrong;
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: ecshow FILE\n");
    return 1;
  }
  SymbolTable symbols;  // outlives the program
  EcPrg program;
  program.EcPrgInit(&symbols);
  // An empty file is well formed, but has no node.
  if (EcParse(&program, &symbols, argv[1]) != 0 || program.name == 0) {
    const char* reason = program.error_message;
    std::fprintf(stderr, "%s: %s\n", argv[1], reason[0] != '\0' ? reason : "no program");
    return 1;
  }
  int wrong = show_variables(program, program.inputs);
  wrong += show_variables(program, program.outputs);
  wrong += show_variables(program, program.locals);
  const bool written = program.print_ec() == 0;
  std::printf("\n");
  if (!written) std::fprintf(stderr, "%s: %s\n", argv[1], program.error_message);
  return wrong > 0 || !written;
}
