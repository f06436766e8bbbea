#include <fstream>
#include <sstream>
#include <utility>

#include "tests/support.h"

static const struct {
  std::string name;
  bool reads_back = true;  // tuple equations are written without their parentheses
} examples[] = {{"counter"},          {"edge"},         {"elevator", false}, {"filter", false},
                {"operators", false}, {"plant", false}, {"traffic"},         {"thermostat"},
                {"watchdog"}};

static std::string contents(const std::string& path) {
  std::stringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

static std::string ec(Program& program, unsigned expected_result = 0) {
  return stdout_text([&] { EXPECT_EQ(expected_result, program.prg.print_ec()); });
}

TEST(PrintedPrograms, AreTheExamplesExpected) {
  for (const auto& example : examples) {
    Program program, again;
    const std::string path = SOURCE_DIR "/examples/" + example.name + ".ec";
    ASSERT_EQ(0, EcParse(&program.prg, &program.symbols, path.c_str())) << path;
    EXPECT_EQ("", program.message()) << path;
    const std::string expected = SOURCE_DIR "/examples/expected/" + example.name;
    EXPECT_EQ(contents(expected + ".quarel"), quarel_text(&program.prg)) << path;
    const std::string text = ec(program);
    EXPECT_EQ(contents(expected + ".ectext"), text) << path;
    EXPECT_EQ(example.reads_back ? 0 : 1, again.read(text)) << path << again.message();
  }
}

TEST(PrintedPrograms, StopOrGoOnAtAnUndeclaredFunction) {
  Program program(
      "function f(a : int) returns (b : int); function h(a : int) returns (b : int);"
      "function two(a : int) returns (b : int; c : int);"
      "node n((x : int) when c) returns (y : int); let y = x; tel");
  append_list(program.prg.functions->next, program.symbol("unused"));
  program.prg.functions->value = program.symbol("f");
  program.prg.functions->next->value = program.symbol("100%s");
  EXPECT_EQ("\nfunction f (a : int)\nreturns (b : int);\n", ec(program, 1));
  EXPECT_EQ("undeclared function `100%s`", program.message());
  program.prg.error_message[0] = '\0';
  EXPECT_EQ(
      "function f (a : int) returns (b : int); function two (a : int) returns (b : int; c : int); "
      "node n( ( x : int ) when c ) returns ( y : int ); let y = x; tel",
      squeezed(quarel_text(&program.prg)));
  EXPECT_EQ("undeclared function `100%s`", program.message());
}

// Declared one by one, as editing does.
TEST(PrintedPrograms, MayLackAlmostEverything) {
  Program program;
  EcPrg& prg = program.prg;
  prg.add_usr_func(program.symbol("f"), prg.int_type, prg.int_type, nullptr, nullptr);
  prg.add_output(program.symbol("%d"), prg.int_type, -1, 0);
  // Names that are declared again as something else stay where they were.
  prg.add_output(program.symbol("g"), prg.int_type, prg.true_clock, 0);
  prg.add_assertion(prg.true_exp);
  for (const char* name : {"g", "__assert_0"})
    prg.add_usr_func(program.symbol(name), prg.int_type, prg.int_type, nullptr, nullptr);
  delete std::exchange(prg.functions->next, nullptr);
  EXPECT_EQ(
      "\nfunction f ()\nreturns ();\n\nnode ?( \n) returns (\n   ( %d : int ) when ?;\n"
      "   ( g : ? ) when ?\n);\n\nlet\ntel.",
      ec(program));
}

// The two writers cut a clock into different pieces.
TEST(PrintedPrograms, BreakBetweenPieces) {
  const std::string name(62, 'x');
  Program program("node n((" + name + " : int) when c) returns (y : int); let tel");
  const auto has = [](const std::string& text, const std::string& part) {
    EXPECT_NE(std::string::npos, text.find(part)) << text;
  };
  has(quarel_text(&program.prg), "   ( " + name + " : int )\n when c\n)");
  has(ec(program), "   ( " + name + " : int\n ) when c\n)");
}

TEST(PrintedPrograms, ListDeclarationsInThreeWays) {
  Program program("node n(w : bool; (x : int) when w) returns (y : int); let y = x; tel");
  const auto listed = [&](void (EcPrg::*print)(IntList*, PtyStream*)) {
    return squeezed(
        written([&](PtyStream* out) { (program.prg.*print)(program.prg.inputs, out); }));
  };
  EXPECT_EQ("w : bool; x : int", listed(&EcPrg::print_ident_list));
  EXPECT_EQ("w : bool; ( x : int ) when w", listed(&EcPrg::print_clocked_ident_list));
  EXPECT_EQ("( w : bool ) when true; ( x : int ) when w",
            listed(&EcPrg::print_all_clocked_ident_list));
  program.prg.add_assertion(program.leaf("w"));
  EXPECT_EQ("y = x; assert w;", squeezed(written([&](PtyStream* out) {
              program.prg.print_ident_def(program.prg.outputs, out);
              program.prg.print_assert_def(out);
            })));
}

// Leaves hold the names that they had at first, which is not to be seen.
TEST(PrintedPrograms, CallThingsAsTheTableDoes) {
  const struct {
    std::string equation;
    std::function<void(Program&)> change;
  } rows[] = {
      {"long_er = short + long_er", [](Program&) {}},
      {"long_er = a + long_er",
       [](Program& p) { p.symbols.swap_names(p.symbol("a"), p.symbol("short")); }},
      {"long_er = i + long_er", [](Program& p) { p.symbols.replace_name(p.symbol("short"), "i"); }},
      {"long_er = long_er + long_er",
       [](Program& p) { p.leaf("short")->ident = p.symbol("long_er"); }},
      {"long_er = short + long_er", [](Program& p) { p.leaf("short")->put_info(1, &p); }},
      {"long_er = new + long_er",  // the symbol goes, and its number to another name
       [](Program& p) {
         const int known = p.symbols.nb_symbols;
         p.prg.add_input(p.symbol("gone"), p.prg.int_type, p.prg.true_clock);
         p.prg.define_ident(p.symbol("long_er"), p.exp("gone + long_er"));
         p.symbols.cut_back(known);
         p.symbol("new");
       }},
      {"long_er = late + long_er",  // declared before the table had it
       [](Program& p) {
         p.prg.add_input(p.symbols.nb_symbols + 1, p.prg.int_type, p.prg.true_clock);
         p.symbol("late");
         p.prg.define_ident(p.symbol("long_er"), p.exp("late + long_er"));
       }},
      {"s10 = s9 + s10",
       [](Program& p) {
         static SymbolTable other;
         for (int i = 1; i <= p.symbols.nb_symbols; ++i) other.add("s%d", i);
         p.prg.symbols = &other;
       }},
  };
  for (const auto& row : rows) {
    Program program(
        "node n(short : int) returns (long_er : int); let long_er = short + long_er; tel");
    row.change(program);
    const std::string text =
        squeezed(written([&](PtyStream* out) { program.prg.print_source(out); }));
    EXPECT_NE(std::string::npos, text.find("let " + row.equation + "; tel")) << text;
  }
}
