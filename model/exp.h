// model/exp.h: expressions.
//
// A node has a kind, ordered operands and, once computed, a type and a clock. Nodes belong to the
// heap of their program; a node borrows its operands, so that subtrees may be shared. There are
// many: a node takes 24 bytes and 8 an operand.
#ifndef MODEL_EXP_H
#define MODEL_EXP_H

#include <cstddef>
#include <memory>
#include <new>

#include "foundation/arena.h"
#include "foundation/fract.h"

class EcType;
class Exp;
class PtyStream;
class SymbolTable;

enum ExpNature : unsigned char {
  ERROR_n = 0,
  CONST_n,
  INPUT_n,
  ECREF_n,
  MODELREF_n,
  PRE_n,
  CURRENT_n,
  NOT_n,
  UMINUS_n,
  INT2REAL_n,
  REAL2INT_n,
  LAST_n,
  INIT_n,
  ARROW_n,
  WHEN_n,
  AND_n,
  OR_n,
  XOR_n,
  IMPL_n,
  EQUAL_n,
  NEQ_n,
  GTE_n,
  GT_n,
  LTE_n,
  LT_n,
  DIV_n,
  MOD_n,
  MINUS_n,
  PLUS_n,
  SLASH_n,
  TIMES_n,
  POWER_n,
  IF_n,
  TUPLE_n,
  NOR_n,
  DIESE_n,
  RCL_n,  // linear combination with rational coefficients
  ICL_n,  // linear combination with integer coefficients
  PROJ_n,
  CALL_n,
  EXP_NATURES  // how many there are
};

// How a kind is written.
enum class ExpForm {
  none,
  leaf,         // a name
  prefix,       // op(x)
  infix,        // (x)op(y)
  conditional,  // if (c) then (x) else (y)
  list,         // op(x, y, ...)
  rational,     // linear combinations
  integer,
  projection,  // proj(i)(x)
  call,        // f(x, y, ...)
};

// How a kind is typed from the types t0, t1, t2 of its operands.
enum class ExpTyping {
  unexpected,   // never valid without a type of its own
  first,        // t0
  booleans,     // all bool: bool
  number,       // int or real: t0
  int_to_real,  // int: real
  real_to_int,  // real: int
  alike,        // t0 = t1: t0
  sampled,      // t1 is bool: t0
  compared,     // t0 = t1: bool
  ordered,      // t0 = t1, int or real: bool
  integers,     // both int: int
  arithmetic,   // t0 = t1, int or real: t0
  conditional,  // t0 is bool, t1 = t2: t1
  tuple,        // named types: their tuple
  call,         // t0 is what the function takes: its result
  not_supported,
};

struct ExpKind {
  ExpNature nature;
  const char* keyword;  // empty for a kind without an operator
  const char* name;
  ExpForm form;
  ExpTyping typing;
  int priority;  // of the operator: the higher, the tighter; 0: its operands stand in brackets
  bool chains;   // x op y op z is (x op y) op z; without parentheses, of others, it is no text
};

// The one table of kinds, by nature.
extern const ExpKind ExpNatureKeys[EXP_NATURES];

// The row of a nature; null for a number that is none.
namespace tamsel {
const ExpKind* exp_kind(ExpNature nature);
}
// A kind's name and its operator's keyword; "?" and the empty text for a number that is no nature.
const char* nodekey(ExpNature nature);
const char* opkey(ExpNature nature);

// A fresh key for annotations, from 1, process-wide. A newer key is always larger.
int take_a_key();

// One annotation. The annotations of a node are kept in decreasing order of keys.
struct ExpInfo {
  int key;
  void* value;
  ExpInfo* next;  // owned by the node
};

// A list of operands, from its first cell. It owns its cells and borrows the expressions.
class ExpList {
 public:
  // Takes `rest`, the cells after this one.
  explicit ExpList(Exp* operand, ExpList* rest = nullptr)
      : length(rest != nullptr ? rest->length + 1 : 1), exp(operand), next(rest) {}
  // Deletes the cells after this one.
  ~ExpList();
  ExpList(const ExpList&) = delete;
  ExpList& operator=(const ExpList&) = delete;

  // Takes `other`, which may be null, and links it at the end. Linear in this list's length.
  void concat(ExpList* other);

  int length;  // cells from this one to the end
  Exp* exp;
  ExpList* next;  // owned
};

namespace tamsel {

// What few nodes have, and what those are made of that no heap makes. It stands beside its node.
struct RareFields {
  ~RareFields();

  ExpInfo* infos = nullptr;         // owned
  std::unique_ptr<Exp*[]> args;     // all operands of the node
  std::unique_ptr<int[]> ints;      // one an operand, or null
  std::unique_ptr<Fract[]> coeffs;  // one an operand, or null
  Fract constant = Fract(0);
  int int_param = 0;
  int key = 0;
  int order = 0;
  Exp* entered_before = nullptr;  // the node that its heap was given before
};

}  // namespace tamsel

class Exp {
 public:
  Exp(ExpNature kind, Exp* a);
  // `rank`: of a projection the member, from 1; of a call the function's symbol.
  Exp(ExpNature kind, Exp* a, int rank);
  Exp(ExpNature kind, Exp* a, Exp* b);
  Exp(ExpNature kind, Exp* a, Exp* b, Exp* c);
  // Operands in the order of `list`, which is borrowed and not null.
  Exp(ExpNature kind, ExpList* list);
  // The `n` (from 0) operands of the array `a`, which is copied, as are the coefficients of a
  // linear combination; `k` is its constant.
  Exp(ExpNature kind, int n, Exp* const* a);
  Exp(ExpNature kind, int n, Exp** a, Fract* coefficients, Fract k);
  Exp(ExpNature kind, int n, Exp** a, int* coefficients, int k);
  // Leaves.
  Exp(ExpNature kind, int symbol, EcType* leaf_type, int leaf_clock);
  Exp(ExpNature kind, int symbol, EcType* leaf_type);
  ~Exp();
  Exp(const Exp&) = delete;
  Exp& operator=(const Exp&) = delete;

  // Which member (from 1) a projection takes, and the symbol of the function that a call calls. On
  // any other node they report misuse and answer 0.
  int projection_order();
  int function_ident();

  // Annotations by key. A missing one reads as null or 0.
  void put_info(int info_key, void* value);
  void* get_ptr_info(int info_key);
  int get_int_info(int info_key);
  // Frees the annotation, which is missing from then on.
  void drop_info(int info_key);

  // Print the expression; defined with the writers. `print` and `Iprint` write the name of a named
  // node, and any other by its structure; the `_def` forms write the node itself by its structure
  // always. The forms with I, meant for print_exp, cut cycles and write "WARNING : RECURSION "
  // there. `print_brief` writes the node itself with as many parentheses as it takes to read back
  // the same tree, and no more.
  void print(PtyStream* out, SymbolTable* symbols);
  void print_def(PtyStream* out, SymbolTable* symbols);
  void Iprint(PtyStream* out, SymbolTable* symbols);
  void Iprint_def(PtyStream* out, SymbolTable* symbols);
  void print_brief(PtyStream* out, SymbolTable* symbols);

  // The operands: `nb_args` of them, which are the program's; the array is the node's.
  Exp** args() { return has_rare_ ? rare()->args.get() : in_place(); }
  Exp* const* args() const { return const_cast<Exp*>(this)->args(); }
  // See the constructor; 0 for a node that is neither projection nor call.
  int order() const {
    if (is_ranked_) return *rank_place();
    return has_rare_ ? rare()->order : 0;
  }
  void set_order(int rank);

  // Has a leaf of a heap hold the name of its `ident`, of which 8 bytes can be read, so that it can
  // be written without a look at the table. A long name, or of a symbol with a large number, is not
  // held.
  void hold_name(const char* name);
  // The name that it was given to hold for the `ident` that it has now, or null. Whether the symbol
  // is still called so is for the caller to know. 8 bytes of it can be read.
  const char* held_name() const {
    const bool holds_one = ident != 0 && static_cast<int>(held_for_) == ident;
    return holds_one ? reinterpret_cast<const char*>(&first_) : nullptr;
  }

  // What few nodes have.
  ExpInfo* infos() const { return has_rare_ ? rare()->infos : nullptr; }  // the newest
  // A number for users of the model; 0 until it is set.
  int key() const { return has_rare_ ? rare()->key : 0; }
  void set_key(int number);
  // The coefficients of a linear combination, one an operand, or null; and its constant.
  const int* ints() const { return has_rare_ ? rare()->ints.get() : nullptr; }
  int int_param() const { return has_rare_ ? rare()->int_param : 0; }
  const Fract* coeffs() const { return has_rare_ ? rare()->coeffs.get() : nullptr; }
  Fract constant() const { return has_rare_ ? rare()->constant : Fract(0); }

  EcType* type = nullptr;  // null until known
  int clock = -1;          // symbol of its clock; -1 until known
  int ident = 0;           // symbol of a leaf
  int nb_args = 0;
  ExpNature nature;

 private:
  friend class ExpHeap;
  Exp(ExpNature kind, int n, bool in_arena, bool is_ranked)
      : nb_args(n),
        nature(kind),
        in_arena_(in_arena),
        is_ranked_(is_ranked),
        has_rare_(false),
        held_for_(0) {}
  // A node in the arena of a heap, with room behind it for its operands and its rank.
  struct InArena {};
  Exp(InArena, ExpNature kind, int n, Exp* const* operands, int rank)
      : Exp(kind, n, true, rank != 0) {
    for (int i = 0; i < n; ++i) in_place()[i] = operands[i];
    if (is_ranked_) *rank_place() = rank;
  }
  static size_t size_in_arena(int n, bool is_ranked) {
    return sizeof(Exp) + sizeof(Exp*) * (static_cast<size_t>(n > 0 ? n - 1 : 0) + is_ranked);
  }

  Exp** in_place() { return reinterpret_cast<Exp**>(this + 1) - 1; }
  int* rank_place() const {
    Exp* node = const_cast<Exp*>(this);
    return reinterpret_cast<int*>(node->in_place() + (nb_args > 0 ? nb_args : 1));
  }
  tamsel::RareFields* rare() const { return reinterpret_cast<tamsel::RareFields*>(first_); }
  tamsel::RareFields& some_rare();  // made where there are none
  tamsel::RareFields& add_rare(Exp* const* operands);
  void drop_idle_rare();

  // These fill a word with `nature`.
  static constexpr int held_bits = 21;
  bool in_arena_ : 1;
  bool is_ranked_ : 1;  // has a rank behind its operands
  bool has_rare_ : 1;
  unsigned held_for_ : held_bits;  // the symbol whose name it holds; 0: it holds none
  // The first operand, which the others stand behind; or the rare fields, owned, and the operands
  // with them; or the characters of the name that a leaf holds, with a 0 behind them.
  Exp* first_ = nullptr;
};
static_assert(sizeof(void*) != 8 || sizeof(Exp) == 32, "the fields of a node leave no gaps");

// The nodes of a program. Owns them.
class ExpHeap {
 public:
  // How many nodes there were at some time.
  struct Mark {
    size_t size;
    Exp* entered;
    tamsel::Arena::Mark arena;
  };

  ExpHeap() = default;
  // With room for `size` bytes of nodes, to begin with.
  explicit ExpHeap(size_t size) : arena_(size) {}
  ~ExpHeap() { cut_back({0, nullptr, {nullptr, 0}}); }
  ExpHeap(const ExpHeap&) = delete;
  ExpHeap& operator=(const ExpHeap&) = delete;

  // Make a node with `n` operands, which are copied, and a leaf. These take no more memory than
  // they need, and are not to be deleted. Throw bad_alloc with nothing changed.
  // Inline, as a node of the grammar has a number of operands that the compiler knows.
  Exp* node(ExpNature kind, int n, Exp* const* operands, int rank = 0) {
    void* room = arena_.allocate(Exp::size_in_arena(n, rank != 0));
    ++size_;
    return new (room) Exp(Exp::InArena(), kind, n, operands, rank);
  }
  Exp* leaf(ExpNature kind, int symbol, EcType* type, int clock);
  // A copy of `e`, which is of any heap, with other operands and without annotations. It takes
  // `size_of_copy` bytes.
  Exp* copy(const Exp* e, Exp* const* operands);
  static size_t size_of_copy(const Exp* e) {
    return Exp::size_in_arena(e->nb_args, e->order() != 0);
  }
  static size_t size_of_projection() { return Exp::size_in_arena(1, true); }
  // Takes a node that was made with `new`, and returns it.
  Exp* enter(Exp* e) noexcept;

  size_t size() const { return size_; }
  // Calls `visit` for every node, in no certain order.
  template <class Visit>
  void each(Visit visit) {
    for (Exp* e = entered_; e != nullptr; e = e->rare()->entered_before) visit(e);
    each_in_arena({nullptr, 0}, visit);
  }
  Mark mark() const { return {size_, entered_, arena_.mark()}; }
  // Deletes the nodes made since `mark`. Looks at none of those in the arena where no node there of
  // the process has rare fields.
  void cut_back(const Mark& mark);

 private:
  template <class Visit>
  void each_in_arena(const tamsel::Arena::Mark& mark, Visit visit) {
    arena_.each_piece(mark, [visit](char* place, char* end) {
      while (place != end) {
        Exp* e = reinterpret_cast<Exp*>(place);
        place += Exp::size_in_arena(e->nb_args, e->is_ranked_);
        visit(e);
      }
    });
  }

  tamsel::Arena arena_;     // of nodes alone
  Exp* entered_ = nullptr;  // the newest that was made with `new`
  size_t size_ = 0;
};

#endif
