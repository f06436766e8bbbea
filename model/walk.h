// model/walk.h: the one walk over expressions.
//
// Generated expressions are a million operators deep, so nothing recurses over them: every pass is
// a visitor, and the walk keeps its stack on the heap.
#ifndef MODEL_WALK_H
#define MODEL_WALK_H

#include "model/exp.h"

// What a walk asks of its visitor. `place` counts operands from 0.
class ExpVisitor {
 public:
  virtual ~ExpVisitor() = default;
  // Before the operands; false skips them and `leave`. `parent` is null at the root.
  virtual bool enter(Exp* /*exp*/, Exp* /*parent*/, int /*place*/) { return true; }
  virtual void between(Exp* /*exp*/, int /*place*/) {}  // before each operand but the first
  virtual void leave(Exp* /*exp*/, Exp* /*parent*/) {}  // after the operands
};

// Walks `root` (not null) depth first, operands from left to right. Shared nodes are entered each
// time they are met, unless the visitor refuses. Null operands are passed over.
void walk(Exp* root, ExpVisitor& visitor);

#endif
