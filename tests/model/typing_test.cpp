#include <map>
#include <sstream>
#include <vector>

#include "tests/support.h"

static const char declarations[] =
    "type token, color = (red, green);"
    "function f(n : int) returns (r : real)"
    "function g(n : int; r : real) returns (b : bool)"
    "function two(n : int) returns (b : bool; r : real)"
    "node n(b : bool; i : int; x : real; t : token; c : color; (s : int) when b)"
    "returns (o : int); let tel";

// "int", or "int*bool" for a tuple.
static std::string name_of(Program& program, EcType* type) {
  if (!type->is_tuple) return program.prg.type_name(type, "?");
  EXPECT_LT(1, length(type->members));
  std::string text;
  for (const int member : tamsel::values_of(type->members))
    text += (text.empty() ? "" : "*") + std::string(program.symbols.name(member));
  return text;
}

// Stands for the grammar's own choice of the kind.
constexpr int as_read = -1;

// Every "?" of a text stands in turn for an operand of each type: b bool, i int, x real, t
// abstract, c enumerated, p a pair. `accepted` lists the operands that are good with the type of
// the result; all others are refused with `message`. Where the grammar cannot make a kind, a node
// of the kind `built` gets the operands.
struct Rule {
  const char* text;
  const char* accepted;
  std::string message;
  const char* types = "bixtcp";
  int built = as_read;
};

static std::string bad(const char* what) {
  return std::string("type error: bad '") + what + "' operands";
}
static const char unknown[] = "type error: unexpected '$s'";
static const char any[] = "b:bool i:int x:real t:token c:color p:int*bool";
static const char any_pair[] = "bb:bool ii:bool xx:bool tt:bool cc:bool pp:bool";

// clang-format off
static const Rule rules[] = {
    {"", "", unknown, "", ERROR_n}, {"", "", unknown, "", CONST_n}, {"", "", unknown, "", INPUT_n},
    {"", "", unknown, "", ECREF_n}, {"", "", unknown, "", MODELREF_n}, {"", "", unknown, "", 40},
    {"", "", "", "", 41}, {"12", ":int", ""}, {"1e3", ":real", ""}, {"false", ":bool", ""},
    {"red", ":color", ""}, {"?", any, ""}, {"pre ?", any, ""}, {"current ?", any, ""},
    {"?", any, "", "bixtcp", LAST_n}, {"?", "b:bool", bad("INIT_n"), "bixtcp", INIT_n},
    {"not ?", "b:bool", bad("NOT_n")},
    {"- ?", "i:int x:real", "type error: bad 'UMINUS_n' operand"},
    {"real ?", "i:real", "type error: bad 'INT2REAL_n' operand"},
    {"int ?", "x:int", "type error: bad 'REAL2INT_n' operand"},
    {"? -> ?", "bb:bool ii:int xx:real tt:token cc:color pp:int*bool", bad("ARROW_n")},
    {"? when ?", "bb:bool ib:int xb:real tb:token cb:color pb:int*bool", bad("WHEN_n")},
    {"? and ?", "bb:bool", bad("AND_n")}, {"? or ?", "bb:bool", bad("OR_n")},
    {"? xor ?", "bb:bool", bad("XOR_n")}, {"? => ?", "bb:bool", bad("IMPL_n")},
    {"? = ?", any_pair, bad("EQUAL_n")}, {"? <> ?", any_pair, bad("NEQ_n")},
    {"? >= ?", "ii:bool xx:bool", bad("GTE_n")}, {"? > ?", "ii:bool xx:bool", bad("GT_n")},
    {"? <= ?", "ii:bool xx:bool", bad("LTE_n")}, {"? < ?", "ii:bool xx:bool", bad("LT_n")},
    {"? div ?", "ii:int", bad("DIV_n")}, {"? mod ?", "ii:int", bad("MOD_n")},
    {"? - ?", "ii:int xx:real", bad("MINUS_n")}, {"? + ?", "ii:int xx:real", bad("PLUS_n")},
    {"? / ?", "ii:int xx:real", bad("SLASH_n")}, {"? * ?", "ii:int xx:real", bad("TIMES_n")},
    {"? ** ?", "ii:int xx:real", bad("POWER_n")},
    {"if ? then ? else ?", "bbb:bool bii:int bxx:real btt:token bcc:color bpp:int*bool",
     bad("IF_n")},
    {"(?, ?)", "bb:bool*bool bi:bool*int ib:int*bool ii:int*int", "", "bi"},
    {"(?, x)", "", bad("TUPLE_n"), "p"}, {"(x, ?)", "", bad("TUPLE_n"), "p"},
    {"(i, two(i))", "", bad("TUPLE_n")}, {"((i, b), not i)", "", bad("TUPLE_n")}, {"", "", bad("TUPLE_n"), "", TUPLE_n},
    {"?", "b:bool i:int x:real t:token c:color", bad("TUPLE_n"), "bixtcp", TUPLE_n},
    {"nor(?)", "b:bool", bad("NOR_n")}, {"nor(?, ?, ?)", "bbb:bool", bad("NOR_n")},
    {"", ":bool", "", "", NOR_n}, {"#(?, ?, ?)", "bbb:bool", bad("DIESE_n")},
    {"?", "", "sorry, type of 'RCL_n' not yet implemented", "bixtcp", RCL_n},
    {"?", "", "sorry, type of 'ICL_n' not yet implemented", "bixtcp", ICL_n},
    {"?", "", "sorry, type of 'PROJ_n' not yet implemented", "bixtcp", PROJ_n},
    {"f(?)", "i:real", bad("f")}, {"f(?, ?)", "", bad("f"), "bixtc"},
    {"g(?, ?)", "ix:bool", bad("g"), "bixtc"}, {"two(?)", "i:bool*real", bad("two")},
    {"h(?)", "", "error: undeclared function 'h'"}, {"i(?)", "", "error: undeclared function 'i'"},
    // The first message stays, from the inside out and from left to right.
    {"b -> not (i + (x and b))", "", bad("AND_n")}, {"(not i) + (x and b)", "", bad("NOT_n")},
    {"if i + x then - b else h(t)", "", bad("PLUS_n")}, {"f(h(i + x))", "", bad("PLUS_n")},
};
// clang-format on

static std::string operand(char type) { return type == 'p' ? "(i, b)" : std::string(1, type); }

static std::string outcome(Program& program, const Rule& rule, const std::string& operands) {
  program.prg.error_message[0] = '\0';
  Exp* e;
  if (rule.built == as_read) {
    std::string text = rule.text;
    for (const char c : operands) text.replace(text.find('?'), 1, operand(c));
    e = program.exp(text);
  } else {
    std::vector<Exp*> args;
    for (const char c : operands) args.push_back(program.exp(operand(c)));
    const auto kind = static_cast<ExpNature>(rule.built);
    e = program.prg.enter(new Exp(kind, static_cast<int>(args.size()), args.data()));
  }
  if (e == nullptr) return "not read: " + program.message();
  EcType* type = program.prg.type(e);
  EXPECT_EQ(type, e->type);
  return type != nullptr ? name_of(program, type) : program.message();
}

TEST(Typing, FollowsTheRuleOfEachKind) {
  Program program(declarations);
  for (const Rule& rule : rules) {
    std::map<std::string, std::string> accepted;
    std::istringstream pairs(rule.accepted);
    for (std::string pair; pairs >> pair;)
      accepted[pair.substr(0, pair.find(':'))] = pair.substr(pair.find(':') + 1);

    std::vector<std::string> all = {""};  // the choices of operands
    for (const char* c = rule.text; *c != '\0'; ++c) {
      std::vector<std::string> longer;
      for (const std::string& operands : all)
        for (const char type : std::string(rule.types)) longer.push_back(operands + type);
      if (*c == '?') all.swap(longer);
    }
    testing::internal::CaptureStderr();
    for (const std::string& operands : all) {
      const auto good = accepted.find(operands);
      EXPECT_EQ(good != accepted.end() ? good->second : rule.message,
                outcome(program, rule, operands))
          << rule.text << " with " << operands << " as " << rule.built;
    }
    testing::internal::GetCapturedStderr();
  }
}

TEST(Typing, ReportsANestedTupleAsMisuse) {
  Program program(declarations);
  EXPECT_EQ("Exp::function_name called on 'TUPLE_n' operator",
            stderr_of([&] { program.prg.type(program.exp("((i, b), x)")); }));
}

TEST(Typing, IsDoneOncePerNode) {
  Program program(declarations);
  Exp* sum = program.exp("i + 1");
  EcType* type = program.prg.type(sum);
  sum->args()[0] = program.leaf("b");
  EXPECT_EQ(type, program.prg.type(sum));
  EXPECT_EQ(program.prg.type(program.exp("(i, b)")), program.prg.type(program.exp("(1, true)")));

  // Shared nodes: without a memory this would take 2^64 steps, and so it would after an error.
  for (const bool good : {true, false}) {
    Exp* e = good ? program.leaf("i") : program.exp("i + b");
    for (int i = 0; i < 64; ++i) e = program.prg.enter(new Exp(PLUS_n, e, e));
    EXPECT_EQ(good ? program.prg.int_type : nullptr, program.prg.type(e));
  }
}

TEST(Clocks, FollowTheFirstOperand) {
  const char unnamed[] = "The clock operand of 'when' operator must be named";
  const char current[] = "EcPrg::clock 'CURRENT_n' is not implemented";
  const struct {
    const char *text, *clock;  // null: the one below
    int number;
    const char* report;
  } rows[] = {
      // clang-format off
      {"i", "true", 0, ""}, {"1.5", "true", 0, ""}, {"s", "b", 0, ""}, {"pre s", "b", 0, ""},
      {"i + s", "true", 0, ""}, {"s + i", "b", 0, ""}, {"if b then s else s", "true", 0, ""},
      {"if s = 1 then i else i", "b", 0, ""}, {"f(s)", "b", 0, ""}, {"(s, i)", "b", 0, ""},
      {"i when b", "b", 0, ""}, {"s when true", "true", 0, ""},
      {"- pre (i when b) + i", "b", 0, ""}, {"i when not b", nullptr, 0, unnamed},
      {"pre (i when (b and b)) -> i", nullptr, 0, unnamed},
      {"current s", nullptr, -1, current}, {"pre current s + i", nullptr, -1, current},
      // clang-format on
  };
  for (const auto& row : rows) {
    Program program(declarations);
    Exp* e = program.exp(row.text);
    const int expected = row.clock != nullptr ? program.symbol(row.clock) : row.number;
    EXPECT_EQ(row.report, stderr_of([&] { EXPECT_EQ(expected, program.prg.clock(e)); }))
        << row.text;
    EXPECT_EQ(expected, e->clock) << row.text;
    // What is known is not computed again, and not reported again.
    if (expected != -1 && e->nb_args > 0) e->args()[0] = program.exp("current i");
    EXPECT_EQ(expected == -1 ? row.report : "",
              stderr_of([&] { EXPECT_EQ(expected, program.prg.clock(e)); }))
        << row.text;
  }
  Program program(declarations);
  Exp* nothing = program.prg.enter(new Exp(NOR_n, 0, static_cast<Exp**>(nullptr)));
  EXPECT_EQ("EcPrg::clock 'NOR_n' is not implemented",
            stderr_of([&] { EXPECT_EQ(-1, program.prg.clock(nothing)); }));
}
