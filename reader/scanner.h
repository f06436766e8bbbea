// reader/scanner.h: characters to tokens.
//
// Each thread has a scanner of its own (see reader/actions.h), whose fields are the variables that
// reader/reader.h speaks of. A token is cut without a look at them, and they are set as it is
// delivered, which may be later.
#ifndef READER_SCANNER_H
#define READER_SCANNER_H

#include "reader/cutter.h"

namespace tamsel {

class Scanner {
 public:
  Scanner() = default;
  Scanner(const Scanner&) = delete;
  Scanner& operator=(const Scanner&) = delete;

  // Begin a scan of a file, or of a text where `f` is null, and end it: from then on there is
  // nothing to be read. `start_scan` returns 1, or 0 where the text is empty.
  int start_scan(int boot, FILE* f, const char* text, bool in_blocks);
  void end_scan();
  // The next token, as ecprg_lex, and where it begins.
  int lex(EcPosition* token);
  int next_character();

  // --- For who delivers tokens later than they are cut.

  // The token to deliver before any text, once; 0: none.
  int take_boot();

  Source& source() { return source_; }
  // Where the next token is cut.
  Cutter::Place place() const;
  // Set the variables as they are after a token: in parts, since of several tokens the last of its
  // kind counts.
  void set_lexeme(const Token& token);  // which is shown
  void set_value(const Token& token);   // which carries text
  void set_end(const Token& token);     // what every token sets
  // Reports the flaw of a token that is none, where there is one.
  void report_flaw(const Token& token);

  int carcour = -1;
  int yyline = 1;
  const char* YY_instring = "";
  FILE* YY_infile = nullptr;
  int YYLEX_BOOT = 0;
  int YY_result = 0;
  EcPrg* YY_ecprg = nullptr;
  EcPosition
      token_place;  // of the token that ended the parse; at the end, after the last character
  char buffer[text_room] = {};
  char lexemeBuff[text_room] = {};
  char lexical_message[text_room] = {};  // of the error that ended the scan; empty: none
  EcValue ecprg_lval;

 private:
  void lexical_error(const char* format, ...) PRINTF_LIKE(2, 3);

  Source source_;
  const char* in_file_ = nullptr;  // what is left of the block of a file
  long long column_ = 0;           // of the look-ahead character
};

}  // namespace tamsel

#endif
