// model/copier.h: copies of expressions.
#ifndef MODEL_COPIER_H
#define MODEL_COPIER_H

#include <algorithm>
#include <vector>

#include "model/walk.h"

namespace tamsel {

// Copies an expression from the leaves up. `Derived` says of what: by `Exp* leaf(Exp*)`, which may
// answer the leaf itself, and by `Exp* node(const Exp*, Exp* const* operands)`.
template <class Derived>
class Copier : public ExpVisitor {
 public:
  bool enter(Exp* exp, Exp*, int) {
    if (exp->nb_args > 0) return true;
    copied_.push_back(derived().leaf(exp));
    return false;
  }
  void leave(Exp* exp, Exp*) {
    Exp* const* const operands = exp->args();
    const size_t count = static_cast<size_t>(exp->nb_args);
    // Those that are null were not walked over.
    const auto missing = std::count(operands, operands + count, nullptr);
    const size_t first = copied_.size() - (count - static_cast<size_t>(missing));
    for (size_t i = 0; missing > 0 && i < count; ++i)
      if (operands[i] == nullptr)
        copied_.insert(copied_.begin() + static_cast<ptrdiff_t>(first + i), nullptr);
    Exp* made = derived().node(exp, copied_.data() + first);
    copied_.resize(first);
    copied_.push_back(made);
  }

  Exp* copy(Exp* e) {
    copied_.clear();
    walk(e, derived());
    return copied_.back();
  }

 private:
  Derived& derived() { return static_cast<Derived&>(*this); }

  std::vector<Exp*> copied_;  // of what its parents wait for
};

}  // namespace tamsel

#endif
