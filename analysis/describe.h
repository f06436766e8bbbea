// analysis/describe.h: what a program knows of a name, and expressions as lists of their nodes.
#ifndef ANALYSIS_DESCRIBE_H
#define ANALYSIS_DESCRIBE_H

#include <iterator>
#include <string>
#include <vector>

#include "model/ecprg.h"

namespace tamsel {

// The words for the kinds, in the order of name_kinds, and null.
constexpr const char* name_kind_words[] = {"input",    "output", "local", "constant",
                                           "function", "type",   nullptr};
static_assert(std::size(name_kind_words) == std::size(name_kinds) + 1, "a kind has no word");
inline const char* kind_word(NameKind kind) { return name_kind_words[static_cast<int>(kind)]; }

// A parameter or result of a function.
struct Parameter {
  int name;  // 0: it has none
  int type;
};
std::vector<Parameter> parameters_of(const FuncInfo* function);
std::vector<Parameter> results_of(const FuncInfo* function);

// What is declared under a name. Of the three records one is there: of a variable or constant, of a
// function, of a type. They are the program's.
struct Description {
  int symbol;
  NameKind kind;
  const IdentInfo* ident = nullptr;
  const FuncInfo* function = nullptr;
  const EcType* type = nullptr;

  // The rank that the operations of program objects count; -1 where they do not.
  int index(EcPrg* prg) const;
  bool has_equation() const;
  // All names on the left of its equation; none without one.
  std::vector<int> defined_with() const;
  int line() const;           // of the declaration in the text that was read; 0: none
  int equation_line() const;  // of the equation; 0: none
  int rank() const;           // of an enumeration's constant, from 0; else -1
};

// Describes a name that is declared as something of that kind.
Description describe_as(EcPrg* prg, int symbol, NameKind kind);

// Describes `symbol`; of a name that is a type and something else, the latter. False where nothing
// is declared under it.
bool describe(EcPrg* prg, int symbol, Description* description);

// The names of a type's constants: of an enumeration its values in order of rank, then those that
// are declared of the type.
std::vector<int> constants_of(EcPrg* prg, const EcType* type);

// One node of an expression.
struct TreeNode {
  const char* op;     // the operator's word, or "if", "tuple", "call", "name", "constant"
  int operands;       // of a call its arguments
  const char* label;  // the name, the constant or the function; else empty
};

// The nodes of `e` (not null) in prefix order. The texts are the program's.
std::vector<TreeNode> tree_of(EcPrg* prg, Exp* e);

}  // namespace tamsel

#endif
