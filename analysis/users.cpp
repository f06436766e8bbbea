#include "analysis/users.h"

#include <algorithm>
#include <unordered_set>

#include "analysis/describe.h"

namespace tamsel {

// Calls `take` with the symbols of the types, and of the parameters, that a function names.
template <class Take>
static void each_name_of_function(const FuncInfo* function, Take take) {
  for (const auto& list : {parameters_of(function), results_of(function)}) {
    for (const Parameter& each : list) {
      take(each.type, Role::type);
      if (each.name != 0) take(each.name, Role::parameter);
    }
  }
}

// Calls `take` with each symbol that `user` mentions, its role and whether it does so now.
template <class Take>
void Users::each_mention_of(const User& user, Take take) {
  if (user.kind != User::declaration) {
    const IdentInfo* record = prg_->ident(user.symbol);
    Exp* e = user.kind == User::equation ? right_side(record) : record->definition;
    mentions_.clear();
    mentions_.add(e);
    for (const Mention& mention : mentions_.all())
      take(mention.symbol, mention.is_function ? Role::function : Role::variable, mention.now);
    return;
  }
  const auto take_now = [&](int symbol, Role role) {
    const EcType* type = role == Role::type ? prg_->named_type(symbol) : nullptr;
    if (type == nullptr || type->number != 0) take(symbol, role, true);
  };
  if (const FuncInfo* function = prg_->function(user.symbol)) {
    each_name_of_function(function, take_now);
  } else if (const IdentInfo* ident = prg_->ident(user.symbol)) {
    if (ident->clock != prg_->true_clock) take_now(ident->clock, Role::variable);
    if (ident->type != nullptr && ident->mode != ENUM_CONST_mode)
      take_now(ident->type->name, Role::type);
  }
}

// Calls `take` with all that may mention something.
template <class Take>
void Users::each_user_of_program(Take take) {
  for (const Equation& equation : equations_of(prg_))
    take(User{equation.first->name, User::equation});
  for (const int symbol : values_of(prg_->assertions)) {
    const IdentInfo* assertion = prg_->ident(symbol);
    if (assertion != nullptr && assertion->mode == ASSERT_mode) take(User{symbol, User::assertion});
  }
  for (const NameKind kind : name_kinds)
    if (kind != NameKind::type)
      for (const int symbol : prg_->declared_names(kind)) take(User{symbol, User::declaration});
}

// Counts the uses of each symbol, then puts them in their places.
Users::Users(EcPrg* prg) : prg_(prg), revision_(prg->revision), mentions_(prg) {
  first_.resize(static_cast<size_t>(prg->symbols->nb_symbols) + 2);
  each_user_of_program([this](const User& user) {
    bool mentions_something = user.kind != User::declaration;
    each_mention_of(user, [&](int symbol, Role, bool) {
      ++first_[static_cast<size_t>(symbol) + 1];
      mentions_something = true;
    });
    if (!mentions_something) return;
    place_of(user) = static_cast<unsigned>(users_.size());
    users_.push_back({user, true});
  });
  alive_ = users_.size();
  for (size_t i = 1; i < first_.size(); ++i) first_[i] += first_[i - 1];
  uses_.resize(first_.back());
  std::vector<size_t> next(first_.begin(), first_.end() - 1);
  for (unsigned i = 0; i < users_.size(); ++i) {
    each_mention_of(users_[i].user, [&](int symbol, Role role, bool now) {
      uses_[next[static_cast<size_t>(symbol)]++] = {i, static_cast<unsigned>(role), now};
    });
  }
}

// Where the number of a user is kept.
unsigned& Users::place_of(const User& user) {
  if (user.kind == User::declaration)
    return of_declaration_.emplace(user.symbol, nobody).first->second;
  const size_t place = static_cast<size_t>(user.symbol);
  if (place >= of_definition_.size()) of_definition_.resize(place + 1, nobody);
  return of_definition_[place];
}

void Users::forget(const User& user) noexcept {
  unsigned* place = nullptr;
  if (user.kind != User::declaration) {
    if (static_cast<size_t>(user.symbol) < of_definition_.size())
      place = &of_definition_[static_cast<size_t>(user.symbol)];
  } else if (const auto known = of_declaration_.find(user.symbol); known != of_declaration_.end()) {
    place = &known->second;
  }
  if (place == nullptr || *place == nobody) return;
  users_[*place].is_there = false;
  --alive_;
  *place = nobody;
}

void Users::add(const User& user) {
  const unsigned number = static_cast<unsigned>(users_.size());
  bool mentions_something = false;
  each_mention_of(user, [&](int symbol, Role role, bool now) {
    added_[symbol].push_back({number, static_cast<unsigned>(role), now});
    ++added_count_;
    mentions_something = true;
  });
  if (!mentions_something) return;
  place_of(user) = number;
  users_.push_back({user, true});
  ++alive_;
}

// Moves the uses that are there to the front. What is gone is looked at once.
void Users::drop_gone(Use* begin, Use* end) const noexcept {
  Use* kept = begin;
  for (Use* use = begin; use != end && use->user != nobody; ++use)
    if (users_[use->user].is_there) *kept++ = *use;
  for (; kept != end && kept->user != nobody; ++kept) kept->user = nobody;
}

std::vector<int> Users::of(int symbol, bool now) {
  std::vector<int> names;
  std::pair<IdentMode, int> last = {INPUT_mode, 0};
  bool in_order = true;
  const auto rank = [this](int name) {
    const IdentInfo* ident = prg_->ident(name);
    return std::make_pair(ident->mode, ident->order);
  };
  each_equation(symbol, now, [&](const Equation& equation) {
    equation.each_name([&](int name) {
      names.push_back(name);
      in_order = in_order && last < rank(name);
      last = rank(name);
    });
  });
  // Those of a tuple equation may be anywhere among the others, and so may those that came later.
  if (!in_order)
    std::sort(names.begin(), names.end(), [&](int a, int b) { return rank(a) < rank(b); });
  return names;
}

std::vector<Reached> cone_of(EcPrg* prg, const std::vector<int>& names,
                             const ConeOptions& options) {
  std::vector<Reached> reached;
  std::unordered_set<int> seen;
  std::unordered_set<const IntList*> tuples;  // whose equations have been looked at
  const auto reach = [&](int symbol, int distance) {
    if (seen.insert(symbol).second) reached.push_back({symbol, distance});
  };
  const auto is_new = [&](const IdentInfo* ident) {
    return ident->tuple_names == nullptr || tuples.insert(ident->tuple_names).second;
  };
  for (const int name : names) reach(name, 0);
  Mentions mentions(prg);
  for (size_t i = 0; i < reached.size(); ++i) {
    const Reached from = reached[i];
    if (from.distance >= options.depth) break;
    if (options.users != nullptr) {
      options.users->each_equation(from.symbol, options.now, [&](const Equation& equation) {
        if (!is_new(equation.first)) return;
        for (const int name : equation.names()) reach(name, from.distance + 1);
      });
    } else {
      const IdentInfo* ident = prg->ident(from.symbol);
      Exp* right = right_side(ident);
      if (right == nullptr || !is_new(ident)) continue;
      mentions.clear();
      mentions.add(right);
      for (const Mention& mention : mentions.all())
        if (!mention.is_function && (mention.now || !options.now))
          reach(mention.symbol, from.distance + 1);
    }
  }
  return reached;
}

}  // namespace tamsel
