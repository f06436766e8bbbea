// model/ecprg.h: one EC program, the registry of everything that it declares.
//
// Names are symbol numbers of the program's table. Declarations are never removed; everything lives
// until the program is deleted. Operations that can fail answer null or non-zero and leave the
// program as it was, with the reason in `error_message`. Any of them may throw bad_alloc, also with
// nothing changed; only an enumeration may then be there in part.
#ifndef MODEL_ECPRG_H
#define MODEL_ECPRG_H

#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "foundation/intlist.h"
#include "foundation/pty.h"
#include "foundation/symbols.h"
#include "foundation/text.h"
#include "model/exp.h"
#include "model/types.h"

// The annotation key of the current print_exp of this thread.
extern thread_local int Iprint_current_mark;

// Which check refused the last text given to EcPrg::exp_parse.
enum class ExpRefusal { none, syntax, name, type, busy };

// What a program declares.
enum class NameKind { input, output, local, constant, function, type };
constexpr NameKind name_kinds[] = {NameKind::input,    NameKind::output,   NameKind::local,
                                   NameKind::constant, NameKind::function, NameKind::type};

class EcPrg {
 public:
  EcPrg() = default;
  ~EcPrg();
  EcPrg(const EcPrg&) = delete;
  EcPrg& operator=(const EcPrg&) = delete;

  // Makes a fresh program an empty one: the predefined types and constants. Borrows `symbols`,
  // which must outlive the program. To be called once, before anything else.
  void EcPrgInit(SymbolTable* symbols);

  // --- Declarations. They borrow `type`, which may be null (untyped). A name declared again gets a
  // new record; the old one stays alive as long as the program.

  void add_input(int name, EcType* type, int clock);
  void add_output(int name, EcType* type, int clock, int at_front);
  void add_local(int name, EcType* type, int clock);
  void add_usr_const(int name, EcType* type, int clock);
  // `rank`, from 0, counts in the enumerated `type`.
  void add_enum_const(int name, EcType* type, int clock, int rank);
  // Takes both lists (see FuncInfo), which may be null.
  void add_usr_func(int name, EcType* param_type, EcType* result_type, IntList* params,
                    IntList* results);
  // An abstract type, or the enumeration of `enum_names` (borrowed), the last of which has rank 0.
  // An error if the type exists.
  void add_usr_type(int name);
  void add_usr_type(int name, IntList* enum_names);

  // --- Equations and assertions. An expression that is null is dropped: whoever made it has
  // reported why.

  // `name` = `e`. Returns the record, or null if `name` is not declared or a tuple equation defines
  // it. A second simple equation is reported and replaces the first.
  IdentInfo* define_ident(int name, Exp* e);
  // (`names`) = `e`. Takes `names`. Returns the record of the last one, or null if one of them is
  // not declared or already defined; the whole equation is then dropped.
  IdentInfo* define_tuple(IntList* names, Exp* e);
  // Returns the record, or null if `e` is.
  IdentInfo* add_assertion(Exp* e);

  // --- Expressions.

  // Takes a node that somebody built and returns it. The program deletes it.
  Exp* enter(Exp* e);
  // The leaf of the constant called `name` (of a number, its text), made at first use. Never null,
  // except where the name is declared as something that has no value.
  Exp* get_bool_const(int name);
  Exp* get_int_const(int name);
  Exp* get_real_const(int name);
  // Reads and enters the expression `text`; exp_parse also types it. Null if it is refused:
  // `exp_refusal` tells by which check, and nothing is left of it but interned names. Defined with
  // the reader.
  Exp* exp_read(const char* text);
  Exp* exp_parse(const char* text);
  // The type of `e`, computed where it is not yet known; null with a message if it is ill-typed.
  EcType* type(Exp* e);
  // The clock of `e`, computed where it is not yet known: the symbol of a boolean. 0 for a sampling
  // by something unnamed and -1 where there is no rule, both reported through ierror.
  int clock(Exp* e);
  // The type of `e` as its operands give it, whatever an equation has said. Leaves it with the type
  // that it had.
  EcType* type_of_operands(Exp* e);

  // A point to which what expressions made of their own (nodes, literals, tuple types) can be taken
  // back. Nothing else may be declared between the two calls.
  struct Mark {
    ExpHeap::Mark expressions;
    size_t records;
    size_t replaced;
    EcType* types;
  };
  Mark mark() const;
  void roll_back(const Mark& mark);

  // --- Types.

  // A new named type; null with a message if there is one of that name.
  EcType* define_named_type(int name);
  // The type of that name; null with a message if there is none.
  EcType* get_named_type(int name);
  // One name: get_named_type. Several: the tuple of them, made at first use. Null with a message
  // for none. The list is taken only when a type is made of it (then it is that type's `members`).
  EcType* define_type(IntList* names);
  EcType* define_type(const int* names, int n);

  // --- Questions.

  // The records of a symbol; null where it has none, or one of the other kind. Any number may be
  // asked.
  IdentInfo* ident(int symbol);
  FuncInfo* function(int symbol);
  // The names of a kind in order, each once: a name declared again stands where it was declared
  // last. Functions with several results come after the others.
  std::vector<int> declared_names(NameKind kind);
  // The record of a name that can stand in an expression; null with a message for any other.
  IdentInfo* declared_ident(int symbol);
  // The type of that name; null where there is none.
  EcType* named_type(int symbol) const;
  // The name of `type`, or `unnamed` for a tuple or null.
  const char* type_name(const EcType* type, const char* unnamed) const;

  // --- Messages. `error` keeps the first 1023 characters in `error_message` and returns 1.
  // `ierror` is for misuse from within: it prints on standard error, as it is, and returns 0.
  int error(const char* format, ...) PRINTF_LIKE(2, 3);
  static int ierror(const char* format, ...) PRINTF_LIKE(1, 2);

  // What was reported while a text was read.
  struct Message {
    std::string text;  // whole
    int name;          // the symbol that it is about; 0: none
    int line;          // of what it is about
  };

  // --- Texts of the program; defined with the writers. All borrow the stream.

  // EC text on standard output. Returns 0, or 1 where it stopped at a function that is not
  // declared.
  unsigned print_ec();
  // EC text that reads back as the same program: as print_ec, but with the values of enumerations,
  // tuple equations in brackets, and names for parameters that have none. What has no type is given
  // one that is not declared. A name that is none of the language, and a node without inputs or
  // outputs, cannot be read back.
  void print_source(PtyStream* out);
  // Quarel text.
  void print_quarel(PtyStream* out);
  // One expression on standard output, without an end of line.
  void print_exp(Exp* e);
  // Their parts. The function printers return 1 at the first function that is not declared.
  int print_func_list(IntList* functions, PtyStream* out);
  int print_func_decl(int function, PtyStream* out);
  void print_ident_list(IntList* idents, PtyStream* out);              // without clocks
  void print_clocked_ident_list(IntList* idents, PtyStream* out);      // but the base clock
  void print_all_clocked_ident_list(IntList* idents, PtyStream* out);  // with every clock
  void print_ident_def(IntList* idents, PtyStream* out);
  void print_assert_def(PtyStream* out);

  EcType* bool_type = nullptr;
  EcType* int_type = nullptr;
  EcType* real_type = nullptr;
  int true_clock = 0;  // the symbol "true": the base clock
  Exp* true_exp = nullptr;
  Exp* false_exp = nullptr;
  Exp* bottom_exp = nullptr;
  Exp* nil_exp = nullptr;
  SymbolTable* symbols = nullptr;    // borrowed
  int name = 0;                      // of the node; 0: not named yet
  SymbolInfoArray* infos = nullptr;  // the records by symbol; owned, as are the lists

  IntList* inputs = nullptr;
  IntList* outputs = nullptr;
  IntList* locals = nullptr;
  IntList* assertions = nullptr;
  IntList* constants = nullptr;        // of users and enumerations
  IntList* functions = nullptr;        // with a result that is no tuple
  IntList* tuple_functions = nullptr;  // the others
  int nb_inputs = 0;
  int nb_outputs = 0;
  int nb_locals = 0;
  int nb_assertions = 0;
  int nb_user_types = 0;
  int nb_constants = 0;
  int nb_functions = 0;
  int nb_tuple_functions = 0;
  IntList* user_types = nullptr;  // in order of declaration
  EcType* types = nullptr;        // all, newest first
  ExpHeap exp_heap;               // every node
  SymbolInfoHeap info_heap;       // every identifier's record; borrowed from `infos` and `replaced`
  char error_message[tamsel::text_room] = "";
  std::vector<Message> messages;  // of the text that the program was read from, in order
  int message_line = 0;           // of what is being read; 0: messages are not kept
  bool silent = false;            // type and clock report no misuse through ierror
  ExpRefusal exp_refusal = ExpRefusal::none;
  unsigned revision = 0;  // another with each change of an equation

 private:
  int error_about(int symbol, const char* format);
  SymbolInfo* record(int symbol);
  SymbolInfo*& prepare_slot(int symbol);
  void install(SymbolInfo*& slot, std::unique_ptr<SymbolInfo> record) noexcept;
  IdentInfo* declare(IdentMode mode, ExpNature leaf, int name, EcType* type, int clock);
  Exp* constant(int name, IdentMode mode, EcType* type);
  EcType* add_type(EcType* type);
  struct ByValues {  // an order of lists
    bool operator()(const IntList* a, const IntList* b) const;
  };
  struct Dialect;  // what the texts of a program differ in; the writers know it
  class Printer;
  static const Dialect ec, source, quarel;

  SymbolInfoHeap replaced_;                            // records of names declared again
  std::vector<std::unique_ptr<IntList>> tuple_names_;  // of the tuple equations
  std::unordered_map<int, EcType*> named_types_;       // `types` by name
  // `types` by members. Nothing is copied, so a tuple type can be taken back without memory.
  std::map<const IntList*, EcType*, ByValues> tuple_types_;
};

#endif
