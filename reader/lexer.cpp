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
  word,    // a name that may be a keyword
  single,  // a token of its own
  longer,  // a token of its own, a token of two characters, or a comment
};

constexpr auto beginnings = [] {
  std::array<Begins, 256> table = {};
  for (int c = 0; c < 256; ++c) {
    const bool in_name = is_letter(c) || c == '_';
    table[static_cast<size_t>(c)] = is_blank(c)            ? Begins::blank
                                    : is_digit(c)          ? Begins::number
                                    : c >= 'a' && c <= 'z' ? Begins::word
                                    : in_name              ? Begins::name
                                                           : Begins::nothing;
  }
  for (const unsigned char c : std::string_view("./:;)#%+,")) table[c] = Begins::single;
  for (const unsigned char c : std::string_view("(*-<=>")) table[c] = Begins::longer;
  return table;
}();

// The second characters of tokens that have two.
constexpr auto ends_pair = [] {
  std::array<bool, 256> table = {};
  for (const Keyword& row : SpecKeywords) table[static_cast<unsigned char>(row.text[1])] = true;
  return table;
}();

Begins what_begins(const char* at) { return beginnings[static_cast<unsigned char>(*at)]; }

template <size_t rows>
const Keyword* find_token(const Keyword (&table)[rows], int token) {
  for (const Keyword& row : table)
    if (row.token == token) return &row;
  return nullptr;
}

bool is_in_name(Begins begins) { return begins >= Begins::number && begins <= Begins::word; }

bool begins_comment(const char* sign) {
  return (sign[0] == '(' && sign[1] == '*') || (sign[0] == '-' && sign[1] == '-');
}

// The bytes of a character of UTF-8 after its first.
bool continues_character(int c) { return (c & 0xC0) == 0x80; }

}  // namespace

// Reports an error, which ends the scan.
void Scanner::lexical_error(const char* format, ...) {
  va_list args;
  va_start(args, format);
  std::vsnprintf(lexical_message, sizeof lexical_message, format, args);
  va_end(args);
  if (YY_ecprg != nullptr) YY_ecprg->error("%s", lexical_message);
}

// Whether what stands here can be told: a character, or the end of the text.
bool Cutter::is_there(const char* at) const { return !is_end(at) || !source_.may_go_on(); }

// Each step answers whether the text in memory sufficed. Where it ends but more may follow, the
// token is cut again from the start when more of it is there.
bool Cutter::cut(Token* token) {
  token->sign = nullptr;
  has_comment_ = false;
  if (cut_from(place_.at, token)) return true;
  place_.at = token->begin;
  if (has_comment_) place_ = before_comment_;
  return false;
}

bool Cutter::cut_from(const char* at, Token* token) {
  for (;;) {
    const Begins begins = what_begins(at);
    if (begins == Begins::blank) {
      if (*at++ == '\n') begin_line(at);
      continue;
    }
    place_.at = token->begin = at;
    const long long column = std::min<long long>(place_.column(), INT_MAX);
    token->place = EcPosition(place_.line, static_cast<int>(column));
    switch (begins) {
      case Begins::name:
      case Begins::word:
        return name_or_keyword(at, token);
      case Begins::number:
        return number(at, token);
      case Begins::single:
        return finish(at + 1, token, *at);
      case Begins::longer:
        token->sign = at++;
        if (!is_there(at)) return false;
        if (!begins_comment(token->sign)) return sign(at, token);
        if (!has_comment_) before_comment_ = place_;
        has_comment_ = true;
        at = behind_comment(at);
        if (!is_there(at)) return false;
        break;
      case Begins::blank:
      case Begins::nothing:
        if (is_end(at)) return finish(at, token, -1);
        return refuse(at, token, Token::Flaw::unknown_character);
    }
  }
}

// The line that begins at `at`.
void Cutter::begin_line(const char* at) {
  if (place_.line < INT_MAX) ++place_.line;
  place_.mark = at;
  place_.mark_column = 1;
}

inline bool Cutter::finish(const char* at, Token* token, int number) {
  token->number = number;
  token->flaw = Token::Flaw::none;
  token->is_lexeme = token->carries_text = false;
  token->end = place_.at = at;
  return is_there(at);
}

bool Cutter::refuse(const char* at, Token* token, Token::Flaw flaw) {
  const bool is_cut = finish(at, token, -1);
  token->flaw = flaw;
  token->is_lexeme = flaw != Token::Flaw::unknown_character;
  return is_cut;
}

// No lexeme is ever cut off: one that does not fit is an error of the text.
inline bool Cutter::finish_lexeme(const char* at, Token* token, int number, bool carries_text) {
  if (at - token->begin >= static_cast<ptrdiff_t>(text_room))
    return refuse(at, token, Token::Flaw::too_long);
  const bool is_cut = finish(at, token, number);
  token->is_lexeme = true;
  token->carries_text = carries_text;
  return is_cut;
}

static const char* behind_digits(const char* at) {
  while (is_digit(*at)) ++at;
  return at;
}

bool Cutter::number(const char* at, Token* token) {
  int number = INTCONST;
  at = behind_digits(at);
  if (*at == '.') {
    number = REALCONST;
    at = behind_digits(at + 1);
  }
  if (*at == 'e' || *at == 'E') {
    number = REALCONST;
    ++at;
    if (*at == '+' || *at == '-') ++at;
    if (!is_digit(*at)) return refuse(at, token, Token::Flaw::bad_real);
    at = behind_digits(at);
  }
  return finish_lexeme(at, token, number, true);
}

bool Cutter::name_or_keyword(const char* at, Token* token) {
  while (what_begins(at) == Begins::word) ++at;
  const Keyword* keyword = nullptr;
  if (is_in_name(what_begins(at)))
    while (is_in_name(what_begins(++at))) continue;
  else
    keyword = keyword_index.find({token->begin, static_cast<size_t>(at - token->begin)});
  if (keyword != nullptr) return finish_lexeme(at, token, keyword->token, keyword->carries_text);
  return finish_lexeme(at, token, IDENT, true);
}

// `at` stands on what may be the second character.
bool Cutter::sign(const char* at, Token* token) {
  const Keyword* keyword = nullptr;
  if (ends_pair[static_cast<unsigned char>(*at)])
    keyword = spec_keyword_index.find({token->sign, 2});
  if (keyword == nullptr) return finish(at, token, *token->sign);
  return finish(at + 1, token, keyword->token);
}

// From the second character. A "*" may also begin the end: "(*)" is a comment. The end of the text
// where the comment goes on until there.
const char* Cutter::behind_comment(const char* at) {
  if (*at == '-') {
    while (*at != '\n' && !is_end(at)) ++at;
    return at;
  }
  for (char before = *at;; before = *at) {
    ++at;
    if (before == '\n') begin_line(at);
    if (is_end(at)) return at;
    if (continues_character(*at)) --place_.mark_column;
    if (before == '*' && *at == ')') return at + 1;
  }
}

void Cutter::read_on() {
  const long long column = place_.column();
  place_.at = place_.mark = source_.read_on(place_.at);
  place_.mark_column = column;
}

// The look-ahead character stands before what is left, unless the text is at its end.
Cutter::Place Scanner::place() const {
  const char* left = YY_instring != nullptr ? YY_instring : in_file_;
  const char* at = carcour != -1 ? left - 1 : left;
  const bool is_counted = carcour == '\n';
  return {at, at, column_, is_counted && yyline < INT_MAX ? yyline - 1 : yyline};
}

void Scanner::set_end(const Token& token) {
  YY_result = token.number != -1 ? token.number : 0;
  const bool is_end = source_.is_end(token.end);
  const bool is_new_line = !is_end && *token.end == '\n';
  carcour = is_end ? -1 : static_cast<unsigned char>(*token.end);
  yyline = token.place.line;
  if (is_new_line && yyline < INT_MAX) ++yyline;
  column_ = is_new_line ? 0 : token.place.column + (token.end - token.begin);
  const char* left = is_end ? token.end : token.end + 1;
  if (YY_instring != nullptr)
    YY_instring = left;
  else
    in_file_ = left;
}

// Reads by one thread, as all of the reader, so a character needs no lock.
int Scanner::next_character() {
  const char*& left = YY_instring != nullptr ? YY_instring : in_file_;
  if (YY_instring == nullptr && source_.is_end(left) && source_.may_go_on())
    left = source_.read_on(left);
  const int c = source_.is_end(left) ? -1 : static_cast<unsigned char>(*left++);
  ++column_;
  if (c == '\n') {
    if (yyline < INT_MAX) ++yyline;
    column_ = 0;
  }
  return c;
}

void Scanner::set_lexeme(const Token& token) {
  if (!token.is_lexeme) {
    const bool is_last = source_.is_end(token.sign + 1);
    buffer[0] = token.sign[0];
    buffer[1] = is_last ? '\xFF' : token.sign[1];
    buffer[2] = '\0';
    return;
  }
  const size_t size = std::min(token.text().size(), sizeof buffer - 1);
  std::memcpy(buffer, token.begin, size);
  buffer[size] = '\0';
}

void Scanner::set_value(const Token& token) {
  ecprg_lval.text[token.text().copy(ecprg_lval.text, text_room)] = '\0';
}

void Scanner::report_flaw(const Token& token) {
  const char shown[] = {static_cast<char>(carcour), '\0'};
  switch (token.flaw) {
    case Token::Flaw::none:
      break;
    case Token::Flaw::unknown_character:
      return lexical_error("lexical error: unknown char '%d' (%s), line '%d'", carcour,
                           carcour == 0 ? "\\0" : shown, yyline);
    case Token::Flaw::bad_real:
      return lexical_error("lexical error: bad real syntax, line '%d'", yyline);
    case Token::Flaw::too_long:
      return lexical_error("lexical error: lexeme too long, line '%d'", yyline);
  }
}

int Scanner::start_scan(int boot, FILE* f, const char* text, bool in_blocks) {
  YYLEX_BOOT = boot;
  lexical_message[0] = '\0';
  yyline = 1;
  YY_instring = text;
  YY_infile = f;
  source_.open(f, in_blocks);
  in_file_ = nullptr;
  column_ = 0;
  return (carcour = next_character()) != -1;
}

void Scanner::end_scan() {
  source_.close(YY_instring == nullptr ? in_file_ : nullptr);
  YY_infile = nullptr;
  YY_instring = "";
  carcour = -1;
}

int Scanner::take_boot() {
  YY_result = YYLEX_BOOT;
  YYLEX_BOOT = 0;
  return YY_result;
}

int Scanner::lex(EcPosition* token_begin) {
  if (const int boot = take_boot()) return boot;
  Token token;
  Cutter cutter(source_, place());
  while (!cutter.cut(&token)) cutter.read_on();
  if (token.is_shown()) set_lexeme(token);
  if (token.carries_text) set_value(token);
  set_end(token);
  report_flaw(token);
  *token_begin = token.place;
  return token.number;
}

bool tamsel::is_name(const char* text) {
  const char* end = text;
  while (is_in_name(what_begins(end))) ++end;
  const std::string_view name(text, static_cast<size_t>(end - text));
  return *end == '\0' && !name.empty() && what_begins(text) != Begins::number &&
         name.size() < text_room && keyword_index.find(name) == nullptr;
}

int GetChar(int* c) { return *c = thread_reader().next_character(); }

int yylexInitFile(int boot, FILE* f) {
  return thread_reader().is_busy ? 0 : thread_reader().start_scan(boot, f, nullptr, false);
}

int yylexInitString(int boot, const char* text) {
  return thread_reader().is_busy ? 0 : thread_reader().start_scan(boot, nullptr, text, false);
}

int ecprg_lex() {
  Reader& reader = thread_reader();
  return reader.lex(&reader.token_place);
}

const char* printLexeme(int token) {
  if (token == -1) return "EOF";
  const bool is_character = token >= 0 && token < 256;
  const Begins begins = is_character ? beginnings[static_cast<size_t>(token)] : Begins::nothing;
  if (begins == Begins::single || begins == Begins::longer) {
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
  reader.start_scan(START_EC, file, nullptr, false);
  reader.lex(&reader.token_place);
  for (int token = reader.lex(&reader.token_place); token != -1;
       token = reader.lex(&reader.token_place))
    std::fputs(printLexeme(token), stdout);
  reader.end_scan();
  std::fclose(file);
  return 0;
}
