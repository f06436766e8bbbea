#include "reader/actions.h"

#include <memory>
#include <new>
#include <vector>

namespace tamsel {

Reader& thread_reader() {
  static thread_local Reader reader;
  return reader;
}

// The result of `action`, or null or 0 when memory runs out under it.
template <class Action>
std::invoke_result_t<Action> Reader::attempt(Action action) {
  try {
    return action();
  } catch (const std::bad_alloc&) {
    out_of_memory = true;
    return std::invoke_result_t<Action>();
  }
}

// The same for an action whose messages are about what stands at `place`.
template <class Action>
std::invoke_result_t<Action> Reader::attempt_at(EcPosition place, Action action) {
  struct Place {
    Place(EcPrg* filled, int line) : prg(filled) { prg->message_line = line; }
    ~Place() { prg->message_line = 0; }
    EcPrg* prg;
  };
  const Place about(YY_ecprg, keeps_messages ? place.line : 0);
  return attempt(action);
}

// Notes where `thing` is declared; null where memory ran out before it was.
template <class Thing>
static void note_line(Thing* thing, int line) {
  if (thing != nullptr) thing->line = line;
}

template <class Declare>
void Reader::declare_all(IntList* names, int type_name, EcPosition type_place, Declare declare) {
  std::unique_ptr<IntList> held(names);
  if (names == nullptr) return;
  attempt_at(type_place, [&] {
    EcType* type = YY_ecprg->get_named_type(type_name);
    for (const ListedName& name : listed_names_) {
      declare(name.symbol, type);
      note_line(YY_ecprg->ident(name.symbol), name.line);
    }
  });
}

// The type of a parameter list; null where there is none of a single type's name. Takes `names`
// where a type is made of it.
EcType* Reader::type_of_list(std::unique_ptr<IntList>& names) {
  if (names == nullptr) return nullptr;
  if (names->next == nullptr) return YY_ecprg->named_type(names->value);
  EcType* type = YY_ecprg->define_type(names.get());
  if (type->members == names.get()) names.release();
  return type;
}

// A parameter's name, its type's name, the next parameter's name and so on.
static std::unique_ptr<IntList> alternated(const IntList* names, const IntList* types) {
  IntList* list = nullptr;
  std::unique_ptr<IntList> held;
  for (; names != nullptr && types != nullptr; names = names->next, types = types->next) {
    const int pair[] = {names->value, types->value};
    list = append(list, new IntList(pair, 2));
    if (held == nullptr) held.reset(list);
  }
  return held;
}

// A node of the program with operands that are not null.
template <class... Operands>
Exp* Reader::node(ExpNature nature, int rank, Operands... operands) {
  return attempt([=] {
    Exp* const list[] = {operands...};
    return YY_ecprg->exp_heap.node(nature, sizeof...(operands), list, rank);
  });
}

// Notes where the equation stands that now defines `ident`.
static void note_equation(IdentInfo* ident, EcPosition place) {
  if (ident == nullptr) return;
  if (ident->mode == OUTPUT_mode || ident->mode == LOCAL_mode) ident->equation_line = place.line;
}

void Reader::forget_names() { std::vector<ListedName>().swap(listed_names_); }

int Reader::token_symbol() {
  return attempt([this] { return window_.symbol(); });
}

// The boot token, or 0. Where memory runs out, the text ends.
int Reader::fill_window() {
  bool is_filled = false;
  const int token = attempt([&] {
    const int boot = window_.fill();
    is_filled = true;
    return boot;
  });
  return is_filled ? token : -1;
}

int Reader::base_clock() { return YY_ecprg->true_clock; }

IntList* Reader::new_list(int value) {
  return attempt([&] { return new IntList(&value, 1); });
}

IntList* Reader::new_name_list(int name, EcPosition place) {
  listed_names_.clear();
  return and_name(nullptr, name, place);
}

IntList* Reader::and_name(IntList* names, int name, EcPosition place) {
  IntList* cell = new_list(name);
  if (cell != nullptr) attempt([=] { listed_names_.push_back({name, place.line}); });
  return append(names, cell);
}

IntList* Reader::new_type_list(int type, EcPosition place) {
  attempt_at(place, [=] { YY_ecprg->get_named_type(type); });
  return new_list(type);
}

void Reader::add_abstract_type(int name, EcPosition place) { add_enum_type(name, nullptr, place); }

void Reader::add_enum_type(int name, IntList* constants, EcPosition place) {
  std::unique_ptr<IntList> held(constants);
  attempt_at(place, [=] {
    const int known = YY_ecprg->nb_user_types;
    if (constants == nullptr)
      YY_ecprg->add_usr_type(name);
    else
      YY_ecprg->add_usr_type(name, constants);
    if (YY_ecprg->nb_user_types == known) return;
    note_line(YY_ecprg->named_type(name), place.line);
    if (constants == nullptr) return;
    for (const ListedName& constant : listed_names_)
      note_line(YY_ecprg->ident(constant.symbol), constant.line);
  });
}

void Reader::add_function(int name, RuleValue::Params params, RuleValue::Params results,
                          EcPosition place) {
  std::unique_ptr<IntList> param_names(params.names);
  std::unique_ptr<IntList> param_types(params.types);
  std::unique_ptr<IntList> result_names(results.names);
  std::unique_ptr<IntList> result_types(results.types);
  attempt([&] {
    std::unique_ptr<IntList> inputs = alternated(params.names, params.types);
    std::unique_ptr<IntList> outputs = alternated(results.names, results.types);
    EcType* param_type = type_of_list(param_types);
    EcType* result_type = type_of_list(result_types);
    YY_ecprg->add_usr_func(name, param_type, result_type, inputs.release(), outputs.release());
    note_line(YY_ecprg->function(name), place.line);
  });
}

void Reader::add_assertion(Exp* e, EcPosition place) {
  attempt([=] { note_line(YY_ecprg->add_assertion(e), place.line); });
}

void Reader::add_equation(int name, Exp* e, EcPosition place) {
  attempt_at(place, [=] { note_equation(YY_ecprg->define_ident(name, e), place); });
}

void Reader::add_tuple_equation(IntList* names, Exp* e, EcPosition place) {
  attempt_at(place, [=] {
    EcPrg& prg = *YY_ecprg;
    const size_t messages = prg.messages.size();
    const bool is_defined = prg.define_tuple(names, e) != nullptr;
    for (const ListedName& name : listed_names_) {
      if (is_defined) note_equation(prg.ident(name.symbol), place);
      // A message is about one of the names, which may stand on a line of its own.
      if (prg.messages.size() > messages && prg.messages.back().name == name.symbol)
        prg.messages.back().line = name.line;
    }
  });
}

Exp* Reader::reference(int name, EcPosition place) {
  return attempt_at(place, [=] {
    IdentInfo* ident = YY_ecprg->declared_ident(name);
    return ident != nullptr ? ident->ident_exp : nullptr;
  });
}

Exp* Reader::bool_constant() {
  return attempt([this] { return YY_ecprg->get_bool_const(window_.symbol()); });
}

Exp* Reader::int_constant() {
  return attempt([this] { return YY_ecprg->get_int_const(window_.symbol()); });
}

Exp* Reader::real_constant() {
  return attempt([this] { return YY_ecprg->get_real_const(window_.symbol()); });
}

Exp* Reader::unary(ExpNature nature, Exp* a) {
  if (a == nullptr) return nullptr;
  return node(nature, 0, a);
}

Exp* Reader::binary(ExpNature nature, Exp* a, Exp* b) {
  if (a == nullptr || b == nullptr) return nullptr;
  return node(nature, 0, a, b);
}

Exp* Reader::conditional(Exp* condition, Exp* then, Exp* otherwise) {
  if (condition == nullptr || then == nullptr || otherwise == nullptr) return nullptr;
  return node(IF_n, 0, condition, then, otherwise);
}

Exp* Reader::call(int function, Exp* argument) {
  if (argument == nullptr) return nullptr;
  return node(CALL_n, function, argument);
}

ExpList* Reader::new_exp_list(Exp* e) {
  if (e == nullptr) return nullptr;
  return attempt([=] { return new ExpList(e); });
}

ExpList* Reader::and_then(ExpList* list, Exp* e) {
  std::unique_ptr<ExpList> held(list);
  if (list == nullptr || e == nullptr) return nullptr;
  ExpList* longer = attempt([=] { return new ExpList(e, list); });
  if (longer != nullptr) held.release();
  return longer;
}

Exp* Reader::list_operator(ExpNature nature, ExpList* list) {
  if (list == nullptr) return nullptr;
  std::unique_ptr<ExpList> held(list);
  return attempt([=] {
    std::vector<Exp*> operands(static_cast<size_t>(list->length));
    auto place = operands.rbegin();
    for (const ExpList* cell = list; cell != nullptr; cell = cell->next) *place++ = cell->exp;
    return YY_ecprg->exp_heap.node(nature, list->length, operands.data());
  });
}

}  // namespace tamsel

using namespace tamsel;

void AddUserConsts(IntList* names, int type, int clock, EcPosition type_place) {
  thread_reader().declare_all(names, type, type_place, [=](int name, EcType* t) {
    thread_reader().YY_ecprg->add_usr_const(name, t, clock);
  });
}

void AddInputs(IntList* names, int type, int clock, EcPosition type_place) {
  thread_reader().declare_all(names, type, type_place, [=](int name, EcType* t) {
    thread_reader().YY_ecprg->add_input(name, t, clock);
  });
}

void AddOutputs(IntList* names, int type, int clock, EcPosition type_place) {
  thread_reader().declare_all(names, type, type_place, [=](int name, EcType* t) {
    thread_reader().YY_ecprg->add_output(name, t, clock, 0);
  });
}

void AddLocals(IntList* names, int type, int clock, EcPosition type_place) {
  thread_reader().declare_all(names, type, type_place, [=](int name, EcType* t) {
    thread_reader().YY_ecprg->add_local(name, t, clock);
  });
}
