#include <tuple>

#include "tests/support.h"

// The tokens of `text` as their numbers, with the text that they carry; at an error, the message.
static std::string scan(const std::string& text, bool from_string) {
  Program program;
  const File file = file_of(text);
  YY_ecprg = &program.prg;
  const int begun = from_string ? yylexInitString(0, text.c_str()) : yylexInitFile(0, file.get());
  EXPECT_EQ(text.empty() ? 0 : 1, begun);
  std::string tokens;
  for (;;) {
    ecprg_lval.text[0] = '\0';
    const int token = ecprg_lex();
    EXPECT_EQ(token == -1 ? 0 : token, YY_result);
    if (token == -1) break;
    tokens += (tokens.empty() ? "" : " ") + std::to_string(token);
    if (ecprg_lval.text[0] != '\0') tokens += "(" + std::string(ecprg_lval.text) + ")";
  }
  EXPECT_TRUE(!program.message().empty() || ecprg_lex() == -1) << "the end stays";
  YY_ecprg = nullptr;
  return tokens + program.message();
}

TEST(Lexer, CutsTextsIntoTokens) {
  const struct {
    const char *text, *tokens;
  } rows[] = {
      // clang-format off
      {"", ""}, {" \t\n\r\v\f", ""},
      {"and assert bool const current div else function false if int let mod node",
       "260 262 263(bool) 264 265 266 267 268 269(false) 273 274(int) 277 278 280"},
      {"not or nor pre real returns tel type then true var when xor",
       "282 283 281 284 286(real) 287 288 289 290 291(true) 292 293 294"},
      {"True _x1 tru truer a.b", "272(True) 272(_x1) 272(tru) 272(truer) 272(a) 46 272(b)"},
      {"-> >= => <= <> **", "261 270 275 276 279 295"},
      {"# % ( ) * + , - . / : ; < = >", "35 37 40 41 42 43 44 45 46 47 58 59 60 61 62"},
      {"a->b", "272(a) 261 272(b)"}, {"=<", "61 60"}, {">==>", "270 275"},
      {"***<><", "295 42 279 60"}, {"->-", "261 45"}, {"x--y -> \nz", "272(x) 272(z)"},
      {"a --", "272(a)"}, {"(*)x", "272(x)"}, {"(* a -- * ) ( **)x", "272(x)"}, {"(* a \n", ""},
      {"(*", ""}, {"( *)", "40 42 41"}, {"12 0012", "271(12) 271(0012)"},
      {"12. 12.5 1e3 1E3 1.5E-2 1.e+2",
       "285(12.) 285(12.5) 285(1e3) 285(1E3) 285(1.5E-2) 285(1.e+2)"},
      {".5 -5 1..2 1.2.3", "46 271(5) 45 271(5) 285(1.) 46 271(2) 285(1.2) 46 271(3)"},
      {"12x 1.x", "271(12) 272(x) 285(1.) 272(x)"},
      {"1e+", "lexical error: bad real syntax, line '1'"},
      {"1.5ex 2", "lexical error: bad real syntax, line '1'"},
      {"a\n\n1e-x", "272(a)lexical error: bad real syntax, line '3'"},
      {"a\n$ b", "272(a)lexical error: unknown char '36' ($), line '2'"},
      // clang-format on
  };
  for (const auto& row : rows)
    for (const bool from_string : {false, true})
      EXPECT_EQ(row.tokens, scan(row.text, from_string)) << row.text;
}

TEST(Lexer, RefusesUnknownBytes) {
  const std::string known =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_0123456789#%()*+,-./:;<=> \t\n\r\v\f";
  for (int byte = 0; byte < 256; ++byte) {
    const std::string text(1, static_cast<char>(byte));
    const std::string shown = byte == 0 ? "\\0" : text;
    const std::string message =
        "lexical error: unknown char '" + std::to_string(byte) + "' (" + shown + "), line '1'";
    EXPECT_EQ(known.find(text) == std::string::npos, scan(text, false) == message) << byte;
    if (byte < 128) continue;
    EXPECT_EQ("272(a)" + message, scan("a" + text + "b", true)) << byte;
  }
}

TEST(Lexer, NeverCutsALexeme) {
  const std::string long_x(1023, 'x'), long_1(1023, '1'),
      refused = "lexical error: lexeme too long, line '1'";
  const struct {
    std::string text, tokens;
  } rows[] = {
      // clang-format off
      {long_x, "272(" + long_x + ")"}, {long_x + "x", refused},
      {long_1 + " x", "271(" + long_1 + ") 272(x)"}, {long_1 + ". x", refused},
      {"1." + long_1, refused}, {"1e" + long_1, refused}, {"true" + long_x, refused},
      // clang-format on
  };
  for (const auto& row : rows) EXPECT_EQ(row.tokens, scan(row.text, false)) << row.text.size();
}

TEST(Lexer, DeliversTheBootTokenFirstAndTheEndForEver) {
  const char text[] = "\0x";
  for (const int boot : {258, 259}) {
    yylexInitString(boot, text);
    EXPECT_EQ(boot, ecprg_lex());
    EXPECT_EQ(-1, ecprg_lex());
    for (int i = 0, c; i < 3; ++i) EXPECT_EQ(-1, GetChar(&c));
  }
}

TEST(Lexer, NamesNothingButTokens) {
  EXPECT_STREQ("EOF", printLexeme(-1));
  for (const int number : {-2, 0, 36, 256, 258, 259, 296, 299})
    EXPECT_STREQ("(unknown lexeme...)", printLexeme(number)) << number;
}

TEST(Lexer, TracesAFile) {
  const std::string path = testing::TempDir() + "lexemes.ec";
  FILE* file = std::fopen(path.c_str(), "w");
  std::fputs("node n(x : int) -- a comment\n1.5e3 <= ** true\n$ rest", file);
  std::fclose(file);
  SymbolTable symbols;
  EXPECT_EQ("noden(x:int)1.5e3<=**true",
            stdout_text([&] { EXPECT_EQ(0, EcLexTest(&symbols, path.c_str())); }));
  std::remove(path.c_str());
  EXPECT_EQ("EcLexTest : Can't open file '" + path + "'\n",
            stderr_of([&] { EXPECT_EQ(1, EcLexTest(&symbols, path.c_str())); }));
}

static File regular_file_of(const std::string& text) {
  File file(tmpfile(), std::fclose);
  std::fputs(text.c_str(), file.get());
  std::rewind(file.get());
  return file;
}

// What the variables say after a parse is what they say after as many tokens one by one, however
// far ahead the text was cut for it; and the file stands behind the look-ahead character.
TEST(Lexer, TellsAfterAParseWhatItTellsTokenByToken) {
  std::string text = "node n(a : int) returns (b : int);\nlet b =";
  std::vector<size_t> places;
  const char* const tokens[] = {"a", "+", "(* \xC3\xA9\n *)", "12",    "**",
                                "(", "x", "-- \xC3\xA9\n",    "1.5e3", ")"};
  for (int i = 0; i < 300; ++i) {
    places.push_back(text.size());
    text += std::string(" ") + tokens[i % 10];
  }
  const auto state = [] {
    return std::make_tuple(yyline, YY_result, token_place().line, token_place().column,
                           std::string(buffer), std::string(ecprg_lval.text));
  };
  const auto forget = [] { buffer[0] = ecprg_lval.text[0] = '\0'; };
  Program program;
  for (const char* flaw : {" $", " 1e+", " ;\n", " (*", " node (**)x", " node--", " if"}) {
    for (const size_t place : places) {
      const std::string flawed = std::string(text).insert(place, flaw);
      const File file = regular_file_of(flawed);
      forget();
      EXPECT_EQ(1, EcParseFile(&program.prg, &program.symbols, file.get()));
      const auto parsed = state();
      forget();
      yylexInitString(258, flawed.c_str());
      do ecprg_lex();
      while (state() != parsed && YY_result != 0);
      EXPECT_EQ(parsed, state()) << flaw << place;
      EXPECT_EQ(YY_instring - flawed.c_str(), std::ftell(file.get())) << flaw << place;
    }
  }
}

// The end of a block may fall on any character.
TEST(Lexer, CutsATextAlikeWhereverItIsSplit) {
  const std::string text =
      "node n(abc : real) returns (de : bool); let de = abc (* two\nlines *) <= 12.5e-3 -- end\n"
      "or true;\ntel";
  Program whole(text);
  const size_t block = 64 * 1024;
  for (size_t split = 0; split < text.size(); ++split) {
    Program program;
    const File file = regular_file_of("(*" + std::string(block - split - 4, ' ') + "*)" + text);
    EXPECT_EQ(0, EcParseFile(&program.prg, &program.symbols, file.get())) << program.message();
    EXPECT_EQ(ec_text(&whole.prg), ec_text(&program.prg)) << split;
  }
}
