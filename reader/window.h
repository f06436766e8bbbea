// reader/window.h: some tokens ahead, for their names.
//
// A name costs three waits for memory, each for what the one before leads to: its slot in the index
// of texts, the place of its record, the record. So tokens are cut a window at a time, and the
// names in it take these steps together, each fetched for all before one of them needs it. Nobody
// sees more of it than time: the variables of the scanner are set as if each token were cut as it
// is taken.
#ifndef READER_WINDOW_H
#define READER_WINDOW_H

#include <optional>

#include "reader/scanner.h"

namespace tamsel {

class Window {
 public:
  // Begins with what `scanner` has not read yet. Borrows all three; the names are looked up in
  // `symbols` and `prg`.
  void begin(Scanner* scanner, SymbolTable* symbols, const EcPrg* prg);
  // Whether there has to be a `fill` before the next token is taken. It delivers the boot token
  // where there is one, and otherwise 0. Throws bad_alloc.
  bool is_used_up() const { return next_ == end_; }
  int fill();
  // The next token, as ecprg_lex, and where it begins.
  int next(EcPosition* place) {
    const Token& token = (next_++)->token;
    *place = token.place;
    if (token.number == -1) end_text();
    return token.number;
  }
  // The symbol of the token taken last, which carries text, added where it is new. Throws
  // bad_alloc.
  int symbol();
  // Brings the variables of the scanner up to date; `end` for the last time.
  void settle();
  void end();

 private:
  struct Entry {
    Token token;
    // Of a token that carries text.
    TextKey key;
    int symbol;  // when the window was filled; 0: none then
  };

  void look_up();
  void end_text();

  static constexpr int size = 64;
  Scanner* scanner_ = nullptr;
  SymbolTable* symbols_ = nullptr;
  const EcPrg* prg_ = nullptr;
  std::optional<Cutter> cutter_;  // behind the tokens of the window
  Entry entries_[size];
  const Entry* next_ = entries_;  // those before it were taken
  Entry* end_ = entries_;
};

}  // namespace tamsel

#endif
