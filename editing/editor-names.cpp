// Names: declarations, other names, and names that go.

#include <algorithm>
#include <cstdlib>
#include <unordered_map>
#include <unordered_set>

#include "editing/editor.h"
#include "reader/reader.h"

namespace tamsel {

// --- Declarations.

bool Editor::is_taken(int symbol) const {
  return prg_->ident(symbol) != nullptr || prg_->function(symbol) != nullptr ||
         prg_->named_type(symbol) != nullptr;
}

// In a text, the first assertion would take the place of what is called so, and so on.
static bool is_of_assertions(const std::string& name) {
  static const std::string prefix = "__assert_";
  return name.compare(0, prefix.size(), prefix) == 0 && name.size() > prefix.size() &&
         name.find_first_not_of("0123456789", prefix.size()) == std::string::npos;
}

bool Editor::check_new_name(const std::string& name) {
  if (!is_name(name.c_str()))
    return refuse(Refusal::bad_name, name, "'" + name + "' is no name of the language");
  if (is_of_assertions(name))
    return refuse(Refusal::taken, name, "'" + name + "' is kept for an assertion");
  const int symbol = known(name);
  return symbol == 0 || !is_taken(symbol) ||
         refuse(Refusal::taken, name, "'" + name + "' is already declared");
}

namespace {

// Takes back the names that an operation has added, where it does not come to its end.
class NewSymbols {
 public:
  explicit NewSymbols(SymbolTable* symbols) : symbols_(symbols), before_(symbols->nb_symbols) {}
  ~NewSymbols() {
    if (!is_kept_) symbols_->cut_back(before_);
  }
  NewSymbols(const NewSymbols&) = delete;
  NewSymbols& operator=(const NewSymbols&) = delete;

  int add(const std::string& name) { return symbols_->add_text(name.c_str()); }
  void keep() { is_kept_ = true; }

 private:
  SymbolTable* symbols_;
  int before_;
  bool is_kept_ = false;
};

}  // namespace

bool Editor::declare(NameKind kind, const std::string& type_name, const std::string& name,
                     const std::string& clock_name) {
  EcType* type;
  if (!find_type(type_name, &type) || !check_new_name(name)) return false;
  const bool is_sampled = !clock_name.empty() && clock_name != "true";
  if (is_sampled && !is_name(clock_name.c_str()))
    return refuse(Refusal::bad_name, clock_name, "'" + clock_name + "' is no name of the language");
  const bool in_step = is_in_step();
  NewSymbols symbols(prg_->symbols);
  const int symbol = symbols.add(name);
  const int clock = is_sampled ? symbols.add(clock_name) : prg_->true_clock;
  if (kind == NameKind::input)
    prg_->add_input(symbol, type, clock);
  else if (kind == NameKind::output)
    prg_->add_output(symbol, type, clock, 0);
  else if (kind == NameKind::local)
    prg_->add_local(symbol, type, clock);
  else
    prg_->add_usr_const(symbol, type, clock);
  symbols.keep();
  note_change(in_step, {}, User{symbol, User::declaration});
  return true;
}

bool Editor::declare_type(const std::string& name, const Names& values) {
  std::unordered_set<std::string> seen;
  for (const std::string& each : values)
    if (!seen.insert(each).second || each == name)
      return refuse(Refusal::bad_list, each, "'" + each + "' stands there twice");
  if (!check_new_name(name)) return false;
  for (const std::string& each : values)
    if (!check_new_name(each)) return false;
  std::vector<FuncInfo*> waiting;  // functions of a text that has them before their types
  if (known(name) != 0) {
    users().each_user(known(name), Role::type, [&](const User& user) {
      if (FuncInfo* function = prg_->function(user.symbol)) waiting.push_back(function);
    });
  }
  NewSymbols symbols(prg_->symbols);
  const int symbol = symbols.add(name);
  if (values.empty()) {
    prg_->add_usr_type(symbol);
  } else {
    // The first of the list has the highest rank.
    std::vector<int> by_rank;
    for (const std::string& each : values) by_rank.push_back(symbols.add(each));
    std::reverse(by_rank.begin(), by_rank.end());
    IntList list(by_rank.data(), static_cast<int>(by_rank.size()));
    prg_->add_usr_type(symbol, &list);
  }
  symbols.keep();
  for (FuncInfo* function : waiting) {
    take_lone_type(function->params, &function->param_type);
    take_lone_type(function->results, &function->result_type);
  }
  return true;
}

// Several types are a tuple, whether they are declared or not.
void Editor::take_lone_type(const IntList* pairs, EcType** type) const noexcept {
  if (length(pairs) == 2) *type = prg_->named_type(pairs->next->value);
}

bool Editor::declare_function(const std::string& name, std::vector<Parameter> params,
                              std::vector<Parameter> results) {
  if (params.empty() || results.empty())
    return refuse(Refusal::bad_list, "", "a function has parameters and results");
  if (!check_new_name(name)) return false;
  std::vector<Parameter>* const sides[] = {&params, &results};
  for (std::vector<Parameter>* side : sides) {
    std::unordered_set<std::string> seen;
    for (const Parameter& each : *side) {
      EcType* type;
      if (!find_type(each.type, &type)) return false;
      if (each.name.empty()) continue;
      if (!is_name(each.name.c_str()))
        return refuse(Refusal::bad_name, each.name,
                      "'" + each.name + "' is no name of the language");
      if (!seen.insert(each.name).second)
        return refuse(Refusal::bad_list, each.name, "'" + each.name + "' stands there twice");
    }
    int number = 0;
    for (Parameter& each : *side) {
      if (!each.name.empty()) continue;
      do each.name = (side == &params ? "p" : "r") + std::to_string(++number);
      while (!seen.insert(each.name).second);
    }
  }
  const bool in_step = is_in_step();
  const EcPrg::Mark before = prg_->mark();
  NewSymbols symbols(prg_->symbols);
  const int symbol = symbols.add(name);
  try {
    EcType* types[2];
    std::unique_ptr<IntList> lists[2];
    for (size_t i = 0; i < 2; ++i) {
      std::vector<int> members;
      std::vector<int> pairs;
      for (const Parameter& each : *sides[i]) {
        members.push_back(known(each.type));
        pairs.push_back(symbols.add(each.name));
        pairs.push_back(members.back());
      }
      types[i] = prg_->define_type(members.data(), static_cast<int>(members.size()));
      lists[i] = std::make_unique<IntList>(pairs.data(), static_cast<int>(pairs.size()));
    }
    prg_->add_usr_func(symbol, types[0], types[1], lists[0].release(), lists[1].release());
  } catch (...) {
    prg_->roll_back(before);
    throw;
  }
  symbols.keep();
  note_change(in_step, {}, User{symbol, User::declaration});
  return true;
}

// --- Other names. A thing keeps its symbol, which gets another text: so everything that mentions
// it has its new name at once, however much that is.

// Which symbols have the texts of others once some are renamed.
class Editor::TextOwners {
 public:
  TextOwners(const Renamed& renamed, NewSymbols* symbols) {
    for (const auto& each : renamed) {
      const int wanted = symbols->add(each.second);
      const int given_up = find(texts_, each.first);
      give(of(wanted), given_up);
      give(each.first, wanted);
    }
  }
  int of(int symbol) const { return find(owners_, symbol); }

 private:
  using Map = std::unordered_map<int, int>;  // without those that keep what they had

  static int find(const Map& map, int key) {
    const auto found = map.find(key);
    return found != map.end() ? found->second : key;
  }
  void give(int symbol, int text) {
    texts_[symbol] = text;
    owners_[text] = symbol;
  }

  Map texts_, owners_;
};

// A mention of a symbol that does not follow the thing that has the symbol: of something that is
// not declared, or the name of a parameter.
struct Editor::Foreign {
  User user;
  Role role;
  int symbol;
  std::vector<Exp*> calls;  // in the user's expression
};

// Those of all symbols whose texts change hands.
std::vector<Editor::Foreign> Editor::foreign_mentions(const Renamed& renamed) {
  std::vector<Foreign> found;
  const auto look = [&](int symbol, Role role) {
    users().each_user(symbol, role, [&](const User& user) {
      found.push_back({user, role, symbol, {}});
      if (user.kind == User::declaration || role != Role::function) return;
      const IdentInfo* record = prg_->ident(user.symbol);
      Exp* e = user.kind == User::equation ? right_side(record) : record->definition;
      each_mention(e, [&](const Mention& mention, Exp* node) {
        if (mention.is_function && mention.symbol == symbol) found.back().calls.push_back(node);
      });
    });
  };
  const auto look_at = [&](int symbol) {
    look(symbol, Role::parameter);
    if (prg_->ident(symbol) == nullptr) look(symbol, Role::variable);
    if (prg_->function(symbol) == nullptr) look(symbol, Role::function);
    if (prg_->named_type(symbol) == nullptr) look(symbol, Role::type);
  };
  std::unordered_set<int> seen;
  for (const auto& each : renamed) {
    if (seen.insert(each.first).second) look_at(each.first);
    const int other = known(each.second);
    if (other != 0 && seen.insert(other).second) look_at(other);
  }
  return found;
}

// A function, and what its types will be.
struct Editor::Retyped {
  FuncInfo* function;
  EcType *param_type, *result_type;
};

void Editor::retype(int symbol, const TextOwners& owners, std::vector<Retyped>* retyped) {
  FuncInfo* function = prg_->function(symbol);
  if (function == nullptr) return;
  const auto type_of = [&](const IntList* pairs, EcType* otherwise) {
    std::vector<int> types;
    for (; pairs != nullptr; pairs = pairs->next->next) {
      const int type = pairs->next->value;
      types.push_back(prg_->named_type(type) != nullptr ? type : owners.of(type));
    }
    if (types.empty()) return otherwise;
    return types.size() == 1 ? prg_->named_type(types[0])
                             : prg_->define_type(types.data(), static_cast<int>(types.size()));
  };
  retyped->push_back({function, type_of(function->params, function->param_type),
                      type_of(function->results, function->result_type)});
}

// In a list of pairs, changes their names or their types.
template <class Change>
static void change_pairs(FuncInfo* function, bool names, Change change) noexcept {
  for (IntList* list : {function->params, function->results}) {
    for (; list != nullptr && list->next != nullptr; list = list->next->next) {
      int& value = (names ? list : list->next)->value;
      value = change(value);
    }
  }
}

void Editor::point_elsewhere(const Foreign& mention, int symbol) noexcept {
  for (Exp* call : mention.calls) call->set_order(symbol);
  if (mention.user.kind != User::declaration) return;
  if (FuncInfo* function = prg_->function(mention.user.symbol)) {
    // Below 0 until all are done, so that none is changed twice.
    change_pairs(function, mention.role == Role::parameter,
                 [&](int value) { return value == mention.symbol ? -symbol : value; });
  } else if (IdentInfo* ident = prg_->ident(mention.user.symbol)) {
    ident->clock = ident->ident_exp->clock = symbol;
    if (ident->definition != nullptr && ident->definition->nb_args > 0)
      ident->definition->clock = symbol;
  }
}

bool Editor::rename(const std::vector<std::pair<std::string, std::string>>& names) {
  Renamed renamed;
  std::unordered_set<int> olds;
  std::unordered_set<std::string> news;
  for (const auto& each : names) {
    Description found;
    const int symbol = known(each.first);
    if ((symbol == 0 || symbol != prg_->name) && !find(each.first, &found)) return false;
    if (!olds.insert(symbol).second)
      return refuse(Refusal::bad_list, each.first, "'" + each.first + "' stands there twice");
    if (each.first != each.second) renamed.emplace_back(symbol, each.second);
  }
  for (const auto& each : names)
    if (each.first == each.second) olds.erase(known(each.first));
  for (const auto& each : renamed) {
    const int other = known(each.second);
    const bool is_given_up = other != 0 && olds.count(other) != 0;
    if (!is_given_up && !check_new_name(each.second)) return false;
    if (!news.insert(each.second).second)
      return refuse(Refusal::taken, each.second, "'" + each.second + "' is wanted twice");
  }
  if (renamed.empty()) return true;

  const bool in_step = is_in_step();
  const EcPrg::Mark before = prg_->mark();
  const std::vector<Foreign> foreign = foreign_mentions(renamed);
  const bool is_plain =
      foreign.empty() && prg_->messages.empty() && news.count(text(prg_->name)) == 0;
  NewSymbols symbols(prg_->symbols);
  const TextOwners owners(is_plain ? Renamed() : renamed, &symbols);
  std::vector<User> changed;
  std::vector<Retyped> retyped;
  try {
    for (const Foreign& mention : foreign) {
      changed.push_back(mention.user);
      if (mention.role == Role::type) retype(mention.user.symbol, owners, &retyped);
    }
    prg_->rename(renamed);
  } catch (...) {
    prg_->roll_back(before);
    throw;
  }
  symbols.keep();
  for (const Foreign& mention : foreign) {
    const int symbol = owners.of(mention.symbol);
    if (symbol != mention.symbol) point_elsewhere(mention, symbol);
    prg_->set_retired(symbol, false);
  }
  for (const Foreign& mention : foreign)
    if (FuncInfo* function = prg_->function(mention.user.symbol))
      for (const bool of_names : {true, false})
        change_pairs(function, of_names, [](int value) { return std::abs(value); });
  for (const Retyped& each : retyped) {
    each.function->param_type = each.param_type;
    each.function->result_type = each.result_type;
  }
  if (olds.count(prg_->name) == 0) prg_->name = owners.of(prg_->name);
  for (EcPrg::Message& message : prg_->messages)
    if (message.name != 0 && olds.count(message.name) == 0) message.name = owners.of(message.name);
  if (!foreign.empty()) ++prg_->revision;
  note_change(in_step, changed, changed);
  return true;
}

// --- Names that go.

// What `remove` takes away.
struct Editor::Going {
  std::vector<std::pair<NameList, int>> all;
  std::unordered_set<int> idents;  // and functions
  std::unordered_set<int> types;
  std::vector<int> numbers;
  std::vector<User> users;
};

bool Editor::gather_name(const Description& found, Going* going) {
  std::unordered_set<int>& names = found.kind == NameKind::type ? going->types : going->idents;
  if (!names.insert(found.symbol).second) return true;
  going->all.emplace_back(prg_->list_of(found.kind, found.symbol), found.symbol);
  if (found.kind != NameKind::type) going->users.push_back({found.symbol, User::declaration});
  if (found.has_equation()) {
    going->users.push_back(equation_of(found.ident));
    if (going->users.back().symbol == found.symbol)
      collect_numbers_of(found.ident, &going->numbers);
  }
  if (found.kind == NameKind::type)
    for (int rank = 0; rank < found.type->nb_enum; ++rank)
      if (const IdentInfo* value = found.type->enum_consts[rank])
        gather_name(describe_as(prg_, value->name, NameKind::constant), going);
  return true;
}

std::string Editor::called(const User& user) {
  if (user.kind != User::assertion) return text(user.symbol);
  return "assertion " + std::to_string(prg_->place_of(NameList::assertions, user.symbol));
}

bool Editor::check_uses_of(int symbol, Role role, const Going& going) {
  const User* who = nullptr;
  User first;
  users().each_user(symbol, role, [&](const User& user) {
    if (who != nullptr || (user.kind != User::assertion && going.idents.count(user.symbol) != 0))
      return;
    first = user;
    who = &first;
  });
  return who == nullptr || refuse_use(text(symbol), called(*who));
}

bool Editor::check_uses(const Going& going) {
  for (const auto& each : going.all) {
    const int symbol = each.second;
    if (each.first == NameList::types) {
      if (!check_uses_of(symbol, Role::type, going)) return false;
      continue;
    }
    const bool is_function = prg_->function(symbol) != nullptr;
    if (!check_uses_of(symbol, is_function ? Role::function : Role::variable, going)) return false;
    if (is_function) continue;
    const IdentInfo* ident = prg_->ident(symbol);
    for (const int other : values_of(ident->tuple_names))
      if (going.idents.count(other) == 0) return refuse_use(text(symbol), text(other));
    if (ident->mode == ENUM_CONST_mode && ident->type != nullptr &&
        going.types.count(ident->type->name) == 0)
      return refuse_use(text(symbol), text(ident->type->name));
  }
  return true;
}

bool Editor::remove(const Names& names) {
  Going going;
  for (const std::string& name : names) {
    Description found;
    if (!find(name, &found)) return false;
    gather_name(found, &going);
  }
  if (!check_uses(going)) return false;
  const bool in_step = is_in_step();
  for (const auto& each : going.all) prg_->prepare_removal(each.first);
  for (const int symbol : going.idents)
    if (IdentInfo* ident = prg_->ident(symbol)) prg_->drop_equation(ident);
  for (const auto& each : going.all) prg_->remove(each.first, each.second);
  drop_numbers(going.numbers);
  note_change(in_step, going.users, {});
  return true;
}

}  // namespace tamsel
