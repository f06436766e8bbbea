// analysis/clocks.h: on which clock an expression runs, by the rules of the language.
//
// A constant fits every clock; a variable has its declared one. The operands of an operator, a
// tuple or a call share one clock, which is the result's. In `e when c`, c is a variable, e and c
// share one clock, and the result runs on c. In `current e`, e does not run on the base clock, and
// the result runs on the clock of its clock.
#ifndef ANALYSIS_CLOCKS_H
#define ANALYSIS_CLOCKS_H

#include <string>
#include <vector>

#include "model/ecprg.h"

namespace tamsel {

constexpr int any_clock = 0;  // of what fits every clock

// Finds the clocks of expressions, one after the other in the same memory.
class ClockFinder {
 public:
  explicit ClockFinder(EcPrg* prg) : prg_(prg) {}

  // The clock of `e` (not null): any_clock, or the symbol of a variable or of "true". False where
  // the rules refuse it, with the reason in `message`.
  bool find(Exp* e, int* clock, std::string* message);

 private:
  friend class ClockVisitor;

  EcPrg* prg_;
  std::vector<int> found_;     // of the nodes whose parents are open
  std::vector<size_t> first_;  // of each open node, where its operands begin in found_
};

// The same for one expression.
bool find_clock(EcPrg* prg, Exp* e, int* clock, std::string* message);

// The text of a clock: "true" for the base clock, and for what fits every clock.
const char* clock_name(const EcPrg* prg, int clock);
// That of the clock of `e`; empty where the rules refuse it.
const char* clock_name_of(EcPrg* prg, Exp* e);

}  // namespace tamsel

#endif
