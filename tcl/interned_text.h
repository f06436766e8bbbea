// tcl/interned_text.h: result texts that are put together in a program's symbol table.
#ifndef TCL_INTERNED_TEXT_H
#define TCL_INTERNED_TEXT_H

#include <string>
#include <unordered_set>
#include <vector>

#include "foundation/symbols.h"

// The symbols of texts that are interned with all their steps.
using GrownTexts = std::unordered_set<int>;

// Grows a text piece by piece and interns it, with each step of its growth as a symbol of its own.
// Of a text that no page of the table can hold, only the whole becomes a symbol: its steps together
// would take memory in the square of its length.
class InternedText {
 public:
  // Borrows `table`, and `grown`, which is of that table and always the same. Starts with `text`,
  // which is a symbol already.
  InternedText(SymbolTable* table, GrownTexts* grown, const char* text)
      : table_(table), grown_(grown), text_(text) {}

  void append(const char* separator, const char* piece) {
    text_ += separator;
    text_ += piece;
    steps_.push_back(text_.size());
  }

  // Interns the text and returns it, borrowed from the table.
  const char* intern() {
    int symbol = table_->tape->known(text_.c_str());
    if (symbol == 0 || grown_->count(symbol) == 0) {
      if (text_.size() < STapePage::room)
        for (const size_t length : steps_) table_->add_text(text_.substr(0, length).c_str());
      symbol = table_->add_text(text_.c_str());
      grown_->insert(symbol);
    }
    return table_->name(symbol);
  }

 private:
  SymbolTable* table_;
  GrownTexts* grown_;
  std::string text_;
  std::vector<size_t> steps_;  // lengths
};

#endif
