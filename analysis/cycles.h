// analysis/cycles.h: equations that need one another in the same instant.
#ifndef ANALYSIS_CYCLES_H
#define ANALYSIS_CYCLES_H

#include "analysis/equations.h"

namespace tamsel {

// A set of equations each of which needs every other now, directly or through others. An equation
// needs what it mentions outside of every `pre`, and the clock of its left side.
struct Cycle {
  std::vector<const Equation*> equations;  // in the order of the program; of the given ones
  std::vector<int> loop;  // names, each of which needs the next, and the last the first
};

// Each largest such set once, in the order of their first equations.
std::vector<Cycle> cycles_of(EcPrg* prg, const std::vector<Equation>& equations);

}  // namespace tamsel

#endif
