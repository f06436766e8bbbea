// reader/scanner.h: characters to tokens.
//
// Each thread has a scanner of its own (see reader/actions.h), whose fields are the variables that
// reader/reader.h speaks of. All that works on one character or token asks it for them rather than
// ask the system each time for what is the thread's.
#ifndef READER_SCANNER_H
#define READER_SCANNER_H

#include "reader/reader.h"

namespace tamsel {

class Scanner {
 public:
  Scanner() = default;
  Scanner(const Scanner&) = delete;
  Scanner& operator=(const Scanner&) = delete;

  // Begin a scan of a file, or of a text where `f` is null, and end it: from then on there is
  // nothing to be read. `start_scan` returns 1, or 0 where the text is empty.
  int start_scan(int boot, FILE* f, const char* text);
  void end_scan();
  // The next token, as ecprg_lex, and where it begins.
  int lex(EcPosition* token);
  int next_character();

  int carcour = -1;
  int yyline = 1;
  const char* YY_instring = "";
  FILE* YY_infile = nullptr;
  int YYLEX_BOOT = 0;
  int YY_result = 0;
  EcPrg* YY_ecprg = nullptr;
  EcPosition
      token_place;  // of the token that ended the parse; at the end, after the last character
 private:
  // For the column of a token: what was asked for since the scan began, the current character
  // included, and how much of it stands before the current line or is no character of its own.
  long long asked_for_ = 0;
  long long not_in_column_ = 0;

 public:
  char buffer[text_room] = {};
  char lexemeBuff[text_room] = {};
  char lexical_message[text_room] = {};  // of the error that ended the scan; empty: none
  EcValue ecprg_lval;

 private:
  class Lexeme;
  int advance() { return carcour = next_character(); }
  EcPosition place() const;  // of the current character
  int lexical_error(const char* format, ...) PRINTF_LIKE(2, 3);
  int unknown_character();
  int number();
  int name_or_keyword();
  void skip_block_comment();
  void skip_line_comment();
  bool comment_or_sign();
};

}  // namespace tamsel

#endif
