// model/walk.h: the one walk over expressions.
//
// Generated expressions are a million operators deep, so nothing recurses over them: every pass is
// a visitor, and the walk keeps its stack on the heap.
#ifndef MODEL_WALK_H
#define MODEL_WALK_H

#include <vector>

#include "model/exp.h"

namespace tamsel {

// What a walk asks of its visitor, which hides those that it minds. `place` counts operands from 0.
// The calls are not virtual: most of them are shorter than a virtual call.
struct ExpVisitor {
  // Before the operands; false skips them and `leave`. `parent` is null at the root.
  bool enter(Exp* /*exp*/, Exp* /*parent*/, int /*place*/) { return true; }
  void between(Exp* /*exp*/, int /*place*/) {}  // before each operand but the first
  void leave(Exp* /*exp*/, Exp* /*parent*/) {}  // after the operands
};

// Walks `root` (not null) depth first, operands from left to right. Shared nodes are entered each
// time they are met, unless the visitor refuses. Null operands are passed over.
template <class Visitor>
void walk(Exp* root, Visitor& visitor) {
  struct Frame {
    Exp* exp;
    int next;  // the operand to visit next
  };
  Frame on_stack[32];          // enough for most expressions
  std::vector<Frame> on_heap;  // for the others
  Frame* path = on_stack;      // from the root
  size_t room = sizeof on_stack / sizeof *on_stack;
  size_t depth = 0;
  const auto open = [&](Exp * exp) __attribute__((always_inline)) {
    if (depth == room) {
      std::vector<Frame> larger(path, path + depth);
      larger.resize(room *= 2);
      on_heap.swap(larger);
      path = on_heap.data();
    }
    path[depth++] = {exp, 0};
    // They come from all over the memory, and the first is asked for at once.
    Exp* const* operands = exp->args();
    for (int i = 0; i < exp->nb_args; ++i) __builtin_prefetch(operands[i]);
  };
  if (visitor.enter(root, nullptr, 0)) open(root);
  while (depth > 0) {
    Frame& frame = path[depth - 1];
    Exp* exp = frame.exp;
    if (frame.next == exp->nb_args) {
      --depth;
      visitor.leave(exp, depth > 0 ? path[depth - 1].exp : nullptr);
      continue;
    }
    const int place = frame.next++;
    if (place > 0) visitor.between(exp, place);
    Exp* operand = exp->args()[place];
    if (operand != nullptr && visitor.enter(operand, exp, place)) open(operand);
  }
}

}  // namespace tamsel

#endif
