#include "model/exp.h"

#include <algorithm>
#include <cstdint>

#include "model/ecprg.h"

using namespace tamsel;

// clang-format off
const ExpKind ExpNatureKeys[EXP_NATURES] = {
    {ERROR_n,    "",        "ERROR_n",    ExpForm::none,         ExpTyping::unexpected,    0,  false},
    {CONST_n,    "",        "CONST_n",    ExpForm::leaf,         ExpTyping::unexpected,    0,  false},
    {INPUT_n,    "",        "INPUT_n",    ExpForm::leaf,         ExpTyping::unexpected,    0,  false},
    {ECREF_n,    "",        "ECREF_n",    ExpForm::leaf,         ExpTyping::unexpected,    0,  false},
    {MODELREF_n, "",        "MODELREF_n", ExpForm::leaf,         ExpTyping::unexpected,    0,  false},
    {PRE_n,      "pre",     "PRE_n",      ExpForm::prefix,       ExpTyping::first,         11, false},
    {CURRENT_n,  "current", "CURRENT_n",  ExpForm::prefix,       ExpTyping::first,         11, false},
    {NOT_n,      "not",     "NOT_n",      ExpForm::prefix,       ExpTyping::booleans,      6,  false},
    {UMINUS_n,   "-",       "UMINUS_n",   ExpForm::prefix,       ExpTyping::number,        11, false},
    {INT2REAL_n, "real",    "INT2REAL_n", ExpForm::prefix,       ExpTyping::int_to_real,   11, false},
    {REAL2INT_n, "int",     "REAL2INT_n", ExpForm::prefix,       ExpTyping::real_to_int,   11, false},
    {LAST_n,     "last",    "LAST_n",     ExpForm::prefix,       ExpTyping::first,         11, false},
    {INIT_n,     "init",    "INIT_n",     ExpForm::prefix,       ExpTyping::booleans,      11, false},
    {ARROW_n,    "->",      "ARROW_n",    ExpForm::infix,        ExpTyping::alike,         2,  true},
    {WHEN_n,     "when",    "WHEN_n",     ExpForm::infix,        ExpTyping::sampled,       10, true},
    {AND_n,      "and",     "AND_n",      ExpForm::infix,        ExpTyping::booleans,      4,  true},
    {OR_n,       "or",      "OR_n",       ExpForm::infix,        ExpTyping::booleans,      3,  true},
    {XOR_n,      "xor",     "XOR_n",      ExpForm::infix,        ExpTyping::booleans,      3,  true},
    {IMPL_n,     "=>",      "IMPL_n",     ExpForm::infix,        ExpTyping::booleans,      5,  false},
    {EQUAL_n,    "=",       "EQUAL_n",    ExpForm::infix,        ExpTyping::compared,      5,  false},
    {NEQ_n,      "<>",      "NEQ_n",      ExpForm::infix,        ExpTyping::compared,      5,  false},
    {GTE_n,      ">=",      "GTE_n",      ExpForm::infix,        ExpTyping::ordered,       5,  false},
    {GT_n,       ">",       "GT_n",       ExpForm::infix,        ExpTyping::ordered,       5,  false},
    {LTE_n,      "<=",      "LTE_n",      ExpForm::infix,        ExpTyping::ordered,       5,  false},
    {LT_n,       "<",       "LT_n",       ExpForm::infix,        ExpTyping::ordered,       5,  false},
    {DIV_n,      "div",     "DIV_n",      ExpForm::infix,        ExpTyping::integers,      8,  true},
    {MOD_n,      "mod",     "MOD_n",      ExpForm::infix,        ExpTyping::integers,      8,  true},
    {MINUS_n,    "-",       "MINUS_n",    ExpForm::infix,        ExpTyping::arithmetic,    7,  true},
    {PLUS_n,     "+",       "PLUS_n",     ExpForm::infix,        ExpTyping::arithmetic,    7,  true},
    {SLASH_n,    "/",       "SLASH_n",    ExpForm::infix,        ExpTyping::arithmetic,    8,  true},
    {TIMES_n,    "*",       "TIMES_n",    ExpForm::infix,        ExpTyping::arithmetic,    8,  true},
    {POWER_n,    "**",      "POWER_n",    ExpForm::infix,        ExpTyping::arithmetic,    9,  true},
    {IF_n,       "",        "IF_n",       ExpForm::conditional,  ExpTyping::conditional,   1,  false},
    {TUPLE_n,    "",        "TUPLE_n",    ExpForm::list,         ExpTyping::tuple,         0,  false},
    {NOR_n,      "nor",     "NOR_n",      ExpForm::list,         ExpTyping::booleans,      0,  false},
    {DIESE_n,    "#",       "DIESE_n",    ExpForm::list,         ExpTyping::booleans,      0,  false},
    {RCL_n,      "",        "RCL_n",      ExpForm::rational,     ExpTyping::not_supported, 7,  false},
    {ICL_n,      "",        "ICL_n",      ExpForm::integer,      ExpTyping::not_supported, 7,  false},
    {PROJ_n,     "",        "PROJ_n",     ExpForm::projection,   ExpTyping::not_supported, 0,  false},
    {CALL_n,     "",        "CALL_n",     ExpForm::call,         ExpTyping::call,          0,  false},
};
// clang-format on

const ExpKind* tamsel::exp_kind(ExpNature nature) {
  return static_cast<unsigned>(nature) < EXP_NATURES ? &ExpNatureKeys[nature] : nullptr;
}

const char* nodekey(ExpNature nature) {
  const ExpKind* kind = exp_kind(nature);
  return kind != nullptr ? kind->name : "?";
}

const char* opkey(ExpNature nature) {
  const ExpKind* kind = exp_kind(nature);
  return kind != nullptr ? kind->keyword : "";
}

int take_a_key() {
  static std::atomic<int> last_key{0};
  return ++last_key;
}

void ExpList::concat(ExpList* other) {
  if (other == nullptr) return;
  ExpList* cell = this;
  for (;;) {
    cell->length += other->length;
    if (cell->next == nullptr) break;
    cell = cell->next;
  }
  cell->next = other;
}

Exp::Exp(ExpNature kind, int n, Exp* const* a) : nature(kind), nb_args(n), args(new Exp*[n]) {
  std::copy_n(a, n, args);
}

Exp::Exp(ExpNature kind, Exp* a) : Exp(kind, 1, &a) {}

Exp::Exp(ExpNature kind, Exp* a, int rank) : Exp(kind, 1, &a) { order = rank; }

Exp::Exp(ExpNature kind, Exp* a, Exp* b) : nature(kind), nb_args(2), args(new Exp* [2] { a, b }) {}

Exp::Exp(ExpNature kind, Exp* a, Exp* b, Exp* c)
    : nature(kind), nb_args(3), args(new Exp* [3] { a, b, c }) {}

Exp::Exp(ExpNature kind, ExpList* list)
    : nature(kind), nb_args(list->length), args(new Exp*[list->length]) {
  Exp** place = args;
  for (const ExpList* cell = list; cell != nullptr; cell = cell->next) *place++ = cell->exp;
}

Exp::Exp(ExpNature kind, int n, Exp** a, Fract* coefficients, Fract k) : Exp(kind, n, a) {
  coeffs.reset(new Fract[n]);
  std::copy_n(coefficients, n, coeffs.get());
  constant = k;
}

Exp::Exp(ExpNature kind, int n, Exp** a, int* coefficients, int k) : Exp(kind, n, a) {
  ints.reset(new int[n]);
  std::copy_n(coefficients, n, ints.get());
  int_param = k;
}

Exp::Exp(ExpNature kind, int symbol, EcType* leaf_type, int leaf_clock)
    : clock(leaf_clock), type(leaf_type), ident(symbol), nature(kind) {}

Exp::Exp(ExpNature kind, int symbol, EcType* leaf_type) : Exp(kind, symbol, leaf_type, -1) {}

void ExpHeap::add(Exp* e) noexcept {
  e->made_before_ = newest_;
  newest_ = e;
  ++size_;
}

// The operands stand behind the node, in the same piece of memory.
Exp* ExpHeap::node(ExpNature kind, int n, Exp* const* operands, int rank) {
  static_assert(sizeof(Exp) % alignof(Exp*) == 0, "operands can stand behind a node");
  static_assert(sizeof(void*) != 8 || sizeof(Exp) == 96, "the fields of a node leave no gaps");
  void* room = arena_.allocate(sizeof(Exp) + static_cast<size_t>(n) * sizeof(Exp*));
  Exp* e = new (room) Exp(kind, 0, nullptr, -1);
  e->in_arena_ = true;
  e->nb_args = n;
  e->args = reinterpret_cast<Exp**>(e + 1);
  e->order = rank;
  std::copy_n(operands, n, e->args);
  add(e);
  return e;
}

Exp* ExpHeap::leaf(ExpNature kind, int symbol, EcType* type, int clock) {
  Exp* e = node(kind, 0, nullptr);
  e->ident = symbol;
  e->type = type;
  e->clock = clock;
  return e;
}

Exp* ExpHeap::enter(Exp* e) noexcept {
  add(e);
  ++entered_;
  return e;
}

int Exp::projection_order() {
  if (nature == PROJ_n) return order;
  return EcPrg::ierror("projection_order called on '%s' operator", nodekey(nature));
}

int Exp::function_ident() {
  if (nature == CALL_n) return order;
  return EcPrg::ierror("Exp::function_name called on '%s' operator", nodekey(nature));
}

std::atomic<size_t> tamsel::things_of_nodes;

// The cell of `key`, or the place where it belongs.
static ExpInfo** place_of(ExpInfo** infos, int key) {
  while (*infos != nullptr && (*infos)->key > key) infos = &(*infos)->next;
  return infos;
}

void Exp::put_info(int info_key, void* value) {
  ExpInfo** place = place_of(&infos, info_key);
  if (*place != nullptr && (*place)->key == info_key) {
    (*place)->value = value;
    return;
  }
  *place = new ExpInfo{info_key, value, *place};
  ++things_of_nodes;
}

void Exp::drop_info(int info_key) {
  ExpInfo** place = place_of(&infos, info_key);
  ExpInfo* info = *place;
  if (info == nullptr || info->key != info_key) return;
  *place = info->next;
  delete info;
  --things_of_nodes;
}

void* Exp::get_ptr_info(int info_key) {
  const ExpInfo* info = *place_of(&infos, info_key);
  return info != nullptr && info->key == info_key ? info->value : nullptr;
}

int Exp::get_int_info(int info_key) {
  return static_cast<int>(reinterpret_cast<intptr_t>(get_ptr_info(info_key)));
}
