#include "reader/actions.h"

#include <memory>
#include <new>
#include <vector>

bool reader_out_of_memory;

namespace {

// The result of `action`, or null or 0 when memory runs out under it.
template <class Action>
auto attempt(Action action) -> decltype(action()) {
  try {
    return action();
  } catch (const std::bad_alloc&) {
    reader_out_of_memory = true;
    return decltype(action())();
  }
}

// Gives every name of `names`, which it takes, to `declare`, with the type called `type_name`.
template <class Declare>
void declare_all(IntList* names, int type_name, Declare declare) {
  std::unique_ptr<IntList> held(names);
  attempt([&] {
    for (const IntList* cell = names; cell != nullptr; cell = cell->next)
      declare(cell->value, YY_ecprg->get_named_type(type_name));
  });
}

// The type of a parameter list. Takes `names` where a type is made of it.
EcType* type_of_list(std::unique_ptr<IntList>& names) {
  for (const IntList* cell = names.get(); cell != nullptr; cell = cell->next)
    YY_ecprg->get_named_type(cell->value);  // reports the unknown ones
  EcType* type = YY_ecprg->define_type(names.get());
  if (type != nullptr && type->is_tuple && type->members == names.get()) names.release();
  return type;
}

// A parameter's name, its type's name, the next parameter's name and so on.
std::unique_ptr<IntList> alternated(const IntList* names, const IntList* types) {
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
Exp* node(ExpNature nature, int rank, Operands... operands) {
  return attempt([=] {
    Exp* const list[] = {operands...};
    return YY_ecprg->exp_heap.node(nature, sizeof...(operands), list, rank);
  });
}

}  // namespace

int intern(const char* text) {
  return attempt([&] { return YY_Symbols->add_text(text); });
}

int base_clock() { return YY_ecprg->true_clock; }

IntList* new_list(int value) {
  return attempt([&] { return new IntList(&value, 1); });
}

void AddUserConsts(IntList* names, int type, int clock) {
  declare_all(names, type, [=](int name, EcType* t) { YY_ecprg->add_usr_const(name, t, clock); });
}

void AddInputs(IntList* names, int type, int clock) {
  declare_all(names, type, [=](int name, EcType* t) { YY_ecprg->add_input(name, t, clock); });
}

void AddOutputs(IntList* names, int type, int clock) {
  declare_all(names, type, [=](int name, EcType* t) { YY_ecprg->add_output(name, t, clock, 0); });
}

void AddLocals(IntList* names, int type, int clock) {
  declare_all(names, type, [=](int name, EcType* t) { YY_ecprg->add_local(name, t, clock); });
}

void add_abstract_type(int name) {
  attempt([=] { YY_ecprg->add_usr_type(name); });
}

void add_enum_type(int name, IntList* constants) {
  std::unique_ptr<IntList> held(constants);
  attempt([=] { YY_ecprg->add_usr_type(name, constants); });
}

void add_function(int name, EcValue::Params params, EcValue::Params results) {
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
  });
}

void add_assertion(Exp* e) {
  attempt([=] { YY_ecprg->add_assertion(e); });
}

void add_equation(int name, Exp* e) {
  attempt([=] { YY_ecprg->define_ident(name, e); });
}

void add_tuple_equation(IntList* names, Exp* e) {
  attempt([=] { YY_ecprg->define_tuple(names, e); });
}

Exp* reference(int name) {
  return attempt([=] {
    IdentInfo* ident = YY_ecprg->declared_ident(name);
    return ident != nullptr ? ident->ident_exp : nullptr;
  });
}

Exp* bool_constant(const char* text) {
  return attempt([=] { return YY_ecprg->get_bool_const(YY_Symbols->add_text(text)); });
}

Exp* int_constant(const char* text) {
  return attempt([=] { return YY_ecprg->get_int_const(YY_Symbols->add_text(text)); });
}

Exp* real_constant(const char* text) {
  return attempt([=] { return YY_ecprg->get_real_const(YY_Symbols->add_text(text)); });
}

Exp* unary(ExpNature nature, Exp* a) {
  if (a == nullptr) return nullptr;
  return node(nature, 0, a);
}

Exp* binary(ExpNature nature, Exp* a, Exp* b) {
  if (a == nullptr || b == nullptr) return nullptr;
  return node(nature, 0, a, b);
}

Exp* conditional(Exp* condition, Exp* then, Exp* otherwise) {
  if (condition == nullptr || then == nullptr || otherwise == nullptr) return nullptr;
  return node(IF_n, 0, condition, then, otherwise);
}

Exp* call(int function, Exp* argument) {
  if (argument == nullptr) return nullptr;
  return node(CALL_n, function, argument);
}

ExpList* new_exp_list(Exp* e) {
  if (e == nullptr) return nullptr;
  return attempt([=] { return new ExpList(e); });
}

ExpList* and_then(ExpList* list, Exp* e) {
  std::unique_ptr<ExpList> held(list);
  if (list == nullptr || e == nullptr) return nullptr;
  ExpList* longer = attempt([=] { return new ExpList(e, list); });
  if (longer != nullptr) held.release();
  return longer;
}

Exp* list_operator(ExpNature nature, ExpList* list) {
  if (list == nullptr) return nullptr;
  std::unique_ptr<ExpList> held(list);
  return attempt([=] {
    std::vector<Exp*> operands(static_cast<size_t>(list->length));
    auto place = operands.rbegin();
    for (const ExpList* cell = list; cell != nullptr; cell = cell->next) *place++ = cell->exp;
    return YY_ecprg->exp_heap.node(nature, list->length, operands.data());
  });
}
