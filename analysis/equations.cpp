#include "analysis/equations.h"

#include <unordered_set>

#include "model/walk.h"

namespace tamsel {

Exp* right_side(const IdentInfo* ident) {
  if (ident == nullptr || ident->definition == nullptr) return nullptr;
  if (ident->mode != OUTPUT_mode && ident->mode != LOCAL_mode) return nullptr;
  return ident->tuple_names != nullptr ? ident->definition->args[0] : ident->definition;
}

std::vector<int> Equation::names() const {
  if (first->tuple_names == nullptr) return {first->name};
  std::vector<int> names;
  for (const IntList* cell = first->tuple_names; cell != nullptr; cell = cell->next)
    names.push_back(cell->value);
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

void Mentions::note(int symbol, bool is_function, bool now) {
  Mention* known = nullptr;
  if (all_.size() <= few_mentions) {
    for (Mention& mention : all_)
      if (mention.symbol == symbol && mention.is_function == is_function) known = &mention;
  } else {
    const auto key = [](int name, bool is_called) { return name * 2ll + is_called; };
    if (place_.empty())
      for (size_t i = 0; i < all_.size(); ++i)
        place_.emplace(key(all_[i].symbol, all_[i].is_function), i);
    const auto place = place_.emplace(key(symbol, is_function), all_.size());
    if (!place.second) known = &all_[place.first->second];
  }
  if (known != nullptr)
    known->now |= now;
  else
    all_.push_back({symbol, is_function, now});
}

class MentionVisitor : public ExpVisitor {
 public:
  explicit MentionVisitor(Mentions* mentions) : mentions_(mentions) {}

  bool enter(Exp* exp, Exp*, int) {
    if (exp->nature == PRE_n) ++pres_;
    if (exp->nature == CALL_n) mentions_->note(exp->function_ident(), true, pres_ == 0);
    if (exp->nb_args == 0 && exp->ident != 0 && !is_literal(mentions_->prg_, exp))
      mentions_->note(exp->ident, false, pres_ == 0);
    return true;
  }
  void leave(Exp* exp, Exp*) {
    if (exp->nature == PRE_n) --pres_;
  }

 private:
  Mentions* mentions_;
  int pres_ = 0;  // that are open
};

void Mentions::add(Exp* e) {
  MentionVisitor visitor(this);
  walk(e, visitor);
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
