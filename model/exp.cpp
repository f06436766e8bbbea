#include "model/exp.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <vector>

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

// The nodes in arenas of the process that have rare fields.
static std::atomic<size_t> rare_in_arenas;

RareFields::~RareFields() {
  while (infos != nullptr) {
    ExpInfo* behind = infos->next;
    delete infos;
    infos = behind;
  }
}

Exp::Exp(ExpNature kind, int n, Exp* const* a) : Exp(kind, n, false, false) { add_rare(a); }

Exp::Exp(ExpNature kind, Exp* a) : Exp(kind, 1, &a) {}

Exp::Exp(ExpNature kind, Exp* a, int rank) : Exp(kind, 1, &a) { rare()->order = rank; }

Exp::Exp(ExpNature kind, Exp* a, Exp* b) : Exp(kind, 2, std::array{a, b}.data()) {}

Exp::Exp(ExpNature kind, Exp* a, Exp* b, Exp* c) : Exp(kind, 3, std::array{a, b, c}.data()) {}

Exp::Exp(ExpNature kind, ExpList* list) : Exp(kind, list->length, false, false) {
  std::vector<Exp*> operands;
  for (const ExpList* cell = list; cell != nullptr; cell = cell->next)
    operands.push_back(cell->exp);
  add_rare(operands.data());
}

Exp::Exp(ExpNature kind, int n, Exp** a, Fract* coefficients, Fract k) : Exp(kind, n, a) {
  rare()->coeffs.reset(new Fract[n]);
  std::copy_n(coefficients, n, rare()->coeffs.get());
  rare()->constant = k;
}

Exp::Exp(ExpNature kind, int n, Exp** a, int* coefficients, int k) : Exp(kind, n, a) {
  rare()->ints.reset(new int[n]);
  std::copy_n(coefficients, n, rare()->ints.get());
  rare()->int_param = k;
}

Exp::Exp(ExpNature kind, int symbol, EcType* leaf_type, int leaf_clock)
    : Exp(kind, 0, false, false) {
  type = leaf_type;
  clock = leaf_clock;
  ident = symbol;
  add_rare(nullptr);
}

Exp::Exp(ExpNature kind, int symbol, EcType* leaf_type) : Exp(kind, symbol, leaf_type, -1) {}

Exp::~Exp() {
  if (!has_rare_) return;
  delete rare();
  if (in_arena_) --rare_in_arenas;
}

RareFields& Exp::add_rare(Exp* const* operands) {
  auto fields = std::make_unique<RareFields>();
  fields->args.reset(new Exp*[nb_args]);
  std::copy_n(operands, nb_args, fields->args.get());
  if (in_arena_) ++rare_in_arenas;
  has_rare_ = true;
  held_for_ = 0;
  first_ = reinterpret_cast<Exp*>(fields.release());
  return *rare();
}

RareFields& Exp::some_rare() { return has_rare_ ? *rare() : add_rare(in_place()); }

// Of a node in an arena whose rare fields say nothing, the operands return behind it, so that one
// that a pass has marked takes no more memory than before.
void Exp::drop_idle_rare() {
  if (!in_arena_ || infos() != nullptr || key() != 0 || rare()->order != 0) return;
  const std::unique_ptr<RareFields> idle(rare());
  first_ = nullptr;
  std::copy_n(idle->args.get(), nb_args, in_place());
  has_rare_ = false;
  --rare_in_arenas;
}

Exp* ExpHeap::leaf(ExpNature kind, int symbol, EcType* type, int clock) {
  Exp* e = node(kind, 0, nullptr);
  e->ident = symbol;
  e->type = type;
  e->clock = clock;
  return e;
}

Exp* ExpHeap::copy(const Exp* e, Exp* const* operands) {
  Exp* made = node(e->nature, e->nb_args, operands, e->order());
  made->ident = e->ident;
  made->type = e->type;
  made->clock = e->clock;
  const size_t count = static_cast<size_t>(e->nb_args);
  if (const int* ints = e->ints()) {
    RareFields& rare = made->some_rare();
    rare.ints.reset(new int[count]);
    std::copy_n(ints, count, rare.ints.get());
    rare.int_param = e->int_param();
  }
  if (const Fract* coeffs = e->coeffs()) {
    RareFields& rare = made->some_rare();
    rare.coeffs.reset(new Fract[count]);
    std::copy_n(coeffs, count, rare.coeffs.get());
    rare.constant = e->constant();
  }
  return made;
}

Exp* ExpHeap::enter(Exp* e) noexcept {
  e->rare()->entered_before = entered_;
  entered_ = e;
  ++size_;
  return e;
}

void ExpHeap::cut_back(const Mark& mark) {
  while (entered_ != mark.entered) {
    const std::unique_ptr<Exp> e(entered_);
    entered_ = e->rare()->entered_before;
  }
  if (rare_in_arenas > 0) each_in_arena(mark.arena, [](Exp* e) { e->~Exp(); });
  arena_.cut_back(mark.arena);
  size_ = mark.size;
}

void Exp::hold_name(const char* name) {
  const int length = short_length(name);
  if (sizeof first_ < 8 || length == 8 || name[length] != '\0') return;
  if (nb_args > 0 || has_rare_ || ident <= 0 || ident >= 1 << held_bits) return;
  std::memcpy(&first_, name, sizeof first_);
  held_for_ = static_cast<unsigned>(ident);
}

void Exp::set_order(int rank) {
  if (is_ranked_)
    *rank_place() = rank;
  else
    some_rare().order = rank;
}

void Exp::set_key(int number) { some_rare().key = number; }

int Exp::projection_order() {
  if (nature == PROJ_n) return order();
  return EcPrg::ierror("projection_order called on '%s' operator", nodekey(nature));
}

int Exp::function_ident() {
  if (nature == CALL_n) return order();
  return EcPrg::ierror("Exp::function_name called on '%s' operator", nodekey(nature));
}

// The cell of `key`, or the place where it belongs.
static ExpInfo** place_of(ExpInfo** infos, int key) {
  while (*infos != nullptr && (*infos)->key > key) infos = &(*infos)->next;
  return infos;
}

void Exp::put_info(int info_key, void* value) {
  ExpInfo** place = place_of(&some_rare().infos, info_key);
  if (*place != nullptr && (*place)->key == info_key) {
    (*place)->value = value;
    return;
  }
  *place = new ExpInfo{info_key, value, *place};
}

void Exp::drop_info(int info_key) {
  if (!has_rare_) return;
  ExpInfo** place = place_of(&rare()->infos, info_key);
  ExpInfo* info = *place;
  if (info == nullptr || info->key != info_key) return;
  *place = info->next;
  delete info;
  drop_idle_rare();
}

void* Exp::get_ptr_info(int info_key) {
  if (!has_rare_) return nullptr;
  const ExpInfo* info = *place_of(&rare()->infos, info_key);
  return info != nullptr && info->key == info_key ? info->value : nullptr;
}

int Exp::get_int_info(int info_key) {
  return static_cast<int>(reinterpret_cast<intptr_t>(get_ptr_info(info_key)));
}
