// analysis/equations.h: the equations of a program, and what an expression mentions.
//
// Everything in this folder asks a program and leaves no node and no name in it; what typing finds
// out of a node stays with the node. All of it is linear in what it looks at, and throws bad_alloc
// at most. Programs are borrowed.
#ifndef ANALYSIS_EQUATIONS_H
#define ANALYSIS_EQUATIONS_H

#include <unordered_map>
#include <vector>

#include "model/ecprg.h"
#include "model/walk.h"

namespace tamsel {

// The right side of the equation of `ident`, for all names of a tuple equation the tuple; null
// where no equation defines it. `ident` may be null.
Exp* right_side(const IdentInfo* ident);

// One equation. Its texts and nodes are the program's.
struct Equation {
  const IdentInfo* first;  // the first name of its left side
  Exp* right;

  std::vector<int> names() const;  // of the left side, in order
  // Calls `take` with each of them.
  template <class Take>
  void each_name(Take take) const {
    if (first->tuple_names == nullptr) return take(first->name);
    for (const int name : values_of(first->tuple_names)) take(name);
  }
  int line() const { return first->equation_line; }
};

// All of them: those of outputs, then those of locals, each once.
std::vector<Equation> equations_of(EcPrg* prg);

// Whether `leaf` stands for no declared name: a number, a truth value.
bool is_literal(EcPrg* prg, const Exp* leaf);

// A name that an expression mentions: a variable, a declared constant or a function. A variable may
// be called like a function that is not declared; these are two.
struct Mention {
  int symbol;
  bool is_function;
  bool now;  // outside of every `pre`, at one place at least
};

// Calls `take` with each mention in `e` (not null), however often a name is mentioned; of literals
// too, as if they were names. `take` gets the node as well.
template <class Take>
void each_mention(Exp* e, Take take) {
  struct Visitor : ExpVisitor {
    explicit Visitor(Take& taker) : take_(taker) {}

    bool enter(Exp* exp, Exp*, int) {
      if (exp->nature == PRE_n) ++pres;
      if (exp->nature == CALL_n) take_(Mention{exp->order(), true, pres == 0}, exp);
      if (exp->nb_args == 0 && exp->ident != 0) take_(Mention{exp->ident, false, pres == 0}, exp);
      return true;
    }
    void leave(Exp* exp, Exp*) {
      if (exp->nature == PRE_n) --pres;
    }

    Take& take_;
    int pres = 0;  // that are open
  };
  Visitor visitor(take);
  walk(e, visitor);
}

// Collects the names that expressions mention, each once and in the order of their first mention.
class Mentions {
 public:
  explicit Mentions(EcPrg* prg) : prg_(prg) {}

  // Adds those of `e`, which is not null.
  void add(Exp* e);
  // Begins again, with the memory at hand.
  void clear();
  const std::vector<Mention>& all() const { return all_; }

 private:
  void note(const Mention& mention);

  EcPrg* prg_;
  std::vector<Mention> all_;
  std::unordered_map<long long, size_t> place_;  // in all_, once they are many
};

// The variables and constants that `e` mentions, each once, in the order of their first mention;
// `now`: only those that it mentions outside of every `pre`. `e` may be null.
std::vector<int> needs_of(EcPrg* prg, Exp* e, bool now);

}  // namespace tamsel

#endif
