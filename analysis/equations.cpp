#include "analysis/equations.h"

#include <unordered_set>

namespace tamsel {

Exp* right_side(const IdentInfo* ident) {
  if (ident == nullptr || ident->definition == nullptr) return nullptr;
  if (ident->mode != OUTPUT_mode && ident->mode != LOCAL_mode) return nullptr;
  return ident->tuple_names != nullptr ? ident->definition->args()[0] : ident->definition;
}

std::vector<int> Equation::names() const {
  if (first->tuple_names == nullptr) return {first->name};
  std::vector<int> names;
  for (const int name : values_of(first->tuple_names)) names.push_back(name);
  return names;
}

std::vector<Equation> equations_of(EcPrg* prg) {
  std::vector<Equation> equations;
  std::unordered_set<const IntList*> tuples;
  for (const NameKind kind : {NameKind::output, NameKind::local}) {
    for (const int symbol : prg->declared_names(kind)) {
      const IdentInfo* ident = prg->ident(symbol);
      Exp* right = right_side(ident);
      if (right == nullptr) continue;
      if (ident->tuple_names != nullptr) {
        if (!tuples.insert(ident->tuple_names).second) continue;
        ident = prg->ident(ident->tuple_names->value);
      }
      equations.push_back({ident, right});
    }
  }
  return equations;
}

bool is_literal(EcPrg* prg, const Exp* leaf) {
  if (leaf->nature != CONST_n) return false;
  const IdentInfo* record = prg->ident(leaf->ident);
  return record == nullptr || (record->mode != USR_CONST_mode && record->mode != ENUM_CONST_mode);
}

// Below this, a look at all of them is quicker than an index.
static constexpr size_t few_mentions = 16;

void Mentions::clear() {
  all_.clear();
  place_.clear();
}

void Mentions::note(const Mention& mention) {
  Mention* known = nullptr;
  if (all_.size() <= few_mentions) {
    for (Mention& other : all_)
      if (other.symbol == mention.symbol && other.is_function == mention.is_function)
        known = &other;
  } else {
    const auto key = [](const Mention& m) { return m.symbol * 2ll + m.is_function; };
    if (place_.empty())
      for (size_t i = 0; i < all_.size(); ++i) place_.emplace(key(all_[i]), i);
    const auto place = place_.emplace(key(mention), all_.size());
    if (!place.second) known = &all_[place.first->second];
  }
  if (known != nullptr)
    known->now |= mention.now;
  else
    all_.push_back(mention);
}

void Mentions::add(Exp* e) {
  each_mention(e, [this](const Mention& mention, const Exp* node) {
    if (mention.is_function || !is_literal(prg_, node)) note(mention);
  });
}

std::vector<int> needs_of(EcPrg* prg, Exp* e, bool now) {
  std::vector<int> names;
  if (e == nullptr) return names;
  Mentions mentions(prg);
  mentions.add(e);
  for (const Mention& mention : mentions.all())
    if (!mention.is_function && (mention.now || !now)) names.push_back(mention.symbol);
  return names;
}

}  // namespace tamsel
