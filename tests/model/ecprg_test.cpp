#include "model/ecprg.h"

#include <climits>
#include <cstring>
#include <tuple>

#include "tests/support.h"

static std::string names(Program& program, const IntList* list) {
  std::string text;
  for (; list != nullptr; list = list->next)
    text += std::string(text.empty() ? "" : " ") + program.symbols.name(list->value);
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
      "function p2(a : int) returns (b : int; c : int)"
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
  EXPECT_EQ("p p2", names(program, program.prg.tuple_functions));
  for (const char* name : {"f", "h", "p", "p2"})
    EXPECT_EQ(*name == 'h' || name[1] == '2', program.prg.function(program.symbol(name))->index)
        << name;
  EXPECT_EQ("a int b bool", names(program, program.prg.function(program.symbol("h"))->params));
  // What stands nowhere in its enumeration is a constant all the same.
  for (const int rank : {-1, 0, 3})
    program.prg.add_enum_const(program.symbol("late"), rank == 0 ? nullptr : color, 1, rank);
  EXPECT_EQ(3, color->nb_enum);
  EXPECT_EQ(program.ident("blue"), color->enum_const(0));
  EXPECT_EQ(7, program.ident("late")->value);
}

TEST(EcPrg, PutsOutputsInFrontWhereAsked) {
  Program program;
  for (const char* name : {"+a", "<b", "<c", "+d"})
    program.prg.add_output(program.symbol(name + 1), program.prg.int_type, program.prg.true_clock,
                           *name == '<');
  EXPECT_EQ("c b a d", names(program, program.prg.outputs));
  EXPECT_EQ(2, program.ident("c")->order);
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

TEST(EcPrg, KeepsOneObjectForAType) {
  Program program;
  EcPrg& prg = program.prg;
  const int pair[] = {program.symbol("int"), program.symbol("bool")};
  auto* list = new IntList(pair, 2);
  EcType* type = prg.define_type(list);
  EXPECT_EQ(list, type->members);  // taken
  IntList again(pair, 2), single(pair, 1), unknown(&prg.true_clock, 1);
  EXPECT_EQ(type, prg.define_type(&again));
  EXPECT_EQ(type, prg.define_type(pair, 2));
  EXPECT_EQ(prg.int_type, prg.define_type(&single));
  EXPECT_EQ(pair[1], type->member(2));
  EXPECT_EQ(0, type->member(3));

  const int known = prg.nb_user_types;
  EXPECT_EQ(nullptr, prg.define_type(&unknown));
  EXPECT_EQ("EcPrg: type 'true' undeclared", program.message());
  prg.add_usr_type(pair[1], &again);
  EXPECT_EQ("type 'bool' already declared", program.message());
  EXPECT_EQ(known, prg.nb_user_types);
  EXPECT_EQ(nullptr, prg.define_type(nullptr));
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
