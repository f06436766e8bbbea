#include <fcntl.h>
#include <unistd.h>

#include <climits>
#include <cstdio>

#include "tests/support.h"

static const std::string node = "node n(a, b : bool; i, j : int) returns (y : int); let ";
static const std::string near = "syntax error line 1 near ", end = "'(unknown lexeme...)'";

TEST(Files, AreReadOrRefusedWithALine) {
  const struct {
    std::string text;
    int result;
    std::string message;
  } rows[] = {
      // clang-format off
      {"", 0, ""}, {"(* nothing *) -- at all", 0, ""}, {node + "tel", 0, ""},
      {node + "y = i; tel;", 0, ""}, {node + "assert a; (y) = i; tel,", 0, ""},
      {"const a, b : int; (c : bool) when k. const d : real; type t. type u, v = (r); "
       "function f(x : int) returns (z : t), function g(x : int) returns (z : t) " + node + "tel.",
       0, ""},
      {"const k : int;", 1, near + end}, {"const k : int, l : int;", 1, near + "','"},
      {"type t = ();", 1, near + "')'"}, {"type t = (a, b;", 1, near + "';'"},
      {"function f() returns (z : int)", 1, near + "')'"}, {"node 12", 1, near + "'12'"},
      {"function f(x : bool; z : int) return", 1, near + "'return'"},
      // The line is that of the character after the token.
      {"node n(x : int)\nreturns (y : int)\nlet\ntel", 1, "syntax error line 4 near 'let'"},
      {"node n(x : int) (* a\n\n *)\n1.5e3 ", 1, "syntax error line 4 near '1.5e3'"},
      {node + "(a, y) = (i, j, (i, nor(a, b, tel", 1, near + "'tel'"},
      {node + "i + j = y; tel", 1, near + "'+'"}, {node + "y = i; tel;;", 1, near + "';'"},
      {node + node, 1, near + "'node'"},
      // A lexical error is the end: of a complete file, or of one that breaks off.
      {node + "y = i; tel.\n$", 0, "lexical error: unknown char '36' ($), line '2'"},
      {node + "y = i\n $; tel.", 1, "syntax error line 2 near '(unknown lexeme...)'"},
      {node + "y = " + std::string(20000, '('), 2, "memory exhausted line 1 near '('"},
      {node + "y = nor(i, " + std::string(20000, '('), 2, "memory exhausted line 1 near '('"},
      // clang-format on
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text.substr(0, 100));
    Program program;
    EXPECT_EQ(row.result, program.read(row.text));
    EXPECT_EQ(row.message, program.message());
    EXPECT_EQ(row.result == 1 ? 1 : 0, ecprg_nerrs);
    EXPECT_EQ(nullptr, YY_ecprg);
  }
}

TEST(StandAloneExpressions, AreReadOrRefused) {
  const struct {
    std::string text, message;
  } rows[] = {
      // clang-format off
      {"\n i -- the whole\n", ""}, {std::string(5000, '(') + "i" + std::string(5000, ')'), ""},
      {"", near + end}, {"i +\n", "syntax error line 2 near " + end},
      {"i j", near + "'j'"}, {"i ;", near + "';'"}, {"()", near + "')'"}, {"(a, )", near + "')'"},
      {"f()", near + "')'"}, {"12(i)", near + "'('"}, {"#(a)", near + "')'"}, {"#a", near + "'a'"},
      {"nor a", near + "'a'"}, {"a -> -> b", near + "'->'"}, {"bool i", near + "'bool'"},
      {"if a then i", near + end}, {"a = not b = a", near + "'='"}, {"a => b <> a", near + "'<>'"},
      {"i true", near + "'true'"}, {"when", near + "'when'"},  // the low bytes of "#" and "%"
      {"if a then f(i, pre nosuch) else 1", "undeclared ident 'nosuch'"},
      {"n", "undeclared ident 'n'"}, {"nosuch + ", near + end},
      // The lexical message stays, also after what would be a complete expression.
      {"i $", "lexical error: unknown char '36' ($), line '1'"},
      {"nosuch $", "lexical error: unknown char '36' ($), line '1'"},
      {"i +\n 2e", "lexical error: bad real syntax, line '2'"},
      {std::string(20000, '('), "memory exhausted line 1 near '('"},
      // clang-format on
  };
  for (const auto& row : rows) {
    for (const bool from_file : {false, true}) {
      SCOPED_TRACE(row.text.substr(0, 100));
      Program program(node + "tel");
      Exp* e = program.prg.nil_exp;
      const int result =
          from_file ? EcExpParseFile(&program.prg, &program.symbols, file_of(row.text).get(), &e)
                    : EcExpParseString(&program.prg, &program.symbols, row.text.c_str(), &e);
      EXPECT_EQ(row.message, program.message());
      EXPECT_EQ(row.message.empty() ? 0 : 1, result);
      EXPECT_EQ(result == 1, e == nullptr);
      EXPECT_EQ(nullptr, YY_ecprg);
    }
  }
}

TEST(Files, MustExist) {
  Program program;
  EXPECT_EQ("EcParse : Can't open file '/no/such'\n",
            stderr_of([&] { EXPECT_EQ(1, EcParse(&program.prg, &program.symbols, "/no/such")); }));
}

// What is wrong is told before whoever writes has ended.
TEST(Files, AreReadByWordsWhereTheyMayBeLongInComing) {
  int ends[2];
  ASSERT_EQ(0, pipe2(ends, O_NONBLOCK));
  ASSERT_EQ(12, write(ends[1], "node 12 rest", 12));
  const File file(fdopen(ends[0], "r"), std::fclose);
  setvbuf(file.get(), nullptr, _IONBF, 0);
  Program program;
  EXPECT_EQ(1, EcParseFile(&program.prg, &program.symbols, file.get()));
  EXPECT_EQ('r', std::fgetc(file.get()));
  close(ends[1]);
}

// What a script of Ctrl-C can do: read a text in the middle of another.
TEST(Files, AreNotDisturbedByATextReadMeanwhile) {
  struct Source {
    std::string text = "node n(a : int) returns (y : int); let y = a + 1; tel";
    size_t read = 0;
    Program other;
    std::string answer;
  } source;
  source.other.read("node m(b : int) returns (z : int); let z = b; tel");
  const auto read_one = [](void* cookie, char* bytes, size_t) -> ssize_t {
    Source& from = *static_cast<Source*>(cookie);
    if (from.read == from.text.size()) return 0;
    Exp* e;
    if (EcExpParseString(&from.other.prg, &from.other.symbols, "b + )", &e) == 0)
      from.answer = "read";
    if (from.answer.empty()) from.answer = from.other.message();
    EXPECT_EQ(0, yylexInitString(0, "b"));
    EXPECT_EQ("EcLexTest : the reader is busy\n", stderr_of([&] {
                EXPECT_EQ(1, EcLexTest(&from.other.symbols, SOURCE_DIR "/README.md"));
              }));
    *bytes = from.text[from.read++];
    return 1;
  };
  FILE* file = fopencookie(&source, "r", {read_one, nullptr, nullptr, nullptr});
  Program program;
  EXPECT_EQ(0, EcParseFile(&program.prg, &program.symbols, file)) << program.message();
  std::fclose(file);
  EXPECT_EQ(1, program.prg.nb_outputs);
  EXPECT_EQ("the reader is busy", source.answer);
  EXPECT_EQ(-1, ecprg_lex());  // nothing is left to be read
  yylexInitString(0, "\n");
  yyline = INT_MAX;
  int c;
  YY_instring = "\n";
  GetChar(&c);
  EXPECT_EQ(INT_MAX, yyline);
}
