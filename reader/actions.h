// reader/actions.h: what the rules of the grammar do.
//
// They work on the program and table of the current parse. None throws: when memory runs out they
// answer null or 0, which the grammar takes like any operand that could not be built, and set
// `reader_out_of_memory`, for the entry point to throw when the parser has cleaned up.
#ifndef READER_ACTIONS_H
#define READER_ACTIONS_H

#include "reader/reader.h"

extern bool reader_out_of_memory;

// --- Names, and lists of them. What takes a list deletes it where it does not keep it.

int intern(const char* text);
int base_clock();
IntList* new_list(int value);

// --- Declarations. `type` is the symbol of a type's name. A type that is unknown is reported, and
// what is declared with it has none. The four take `names`.

void AddUserConsts(IntList* names, int type, int clock);
void AddInputs(IntList* names, int type, int clock);
void AddOutputs(IntList* names, int type, int clock);
void AddLocals(IntList* names, int type, int clock);
void add_abstract_type(int name);
// Takes `constants`.
void add_enum_type(int name, IntList* constants);
// Takes all four lists.
void add_function(int name, EcValue::Params params, EcValue::Params results);

// --- Equations and assertions. A null expression is dropped.

void add_assertion(Exp* e);
void add_equation(int name, Exp* e);
// Takes `names`.
void add_tuple_equation(IntList* names, Exp* e);

// --- Expressions. Null operands give null. Nodes are entered in the program.

Exp* reference(int name);  // null, with a message, for a name that is not declared
Exp* bool_constant(const char* text);
Exp* int_constant(const char* text);
Exp* real_constant(const char* text);
Exp* unary(ExpNature nature, Exp* a);
Exp* binary(ExpNature nature, Exp* a, Exp* b);
Exp* conditional(Exp* condition, Exp* then, Exp* otherwise);
Exp* call(int function, Exp* argument);
// Lists of operands, the newest first; null once an operand is null. All take `list`.
ExpList* new_exp_list(Exp* e);
ExpList* and_then(ExpList* list, Exp* e);
Exp* list_operator(ExpNature nature, ExpList* list);

#endif
