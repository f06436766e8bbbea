// What holds for every well-formed program, tried on thousands of generated ones.

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <utility>
#include <vector>

#include "tests/allocations.h"
#include "tests/calls.h"
#include "tests/compare.h"
#include "tests/generator.h"

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr unsigned programs = 200;
#else
constexpr unsigned programs = 2000;
#endif

std::string generated(const GeneratorOptions& options) {
  std::ostringstream text;
  write_program(options, text);
  return text.str();
}

// Options of all kinds, by seed.
GeneratorOptions options_of(unsigned seed) {
  GeneratorOptions options;
  options.seed = seed;
  options.equations = 1 + static_cast<int>(seed * 7 % 30);
  options.expression_size = static_cast<int>(seed % 5 * seed % 60);
  options.long_names = seed % 7 == 0;
  options.clocks = seed % 2 == 0;
  options.types = seed % 3 != 0;
  options.functions = seed % 4 != 0;
  options.assertions = seed % 5 != 0;
  return options;
}

// Without the standard error of C stdio: it fills with reports that `current` has no clock.
class Properties : public testing::Test {
 protected:
  ~Properties() override {
    std::fclose(stderr);
    stderr = before_;
  }

 private:
  FILE* const before_ = std::exchange(stderr, std::fopen("/dev/null", "w"));
};

TEST_F(Properties, EcTextReadsBackAsTheSameProgram) {
  for (unsigned seed = 1; seed <= programs; ++seed) {
    LoadedProgram first, second;
    ASSERT_EQ(0, first.read(generated(options_of(seed)))) << seed << first.prg.error_message;
    ASSERT_TRUE(is_reloadable(&first.prg)) << seed << first.prg.error_message;
    const std::string text = ec_text(&first.prg);
    ASSERT_EQ(0, second.read(text)) << second.prg.error_message << '\n' << text;
    ASSERT_EQ("", difference(&first.prg, &second.prg)) << text;
    ASSERT_EQ(text, ec_text(&second.prg));
    ASSERT_EQ(quarel_text(&first.prg), quarel_text(&second.prg));
  }
}

// The type of `e` as its operands give it, whatever an equation says.
const EcType* found_type(EcPrg* prg, Exp* e) {
  if (e->nb_args > 0) e->type = nullptr;
  return prg->type(e);
}

TEST_F(Properties, EveryExpressionHasItsDeclaredType) {
  int equations = 0;
  for (unsigned seed = 1; seed <= programs; ++seed) {
    GeneratorOptions options = options_of(seed);
    options.tuple_equations = true;
    LoadedProgram program;
    EcPrg& prg = program.prg;
    ASSERT_EQ(0, program.read(generated(options))) << seed << prg.error_message;
    for (const IntList* list : {prg.outputs, prg.locals, prg.assertions}) {
      for (const int symbol : tamsel::values_of(list)) {
        ++equations;
        SCOPED_TRACE(prg.symbols->name(symbol));
        const IdentInfo* ident = prg.ident(symbol);
        ASSERT_NE(nullptr, ident->definition) << generated(options);
        const bool is_tuple = ident->tuple_names != nullptr;
        Exp* right = is_tuple ? ident->definition->args[0] : ident->definition;
        const EcType* found = found_type(&prg, right);
        ASSERT_NE(nullptr, found) << prg.error_message << '\n' << generated(options);
        if (is_tuple)
          found = prg.get_named_type(const_cast<EcType*>(found)->member(ident->definition->order));
        ASSERT_EQ(ident->type, found) << generated(options);
      }
    }
  }
  EXPECT_GT(equations, 10 * static_cast<int>(programs));
}

// Every prefix of a text, and the text with each byte replaced, as a file: refused or not, it
// leaves the process with what it had.
TEST_F(Properties, ALoadThatFailsAnywhereReturnsItsMemory) {
  for (unsigned seed = 1; seed <= programs / 200; ++seed) {
    GeneratorOptions options = options_of(seed);
    options.equations = 5;
    options.tuple_equations = true;
    const std::string text = generated(options);
    int refused = 0;
    for (size_t length = 0; length <= text.size(); ++length) {
      std::string broken = text;
      if (length < text.size()) broken[length] = "$,;)(e0"[length % 7];
      const long before = live_allocations;
      refused += LoadedProgram().read(text.substr(0, length)) != 0;
      LoadedProgram().read(broken);
      ASSERT_EQ(before, live_allocations) << length << " of\n" << text;
    }
    EXPECT_GE(refused, static_cast<int>(text.size()) - 10);
  }
}

TEST_F(Properties, DeletingAProgramReturnsEverything) {
  for (unsigned seed = 1; seed <= programs / 2; ++seed) {
    GeneratorOptions options = options_of(seed);
    options.tuple_equations = seed % 2 == 0;
    const std::string text = generated(options);
    std::string expression = text.substr(text.rfind("v0 = ") + 5);
    expression.resize(expression.find(';'));
    const long before = live_allocations;
    {
      LoadedProgram program;
      EXPECT_EQ(0, program.read(text));
      EXPECT_GT(live_allocations, before);
      ec_text(&program.prg);
      quarel_text(&program.prg);
      stdout_text([&] {
        Exp* e = program.prg.exp_parse(expression.c_str());
        if (e != nullptr) program.prg.print_exp(e);
      });
      program.prg.exp_parse((expression + " + nosuch").c_str());
    }
    ASSERT_EQ(before, live_allocations) << text;
  }
}

TEST(Calls, DoWhatTheirModelsSay) {
  std::mt19937 random(1);
  std::vector<uint8_t> bytes(3000);
  for (unsigned round = 0; round < 60; ++round) {
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random() >> 8);
    bytes[0] = static_cast<uint8_t>(round);  // each of the kinds in turn
    const long before = live_allocations;
    ASSERT_NO_THROW(play_calls(bytes.data(), bytes.size())) << round;
    ASSERT_EQ(before, live_allocations) << round;
  }
}

}  // namespace
