// model/ecprg.h: one EC program, the registry of everything that it declares.
//
// Names are symbol numbers of the program's table. Everything lives until the program is deleted,
// but what the operations under "Changes" take away. Operations that can fail answer null or
// non-zero and leave the program as it was, with the reason in `error_message`. Any of them may
// throw bad_alloc, also with nothing changed.
#ifndef MODEL_ECPRG_H
#define MODEL_ECPRG_H

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
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

// The lists of names of a program.
enum class NameList {
  inputs,
  outputs,
  locals,
  assertions,
  constants,
  functions,
  tuple_functions,
  types
};

class EcPrg {
 public:
  EcPrg() = default;
  ~EcPrg();
  EcPrg(const EcPrg&) = delete;
  EcPrg& operator=(const EcPrg&) = delete;

  // Makes a fresh program an empty one: the predefined types and constants. Borrows `symbols`,
  // which must outlive the program. To be called once, before anything else.
  void EcPrgInit(SymbolTable* symbols);

  // Makes a fresh program like another one, with copies of all that is in it, on a table of its own
  // that has nothing but what EcPrgInit put there. Symbols have the same numbers.
  void copy_from(EcPrg& other);

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

  // --- Changes. They look at nothing but what they change: whoever calls them has seen to it that
  // nothing else mentions what goes (see editing/editor.h).

  // What belongs to one equation or assertion alone: the nodes of its expression, but leaves of
  // names, and the list of its names where they are several. What was read belongs to the program.
  struct Parts {
    std::unique_ptr<ExpHeap> nodes;
    std::unique_ptr<IntList> names;
  };
  // An equation, or the assertion of that one name, that is ready to take its place.
  struct Ready {
    std::vector<int> names;
    std::vector<Exp*> definitions;  // one a name
    Parts parts;
  };
  // Makes (`names`) = `right` ready: all of them outputs or locals, or one an assertion. `nodes`
  // takes the projections of several names.
  Ready make_ready(const std::vector<int>& names, Exp* right, std::unique_ptr<ExpHeap> nodes);
  // Puts it in the place of all equations that its names had, each of which goes with all names of
  // its left side, or of the assertion's expression. `line` is its line from now on; 0: none.
  void put(Ready ready, int line) noexcept;
  // Takes away the equation of an output or local, with all names of its left side; there may be
  // none.
  void drop_equation(IdentInfo* ident) noexcept;
  // The same as add_assertion for an expression whose nodes lie in `nodes`, but leaves of names.
  IdentInfo* add_assertion(Exp* e, std::unique_ptr<ExpHeap> nodes);
  // After this, names of the list can be taken away until one is added. A name that was declared
  // again then stands in its list once, where it was declared last.
  void prepare_removal(NameList list);
  // Takes a name or assertion off its list, with its record and its equation.
  void remove(NameList list, int symbol) noexcept;
  // Gives things other names: each symbol of `renamed` the text of the pair. The new texts are
  // those of no other declared things but of such as are renamed as well.
  void rename(const std::vector<std::pair<int, std::string>>& renamed);
  // Notes whether nothing of the program is called so any more that once was; such a symbol stays
  // in the table, and is free to be declared.
  void set_retired(int symbol, bool is) noexcept;
  bool is_retired(int symbol) const {
    return static_cast<size_t>(symbol) < retired_.size() && retired_[static_cast<size_t>(symbol)];
  }

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
  // Have the memory fetch what these look at, for who asks for many: first the place of the record
  // of each symbol, then the record.
  void fetch_place(int symbol) const { __builtin_prefetch(infos->find(symbol)); }
  void fetch_record(int symbol) const {
    if (SymbolInfo* const* place = infos->find(symbol)) __builtin_prefetch(*place);
  }
  // The names of a kind in order, each once: a name declared again stands where it was declared
  // last. Functions with several results come after the others.
  std::vector<int> declared_names(NameKind kind);
  // The name at place `i` (from 0) of a list: stores it and returns 0, or returns 1 where there is
  // none. Constant time, or logarithmic once names were removed.
  int name_at(NameList list, int i, int* symbol);
  // The place of a name in its list, from 0, as quickly. (IdentInfo::order and its like only grow
  // from name to name once others were removed.)
  int place_of(NameList list, int symbol);
  // The list that a name of that kind stands in.
  NameList list_of(NameKind kind, int symbol);
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
  SymbolInfoHeap info_heap;       // every identifier's record; borrowed from `infos` and
                                  // `replaced`; those that were removed are gone
  char error_message[tamsel::text_room] = "";
  std::vector<Message> messages;  // of the text that the program was read from, in order
  int message_line = 0;           // of what is being read; 0: messages are not kept
  bool silent = false;            // type and clock report no misuse through ierror
  ExpRefusal exp_refusal = ExpRefusal::none;
  unsigned removals = 0;  // another with each name that goes
  unsigned revision = 0;  // another with each change of what mentions names

 private:
  struct ListOfNames;
  static const ListOfNames lists_of_names[];

  // The leaf of a name holds it as `held_table_` had it when the name was declared. Up to this
  // symbol it is still called so, in the table that the program has now.
  int held_names() const { return symbols == held_table_ ? symbols->steady() : 0; }
  void hold_name(Exp* leaf) {
    if (leaf->ident <= held_names()) leaf->hold_name(symbols->name(leaf->ident));
  }
  // Prints an expression of the program as print_brief or print_def does, without a look at the
  // table for what leaves hold.
  void print_own(Exp* e, bool in_brief, PtyStream* out);
  int error_about(int symbol, const char* format);
  // What an equation or assertion says of its right side. A leaf is shared with every other use of
  // its name and keeps what its declaration says.
  static void set_type_and_clock(Exp* e, EcType* type, int clock);
  int next_slot(NameList list) const;
  void drop_repeated_names();
  void copy_lists(const EcPrg& other);
  Parts& parts_of(int symbol);
  void keep_room_for(int symbol);
  void drop_parts(int symbol) noexcept;
  void make_room_to_retire();
  bool is_assertion(int symbol);
  int new_assertion_name();
  SymbolInfo* record(int symbol);
  SymbolInfo*& prepare_slot(int symbol, size_t under_way = 0);
  void install(int symbol, std::unique_ptr<SymbolInfo> record) noexcept;
  std::unique_ptr<IdentInfo> new_ident(IdentMode mode, ExpNature leaf, int symbol, EcType* type,
                                       int clock, size_t under_way = 0);
  IdentInfo* enter(std::unique_ptr<IdentInfo> record) noexcept;
  void enter_enum_const(std::unique_ptr<IdentInfo> record, IntList* cell, int rank) noexcept;
  IdentInfo* declare(IdentMode mode, ExpNature leaf, int name, EcType* type, int clock);
  Exp* constant(int name, IdentMode mode, EcType* type);
  EcType* add_type(EcType* type);
  struct Members {  // the types of a tuple, which stand in no list yet
    const int* begin() const { return names; }
    const int* end() const { return names + count; }

    const int* names;
    int count;
  };
  struct ByValues {  // an order of lists and members
    using is_transparent = void;
    template <class A, class B>
    bool operator()(const A& a, const B& b) const {
      const auto one = range(a);
      const auto other = range(b);
      return std::lexicographical_compare(one.begin(), one.end(), other.begin(), other.end());
    }
    static tamsel::IntListRange range(const IntList* list) { return tamsel::values_of(list); }
    static Members range(const Members& members) { return members; }
  };
  struct Dialect;  // what the texts of a program differ in; the writers know it
  class Printer;
  class Copier;
  static const Dialect ec, source, quarel;

  const SymbolTable* held_table_ = nullptr;  // see held_names
  SymbolInfoHeap replaced_;                  // records of names declared again
  bool has_repeated_names_ = false;          // in its lists
  tamsel::IntListIndex indexes_[8];          // by NameList
  std::vector<Parts> parts_;          // by the symbol of the first name, as far as there are some
  std::vector<bool> retired_;         // symbols
  std::vector<int> free_assertions_;  // symbols of assertions that are gone
  std::vector<std::unique_ptr<IntList>> tuple_names_;  // of the tuple equations
  std::unordered_map<int, EcType*> named_types_;       // `types` by name
  // `types` by members. Nothing is copied, so a tuple type can be taken back without memory.
  std::map<const IntList*, EcType*, ByValues> tuple_types_;
};

#endif
