// What holds for the answers about every program: generated ones, the samples, and what fuzzing
// found.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "analysis/check.h"
#include "analysis/describe.h"
#include "analysis/expression_text.h"
#include "analysis/json.h"
#include "analysis/users.h"
#include "tests/compare.h"
#include "tests/generator.h"

using namespace tamsel;

namespace {

// The texts of all programs at hand; those of the corpus are mostly broken.
std::vector<std::string> texts() {
  std::vector<std::string> all;
  for (unsigned seed = 1; seed <= 150; ++seed) all.push_back(program_text(options_of(seed)));
  const std::filesystem::path root = SOURCE_DIR;
  for (const char* folder : {"examples", "examples/broken", "fuzz/corpus/file"})
    for (const auto& entry : std::filesystem::directory_iterator(root / folder)) {
      if (!entry.is_regular_file()) continue;
      std::stringstream text;
      text << std::ifstream(entry.path()).rdbuf();
      all.push_back(text.str());
    }
  return all;
}

// Each program that is read, with the names of its tuple equations once.
template <class Take>
void each_program(Take take) {
  int programs = 0;
  for (const std::string& text : texts()) {
    LoadedProgram program;
    program.prg.silent = true;
    if (program.read(text) != 0 || program.prg.name == 0) continue;
    SCOPED_TRACE(text);
    take(&program.prg);
    ++programs;
  }
  EXPECT_GT(programs, 100);
}

// The expressions of a program, the right sides first.
std::vector<Exp*> expressions_of(EcPrg* prg) {
  std::vector<Exp*> all;
  for (const Equation& equation : equations_of(prg)) all.push_back(equation.right);
  for (const int symbol : values_of(prg->assertions)) all.push_back(prg->ident(symbol)->definition);
  return all;
}

std::string full(EcPrg* prg, Exp* e) {
  return e != nullptr ? ExpressionText().full(prg, e) : "refused";
}

// The text without the bracket at `open` and the one that closes it.
std::string without_brackets(const std::string& text, size_t open) {
  size_t close = open;
  for (int depth = 1; depth > 0;) {
    ++close;
    depth += text[close] == '(' ? 1 : text[close] == ')' ? -1 : 0;
  }
  return text.substr(0, open) + " " + text.substr(open + 1, close - open - 1) + " " +
         text.substr(close + 1);
}

TEST(Questions, ABriefTextReadsBackAndHasNoBracketToSpare) {
  each_program([](EcPrg* prg) {
    for (Exp* e : expressions_of(prg)) {
      const std::string brief = ExpressionText().brief(prg, e);
      const std::string meant = full(prg, e);
      ASSERT_EQ(meant, full(prg, prg->exp_read(brief.c_str()))) << brief;
      if (brief.size() > 300) continue;
      for (size_t open = brief.find('('); open != brief.npos; open = brief.find('(', open + 1))
        ASSERT_NE(meant, full(prg, prg->exp_read(without_brackets(brief, open).c_str()))) << brief;
    }
  });
}

// EC text of the tree whose nodes these are.
std::string text_of(const std::vector<TreeNode>& nodes) {
  std::vector<std::string> read;  // from the last node on
  for (auto node = nodes.rbegin(); node != nodes.rend(); ++node) {
    std::vector<std::string> operands;
    for (int i = 0; i < node->operands; ++i) {
      operands.push_back("(" + read.back() + ")");
      read.pop_back();
    }
    const std::string op = node->op;
    std::string list;
    for (const std::string& operand : operands) list += (list.empty() ? "" : ", ") + operand;
    if (op == "name" || op == "constant")
      read.push_back(node->label);
    else if (op == "if")
      read.push_back("if " + operands[0] + "then" + operands[1] + "else" + operands[2]);
    else if (op == "tuple" || op == "#" || op == "nor" || op == "call")
      read.push_back((op == "tuple" ? "" : op == "call" ? node->label : op) + "(" + list + ")");
    else
      read.push_back(operands.size() == 1 ? op + operands[0] : operands[0] + op + operands[1]);
  }
  return read.size() == 1 ? read[0] : "not one tree";
}

TEST(Questions, ATreeIsTheExpression) {
  each_program([](EcPrg* prg) {
    for (Exp* e : expressions_of(prg)) {
      const std::string text = text_of(tree_of(prg, e));
      ASSERT_EQ(full(prg, e), full(prg, prg->exp_read(text.c_str()))) << text;
    }
  });
}

TEST(Questions, NeedsAndUsersAreEachOthersInverse) {
  each_program([](EcPrg* prg) {
    Users users(prg);
    for (const bool now : {false, true}) {
      std::vector<std::pair<int, int>> by_needs, by_users;
      for (const NameKind kind : name_kinds)
        for (const int symbol : prg->declared_names(kind)) {
          for (const int needed : needs_of(prg, right_side(prg->ident(symbol)), now))
            by_needs.emplace_back(symbol, needed);
          if (prg->ident(symbol) == nullptr) continue;
          for (const int user : users.of(symbol, now)) by_users.emplace_back(user, symbol);
        }
      std::sort(by_needs.begin(), by_needs.end());
      std::sort(by_users.begin(), by_users.end());
      ASSERT_EQ(by_needs, by_users);
    }
  });
}

TEST(Json, TellsBytesThatAreNoText) {
  const std::pair<const char*, const char*> rows[] = {
      {"\xC3\xA9\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF", "\xC3\xA9\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF"},
      {"\xC3\xE2\x82", "\\u00c3\\u00e2\\u0082"},
      {"\xED\xA0\x80", "\\ud800"},
      {"\xE0\x80\x80", "\\u00e0\\u0080\\u0080"},
      {"\xF4\x90\x80\x80", "\\u00f4\\u0090\\u0080\\u0080"},
      {"\xC1\xBF\xF0\x80\x80\x80", "\\u00c1\\u00bf\\u00f0\\u0080\\u0080\\u0080"}};
  for (const auto& [name, told] : rows) {
    LoadedProgram program;
    program.prg.name = program.symbols.add_text(name);
    std::string json;
    write_json(&program.prg, &json);
    EXPECT_EQ("{\n\"node\": \"" + std::string(told) + "\"", json.substr(0, json.find(",\n")));
  }
}

// The findings that are errors, as a text.
std::string errors_of(EcPrg* prg) {
  std::string text;
  for (const Finding& finding : check(prg, {finding_kinds, finding_kinds + 5})) {
    if (severity_word(finding.kind) != std::string("error")) continue;
    text += kind_word(finding.kind);
    for (const int name : finding.names) text += " " + std::string(prg->symbols->name(name));
    text += "\n";
  }
  return text;
}

TEST(Check, FindsNothingInSoundProgramsAndWhatIsPlantedInOthers) {
  const struct {
    const char* equations;  // of ill_a, ill_b : int, of ill_c, ill_d, which run on CLOCK, and ill_e
    const char* errors;
  } rows[] = {
      {"ill_a = 1; ill_b = ill_a; ill_c = 1; ill_d = 2; ill_e = true;", ""},
      {"ill_b = pre ill_b; ill_c = 1; ill_d = 2; ill_e = true;", "hole ill_a\n"},
      {"ill_a = ill_b + 1; ill_b = 1 -> pre 2 + ill_a; ill_c = 1; ill_d = 2; ill_e = true;",
       "cycle ill_a ill_b\n"},
      {"(ill_a, ill_b) = (ill_b, 1); ill_c = 1; ill_d = 2; ill_e = true;", "cycle ill_a ill_b\n"},
      {"ill_a = ill_e; ill_b = 1; ill_c = 1; ill_d = 2; ill_e = true;", "type ill_a\n"},
      {"ill_a = 1; ill_b = 1; ill_c = 1; ill_d = 2; ill_e = true; assert ill_a + 1;", "type\n"},
      {"(ill_a, ill_e) = (true, 1); ill_b = 1; ill_c = 1; ill_d = 2;", "type ill_a ill_e\n"},
      {"ill_a = ill_c; ill_b = 1; ill_c = 1; ill_d = 2; ill_e = true;", "clock ill_a\n"},
      {"ill_a = 1; ill_b = 1; ill_c = ill_a; ill_d = ill_c + 1; ill_e = true;", "clock ill_c\n"},
      {"ill_a = current ill_c; ill_b = current ill_a; ill_c = ill_a when CLOCK; ill_d = 2;"
       "ill_e = true;",
       "clock ill_b\ncycle ill_a ill_c\n"},
      {"ill_a = current ill_c; ill_b = 1; ill_c = 1 when CLOCK; ill_d = ill_c when CLOCK;"
       "ill_e = true;",
       "clock ill_d\n"},
      {"ill_a = current 1; ill_b = 1; ill_c = 1 when true; ill_d = 2; ill_e = true;",
       "clock ill_c\n"},
      {"(ill_a, ill_c) = (1, 2); ill_b = 1; ill_d = 2; ill_e = true;", "clock ill_a ill_c\n"},
      {"ill_a = 1; ill_b = 1; ill_c = 1; ill_d = 2; ill_e = CLOCK; assert ill_c = ill_a;",
       "clock\n"},
      {"ill_a = nosuch; ill_b = 1; ill_c = 1; ill_d = 2; ill_e = true;",
       "hole nosuch\nhole ill_a\n"},
  };
  for (unsigned seed = 2; seed <= 120; seed += 2) {
    GeneratorOptions options = options_of(seed);
    options.sound = true;
    options.equations += 10;
    options.long_names = false;
    const std::string text = program_text(options);
    for (const auto& row : rows) {
      std::string planted = text;
      const auto put = [&](size_t place, const std::string& more) { planted.insert(place, more); };
      const std::string clock = options.types ? "i5" : "i3";
      put(planted.rfind("tel"), row.equations);
      put(planted.find("\nlet\n") + 1,
          "ill_a, ill_b : int; (ill_c, ill_d : int) when CLOCK;"
          "ill_e : bool;");
      for (size_t at; (at = planted.find("CLOCK")) != planted.npos;) planted.replace(at, 5, clock);
      LoadedProgram program;
      program.prg.silent = true;
      ASSERT_EQ(0, program.read(planted)) << program.prg.error_message << planted;
      ASSERT_EQ(row.errors, errors_of(&program.prg)) << planted;
    }
  }
}

}  // namespace
