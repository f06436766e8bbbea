#include "model/walk.h"

#include <vector>

void walk(Exp* root, ExpVisitor& visitor) {
  struct Frame {
    Exp* exp;
    int next;  // the operand to visit next
  };
  std::vector<Frame> open;  // the path from the root
  if (visitor.enter(root, nullptr, 0)) open.push_back({root, 0});
  while (!open.empty()) {
    Exp* exp = open.back().exp;
    if (open.back().next == exp->nb_args) {
      open.pop_back();
      visitor.leave(exp, open.empty() ? nullptr : open.back().exp);
      continue;
    }
    const int place = open.back().next++;
    if (place > 0) visitor.between(exp, place);
    Exp* operand = exp->args[place];
    if (operand != nullptr && visitor.enter(operand, exp, place)) open.push_back({operand, 0});
  }
}
