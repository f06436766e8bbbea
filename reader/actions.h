// reader/actions.h: what one thread reads with: its scanner, and what the rules of the grammar do.
//
// The rules work on the program and table of the current parse. None throws: when memory runs out
// they answer null or 0, which the grammar takes like any operand that could not be built, and set
// `out_of_memory`, for the entry point to throw when the parser has cleaned up.
#ifndef READER_ACTIONS_H
#define READER_ACTIONS_H

#include <type_traits>
#include <vector>

#include "reader/window.h"

namespace tamsel {

// What a rule of the grammar is worth. Tokens are worth nothing here: the rule that reads the text
// of one is reduced as soon as the token is shifted, while it is still the one taken last.
union RuleValue {
  struct Params {
    IntList* names;
    IntList* types;
  };
  int symbol;
  IntList* list;
  Params params;
  Exp* exp;       // null after an error
  ExpList* exps;  // the newest first; null after an error
};

class Reader : public Scanner {
 public:
  // --- Names, and lists of them. What takes a list deletes it where it does not keep it.

  // Returns the memory that names took, at the end of a parse.
  void forget_names();
  // The symbol of the token taken last, which is a name, a number or a word that means itself.
  int token_symbol();
  int base_clock();
  IntList* new_list(int value);
  // Names with their places, for the operations below. One such list is read at a time.
  IntList* new_name_list(int name, EcPosition place);
  IntList* and_name(IntList* names, int name, EcPosition place);  // takes `names`
  // The name of a parameter's type, which is reported where it is unknown.
  IntList* new_type_list(int type, EcPosition place);

  // --- The other declarations.

  void add_abstract_type(int name, EcPosition place);
  // Takes `constants`, the name list read last.
  void add_enum_type(int name, IntList* constants, EcPosition place);
  // Takes all four lists.
  void add_function(int name, RuleValue::Params params, RuleValue::Params results,
                    EcPosition place);

  // --- Equations and assertions, which begin at `place`. A null expression is dropped.

  void add_assertion(Exp* e, EcPosition place);
  void add_equation(int name, Exp* e, EcPosition place);
  // Takes `names`, the name list read last.
  void add_tuple_equation(IntList* names, Exp* e, EcPosition place);

  // --- Expressions. Null operands give null. Nodes are entered in the program.

  Exp* reference(int name, EcPosition place);  // null, with a message, if it is not declared
  // Of the token taken last.
  Exp* bool_constant();
  Exp* int_constant();
  Exp* real_constant();
  Exp* unary(ExpNature nature, Exp* a);
  Exp* binary(ExpNature nature, Exp* a, Exp* b);
  Exp* conditional(Exp* condition, Exp* then, Exp* otherwise);
  Exp* call(int function, Exp* argument);
  // Lists of operands, the newest first; null once an operand is null. All take `list`.
  ExpList* new_exp_list(Exp* e);
  ExpList* and_then(ExpList* list, Exp* e);
  Exp* list_operator(ExpNature nature, ExpList* list);

  // The next token, as ecprg_lex, and where it begins.
  int next_token(EcPosition* place) {
    if (window_.is_used_up())
      if (const int token = fill_window()) return ecprg_char = token;
    return ecprg_char = window_.next(place);
  }
  // ecprg_parse, of a text that begins where the scanner stands.
  int run_parser();
  void end_parse();
  int parse(EcPrg* prg, SymbolTable* symbols, int boot, FILE* f, const char* text);
  // See ecprg_error.
  void report_syntax_error(const char* message);

  // Gives every name of `names`, which it takes and which is the name list read last, to `declare`,
  // with the type called `type_name`.
  template <class Declare>
  void declare_all(IntList* names, int type_name, EcPosition type_place, Declare declare);

  SymbolTable* YY_Symbols = nullptr;
  Exp* ecexp = nullptr;
  int ecprg_char = -2;
  int ecprg_nerrs = 0;
  bool is_busy = false;  // a parse is under way
  bool out_of_memory = false;
  bool keeps_messages = false;  // in the program: it is read, and not an expression against it

 private:
  template <class Action>
  std::invoke_result_t<Action> attempt(Action action);
  template <class Action>
  std::invoke_result_t<Action> attempt_at(EcPosition place, Action action);
  template <class... Operands>
  Exp* node(ExpNature nature, int rank, Operands... operands);
  int fill_window();
  Window window_;
  EcType* type_of_list(std::unique_ptr<IntList>& names);

  // The name list that is being read, or was read last.
  struct ListedName {
    int symbol;
    int line;
  };
  std::vector<ListedName> listed_names_;
};

// The one of this thread.
Reader& thread_reader();

}  // namespace tamsel

// Declarations. `type` is the symbol of a type's name, which stands at `type_place`. A type that is
// unknown is reported, and what is declared with it has none. They take `names`, the name list read
// last.
void AddUserConsts(IntList* names, int type, int clock, tamsel::EcPosition type_place);
void AddInputs(IntList* names, int type, int clock, tamsel::EcPosition type_place);
void AddOutputs(IntList* names, int type, int clock, tamsel::EcPosition type_place);
void AddLocals(IntList* names, int type, int clock, tamsel::EcPosition type_place);

#endif
