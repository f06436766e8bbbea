// Equations and assertions; what all operations have in common.

#include "editing/editor.h"

#include <unordered_set>

namespace tamsel {

// --- What the operations share.

bool Editor::refuse(Refusal::Reason reason, const std::string& name, const std::string& message,
                    const std::string& who) {
  refusal = {reason, name, who, message};
  return false;
}

bool Editor::refuse_use(const std::string& name, const std::string& who) {
  return refuse(Refusal::in_use, name, "'" + name + "' is needed by " + who, who);
}

bool Editor::find(const std::string& name, Description* found) {
  const int symbol = known(name);
  if (symbol != 0 && describe(prg_, symbol, found)) return true;
  return refuse(Refusal::unknown, name, "nothing is declared as '" + name + "'");
}

bool Editor::find_type(const std::string& name, EcType** type) {
  const int symbol = known(name);
  *type = symbol != 0 ? prg_->named_type(symbol) : nullptr;
  return *type != nullptr || refuse(Refusal::unknown_type, name, "unknown type '" + name + "'");
}

bool Editor::find_variable(const std::string& name, IdentInfo** ident) {
  Description found;
  if (!find(name, &found)) return false;
  *ident = prg_->ident(found.symbol);
  return found.kind == NameKind::output || found.kind == NameKind::local ||
         refuse(Refusal::unknown, name, "identifier '" + name + "' is not output or local");
}

Users& Editor::users() {
  if (!is_in_step() || users_->is_worn()) {
    users_.reset();  // two would not fit where one does
    users_ = std::make_unique<Users>(prg_);
  }
  return *users_;
}

// Keeps the index in step, where it was, or gives it up.
void Editor::note_change(bool was_in_step, SomeUsers gone, SomeUsers fresh) noexcept {
  if (!was_in_step) return;
  try {
    for (const User& user : gone) users_->forget(user);
    for (const User& user : fresh) users_->add(user);
    users_->accept();
  } catch (const std::bad_alloc&) {
    users_.reset();
  }
}

void Editor::note_declaration(int symbol) {
  // Nothing but this declaration came since.
  if (users_ != nullptr && users_->is_fresh_but_for(1))
    note_change(true, {}, User{symbol, User::declaration});
}

void Editor::collect_numbers_of(const IdentInfo* ident, std::vector<int>* symbols) const {
  if (ident->mode == ASSERT_mode)
    collect_numbers(ident->definition, symbols);
  else if (Exp* right = right_side(ident))
    collect_numbers(right, symbols);
}

void Editor::drop_numbers(const std::vector<int>& symbols) noexcept {
  for (const int symbol : symbols) numbers_.drop(symbol);
}

// --- Equations.

bool Editor::fits(const IdentInfo* ident, int type) const {
  return ident->type != nullptr && ident->type->name == type;
}

// A left side takes all names of the equations that it takes the place of.
bool Editor::check_left_side(const std::vector<IdentInfo*>& left) {
  if (left.size() == 1 && left[0]->tuple_names == nullptr) return true;
  std::unordered_set<const IdentInfo*> names;
  for (const IdentInfo* ident : left)
    if (!names.insert(ident).second)
      return refuse(Refusal::bad_list, text(ident->name),
                    "'" + text(ident->name) + "' stands there twice");
  for (const IdentInfo* ident : left)
    for (const int other : values_of(ident->tuple_names))
      if (names.count(prg_->ident(other)) == 0)
        return refuse(Refusal::in_use, text(ident->name),
                      "'" + text(ident->name) + "' is defined together with '" + text(other) + "'",
                      text(other));
  return true;
}

static std::string type_text(const std::vector<std::string>& names) {
  if (names.size() == 1) return names[0];
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "(" : ", ") + name;
  return text + ")";
}

bool Editor::define(const Names& names, Draft right) {
  if (names.empty()) return refuse(Refusal::bad_list, "", "an equation needs a name");
  std::vector<IdentInfo*> left(names.size());
  std::vector<int> symbols;
  std::vector<int> dropped;
  std::vector<User> gone;
  for (size_t i = 0; i < names.size(); ++i) {
    if (!find_variable(names[i], &left[i])) return false;
    symbols.push_back(left[i]->name);
  }
  if (!check_left_side(left)) return false;
  bool fits_all = right.types().size() == left.size();
  for (size_t i = 0; i < left.size() && fits_all; ++i) fits_all = fits(left[i], right.types()[i]);
  if (!fits_all) {
    Names declared, found;
    for (const IdentInfo* ident : left)
      declared.push_back(prg_->type_name(ident->type, "<unamed-type>"));
    for (const int type : right.types()) found.push_back(text(type));
    return refuse(Refusal::ill_typed, names[0],
                  "bad type combination '" + type_text(declared) + " = " + type_text(found) + "'");
  }
  for (const IdentInfo* ident : left) {
    if (right_side(ident) == nullptr) continue;
    gone.push_back(equation_of(ident));
    if (ident->tuple_names == nullptr || ident->tuple_names->value == ident->name)
      collect_numbers_of(ident, &dropped);
  }

  const bool in_step = is_in_step();
  right.settle(&numbers_);
  try {
    prg_->put(prg_->make_ready(symbols, right.root(), right.take_nodes()), 0);
  } catch (...) {
    right.give_back(&numbers_);
    throw;
  }
  drop_numbers(dropped);
  note_change(in_step, gone, User{symbols[0], User::equation});
  return true;
}

bool Editor::undefine(const Names& names) {
  std::vector<IdentInfo*> equations;
  std::vector<int> dropped;
  std::vector<User> gone;
  std::unordered_set<int> seen;
  for (const std::string& name : names) {
    Description found;
    if (!find(name, &found)) return false;
    if (!found.has_equation())
      return refuse(Refusal::no_equation, name, "no equation defines '" + name + "'");
    IdentInfo* ident = prg_->ident(found.symbol);
    const User equation = equation_of(ident);
    if (!seen.insert(equation.symbol).second) continue;
    collect_numbers_of(ident, &dropped);
    equations.push_back(ident);
    gone.push_back(equation);
  }
  const bool in_step = is_in_step();
  for (IdentInfo* ident : equations) prg_->drop_equation(ident);
  drop_numbers(dropped);
  note_change(in_step, gone, {});
  return true;
}

// --- Assertions.

bool Editor::assert_that(Draft e, int* index) {
  if (e.types().size() != 1 || e.types()[0] != prg_->bool_type->name) {
    Names found;
    for (const int type : e.types()) found.push_back(text(type));
    return refuse(Refusal::ill_asserted, "",
                  "an assertion is 'bool', not '" + type_text(found) + "'");
  }
  const bool in_step = is_in_step();
  e.settle(&numbers_);
  const IdentInfo* assertion;
  try {
    assertion = prg_->add_assertion(e.root(), e.take_nodes());
  } catch (...) {
    e.give_back(&numbers_);
    throw;
  }
  *index = prg_->nb_assertions - 1;
  note_change(in_step, {}, User{assertion->name, User::assertion});
  return true;
}

bool Editor::retract(const std::vector<int>& indexes) {
  std::vector<int> symbols;
  std::unordered_set<int> seen;
  std::vector<int> dropped;
  std::vector<User> gone;
  for (const int index : indexes) {
    int symbol;
    if (prg_->name_at(NameList::assertions, index, &symbol) != 0)
      return refuse(Refusal::no_assertion, std::to_string(index),
                    "there is no assertion " + std::to_string(index));
    if (seen.insert(symbol).second) symbols.push_back(symbol);
  }
  for (const int symbol : symbols) {
    collect_numbers_of(prg_->ident(symbol), &dropped);
    gone.push_back({symbol, User::assertion});
  }
  const bool in_step = is_in_step();
  prg_->prepare_removal(NameList::assertions);
  for (const int symbol : symbols) prg_->remove(NameList::assertions, symbol);
  drop_numbers(dropped);
  note_change(in_step, gone, {});
  return true;
}

// --- An expression in the place of a name.

bool Editor::substitute(const std::string& name, Draft value, const Names* in, int* count) {
  Description found;
  if (!find(name, &found)) return false;
  if (found.ident == nullptr)
    return refuse(Refusal::unknown, name, "'" + name + "' is no variable or constant");
  if (value.types().size() != 1 || !fits(found.ident, value.types()[0])) {
    Names types;
    for (const int type : value.types()) types.push_back(text(type));
    return refuse(Refusal::ill_typed, name,
                  "bad type combination '" +
                      std::string(prg_->type_name(found.ident->type, "<unamed-type>")) + " = " +
                      type_text(types) + "'");
  }

  // Whose expressions change.
  std::vector<User> changed;
  std::unordered_set<int> seen;
  if (in == nullptr) {
    users().each_user(found.symbol, Role::variable, [&](const User& user) {
      if (user.kind != User::declaration) changed.push_back(user);
    });
  } else {
    for (const std::string& each : *in) {
      Description described;
      if (!find(each, &described)) return false;
      if (!described.has_equation()) continue;
      const User equation = equation_of(described.ident);
      if (seen.insert(equation.symbol).second) changed.push_back(equation);
    }
  }

  // The numbers of the value have symbols as long as it is copied.
  struct Settled {
    Settled(Draft* draft, OwnNumbers* numbers) : draft_(draft), numbers_(numbers) {
      draft->settle(numbers);
    }
    ~Settled() { draft_->give_back(numbers_); }
    Draft* draft_;
    OwnNumbers* numbers_;
  };
  const Settled settled_value(&value, &numbers_);
  *count = 0;
  std::vector<int> dropped;
  std::vector<Draft> drafts;
  std::vector<EcPrg::Ready> ready;
  std::vector<User> renewed;
  for (const User& user : changed) {
    const IdentInfo* record = prg_->ident(user.symbol);
    Exp* e = user.kind == User::equation ? right_side(record) : record->definition;
    const std::vector<int> names =
        user.kind == User::equation ? Equation{record, e}.names() : std::vector<int>{user.symbol};
    Draft draft(prg_, e, found.ident->ident_exp, value.root(), names.size());
    if (draft.replaced() == 0) continue;
    *count += draft.replaced();
    collect_numbers_of(record, &dropped);
    renewed.push_back(user);
    std::unique_ptr<ExpHeap> nodes = draft.take_nodes();
    ready.push_back(prg_->make_ready(names, draft.root(), std::move(nodes)));
    drafts.push_back(std::move(draft));
  }
  const bool in_step = is_in_step();
  size_t settled = 0;
  try {
    for (; settled < drafts.size(); ++settled) drafts[settled].settle(&numbers_);
  } catch (...) {
    while (settled > 0) drafts[--settled].give_back(&numbers_);
    throw;
  }
  for (size_t i = 0; i < ready.size(); ++i)
    prg_->put(std::move(ready[i]), prg_->ident(renewed[i].symbol)->equation_line);
  drop_numbers(dropped);
  note_change(in_step, renewed, renewed);
  return true;
}

}  // namespace tamsel
