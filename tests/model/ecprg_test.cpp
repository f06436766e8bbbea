#include "model/ecprg.h"

#include <climits>
#include <cstring>
#include <tuple>

#include "tests/support.h"

static std::string names(Program& program, const IntList* list) {
  std::string text;
  for (const int symbol : tamsel::values_of(list))
    text += std::string(text.empty() ? "" : " ") + program.symbols.name(symbol);
  return text;
}

TEST(EcPrg, BeginsWithTheNamesOfItsTypesAndConstants) {
  Program program;
  const char* expected[] = {"bool", "int", "real", "true", "false", "bottom", "nil"};
  int number = 0;
  for (const char* name : expected) EXPECT_STREQ(name, program.symbols.name(++number));
  EXPECT_EQ(number, program.symbols.nb_symbols);
  EXPECT_EQ(program.prg.nil_exp, program.prg.get_bool_const(number));
  EXPECT_EQ(nullptr, program.prg.constants);
  EXPECT_EQ("", program.message());
}

TEST(EcPrg, RanksWhatItDeclares) {
  Program program(
      "type token, color = (red, green, blue);"
      "const k : token; red2 : color;"
      "function f(a : int) returns (b : int) function p(a : int) returns (b : int; c : int)"
      "function h(a : int; b : bool) returns (c : color)"
      "node n(x, y : int; z : bool) returns (o, q : int); var l, m : bool; let tel");
  const struct {
    const char* name;
    IdentMode mode;
    ExpNature leaf;
    bool defined;
    int order, value;
  } rows[] = {
      // clang-format off
      {"red", ENUM_CONST_mode, CONST_n, true, 2, 0},  // ranked from the last to the first
      {"green", ENUM_CONST_mode, CONST_n, true, 1, 1},
      {"blue", ENUM_CONST_mode, CONST_n, true, 0, 2},
      {"k", USR_CONST_mode, CONST_n, true, -1, 3}, {"red2", USR_CONST_mode, CONST_n, true, -1, 4},
      {"x", INPUT_mode, INPUT_n, true, 0, 0}, {"z", INPUT_mode, INPUT_n, true, 2, 0},
      {"q", OUTPUT_mode, ECREF_n, false, 1, 0}, {"m", LOCAL_mode, ECREF_n, false, 1, 0},
      // clang-format on
  };
  for (const auto& row : rows) {
    const IdentInfo* ident = program.ident(row.name);
    ASSERT_NE(nullptr, ident) << row.name;
    const Exp* leaf = ident->ident_exp;
    EXPECT_EQ(std::make_tuple(row.mode, row.leaf, row.order, row.value),
              std::make_tuple(ident->mode, leaf->nature, ident->order, ident->value))
        << row.name;
    EXPECT_EQ(row.defined ? leaf : nullptr, ident->definition) << row.name;
  }
  EcType* color = program.prg.get_named_type(program.symbol("color"));
  EXPECT_EQ(2, color->number);
  EXPECT_EQ(program.ident("blue"), color->enum_const(0));
  EXPECT_EQ("red2", names(program, color->constants));
  EXPECT_EQ("red green blue k red2", names(program, program.prg.constants));
  EXPECT_EQ("f h", names(program, program.prg.functions));
  EXPECT_EQ("p", names(program, program.prg.tuple_functions));
  EXPECT_EQ("a int b bool", names(program, program.prg.function(program.symbol("h"))->params));
}

TEST(EcPrg, MakesAConstantOnceAndReadsItsValue) {
  const struct {
    const char* text;
    int value;
  } rows[] = {{"0012", 12}, {"2147483648", INT_MIN}, {"99999999999999999999", -1}};  // cut to int
  Program program;
  for (const auto& row : rows) {
    Exp* leaf = program.prg.get_int_const(program.symbol(row.text));
    EXPECT_EQ(leaf, program.prg.get_int_const(program.symbol(row.text)));
    EXPECT_EQ(row.value, program.ident(row.text)->value) << row.text;
    EXPECT_EQ(program.prg.true_clock, leaf->clock);
  }
  program.prg.get_real_const(program.symbol("2.5E-1"));
  const float quarter = 0.25f;
  EXPECT_EQ(0, std::memcmp(&quarter, &program.ident("2.5E-1")->value, sizeof quarter));
  EXPECT_EQ(nullptr, program.prg.constants);
}

TEST(EcPrg, SaysWhichTypeIsUnknownOrThereTwice) {
  Program program;
  EXPECT_EQ(nullptr, program.prg.define_type(&program.prg.true_clock, 1));
  EXPECT_EQ("EcPrg: type 'true' undeclared", program.message());
  program.prg.add_usr_type(program.symbol("bool"));
  EXPECT_EQ("type 'bool' already declared", program.message());
  EXPECT_EQ(nullptr, program.prg.define_type(nullptr));
}

TEST(EcType, ReportsQuestionsToTheWrongKind) {
  EcType type(1);
  EXPECT_EQ("EcType::member() called on non tuple type\n",
            stderr_of([&] { EXPECT_EQ(0, type.member(1)); }));
  EXPECT_EQ("EcType::enum_const(int) called on non enumerate type",
            stderr_of([&] { EXPECT_EQ(nullptr, type.enum_const(0)); }));
}

TEST(SymbolInfoArray, GrowsToAnyIndex) {
  SymbolInfoArray infos(200, 0);
  infos[250] = new SymbolInfo;
  EXPECT_EQ(251, infos.size());
  EXPECT_EQ(nullptr, infos[5000]);
}

TEST(EcPrg, KeepsTheFirst1023CharactersOfAMessage) {
  Program program;
  const std::string text(2000, 'x');
  EXPECT_EQ(1, program.prg.error("%s", text.c_str()));
  EXPECT_EQ(text.substr(0, 1023), program.message());
}
