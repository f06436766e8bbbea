#include "model/ecprg.h"

#include <cstdio>
#include <cstring>
#include <unordered_set>

using namespace tamsel;

// Whatever can throw stands before the first change, in every operation below.

void EcPrg::EcPrgInit(SymbolTable* table) {
  held_table_ = symbols = table;
  infos = new SymbolInfoArray(200, 0);
  bool_type = define_named_type(symbols->add("bool"));
  int_type = define_named_type(symbols->add("int"));
  real_type = define_named_type(symbols->add("real"));
  true_clock = symbols->add("true");
  true_exp = get_bool_const(true_clock);
  false_exp = get_bool_const(symbols->add("false"));
  bottom_exp = get_bool_const(symbols->add("bottom"));
  nil_exp = get_bool_const(symbols->add("nil"));
}

// --- Records.

// The place of the record of `symbol`, with room to keep the one that it may hold, and those of
// others that are under way.
SymbolInfo*& EcPrg::prepare_slot(int symbol, size_t under_way) {
  replaced_.make_room(under_way + 1);
  return (*infos)[symbol];
}

void EcPrg::install(int symbol, std::unique_ptr<SymbolInfo> record) noexcept {
  SymbolInfo*& slot = (*infos)[symbol];
  if (slot != nullptr) {
    replaced_.enter(slot);
    has_repeated_names_ = true;
  }
  slot = record.release();
  set_retired(symbol, false);
}

// An identifier's record with the leaf that stands for it, all ready for `enter`, as are those
// under way.
std::unique_ptr<IdentInfo> EcPrg::new_ident(IdentMode mode, ExpNature leaf, int symbol,
                                            EcType* type, int clock, size_t under_way) {
  auto ident = std::make_unique<IdentInfo>(mode, symbol, type, clock);
  info_heap.make_room(under_way + 1);
  prepare_slot(symbol, under_way);
  ident->ident_exp = exp_heap.leaf(leaf, symbol, type, clock);
  hold_name(ident->ident_exp);
  if (leaf != ECREF_n) ident->definition = ident->ident_exp;
  return ident;
}

IdentInfo* EcPrg::enter(std::unique_ptr<IdentInfo> record) noexcept {
  IdentInfo* ident = record.get();
  install(ident->name, std::move(record));
  info_heap.enter(ident);
  return ident;
}

IdentInfo* EcPrg::declare(IdentMode mode, ExpNature leaf, int symbol, EcType* type, int clock) {
  IdentInfo* ident = enter(new_ident(mode, leaf, symbol, type, clock));
  if (mode <= USR_CONST_mode) ++revision;
  return ident;
}

static IntList* new_cell(int value) { return new IntList(&value, 1); }

void EcPrg::add_input(int symbol, EcType* type, int clock) {
  std::unique_ptr<IntList> cell(new_cell(symbol));
  IdentInfo* input = declare(INPUT_mode, INPUT_n, symbol, type, clock);
  input->order = next_slot(NameList::inputs);
  ++nb_inputs;
  inputs = append(inputs, cell.release());
}

void EcPrg::add_output(int symbol, EcType* type, int clock, int at_front) {
  std::unique_ptr<IntList> cell(new_cell(symbol));
  IdentInfo* output = declare(OUTPUT_mode, ECREF_n, symbol, type, clock);
  output->order = next_slot(NameList::outputs);
  ++nb_outputs;
  outputs = at_front ? append(cell.release(), outputs) : append(outputs, cell.release());
}

void EcPrg::add_local(int symbol, EcType* type, int clock) {
  std::unique_ptr<IntList> cell(new_cell(symbol));
  IdentInfo* local = declare(LOCAL_mode, ECREF_n, symbol, type, clock);
  local->order = next_slot(NameList::locals);
  ++nb_locals;
  locals = append(locals, cell.release());
}

void EcPrg::add_usr_const(int symbol, EcType* type, int clock) {
  std::unique_ptr<IntList> cell(new_cell(symbol));
  std::unique_ptr<IntList> type_cell(type != nullptr ? new_cell(symbol) : nullptr);
  IdentInfo* constant = declare(USR_CONST_mode, CONST_n, symbol, type, clock);
  constant->value = next_slot(NameList::constants);
  ++nb_constants;
  constants = append(constants, cell.release());
  if (type != nullptr) type->constants = append(type->constants, type_cell.release());
}

void EcPrg::enter_enum_const(std::unique_ptr<IdentInfo> record, IntList* cell, int rank) noexcept {
  IdentInfo* ident = enter(std::move(record));
  EcType* type = ident->type;
  ident->order = rank;
  ident->value = next_slot(NameList::constants);
  ++nb_constants;
  constants = append(constants, cell);
  if (type != nullptr && rank >= 0 && rank < type->nb_enum) type->enum_consts[rank] = ident;
}

void EcPrg::add_enum_const(int symbol, EcType* type, int clock, int rank) {
  std::unique_ptr<IntList> cell(new_cell(symbol));
  std::unique_ptr<IdentInfo> record = new_ident(ENUM_CONST_mode, CONST_n, symbol, type, clock);
  enter_enum_const(std::move(record), cell.release(), rank);
}

void EcPrg::add_usr_func(int symbol, EcType* param_type, EcType* result_type, IntList* params,
                         IntList* results) {
  std::unique_ptr<IntList> held_params(params);
  std::unique_ptr<IntList> held_results(results);
  std::unique_ptr<IntList> cell(new_cell(symbol));
  auto record = std::make_unique<FuncInfo>(symbol, param_type, result_type, nullptr, nullptr);
  FuncInfo* function = record.get();
  prepare_slot(symbol);
  install(symbol, std::move(record));
  function->params = held_params.release();
  function->results = held_results.release();
  ++revision;
  if (function->tuple_result) {
    function->index = next_slot(NameList::tuple_functions);
    ++nb_tuple_functions;
    tuple_functions = append(tuple_functions, cell.release());
  } else {
    function->index = next_slot(NameList::functions);
    ++nb_functions;
    functions = append(functions, cell.release());
  }
}

Exp* EcPrg::constant(int symbol, IdentMode mode, EcType* type) {
  if (IdentInfo* known = ident(symbol)) return known->ident_exp;
  IdentInfo* literal = declare(mode, CONST_n, symbol, type, true_clock);
  const char* text = symbols->name(symbol);
  if (mode == INT_CONST_mode) literal->value = read_int(text);
  if (mode == REAL_CONST_mode) {
    // Single precision is enough here: what is printed is the text.
    const float value = read_float(text);
    static_assert(sizeof value == sizeof literal->value, "an int keeps the bits of a float");
    std::memcpy(&literal->value, &value, sizeof value);
  }
  return literal->ident_exp;
}

Exp* EcPrg::get_bool_const(int symbol) { return constant(symbol, BOOL_CONST_mode, bool_type); }
Exp* EcPrg::get_int_const(int symbol) { return constant(symbol, INT_CONST_mode, int_type); }
Exp* EcPrg::get_real_const(int symbol) { return constant(symbol, REAL_CONST_mode, real_type); }

SymbolInfo* EcPrg::record(int symbol) {
  return symbol > 0 && symbol <= symbols->nb_symbols ? (*infos)[symbol] : nullptr;
}

IdentInfo* EcPrg::ident(int symbol) {
  SymbolInfo* info = record(symbol);
  return info != nullptr ? info->is_ident() : nullptr;
}

FuncInfo* EcPrg::function(int symbol) {
  SymbolInfo* info = record(symbol);
  return info != nullptr ? info->is_function() : nullptr;
}

std::vector<int> EcPrg::declared_names(NameKind kind) {
  std::vector<int> names;
  const bool may_repeat = has_repeated_names_;
  const auto take = [&](const IntList* list, auto stands_here) {
    std::unordered_map<int, const IntList*> last;  // where names that may be there again stand
    for (const IntList* cell = list; may_repeat && cell != nullptr; cell = cell->next)
      last[cell->value] = cell;
    for (; list != nullptr; list = list->next)
      if (!may_repeat || (last[list->value] == list && stands_here(list->value)))
        names.push_back(list->value);
  };
  const auto has_mode = [this](IdentMode mode) {
    return [=](int symbol) {
      const IdentInfo* record = ident(symbol);
      return record != nullptr && record->mode == mode;
    };
  };
  const auto is_constant = [this](int symbol) {
    const IdentInfo* record = ident(symbol);
    return record != nullptr && (record->mode == USR_CONST_mode || record->mode == ENUM_CONST_mode);
  };
  const auto has_results = [this](int tuple_result) {
    return [=](int symbol) {
      const FuncInfo* record = function(symbol);
      return record != nullptr && record->tuple_result == tuple_result;
    };
  };
  switch (kind) {
    case NameKind::input:
      take(inputs, has_mode(INPUT_mode));
      break;
    case NameKind::output:
      take(outputs, has_mode(OUTPUT_mode));
      break;
    case NameKind::local:
      take(locals, has_mode(LOCAL_mode));
      break;
    case NameKind::constant:
      take(constants, is_constant);
      break;
    case NameKind::function:
      take(functions, has_results(0));
      take(tuple_functions, has_results(1));
      break;
    case NameKind::type:
      take(user_types, [](int) { return true; });
      break;
  }
  return names;
}

IdentInfo* EcPrg::declared_ident(int symbol) {
  IdentInfo* record = ident(symbol);
  if (record != nullptr && record->ident_exp != nullptr) return record;
  error_about(symbol, "undeclared ident '%s'");
  return nullptr;
}

// --- Equations and assertions.

Exp* EcPrg::enter(Exp* e) { return e != nullptr ? exp_heap.enter(e) : nullptr; }

void EcPrg::set_type_and_clock(Exp* e, EcType* type, int clock) {
  if (e->nb_args == 0) return;
  e->type = type;
  e->clock = clock;
}

IdentInfo* EcPrg::define_ident(int symbol, Exp* e) {
  IdentInfo* record = declared_ident(symbol);
  if (record == nullptr || e == nullptr) return nullptr;
  if (record->definition != nullptr) error_about(symbol, "ident '%s' is already defined");
  if (record->tuple_names != nullptr) return nullptr;
  record->definition = e;
  ++revision;
  set_type_and_clock(e, record->type, record->clock);
  return record;
}

IdentInfo* EcPrg::define_tuple(IntList* names, Exp* e) {
  std::unique_ptr<IntList> held(names);
  std::unordered_set<int> seen;
  std::vector<IdentInfo*> records;
  for (const int symbol : values_of(names)) {
    IdentInfo* record = declared_ident(symbol);
    if (record == nullptr) return nullptr;
    if (record->definition != nullptr || !seen.insert(symbol).second) {
      error_about(symbol, "ident '%s' is already defined");
      return nullptr;
    }
    records.push_back(record);
  }
  if (e == nullptr || records.empty()) return nullptr;

  std::vector<Exp*> projections;
  for (const IdentInfo* record : records) {
    projections.push_back(exp_heap.node(PROJ_n, 1, &e, static_cast<int>(projections.size()) + 1));
    set_type_and_clock(projections.back(), record->type, record->clock);
  }
  tuple_names_.push_back(std::move(held));
  ++revision;
  for (size_t i = 0; i < records.size(); ++i) {
    records[i]->definition = projections[i];
    records[i]->tuple_names = names;
  }
  return records.back();
}

EcPrg::Mark EcPrg::mark() const {
  return {exp_heap.mark(), info_heap.size(), replaced_.size(), types};
}

void EcPrg::roll_back(const Mark& mark) {
  exp_heap.cut_back(mark.expressions);
  while (info_heap.size() > mark.records) {
    IdentInfo* literal = info_heap.take_newest()->is_ident();
    (*infos)[literal->name] = nullptr;
    delete literal;
  }
  // What a literal has replaced can only be a function that is called like a number.
  while (replaced_.size() > mark.replaced) {
    FuncInfo* function = replaced_.take_newest()->is_function();
    (*infos)[function->name] = function;
  }
  while (types != mark.types) {
    EcType* type = types;
    types = type->next;
    type->next = nullptr;
    tuple_types_.erase(type->members);
    delete type;
  }
}

// --- Types.

EcType* EcPrg::add_type(EcType* type) {
  type->next = types;
  return types = type;
}

EcType* EcPrg::define_named_type(int symbol) {
  EcType*& slot = named_types_[symbol];
  if (slot != nullptr) {
    error_about(symbol, "type '%s' already declared");
    return nullptr;
  }
  slot = add_type(new EcType(symbol));
  set_retired(symbol, false);
  return slot;
}

EcType* EcPrg::named_type(int symbol) const {
  const auto known = named_types_.find(symbol);
  return known != named_types_.end() ? known->second : nullptr;
}

EcType* EcPrg::get_named_type(int symbol) {
  EcType* type = named_type(symbol);
  if (type == nullptr) error_about(symbol, "EcPrg: type '%s' undeclared");
  return type;
}

EcType* EcPrg::define_type(IntList* names) {
  if (names == nullptr) return define_type(nullptr, 0);
  if (names->next == nullptr) return get_named_type(names->value);
  const auto known = tuple_types_.find(names);
  if (known != tuple_types_.end()) return known->second;
  // Made a tuple when nothing can fail any more: until then the names are the caller's.
  auto type = std::make_unique<EcType>(0);
  tuple_types_.emplace(names, type.get());
  type->is_tuple = 1;
  type->members = names;
  return add_type(type.release());
}

EcType* EcPrg::define_type(const int* names, int n) {
  if (n < 1) {
    error("EcPrg: a type needs a name");
    return nullptr;
  }
  if (n == 1) return get_named_type(names[0]);
  const auto known = tuple_types_.find(Members{names, n});
  if (known != tuple_types_.end()) return known->second;
  auto members = std::make_unique<IntList>(names, n);
  EcType* type = define_type(members.get());
  members.release();
  return type;
}

void EcPrg::add_usr_type(int symbol) {
  std::unique_ptr<IntList> cell(new_cell(symbol));
  EcType* type = define_named_type(symbol);
  if (type == nullptr) return;
  user_types = append(user_types, cell.release());
  type->number = next_slot(NameList::types);
  ++nb_user_types;
}

void EcPrg::add_usr_type(int symbol, IntList* enum_names) {
  if (named_type(symbol) != nullptr) return add_usr_type(symbol);
  const int count = length(enum_names);
  auto ranks = std::make_unique<IdentInfo*[]>(static_cast<size_t>(count));
  const ExpHeap::Mark before = exp_heap.mark();
  std::vector<std::unique_ptr<IdentInfo>> records;
  std::vector<std::unique_ptr<IntList>> cells;
  cells.reserve(static_cast<size_t>(count));  // so that none is lost on its way there
  try {
    for (const int value : values_of(enum_names)) {
      records.push_back(
          new_ident(ENUM_CONST_mode, CONST_n, value, nullptr, true_clock, records.size()));
      cells.emplace_back(new_cell(value));
    }
    add_usr_type(symbol);
  } catch (...) {
    exp_heap.cut_back(before);
    throw;
  }
  EcType* type = types;
  type->enum_consts = std::move(ranks);
  type->nb_enum = count;
  for (size_t i = 0; i < records.size(); ++i) {
    records[i]->type = records[i]->ident_exp->type = type;
    enter_enum_const(std::move(records[i]), cells[i].release(), count - 1 - static_cast<int>(i));
  }
}

const char* EcPrg::type_name(const EcType* type, const char* unnamed) const {
  return type == nullptr || type->is_tuple ? unnamed : symbols->name(type->name);
}

// --- Messages.

int EcPrg::error(const char* format, ...) {
  va_list args;
  va_start(args, format);
  std::vsnprintf(error_message, sizeof error_message, format, args);
  va_end(args);
  if (message_line != 0) {
    va_start(args, format);
    messages.push_back({format_text(format, args), 0, message_line});
    va_end(args);
  }
  return 1;
}

// The error that `format` makes of the name.
int EcPrg::error_about(int symbol, const char* format) {
  error(format, symbols->name(symbol));
  if (message_line != 0) messages.back().name = symbol;
  return 1;
}

int EcPrg::ierror(const char* format, ...) {
  va_list args;
  va_start(args, format);
  std::vfprintf(stderr, format, args);
  va_end(args);
  return 0;
}
