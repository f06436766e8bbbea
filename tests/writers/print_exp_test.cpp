#include <fstream>
#include <vector>

#include "tests/support.h"

static const char declarations[] =
    "function f(p : int; q : int) returns (r : int) function g(p : int) returns (r : int)"
    "function two(p : int) returns (q : int; r : int)"
    "node n(a, b, c, d : bool; i, j, k, n : int; x, y, z : real) returns (o : int); let tel";

// Each line has a text and its fully parenthesised form, after a tab.
TEST(PrintedExpressions, ShowHowTheTextWasRead) {
  Program program(declarations);
  std::ifstream table(SOURCE_DIR "/tests/data/precedence.tsv");
  std::string line;
  std::getline(table, line);
  int rows = 0;
  for (; std::getline(table, line); ++rows) {
    const size_t tab = line.find('\t');
    Exp* e = program.prg.exp_parse(line.substr(0, tab).c_str());
    ASSERT_NE(nullptr, e) << line << "\n" << program.message();
    const std::string printed = stdout_text([&] { program.prg.print_exp(e); });
    EXPECT_EQ(line.substr(tab + 1), printed) << line;
    Exp* again = program.exp(printed);
    ASSERT_NE(nullptr, again) << printed;
    EXPECT_EQ(printed, written([&](PtyStream* out) { again->print(out, &program.symbols); }));
  }
  EXPECT_EQ(167, rows);
}

namespace {

using Printer = void (Exp::*)(PtyStream*, SymbolTable*);

// A program and short words for nodes that it owns.
struct Workshop : Program {
  Workshop() : Program(declarations) {}
  Exp* operator()(const char* text) { return exp(text); }
  template <class... Operands>
  Exp* node(ExpNature kind, Operands... operands) {
    return prg.enter(new Exp(kind, operands...));
  }
  Exp* call(const char* function, std::vector<Exp*> operands) {
    Exp* e = node(CALL_n, static_cast<int>(operands.size()), operands.data());
    e->set_order(symbol(function));
    return e;
  }
  Exp* sum(std::vector<int> factors, int constant) {
    Exp* operands[] = {leaf("i"), leaf("j"), exp("i + j")};
    return node(ICL_n, static_cast<int>(factors.size()), operands, factors.data(), constant);
  }
  Exp* sum(std::vector<Fract> factors, Fract constant) {
    Exp* operands[] = {leaf("x"), leaf("y"), exp("x + y")};
    return node(RCL_n, static_cast<int>(factors.size()), operands, factors.data(), constant);
  }
  std::string printed(Exp* e, Printer print) {
    return written([&](PtyStream* out) { (e->*print)(out, &symbols); });
  }
  Exp* nameless(ExpNature kind) { return node(kind, 0, prg.bool_type); }
};

}  // namespace

// Nodes that no text makes. The reports are those of the plain and of the guarded printers.
TEST(PrintedExpressions, CoverWhatCallersBuild) {
  using Q = Fract;
  Workshop w;
  const struct {
    Exp* e;
    const char* printed;
    const char* report = "";
    const char* guarded_report = "";
  } rows[] = {
      // clang-format off
      {w.node(LAST_n, w("i")), "last(i)"}, {w.node(INIT_n, w("a and b")), "init((a)and(b))"},
      {w.node(MODELREF_n, w.symbol("m"), w.prg.int_type), "m"},
      {w.node(PROJ_n, w("two(i)"), 2), "proj(2)(two(i))"},
      {w.call("f", {}), "f()"}, {w.call("f", {w("(i, - j)")}), "f(i, -(j))"},
      {w.call("f", {w("(i, j)"), w("- k")}), "f(i, j)"},
      {w.call("f", {w("k"), w("(i, j)")}), "f(k, (i, j))"},
      {w.call("g", {w("pre (i, j)")}), "g(pre((i, j)))"},
      // Integer factors keep their sign after a minus.
      {w.sum({1, -2}, -3), "i --2*j -3"}, {w.sum({-1, 1, 0}, 3), "-i +j +0*(i)+(j) +3"},
      {w.sum({Q(2), Q(1), Q(-1, 2)}, 3), "2*x +y -1/2*(x)+(y) +3"},
      {w.sum({Q(-1), Q(-1), Q(3, 2)}, Q(-1, 2)), "-x -y +3/2*(x)+(y) -1/2"},
      {w.sum(std::vector<int>(), 0), "0"}, {w.sum(std::vector<Q>(), Q(3, 2)), "3/2"},
      {w.node(XOR_n, static_cast<Exp*>(nullptr), w("a")), "()xor(a)"},
      // clang-format on
      // What cannot be written is left out.
      {w.node(AND_n, w("a"), w.nameless(INPUT_n)), "(a)and()",
       "Exp::print_def : 'INPUT_n' Exp must have an identifier",
       "Exp::Iprint_def : 'INPUT_n' Exp must have an identifier"},
      {w.nameless(MODELREF_n), "", "Exp::print_def : 'MODELREF_n' Exp must have an identifier",
       "Exp::Iprint_def : 'MODELREF_n' Exp must have an identifier"},
      {w.node(NOT_n, w.node(ERROR_n, w("a"))), "not()", "print_def 'ERROR_n' is not implemented",
       "Exp::Iprint_def 'ERROR_n' is not implemented"},
  };
  for (const auto& row : rows) {
    const auto expect = [&](Printer print, const char* report) {
      EXPECT_EQ(report, stderr_of([&] { EXPECT_EQ(row.printed, w.printed(row.e, print)); }));
    };
    for (const Printer print : {&Exp::print, &Exp::print_def}) expect(print, row.report);
    for (const Printer print : {&Exp::Iprint, &Exp::Iprint_def}) expect(print, row.guarded_report);
    w.ident("o")->definition = row.e;
    Program copy;
    copy.prg.copy_from(w.prg);
    EXPECT_EQ(row.report, stderr_of([&] {
                EXPECT_EQ(row.printed, written([&](PtyStream* out) {
                            copy.ident("o")->definition->print(out, &copy.symbols);
                          }));
              }));
  }
}

TEST(PrintedExpressions, ShowNamesInsteadOfWhatIsNamed) {
  Workshop w;
  Exp* named = w("a and b");
  named->ident = w.symbol("both");
  for (const Printer print : {&Exp::print, &Exp::Iprint, &Exp::print_def, &Exp::Iprint_def}) {
    const bool by_name = print == &Exp::print || print == &Exp::Iprint;
    EXPECT_EQ(by_name ? "both" : "(a)and(b)", w.printed(named, print));
    EXPECT_EQ("not(both)", w.printed(w.node(NOT_n, named), print));
  }
}

TEST(PrintedExpressions, AreCutWhereACycleCloses) {
  Workshop w;
  Exp* loop = w("(a or b) and c");
  loop->args()[0]->args()[1] = loop;
  Exp* call = w("f(i, pre j)");
  call->args()[0]->args()[1]->args()[0] = call;
  const struct {
    Exp* e;
    const char *printed, *by_structure;
  } rows[] = {
      {loop, "((a)or(WARNING : RECURSION ))and(c)", "((a)or((WARNING : RECURSION )and(c)))and(c)"},
      {call, "f(i, pre(WARNING : RECURSION ))", "f(i, pre(f(i, WARNING : RECURSION )))"},
  };
  for (const auto& row : rows) {
    for (const char* round : {"first", "second"}) {  // no mark stays
      EXPECT_EQ(row.printed, stdout_text([&] { w.prg.print_exp(row.e); })) << round;
      EXPECT_EQ(row.printed, w.printed(row.e, &Exp::Iprint)) << round;
      EXPECT_EQ(row.by_structure, w.printed(row.e, &Exp::Iprint_def)) << round;
    }
    EXPECT_EQ(nullptr, row.e->infos()) << "printing makes the expression grow";
  }
}
