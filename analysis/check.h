// analysis/check.h: what is wrong with a program, as the first passes of a compiler would say.
#ifndef ANALYSIS_CHECK_H
#define ANALYSIS_CHECK_H

#include <iterator>
#include <string>
#include <vector>

#include "model/ecprg.h"

namespace tamsel {

enum class FindingKind {
  hole,    // what nothing defines, and each message of the text
  type,    // an equation or assertion that is ill-typed
  clock,   // one that the rules of clocks refuse, and clocks that are none
  cycle,   // equations that need one another now
  unused,  // what nothing mentions
};
constexpr FindingKind finding_kinds[] = {FindingKind::hole, FindingKind::type, FindingKind::clock,
                                         FindingKind::cycle, FindingKind::unused};
// Their words, in this order, and null.
constexpr const char* finding_kind_words[] = {"hole", "type", "clock", "cycle", "unused", nullptr};
static_assert(std::size(finding_kind_words) == std::size(finding_kinds) + 1, "a kind has no word");

inline const char* kind_word(FindingKind kind) {
  return finding_kind_words[static_cast<int>(kind)];
}
const char* severity_word(FindingKind kind);  // "error" or "note"

struct Finding {
  FindingKind kind;
  std::vector<int> names;  // of a left side all; may be empty
  int line;                // in the text that was read; 0: none
  std::string message;
};

// The findings of each kind of `kinds` in the order of the table, of one kind in the order of the
// program. Linear in the program.
std::vector<Finding> check(EcPrg* prg, const std::vector<FindingKind>& kinds);

}  // namespace tamsel

#endif
