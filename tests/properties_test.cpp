// What holds for every well-formed program, tried on thousands of generated ones.

#include <gtest/gtest.h>

#include <random>
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

// The type of `e` as its operands give it, whatever an equation says.
const EcType* found_type(EcPrg* prg, Exp* e) {
  if (e->nb_args > 0) e->type = nullptr;
  return prg->type(e);
}

TEST_F(Properties, EveryExpressionHasItsDeclaredType) {
  int equations = 0;
  for (unsigned seed = 1; seed <= programs; ++seed) {
    const GeneratorOptions options = options_of(seed);
    LoadedProgram program;
    EcPrg& prg = program.prg;
    ASSERT_EQ(0, program.read(program_text(options))) << seed << prg.error_message;
    for (const IntList* list : {prg.outputs, prg.locals, prg.assertions}) {
      for (const int symbol : tamsel::values_of(list)) {
        ++equations;
        SCOPED_TRACE(prg.symbols->name(symbol));
        const IdentInfo* ident = prg.ident(symbol);
        ASSERT_NE(nullptr, ident->definition) << program_text(options);
        const bool is_tuple = ident->tuple_names != nullptr;
        Exp* right = is_tuple ? ident->definition->args()[0] : ident->definition;
        const EcType* found = found_type(&prg, right);
        ASSERT_NE(nullptr, found) << prg.error_message << '\n' << program_text(options);
        if (is_tuple)
          found =
              prg.get_named_type(const_cast<EcType*>(found)->member(ident->definition->order()));
        ASSERT_EQ(ident->type, found) << program_text(options);
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
    const std::string text = program_text(options);
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
    const std::string text = program_text(options_of(seed));
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
