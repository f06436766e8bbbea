// Programs that are well formed and declare something senseless: what is reported, what is kept.

#include "tests/support.h"

TEST(Holes, InDeclarations) {
  const struct {
    const char *text, *message, *quarel;
  } rows[] = {
      {"node n(x : nosuch) returns (y : int); let y = 1; tel", "EcPrg: type 'nosuch' undeclared",
       "node n( x : ? ) returns ( y : int ); let y = 1; tel"},
      {"const k : t1; node n(x : int) returns (y : t2); var z : t3; let y = k; tel",
       "EcPrg: type 't3' undeclared",
       "const k : ?; node n( x : int ) returns ( y : ? ); var z : ?; let y = k; tel"},
      {"type t, t = (c, d); node n(x : t) returns (y : t); let y = c; tel", "undeclared ident 'c'",
       "type t; node n( x : t ) returns ( y : t ); let tel"},
      {"function f(a : t; b : int) returns (c : int) node n(x : int) returns (y : int); let tel",
       "EcPrg: type 't' undeclared",
       "function f (a : t; b : int) returns (c : int); node n( x : int ) returns ( y : int ); let "
       "tel"},
      // The later of two declarations counts.
      {"type t = (c, d); node n(c : int) returns (y : int); let y = c; tel", "",
       "type t; const c : int; d : t; node n( c : int ) returns ( y : int ); let y = c; tel"},
      {"node n(x, x : int) returns (x : bool); let x = true; tel", "",
       "node n( x : bool; x : bool ) returns ( x : bool ); let x = true; tel"},
      {"const f : int; function f(a : int) returns (b : int) node n(x : int) returns (y : int); "
       "let y = f; tel",
       "undeclared ident 'f'",
       "const f : ?; function f (a : int) returns (b : int); node n( x : int ) returns ( y : int "
       "); let tel"},
      {"function f(a : int) returns (b : int) node n(f : int) returns (y : int); let y = f; tel",
       "", "node n( f : int ) returns ( y : int ); let y = f; tel"},
      // A clock need not be declared.
      {"node n((x : int) when c) returns (y : int); let y = x; tel", "",
       "node n( ( x : int ) when c ) returns ( y : int ); let y = x; tel"},
  };
  for (const auto& row : rows) {
    Program program;
    EXPECT_EQ(0, program.read(row.text)) << row.text;
    EXPECT_EQ(row.message, program.message()) << row.text;
    EXPECT_EQ(row.quarel, squeezed(quarel_text(&program.prg))) << row.text;
  }
}

TEST(Holes, InEquations) {
  const char nosuch[] = "undeclared ident 'nosuch'", y_again[] = "ident 'y' is already defined",
             z_again[] = "ident 'z' is already defined";
  const struct {
    const char *body, *message, *written;
  } rows[] = {
      // clang-format off
      {"nosuch = x; y = 1;", nosuch, "y = 1; "}, {"y = 1 + nosuch; z = 2;", nosuch, "z = 2; "},
      {"two = 1; y = two;", "undeclared ident 'two'", ""},
      {"y = 1; y = nosuch;", nosuch, "y = 1; "}, {"(y, nosuch) = two(x);", nosuch, ""},
      {"assert nosuch; assert x = 1;", nosuch, "assert (x)=(1); "},
      {"(y, z) = two(nosuch); (z, w) = two(x);", nosuch, "z, w = two(x); "},
      {"(y, z) = nosuch(x);", "", "y, z = nosuch(x); "}, {"y = 1; y = 2;", y_again, "y = 2; "},
      {"y = 1; (z, y) = two(x); z = 3;", y_again, "y = 1; z = 3; "},
      {"(y, z) = two(x); y = 1;", y_again, "y, z = two(x); "},
      {"(z, w) = two(x); (y, z) = two(1);", z_again, "z, w = two(x); "},
      {"(y, y) = two(x); y = 1;", y_again, "y = 1; "}, {"(y, z, w, z) = two(x);", z_again, ""},
      // The generated name of an assertion is no identifier.
      {"assert x = 1; y = __assert_0;", "undeclared ident '__assert_0'", "assert (x)=(1); "},
      {"assert x = 1; (y, __assert_0) = two(x);", "undeclared ident '__assert_0'",
       "assert (x)=(1); "},
      {"assert x = 1; assert x = 2; y = __assert_2;", "undeclared ident '__assert_2'",
       "assert (x)=(1); assert (x)=(2); "},
      // clang-format on
  };
  for (const auto& row : rows) {
    Program program;
    EXPECT_EQ(0, program.read("function two(n : int) returns (p : int; q : int)"
                              "node n(x : int) returns (y : int); var z, w : int; let " +
                              std::string(row.body) + " tel"));
    EXPECT_EQ(row.message, program.message()) << row.body;
    const std::string text = squeezed(quarel_text(&program.prg));
    EXPECT_EQ("let " + std::string(row.written) + "tel", text.substr(text.find("let ")))
        << row.body;
  }
}

TEST(Holes, InTypesReachExpressions) {
  const struct {
    const char *text, *message;
  } rows[] = {
      {"u", "type error: unexpected '$s'"},
      {"f(i)", "type error: bad 'f' operands"},
      {"g(i, i)", "type error: bad 'g' operands"},
      {"h(i)", "function 'h' has no known result type"},
  };
  Program program;
  program.read(
      "function f(a : t) returns (b : int) function g(a : int; b : t) returns (c : int)"
      "function h(a : int) returns (b : t) node n(u : t; i : int) returns (y : int); let tel");
  for (const auto& row : rows) {
    program.prg.error_message[0] = '\0';
    EXPECT_EQ(nullptr, program.prg.exp_parse(row.text)) << row.text;
    EXPECT_EQ(row.message, program.message()) << row.text;
  }
}

// An equation or assertion gives its type and clock to its right side; but leaves are shared.
TEST(Equations, LeaveLeavesAsDeclared) {
  Program program(
      "node n(x : int; k : real; c : bool) returns ((y : real) when c; (s : int) when c);"
      "let y = x; s = x + 1; assert k; tel");
  const int base = program.prg.true_clock;
  EXPECT_EQ(program.prg.int_type, program.leaf("x")->type);
  EXPECT_EQ(base, program.leaf("x")->clock);
  EXPECT_EQ(program.prg.real_type, program.leaf("k")->type);
  EXPECT_EQ(program.symbol("c"), program.ident("s")->definition->clock);
  EXPECT_EQ(base, program.ident("__assert_0")->clock);
}
