// Changes of a program: what takes away, and what takes the place of something else.

#include <algorithm>
#include <array>

#include "model/ecprg.h"

using namespace tamsel;

// --- The lists. What is in them has a slot, by which an index of the list knows it.

struct EcPrg::ListOfNames {
  IntList* EcPrg::*names;
  int EcPrg::*count;
  int first_slot;
  int& (*slot)(EcPrg* prg, int symbol);  // where the record keeps it
};

static int& order_slot(EcPrg* prg, int symbol) { return prg->ident(symbol)->order; }
static int& value_slot(EcPrg* prg, int symbol) { return prg->ident(symbol)->value; }
static int& index_slot(EcPrg* prg, int symbol) { return prg->function(symbol)->index; }
static int& number_slot(EcPrg* prg, int symbol) { return prg->named_type(symbol)->number; }

const EcPrg::ListOfNames EcPrg::lists_of_names[] = {
    {&EcPrg::inputs, &EcPrg::nb_inputs, 0, order_slot},
    {&EcPrg::outputs, &EcPrg::nb_outputs, 0, order_slot},
    {&EcPrg::locals, &EcPrg::nb_locals, 0, order_slot},
    {&EcPrg::assertions, &EcPrg::nb_assertions, 0, order_slot},
    {&EcPrg::constants, &EcPrg::nb_constants, 0, value_slot},
    {&EcPrg::functions, &EcPrg::nb_functions, 0, index_slot},
    {&EcPrg::tuple_functions, &EcPrg::nb_tuple_functions, 0, index_slot},
    {&EcPrg::user_types, &EcPrg::nb_user_types, 1, number_slot},
};

static size_t place_in_table(NameList list) { return static_cast<size_t>(list); }

// The slot of the next name that the list gets.
int EcPrg::next_slot(NameList list) const {
  const size_t place = place_in_table(list);
  const ListOfNames& row = lists_of_names[place];
  return this->*row.count + indexes_[place].gone() + row.first_slot;
}

int EcPrg::name_at(NameList list, int i, int* symbol) {
  const size_t place = place_in_table(list);
  return indexes_[place].extract(this->*lists_of_names[place].names, i, symbol);
}

int EcPrg::place_of(NameList list, int symbol) {
  const size_t place = place_in_table(list);
  if (list == NameList::assertions && !indexes_[place].can_remove()) prepare_removal(list);
  const ListOfNames& row = lists_of_names[place];
  return indexes_[place].rank(row.slot(this, symbol) - row.first_slot);
}

NameList EcPrg::list_of(NameKind kind, int symbol) {
  switch (kind) {
    case NameKind::input:
      return NameList::inputs;
    case NameKind::output:
      return NameList::outputs;
    case NameKind::local:
      return NameList::locals;
    case NameKind::constant:
      return NameList::constants;
    case NameKind::function:
      return function(symbol)->tuple_result ? NameList::tuple_functions : NameList::functions;
    case NameKind::type:
      break;
  }
  return NameList::types;
}

// Leaves each name once in its list, where it was declared last.
void EcPrg::drop_repeated_names() {
  if (!has_repeated_names_) return;
  std::vector<int> kept[std::size(lists_of_names)];
  for (const NameKind kind : name_kinds)
    for (const int symbol : declared_names(kind))
      kept[place_in_table(list_of(kind, symbol))].push_back(symbol);
  for (const int symbol : values_of(assertions))
    if (is_assertion(symbol)) kept[place_in_table(NameList::assertions)].push_back(symbol);
  for (size_t i = 0; i < std::size(lists_of_names); ++i) {
    IntList*& names = this->*lists_of_names[i].names;
    // The cells that are there hold what is kept: there are no fewer of them.
    IntList* cell = names;
    IntList* last = nullptr;
    for (const int symbol : kept[i]) {
      cell->value = symbol;
      last = cell;
      cell = cell->next;
    }
    delete cell;
    if (last == nullptr) {
      names = nullptr;
    } else {
      last->next = nullptr;
      last->last_ = names->last_ = last;
    }
    this->*lists_of_names[i].count = static_cast<int>(kept[i].size());
    indexes_[i] = IntListIndex();
  }
  has_repeated_names_ = false;
}

void EcPrg::prepare_removal(NameList list) {
  drop_repeated_names();
  const size_t place = place_in_table(list);
  const ListOfNames& row = lists_of_names[place];
  IntListIndex& index = indexes_[place];
  if (!index.can_remove() || index.is_mostly_gaps()) {
    IntListIndex fresh;
    fresh.prepare_removal(this->*row.names);
    index = std::move(fresh);
    int slot = row.first_slot;
    for (const int symbol : values_of(this->*row.names)) row.slot(this, symbol) = slot++;
  }
  index.prepare_removal(this->*row.names);
  make_room_to_retire();
  if (list != NameList::assertions) return;
  const size_t most = free_assertions_.size() + static_cast<size_t>(nb_assertions);
  if (free_assertions_.capacity() < most) free_assertions_.reserve(2 * most);
}

// The lists of another program, in which slots and places are one again.
void EcPrg::copy_lists(const EcPrg& other) {
  for (const ListOfNames& row : lists_of_names) {
    for (const int symbol : values_of(other.*row.names)) append_list(this->*row.names, symbol);
    this->*row.count = other.*row.count;
    if (other.indexes_[&row - lists_of_names].gone() == 0) continue;
    int slot = row.first_slot;
    for (const int symbol : values_of(this->*row.names)) row.slot(this, symbol) = slot++;
  }
}

// --- Names that are none any more.

void EcPrg::make_room_to_retire() {
  const size_t count = static_cast<size_t>(symbols->nb_symbols) + 1;
  if (retired_.size() < count) retired_.resize(count);
}

void EcPrg::set_retired(int symbol, bool is) noexcept {
  if (static_cast<size_t>(symbol) < retired_.size()) retired_[static_cast<size_t>(symbol)] = is;
}

// Of a type's constants, forgets those that are gone when they may be as many as the others.
static void drop_gone_constants(EcPrg* prg, EcType* type) noexcept {
  if (++type->gone_constants <= 64 || 2 * type->gone_constants < length(type->constants)) return;
  type->gone_constants = 0;
  IntList* kept = nullptr;
  IntList* last = nullptr;
  for (IntList* cell = type->constants; cell != nullptr;) {
    IntList* after = cell->next;
    const IdentInfo* constant = prg->ident(cell->value);
    cell->next = nullptr;
    if (constant == nullptr || constant->type != type) {
      delete cell;
    } else {
      if (last != nullptr)
        last->next = cell;
      else
        kept = cell;
      last = cell;
    }
    cell = after;
  }
  type->constants = kept;
  if (kept != nullptr) last->last_ = kept->last_ = last;
}

void EcPrg::remove(NameList list, int symbol) noexcept {
  const size_t place = place_in_table(list);
  const ListOfNames& row = lists_of_names[place];
  indexes_[place].remove(this->*row.names, row.slot(this, symbol) - row.first_slot);
  --(this->*row.count);
  ++revision;
  if (list != NameList::assertions) ++removals;
  if (list == NameList::types) {
    EcType* type = named_type(symbol);
    type->number = type->nb_enum = 0;
    type->enum_consts.reset();
    named_types_.erase(symbol);
    set_retired(symbol, ident(symbol) == nullptr && function(symbol) == nullptr);
    return;
  }
  IdentInfo* record = ident(symbol);
  if (list == NameList::assertions) {
    drop_parts(symbol);
    free_assertions_.push_back(symbol);
  } else if (record != nullptr) {
    drop_equation(record);
  }
  EcType* const type = record != nullptr && record->mode == USR_CONST_mode ? record->type : nullptr;
  delete (*infos)[symbol];
  (*infos)[symbol] = nullptr;
  if (type != nullptr) drop_gone_constants(this, type);
  set_retired(symbol, named_type(symbol) == nullptr);
}

// --- Equations and assertions.

// What belongs to the equation whose left side begins with that name; there is room for it.
EcPrg::Parts& EcPrg::parts_of(int symbol) { return parts_[static_cast<size_t>(symbol)]; }

void EcPrg::drop_parts(int symbol) noexcept {
  if (static_cast<size_t>(symbol) < parts_.size()) parts_of(symbol) = Parts();
}

void EcPrg::keep_room_for(int symbol) {
  if (parts_.size() <= static_cast<size_t>(symbol)) parts_.resize(static_cast<size_t>(symbol) + 1);
}

EcPrg::Ready EcPrg::make_ready(const std::vector<int>& names, Exp* right,
                               std::unique_ptr<ExpHeap> nodes) {
  Ready ready;
  ready.names = names;
  if (names.size() > 1) {
    ready.parts.names = std::make_unique<IntList>(names.data(), static_cast<int>(names.size()));
    for (size_t i = 0; i < names.size(); ++i)
      ready.definitions.push_back(nodes->node(PROJ_n, 1, &right, static_cast<int>(i) + 1));
  } else {
    ready.definitions.push_back(right);
  }
  if (is_assertion(names[0])) clock(right);  // which may take memory
  ready.parts.nodes = std::move(nodes);
  keep_room_for(names[0]);
  return ready;
}

void EcPrg::put(Ready ready, int line) noexcept {
  for (const int symbol : ready.names) drop_equation(ident(symbol));
  for (size_t i = 0; i < ready.names.size(); ++i) {
    IdentInfo* record = ident(ready.names[i]);
    Exp* e = ready.definitions[i];
    if (record->mode == ASSERT_mode)
      record->clock = e->clock;
    else
      record->equation_line = line;
    record->definition = e;
    record->tuple_names = ready.parts.names.get();
    set_type_and_clock(e, record->type, record->clock);
  }
  parts_of(ready.names[0]) = std::move(ready.parts);
  ++revision;
}

void EcPrg::drop_equation(IdentInfo* dropped) noexcept {
  if (dropped->mode != OUTPUT_mode && dropped->mode != LOCAL_mode) return;
  if (dropped->definition == nullptr) return;
  const auto forget = [](IdentInfo* record) {
    record->definition = nullptr;
    record->tuple_names = nullptr;
    record->equation_line = 0;
  };
  int first = dropped->name;
  if (const IntList* names = dropped->tuple_names) {
    first = names->value;
    for (const int symbol : values_of(names)) forget(ident(symbol));
  }
  forget(dropped);
  drop_parts(first);
  ++revision;
}

bool EcPrg::is_assertion(int symbol) {
  const IdentInfo* record = ident(symbol);
  return record != nullptr && record->mode == ASSERT_mode;
}

// Names of assertions that are gone are given again, so that they are never more than there are
// assertions at a time.
int EcPrg::new_assertion_name() {
  for (; !free_assertions_.empty(); free_assertions_.pop_back())
    if (ident(free_assertions_.back()) == nullptr) return free_assertions_.back();
  for (int number = nb_assertions;; ++number) {
    const int symbol = symbols->add("__assert_%d", number);
    if (!is_assertion(symbol)) return symbol;
  }
}

IdentInfo* EcPrg::add_assertion(Exp* e) { return add_assertion(e, nullptr); }

IdentInfo* EcPrg::add_assertion(Exp* e, std::unique_ptr<ExpHeap> nodes) {
  if (e == nullptr) return nullptr;
  const int symbol = new_assertion_name();
  auto cell = std::make_unique<IntList>(&symbol, 1);
  auto record = std::make_unique<IdentInfo>(ASSERT_mode, symbol, bool_type, clock(e));
  IdentInfo* assertion = record.get();
  assertion->definition = e;
  // What was read has no slots before something is taken away.
  if (indexes_[place_in_table(NameList::assertions)].can_remove())
    assertion->order = next_slot(NameList::assertions);
  if (nodes != nullptr) keep_room_for(symbol);
  info_heap.make_room();
  prepare_slot(symbol);
  enter(std::move(record));
  set_type_and_clock(e, bool_type, assertion->clock);
  assertions = append(assertions, cell.release());
  ++nb_assertions;
  ++revision;
  if (nodes != nullptr) parts_of(symbol).nodes = std::move(nodes);
  return assertion;
}

// --- Other names.

void EcPrg::rename(const std::vector<std::pair<int, std::string>>& renamed) {
  const int known = symbols->nb_symbols;
  try {
    for (const auto& each : renamed) symbols->add_text(each.second.c_str());
    make_room_to_retire();
  } catch (...) {
    symbols->cut_back(known);
    throw;
  }
  // Whoever has a text that is wanted takes the one that is given up for it. What has none of the
  // new names in the end is called like nothing that is there.
  for (const auto& each : renamed) {
    const int other = symbols->tape->known(each.second.c_str());
    symbols->swap_names(each.first, other);
    set_retired(other, true);
  }
  for (const auto& each : renamed) set_retired(each.first, false);
}
