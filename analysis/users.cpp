#include "analysis/users.h"

#include <algorithm>
#include <unordered_set>

namespace tamsel {

// Counts the uses of each symbol, then puts them in their places.
Users::Users(EcPrg* prg) : prg_(prg), revision_(prg->revision), equations_(equations_of(prg)) {
  first_.resize(static_cast<size_t>(prg->symbols->nb_symbols) + 2);
  Mentions mentions(prg);
  const auto each_use = [&](auto take) {
    for (size_t i = 0; i < equations_.size(); ++i) {
      mentions.clear();
      mentions.add(equations_[i].right);
      for (const Mention& mention : mentions.all())
        if (mention.is_function == (prg->function(mention.symbol) != nullptr))
          take(static_cast<size_t>(mention.symbol), Use{static_cast<unsigned>(i), mention.now});
    }
  };
  each_use([this](size_t symbol, Use) { ++first_[symbol + 1]; });
  for (size_t i = 1; i < first_.size(); ++i) first_[i] += first_[i - 1];
  uses_.resize(first_.back());
  std::vector<size_t> next(first_.begin(), first_.end() - 1);
  each_use([&](size_t symbol, Use use) { uses_[next[symbol]++] = use; });
}

std::vector<int> Users::of(int symbol, bool now) const {
  std::vector<int> names;
  bool in_order = true;
  each_equation(symbol, now, [&](const Equation& equation) {
    if (equation.first->tuple_names == nullptr) {
      names.push_back(equation.first->name);
    } else {
      const std::vector<int> members = equation.names();
      names.insert(names.end(), members.begin(), members.end());
      in_order = false;
    }
  });
  if (in_order) return names;
  // The names of a tuple equation may be anywhere among the others.
  const auto rank = [this](int name) {
    const IdentInfo* ident = prg_->ident(name);
    return std::make_pair(ident->mode, ident->order);
  };
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
