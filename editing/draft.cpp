#include "editing/draft.h"

#include "analysis/equations.h"
#include "model/copier.h"

namespace tamsel {

// --- Numbers.

int OwnNumbers::new_symbol(const char* text) {
  while (!free_.empty()) {
    const int symbol = free_.back();
    Uses& uses = uses_.at(symbol);
    const bool has_other_use =
        prg_->ident(symbol) != nullptr || prg_->function(symbol) != nullptr || prg_->name == symbol;
    if (uses.count == 0 && !has_other_use) {
      prg_->symbols->replace_name(symbol, text);
      free_.pop_back();
      uses = {1, false};
      return symbol;
    }
    free_.pop_back();
    uses.is_free = false;
    if (has_other_use) uses_.erase(symbol);
  }
  if (free_.capacity() <= uses_.size()) free_.reserve(2 * uses_.size() + 16);
  const int known = prg_->symbols->nb_symbols;
  const int symbol = prg_->symbols->add_text(text);
  try {
    uses_.insert({symbol, {1, false}});
  } catch (...) {
    prg_->symbols->cut_back(known);
    throw;
  }
  return symbol;
}

int OwnNumbers::take(const char* text) {
  const int known = prg_->symbols->tape->known(text);
  if (known == 0) return new_symbol(text);
  const auto uses = uses_.find(known);
  if (uses != uses_.end()) ++uses->second.count;
  return known;
}

void OwnNumbers::drop(int symbol) noexcept {
  const auto uses = uses_.find(symbol);
  if (uses == uses_.end() || --uses->second.count > 0 || uses->second.is_free) return;
  uses->second.is_free = true;
  free_.push_back(symbol);
}

namespace {

// Whether the copy of a leaf is a leaf of its own.
bool is_number(EcPrg* prg, const Exp* leaf) {
  if (leaf->nature != CONST_n) return false;
  const IdentInfo* record = prg->ident(leaf->ident);
  return record == nullptr || record->mode == INT_CONST_mode || record->mode == REAL_CONST_mode;
}

template <class Take>
struct LeafVisitor : ExpVisitor {
  explicit LeafVisitor(Take& taker) : take_(taker) {}

  bool enter(Exp* exp, Exp*, int) {
    take_(exp);
    return exp->nb_args > 0;
  }

  Take& take_;
};

// Calls `take` with each node.
template <class Take>
void each_node(Exp* e, Take take) {
  LeafVisitor<Take> visitor(take);
  walk(e, visitor);
}

}  // namespace

void collect_numbers(Exp* e, std::vector<int>* symbols) {
  each_node(e, [=](const Exp* node) {
    if (node->nature == CONST_n) symbols->push_back(node->ident);
  });
}

// --- Copies.

class Draft::NodeCopier : public Copier<NodeCopier> {
 public:
  NodeCopier(EcPrg* prg, Draft* draft, const Exp* replaced, Exp* value)
      : prg_(prg), draft_(draft), replaced_(replaced), value_(value) {}

  Exp* leaf(Exp* exp) {
    if (exp == replaced_) {
      ++draft_->replaced_;
      return NodeCopier(prg_, draft_, nullptr, nullptr).copy(value_);
    }
    if (!is_number(prg_, exp)) return exp;
    Exp* own = draft_->nodes_->copy(exp, nullptr);
    draft_->numbers_.push_back({own, prg_->symbols->name(exp->ident), 0});
    return own;
  }
  Exp* node(const Exp* exp, Exp* const* operands) {
    Exp* made = draft_->nodes_->copy(exp, operands);
    made->clock = -1;
    // That of a tuple may go with the text that was read.
    if (made->type != nullptr && made->type->is_tuple) made->type = nullptr;
    return made;
  }

 private:
  EcPrg* prg_;
  Draft* draft_;
  const Exp* replaced_;  // the leaf
  Exp* value_;           // in its place
};

Draft::Draft(EcPrg* prg, Exp* e, size_t extra_names)
    : Draft(prg, e, nullptr, nullptr, extra_names) {
  const EcType* type = e->type;
  if (type != nullptr && !type->is_tuple) types_.push_back(type->name);
  if (type != nullptr && type->is_tuple)
    for (const int member : values_of(type->members)) types_.push_back(member);
}

Draft::Draft(EcPrg* prg, Exp* e, const Exp* leaf, Exp* value, size_t extra_names) {
  size_t met = 0;
  const auto size_of = [&](Exp* root) {
    size_t size = 0;
    each_node(root, [&](const Exp* node) {
      if (node->nb_args > 0 || is_number(prg, node)) size += ExpHeap::size_of_copy(node);
      if (node == leaf) ++met;
    });
    return size;
  };
  size_t size = size_of(e) + extra_names * ExpHeap::size_of_projection();
  const size_t times = met;
  if (times > 0) size += times * size_of(value);
  nodes_ = std::make_unique<ExpHeap>(size);
  root_ = NodeCopier(prg, this, leaf, value).copy(e);
}

void Draft::settle(OwnNumbers* numbers) {
  try {
    for (; settled_ < numbers_.size(); ++settled_) {
      Number& number = numbers_[settled_];
      number.leaf->ident = number.symbol = numbers->take(number.text.c_str());
    }
  } catch (...) {
    give_back(numbers);
    throw;
  }
}

void Draft::give_back(OwnNumbers* numbers) noexcept {
  while (settled_ > 0) numbers->drop(numbers_[--settled_].symbol);
}

}  // namespace tamsel
