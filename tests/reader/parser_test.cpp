#include "tests/support.h"

static const std::string node = "node n(a, b : bool; i, j : int) returns (y : int); let ";

TEST(Files, AreReadOrRefusedWithALine) {
  const struct {
    std::string text;
    int result;
    const char* message;
  } rows[] = {
      {"", 0, ""},
      {"(* nothing *) -- at all", 0, ""},
      {node + "tel", 0, ""},
      {node + "y = i; tel;", 0, ""},
      {node + "y = i; tel.", 0, ""},
      {node + "y = i; tel,", 0, ""},
      {node + "assert a; (y) = i; tel", 0, ""},
      {"const a, b : int; (c : bool) when k. const d : real; type t. type u, v = (r); "
       "function f(x : int) returns (z : t), function g(x : int) returns (z : t) " +
           node + "tel",
       0, ""},
      {"const k : int;", 1, "syntax error line 1 near '(unknown lexeme...)'"},
      {"const k : int, l : int;", 1, "syntax error line 1 near ','"},
      {"type t = ();", 1, "syntax error line 1 near ')'"},
      {"type t = (a, b;", 1, "syntax error line 1 near ';'"},
      {"function f() returns (z : int)", 1, "syntax error line 1 near ')'"},
      {"function f(x : int) returns (z : int; u :", 1,
       "syntax error line 1 near '(unknown lexeme...)'"},
      {"function f(x : bool; z : int) return", 1, "syntax error line 1 near 'return'"},
      {"node 12", 1, "syntax error line 1 near '12'"},
      {"node n()", 1, "syntax error line 1 near ')'"},
      {"node n(x : int) returns (y : int) let", 1, "syntax error line 1 near 'let'"},
      // The line is that of the character behind the token.
      {"node n(x : int)\nreturns (y : int)\nlet\ntel", 1, "syntax error line 4 near 'let'"},
      {"node n(x : int) (* a\n\n *)\n1.5e3 ", 1, "syntax error line 4 near '1.5e3'"},
      {node + "y = i", 1, "syntax error line 1 near '(unknown lexeme...)'"},
      {node + "y = ; tel", 1, "syntax error line 1 near ';'"},
      {node + "i + j = y; tel", 1, "syntax error line 1 near '+'"},
      {node + "(a, y) = (i, j, (i, nor(a, b, tel", 1, "syntax error line 1 near 'tel'"},
      {node + "y = i; tel;;", 1, "syntax error line 1 near ';'"},
      {node + node, 1, "syntax error line 1 near 'node'"},
      // A lexical error is the end: of a complete file, or of one that breaks off.
      {node + "y = i; tel.\n$", 0, "lexical error: unknown char '36' ($), line '2'"},
      {node + "y = i\n $; tel.", 1, "syntax error line 2 near '(unknown lexeme...)'"},
      {node + "y = " + std::string(20000, '('), 2, "memory exhausted line 1 near '('"},
      {node + "y = nor(i, " + std::string(20000, '('), 2, "memory exhausted line 1 near '('"},
  };
  for (const auto& row : rows) {
    Program program;
    EXPECT_EQ(row.result, program.read(row.text)) << row.text.substr(0, 100);
    EXPECT_EQ(row.message, program.message()) << row.text.substr(0, 100);
    EXPECT_EQ(row.result == 1 ? 1 : 0, ecprg_nerrs) << row.text.substr(0, 100);
    EXPECT_EQ(nullptr, YY_ecprg);
  }
}

TEST(StandAloneExpressions, AreReadOrRefused) {
  const struct {
    std::string text;
    const char* message;
  } rows[] = {
      {"i", ""},
      {"\n i -- the whole\n", ""},
      {"nor(a)", ""},
      {std::string(5000, '(') + "i" + std::string(5000, ')'), ""},
      {"", "syntax error line 1 near '(unknown lexeme...)'"},
      {"i +\n", "syntax error line 2 near '(unknown lexeme...)'"},
      {"i j", "syntax error line 1 near 'j'"},
      {"i 12", "syntax error line 1 near '12'"},
      {"i ;", "syntax error line 1 near ';'"},
      {"()", "syntax error line 1 near ')'"},
      {"(a, b", "syntax error line 1 near '(unknown lexeme...)'"},
      {"(a, )", "syntax error line 1 near ')'"},
      {"f()", "syntax error line 1 near ')'"},
      {"12(i)", "syntax error line 1 near '('"},
      {"#(a)", "syntax error line 1 near ')'"},
      {"#a", "syntax error line 1 near 'a'"},
      {"nor a", "syntax error line 1 near 'a'"},
      {"a -> -> b", "syntax error line 1 near '->'"},
      {"if a then i", "syntax error line 1 near '(unknown lexeme...)'"},
      {"if a then i else", "syntax error line 1 near '(unknown lexeme...)'"},
      {"a = not b = a", "syntax error line 1 near '='"},
      // Tokens above 255 whose low byte is that of "#" and "%".
      {"i true", "syntax error line 1 near 'true'"},
      {"when", "syntax error line 1 near 'when'"},
      {"bool i", "syntax error line 1 near 'bool'"},
      {"nosuch", "undeclared ident 'nosuch'"},
      {"if a then f(i, pre nosuch) else 1", "undeclared ident 'nosuch'"},
      {"n", "undeclared ident 'n'"},
      {"nosuch + ", "syntax error line 1 near '(unknown lexeme...)'"},
      // The lexical message stays, also behind what would be a complete expression.
      {"i $", "lexical error: unknown char '36' ($), line '1'"},
      {"nosuch $", "lexical error: unknown char '36' ($), line '1'"},
      {"i + $", "lexical error: unknown char '36' ($), line '1'"},
      {"i +\n 2e", "lexical error: bad real syntax, line '2'"},
      {"i " + std::string(1024, 'x'), "lexical error: lexeme too long, line '1'"},
      {std::string(20000, '('), "memory exhausted line 1 near '('"},
  };
  for (const auto& row : rows) {
    for (const bool from_file : {false, true}) {
      Program program(node + "tel");
      Exp* e = program.prg.nil_exp;
      const int result =
          from_file ? EcExpParseFile(&program.prg, &program.symbols, file_of(row.text).get(), &e)
                    : EcExpParseString(&program.prg, &program.symbols, row.text.c_str(), &e);
      EXPECT_EQ(row.message, program.message()) << row.text.substr(0, 100);
      EXPECT_EQ(*row.message != '\0', result == 1) << row.text.substr(0, 100);
      EXPECT_EQ(result == 1, e == nullptr) << row.text.substr(0, 100);
      EXPECT_EQ(nullptr, YY_ecprg);
    }
  }
}

TEST(StandAloneExpressions, DoNotChainComparisons) {
  const std::string comparisons[] = {"=", "<>", "<", "<=", ">", ">=", "=>"};
  Program program(node + "tel");
  for (const std::string& first : comparisons) {
    for (const std::string& second : comparisons) {
      EXPECT_EQ(nullptr, program.exp("a " + first + " b " + second + " a"));
      EXPECT_EQ("syntax error line 1 near '" + second + "'", program.message());
      EXPECT_NE(nullptr, program.exp("(a " + first + " b) " + second + " a"));
      EXPECT_NE(nullptr, program.exp("a " + first + " b or a " + second + " a"));
    }
  }
}

TEST(Files, MustExist) {
  Program program;
  EXPECT_EQ("EcParse : Can't open file '/no/such'\n",
            stderr_of([&] { EXPECT_EQ(1, EcParse(&program.prg, &program.symbols, "/no/such")); }));
}

TEST(Files, KeepWhatStandsBeforeAnError) {
  Program program;
  EXPECT_EQ(1, program.read("const k : int; node n(x : int) returns (y : bool); let y = k = x; $"));
  EXPECT_EQ("const k : int; node n( x : int ) returns ( y : bool ); let y = (k)=(x); tel",
            squeezed(quarel(program)));
}

// Size and depth, on the default stack.
TEST(Files, MayBeWideAndDeep) {
  std::string names = "i1", members = "1", chain = "i1";
  for (int i = 2; i <= 10000; ++i) {
    names += ",i" + std::to_string(i);
    members += ", 1";
  }
  for (int i = 0; i < 1000000; ++i) chain += "+1";
  Program program("node n(x : int) returns (" + names + " : int); let (" + names + ") = (" +
                  members + "); tel");
  EXPECT_EQ(10000, program.ident("i10000")->definition->projection_order());
  Exp* tuple = program.ident("i1")->definition->args[0];
  EXPECT_EQ(tuple, program.ident("i10000")->definition->args[0]);
  EcType* type = program.prg.type(tuple);
  ASSERT_NE(nullptr, type);
  EXPECT_EQ(program.symbol("int"), type->member(10000));

  Exp* sum = program.exp(chain);
  ASSERT_NE(nullptr, sum) << program.message();
  EXPECT_EQ(program.prg.true_clock, program.prg.clock(sum));
  EXPECT_EQ(program.prg.int_type, program.prg.type(sum));
  PtyStream out("/dev/null", 80, nullptr);
  sum->print(&out, &program.symbols);
  sum->Iprint(&out, &program.symbols);
}
