// The lexer: characters to tokens.

#include <algorithm>
#include <array>
#include <climits>
#include <cstdarg>
#include <cstring>

#include "ecprg.tab.h"
#include "foundation/text.h"
#include "foundation/wordindex.h"
#include "reader/actions.h"

using namespace tamsel;

namespace {

struct Keyword {
  const char* text;
  int token;
  bool carries_text;  // into ecprg_lval
};

// clang-format off
constexpr Keyword Keywords[] = {
    {"and",      TK_AND,      false},
    {"assert",   TK_ASSERT,   false},
    {"bool",     TK_BOOL,     true},
    {"const",    TK_CONST,    false},
    {"current",  TK_CURRENT,  false},
    {"div",      TK_DIV,      false},
    {"else",     TK_ELSE,     false},
    {"function", TK_FUNCTION, false},
    {"false",    TK_FALSE,    true},
    {"if",       TK_IF,       false},
    {"int",      TK_INT,      true},
    {"let",      TK_LET,      false},
    {"mod",      TK_MOD,      false},
    {"node",     TK_NODE,     false},
    {"not",      TK_NOT,      false},
    {"or",       TK_OR,       false},
    {"nor",      TK_NOR,      false},
    {"pre",      TK_PRE,      false},
    {"real",     TK_REAL,     true},
    {"returns",  TK_RETURNS,  false},
    {"tel",      TK_TEL,      false},
    {"type",     TK_TYPE,     false},
    {"then",     TK_THEN,     false},
    {"true",     TK_TRUE,     true},
    {"var",      TK_VAR,      false},
    {"when",     TK_WHEN,     false},
    {"xor",      TK_XOR,      false},
};
constexpr Keyword SpecKeywords[] = {
    {"->", TK_ARROW, false},
    {">=", TK_GTE,   false},
    {"=>", TK_IMPL,  false},
    {"<=", TK_LTE,   false},
    {"<>", TK_NEQ,   false},
    {"**", TK_POWER, false},
};
// clang-format on

constexpr WordIndex keyword_index(Keywords, &Keyword::text);
constexpr WordIndex spec_keyword_index(SpecKeywords, &Keyword::text);

// What a character begins.
enum class Begins : unsigned char {
  nothing,  // a character that is none of the language
  blank,
  number,
  name,
  single,  // a token of its own
  longer,  // a token of its own, a token of two characters, or a comment
};

constexpr auto beginnings = [] {
  std::array<Begins, 256> table = {};
  for (int c = 0; c < 256; ++c) {
    const bool in_name = is_letter(c) || c == '_';
    table[static_cast<size_t>(c)] = is_blank(c)   ? Begins::blank
                                    : is_digit(c) ? Begins::number
                                    : in_name     ? Begins::name
                                                  : Begins::nothing;
  }
  for (const unsigned char c : std::string_view("./:;)#%+,")) table[c] = Begins::single;
  for (const unsigned char c : std::string_view("(*-<=>")) table[c] = Begins::longer;
  return table;
}();

// Any int may be asked: the end and the numbers of longer tokens begin nothing.
Begins what_begins(int c) {
  return c >= 0 && c < 256 ? beginnings[static_cast<size_t>(c)] : Begins::nothing;
}

template <size_t rows>
const Keyword* find_token(const Keyword (&table)[rows], int token) {
  for (const Keyword& row : table)
    if (row.token == token) return &row;
  return nullptr;
}

bool continues_name(int c) {
  const Begins begins = what_begins(c);
  return begins == Begins::name || begins == Begins::number;
}

// The bytes of a character of UTF-8 after its first.
bool continues_character(int c) { return (c & 0xC0) == 0x80; }

}  // namespace

EcPosition Scanner::place() const {
  const long long column = std::min<long long>(asked_for_ - not_in_column_, INT_MAX);
  return EcPosition(yyline, static_cast<int>(column));
}

// Reads by one thread, as all of the reader, so a character needs no lock. Inline: most of the time
// of a scan is spent here.
inline int Scanner::next_character() {
  int c = -1;  // at the end of a string, and stay there
  if (YY_instring == nullptr)
    c = getc_unlocked(YY_infile);
  else if (*YY_instring != '\0')
    c = static_cast<unsigned char>(*YY_instring++);
  ++asked_for_;
  if (c == '\n') {
    if (yyline < INT_MAX) ++yyline;
    not_in_column_ = asked_for_;
  }
  return c;
}

// Reports an error, which ends the scan.
int Scanner::lexical_error(const char* format, ...) {
  va_list args;
  va_start(args, format);
  std::vsnprintf(lexical_message, sizeof lexical_message, format, args);
  va_end(args);
  if (YY_ecprg != nullptr) YY_ecprg->error("%s", lexical_message);
  return -1;
}

int Scanner::unknown_character() {
  const char shown[] = {static_cast<char>(carcour), '\0'};
  return lexical_error("lexical error: unknown char '%d' (%s), line '%d'", carcour,
                       carcour == 0 ? "\\0" : shown, yyline);
}

// The lexeme in `buffer`. No lexeme is ever cut: one that does not fit is an error of the text.
class Scanner::Lexeme {
 public:
  explicit Lexeme(Scanner& scanner) : scanner_(scanner) {}
  void take() {  // the current character
    if (size_ < sizeof scanner_.buffer - 1)
      scanner_.buffer[size_++] = static_cast<char>(scanner_.carcour);
    else
      fits_ = false;
    scanner_.advance();
  }
  void take_digits() {
    while (is_digit(scanner_.carcour)) take();
  }
  std::string_view text() const { return {scanner_.buffer, size_}; }
  // Delivers `token`, with the text as its value where `carries_text`.
  int deliver(int token, bool carries_text) {
    if (!fits_)
      return scanner_.lexical_error("lexical error: lexeme too long, line '%d'", scanner_.yyline);
    scanner_.buffer[size_] = '\0';
    if (carries_text) std::memcpy(scanner_.ecprg_lval.text, scanner_.buffer, size_ + 1);
    return scanner_.YY_result = token;
  }

 private:
  Scanner& scanner_;
  size_t size_ = 0;
  bool fits_ = true;
};

int Scanner::number() {
  Lexeme lexeme(*this);
  int token = INTCONST;
  lexeme.take_digits();
  if (carcour == '.') {
    token = REALCONST;
    lexeme.take();
    lexeme.take_digits();
  }
  if (carcour == 'e' || carcour == 'E') {
    token = REALCONST;
    lexeme.take();
    if (carcour == '+' || carcour == '-') lexeme.take();
    if (!is_digit(carcour))
      return lexical_error("lexical error: bad real syntax, line '%d'", yyline);
    lexeme.take_digits();
  }
  return lexeme.deliver(token, true);
}

int Scanner::name_or_keyword() {
  Lexeme lexeme(*this);
  while (continues_name(carcour)) lexeme.take();
  const Keyword* keyword = keyword_index.find(lexeme.text());
  if (keyword != nullptr) return lexeme.deliver(keyword->token, keyword->carries_text);
  return lexeme.deliver(IDENT, true);
}

// Stands on the "*" that opens it, which may also begin the end: "(*)" is a comment.
void Scanner::skip_block_comment() {
  int before;
  do {
    before = carcour;
    if (advance() == -1) return;
    if (continues_character(carcour)) ++not_in_column_;
  } while (before != '*' || carcour != ')');
  advance();
}

void Scanner::skip_line_comment() {
  while (carcour != '\n' && carcour != -1) advance();
  if (carcour == '\n') advance();
}

// Skips a comment, or delivers a token of one or two characters. False where it was a comment.
bool Scanner::comment_or_sign() {
  const char first = static_cast<char>(carcour);
  advance();
  buffer[0] = first;
  buffer[1] = static_cast<char>(carcour);
  buffer[2] = '\0';
  const std::string_view both(buffer, 2);
  if (both == "(*") {
    skip_block_comment();
    return false;
  }
  if (both == "--") {
    skip_line_comment();
    return false;
  }
  const Keyword* keyword = spec_keyword_index.find(both);
  if (keyword != nullptr) advance();
  YY_result = keyword != nullptr ? keyword->token : first;
  return true;
}

int Scanner::start_scan(int boot, FILE* f, const char* text) {
  YYLEX_BOOT = boot;
  lexical_message[0] = '\0';
  yyline = 1;
  YY_instring = text;
  YY_infile = f;
  asked_for_ = not_in_column_ = 0;
  return advance() != -1;
}

void Scanner::end_scan() {
  YY_infile = nullptr;
  YY_instring = "";
  carcour = -1;
}

int Scanner::lex(EcPosition* token) {
  YY_result = YYLEX_BOOT;
  YYLEX_BOOT = 0;
  if (YY_result != 0) return YY_result;
  for (;;) {
    switch (what_begins(carcour)) {
      case Begins::blank:
        advance();
        break;
      case Begins::number:
        *token = place();
        return number();
      case Begins::name:
        *token = place();
        return name_or_keyword();
      case Begins::single:
        *token = place();
        YY_result = carcour;
        advance();
        return YY_result;
      case Begins::longer:
        *token = place();
        if (comment_or_sign()) return YY_result;
        break;
      case Begins::nothing:
        *token = place();
        return carcour == -1 ? -1 : unknown_character();
    }
  }
}

int GetChar(int* c) { return *c = thread_reader().next_character(); }

int yylexInitFile(int boot, FILE* f) {
  return thread_reader().is_busy ? 0 : thread_reader().start_scan(boot, f, nullptr);
}

int yylexInitString(int boot, const char* text) {
  return thread_reader().is_busy ? 0 : thread_reader().start_scan(boot, nullptr, text);
}

int ecprg_lex() {
  Reader& reader = thread_reader();
  return reader.lex(&reader.token_place);
}

const char* printLexeme(int token) {
  if (token == -1) return "EOF";
  if (what_begins(token) == Begins::single || what_begins(token) == Begins::longer) {
    std::snprintf(lexemeBuff, sizeof lexemeBuff, "%c", token);
    return lexemeBuff;
  }
  if (token == INTCONST || token == IDENT || token == REALCONST) return ecprg_lval.text;
  if (const Keyword* keyword = find_token(Keywords, token)) return keyword->text;
  if (const Keyword* keyword = find_token(SpecKeywords, token)) return keyword->text;
  return "(unknown lexeme...)";
}

int EcLexTest(SymbolTable* symbols, const char* path) {
  FILE* file = std::fopen(path, "r");
  if (file == nullptr) {
    std::fprintf(stderr, "EcLexTest : Can't open file '%s'\n", path);
    return 1;
  }
  Reader& reader = thread_reader();
  if (reader.is_busy) {
    std::fclose(file);
    std::fprintf(stderr, "EcLexTest : %s\n", busy_message);
    return 1;
  }
  reader.YY_Symbols = symbols;
  reader.start_scan(START_EC, file, nullptr);
  reader.lex(&reader.token_place);
  for (int token = reader.lex(&reader.token_place); token != -1;
       token = reader.lex(&reader.token_place))
    std::fputs(printLexeme(token), stdout);
  reader.end_scan();
  std::fclose(file);
  return 0;
}
