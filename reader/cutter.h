// reader/cutter.h: cuts text in memory into tokens.
#ifndef READER_CUTTER_H
#define READER_CUTTER_H

#include <string_view>

#include "reader/reader.h"
#include "reader/source.h"

namespace tamsel {

// A token as it was cut. What points to text holds until more of it is read.
struct Token {
  enum class Flaw : unsigned char { none, unknown_character, bad_real, too_long };

  int number;         // as ecprg_lex; -1 where there is none
  Flaw flaw;          // why there is none
  bool is_lexeme;     // a name, number or keyword
  bool carries_text;  // its own, into ecprg_lval
  EcPosition place;   // where it begins
  const char* begin;
  const char* end;
  // The last sign of two characters or beginning of a comment from the token before this one on, or
  // what might have been one; null: none.
  const char* sign;

  std::string_view text() const { return {begin, static_cast<size_t>(end - begin)}; }
  // Whether the lexer's buffer shows something of it.
  bool is_shown() const { return is_lexeme || sign != nullptr; }
};

class Cutter {
 public:
  // Where it stands: before the look-ahead character.
  struct Place {
    const char* at = nullptr;
    const char* mark = nullptr;  // a place on its line
    long long mark_column = 1;   // the column there
    int line = 1;

    long long column() const { return mark_column + (at - mark); }
  };

  // Borrows `source`, which is what stands at the place.
  Cutter(Source& source, const Place& place) : source_(source), place_(place) {}
  Cutter(const Cutter&) = delete;
  Cutter& operator=(const Cutter&) = delete;

  // Cuts the next token. False where more of the text has to be read before.
  bool cut(Token* token);
  // Reads more of the text: no token that was cut before holds any longer. Throws bad_alloc.
  void read_on();

 private:
  bool is_end(const char* at) const { return *at == '\0' && source_.is_end(at); }
  bool is_there(const char* at) const;
  bool cut_from(const char* at, Token* token);
  bool finish(const char* at, Token* token, int number);
  bool refuse(const char* at, Token* token, Token::Flaw flaw);
  bool finish_lexeme(const char* at, Token* token, int number, bool carries_text);
  bool number(const char* at, Token* token);
  bool name_or_keyword(const char* at, Token* token);
  bool sign(const char* at, Token* token);
  const char* behind_comment(const char* at);
  void begin_line(const char* at);

  Source& source_;
  Place place_;
  // Before the comments that stand before the token, where there are some.
  bool has_comment_ = false;
  Place before_comment_;
};

}  // namespace tamsel

#endif
