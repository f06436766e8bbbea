#include "model/ecprg.h"

#include <climits>
#include <cstring>

#include "tests/support.h"

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
  EXPECT_EQ("EcPrg: a type needs a name", program.message());
}

TEST(EcType, ReportsQuestionsToTheWrongKind) {
  EcType type(1);
  EXPECT_EQ("EcType::member() called on non tuple type\n",
            stderr_of([&] { EXPECT_EQ(0, type.member(1)); }));
  EXPECT_EQ("EcType::enum_const(int) called on non enumerate type",
            stderr_of([&] { EXPECT_EQ(nullptr, type.enum_const(0)); }));
}

TEST(EcPrg, KeepsTheFirst1023CharactersOfAMessage) {
  Program program;
  const std::string text(2000, 'x');
  EXPECT_EQ(1, program.prg.error("%s", text.c_str()));
  EXPECT_EQ(text.substr(0, 1023), program.message());
}
