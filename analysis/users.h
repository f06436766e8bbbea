// analysis/users.h: who mentions a name, and what is reached from names in steps.
#ifndef ANALYSIS_USERS_H
#define ANALYSIS_USERS_H

#include <climits>

#include "analysis/equations.h"

namespace tamsel {

// The names whose equations mention a name: an index of all mentions of a program, some 8 bytes
// each. Good until an equation changes.
class Users {
 public:
  // Borrows the program, which must outlive the index.
  explicit Users(EcPrg* prg);

  // In the order outputs, locals. `now`: only where it is mentioned outside of every `pre`.
  std::vector<int> of(int symbol, bool now) const;
  // Calls `take` with each equation that mentions it.
  template <class Take>
  void each_equation(int symbol, bool now, Take take) const {
    const size_t place = static_cast<size_t>(symbol);
    if (place + 1 >= first_.size()) return;
    for (size_t i = first_[place]; i < first_[place + 1]; ++i)
      if (uses_[i].now || !now) take(equations_[uses_[i].equation]);
  }
  // Whether it still holds.
  bool is_fresh() const { return revision_ == prg_->revision; }

 private:
  struct Use {
    unsigned equation : 31;
    unsigned now : 1;
  };

  EcPrg* prg_;
  unsigned revision_;
  std::vector<Equation> equations_;
  std::vector<size_t> first_;  // of each symbol's uses, by symbol; one more at the end
  std::vector<Use> uses_;
};

// What is reached from some names, and in how many steps.
struct Reached {
  int symbol;
  int distance;
};

struct ConeOptions {
  const Users* users = nullptr;  // null: to what the names need, else to who uses them
  int depth = INT_MAX;           // steps at most, from 0
  bool now = false;              // only mentions outside of every `pre`
};

// The nearest first; `names` come first, at distance 0, each once. Functions are not reached.
std::vector<Reached> cone_of(EcPrg* prg, const std::vector<int>& names, const ConeOptions& options);

}  // namespace tamsel

#endif
