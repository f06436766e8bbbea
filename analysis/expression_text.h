// analysis/expression_text.h: expressions as texts on one line.
#ifndef ANALYSIS_EXPRESSION_TEXT_H
#define ANALYSIS_EXPRESSION_TEXT_H

#include <climits>
#include <string>

#include "model/ecprg.h"

namespace tamsel {

// Writes one expression after the other into the same memory.
class ExpressionText {
 public:
  ExpressionText() : stream_(&text_, INT_MAX, "") {}

  // With as few parentheses as read back to the same tree, and as a dump has it. Good until the
  // next call; neither has blanks at its ends.
  const std::string& brief(EcPrg* prg, Exp* e) {
    return written([=](PtyStream* out) { e->print_brief(out, prg->symbols); });
  }
  const std::string& full(EcPrg* prg, Exp* e) {
    written([=](PtyStream* out) { e->print_def(out, prg->symbols); });
    text_.erase(0, text_.find_first_not_of(' '));
    return text_;
  }

 private:
  template <class Write>
  const std::string& written(Write write) {
    text_.clear();
    stream_.restart();  // memory may have run out while the one before was written
    write(&stream_);
    stream_.flush();
    return text_;
  }

  std::string text_;
  PtyStream stream_;
};

}  // namespace tamsel

#endif
