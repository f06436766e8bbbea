// What holds for all edits of all programs: they leave what a text with the same content loads as,
// and a refused one leaves everything.

#include "editing/editor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>

#include "analysis/check.h"
#include "analysis/expression_text.h"
#include "tests/compare.h"
#include "tests/generator.h"

using namespace tamsel;

namespace {

class Edited : public LoadedProgram {
 public:
  Edited() : editor(&prg) { prg.silent = true; }

  std::string source() {
    return written([this](PtyStream* out) { prg.print_source(out); });
  }
  std::string name(int symbol) const { return symbols.name(symbol); }
  std::vector<std::string> names_in(const std::vector<int>& of) const {
    std::vector<std::string> names;
    for (const int symbol : of) names.push_back(name(symbol));
    return names;
  }
  std::vector<std::string> declared() {
    std::vector<std::string> all;
    for (const NameKind kind : name_kinds)
      for (const int symbol : prg.declared_names(kind)) all.push_back(name(symbol));
    return all;
  }
  std::string text(Exp* e) { return ExpressionText().brief(&prg, e); }

  // All that the questions tell but lines.
  std::string facts() {
    std::string told = source() + quarel_text(&prg) + account_of(&prg, true);
    for (const FindingKind kind : finding_kinds)
      for (const Finding& finding : check(&prg, {kind})) told += finding.message + "\n";
    for (const NameKind kind : name_kinds)
      for (const int symbol : prg.declared_names(kind)) {
        const NameList list = prg.list_of(kind, symbol);
        const int place = prg.place_of(list, symbol);
        int found = 0;
        EXPECT_EQ(0, prg.name_at(list, place, &found));
        EXPECT_EQ(symbol, found);
        told += name(symbol) + " " + std::to_string(place);
        for (const bool now : {false, true})
          for (const std::string& user : names_in(editor.users().of(symbol, now)))
            told += " " + user;
        told += "\n";
      }
    for (const int count :
         {prg.nb_inputs, prg.nb_outputs, prg.nb_locals, prg.nb_assertions, prg.nb_constants,
          prg.nb_functions, prg.nb_tuple_functions, prg.nb_user_types})
      told += std::to_string(count) + " ";
    return told;
  }

  // The expression that a text is, taken out of the program again; none where it is refused.
  std::optional<Draft> draft(const std::string& of) {
    const EcPrg::Mark before = prg.mark();
    const int known = symbols.nb_symbols;
    std::optional<Draft> made;
    Exp* e = prg.exp_read(of.c_str());
    if (e != nullptr && prg.type(e) != nullptr) made.emplace(&prg, e, 3);
    prg.roll_back(before);
    symbols.cut_back(known);
    return made;
  }
  bool define(const Editor::Names& names, const std::string& right) {
    std::optional<Draft> made = draft(right);
    return made.has_value() && editor.define(names, std::move(*made));
  }
  bool assert_that(const std::string& text) {
    std::optional<Draft> made = draft(text);
    int index;
    return made.has_value() && editor.assert_that(std::move(*made), &index);
  }
  // The names and the text of each equation, and of each assertion.
  std::vector<std::pair<Editor::Names, std::string>> equations() {
    std::vector<std::pair<Editor::Names, std::string>> all;
    for (const Equation& equation : equations_of(&prg))
      all.emplace_back(names_in(equation.names()), text(equation.right));
    return all;
  }
  std::vector<std::string> assertions() {
    std::vector<std::string> all;
    for (const int symbol : values_of(prg.assertions))
      all.push_back(text(prg.ident(symbol)->definition));
    return all;
  }

  Editor editor;
};

std::vector<Editor::Parameter> named(const Edited& program, const std::vector<Parameter>& list) {
  std::vector<Editor::Parameter> all;
  for (const Parameter& each : list)
    all.push_back({each.name != 0 ? program.name(each.name) : "", program.name(each.type)});
  return all;
}

// Declares in `to` what `from` declares, and gives it its equations.
void build_again(Edited* from, Edited* to) {
  to->prg.name = to->symbols.add_text(from->name(from->prg.name).c_str());
  std::vector<int> types = from->prg.declared_names(NameKind::type);
  size_t built = 0;
  const auto build_types = [&](const EcType* last) {
    while (built < types.size()) {
      const EcType* type = from->prg.named_type(types[built++]);
      std::vector<std::string> values;
      for (int rank = 0; rank < type->nb_enum; ++rank)
        values.push_back(from->name(type->enum_consts[rank]->name));
      EXPECT_TRUE(to->editor.declare_type(from->name(type->name), values));
      if (type == last) break;
    }
  };
  const auto declare = [&](const Description& known) {
    const IdentInfo* ident = known.ident;
    return ident->mode == ENUM_CONST_mode ||
           to->editor.declare(known.kind, from->name(ident->type->name), from->name(ident->name),
                              from->name(ident->clock));
  };
  for (const NameKind kind : {NameKind::constant, NameKind::function, NameKind::input,
                              NameKind::output, NameKind::local}) {
    for (const int symbol : from->prg.declared_names(kind)) {
      const Description known = describe_as(&from->prg, symbol, kind);
      if (known.function != nullptr) {
        EXPECT_TRUE(to->editor.declare_function(from->name(symbol),
                                                named(*from, parameters_of(known.function)),
                                                named(*from, results_of(known.function))));
      } else {
        const std::string type = from->name(known.ident->type->name);
        if (to->prg.named_type(to->symbols.tape->known(type.c_str())) == nullptr)
          build_types(known.ident->type);
        EXPECT_TRUE(declare(known)) << to->editor.refusal.message;
      }
    }
    if (kind == NameKind::constant) build_types(nullptr);
  }
  for (const auto& each : from->equations()) EXPECT_TRUE(to->define(each.first, each.second));
  for (const std::string& each : from->assertions()) EXPECT_TRUE(to->assert_that(each));
}

// Does random things.
class Player {
 public:
  Player(Edited* program, unsigned seed) : program_(*program), random_(seed) {}

  // Whether something has changed.
  bool step() {
    switch (below(10)) {
      case 0:
        return declare();
      case 1:
      case 2:
      case 3:
        return define();
      case 4:
        return program_.editor.undefine({any_name()});
      case 5:
        if (one_in(2)) return assert_or_retract();
        return substitute();
      case 6:
      case 7:
        return rename();
      default: {
        Editor::Names names = {any_name()};
        while (one_in(2)) names.push_back(any_name());
        return program_.editor.remove(names);
      }
    }
  }

 private:
  int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
  bool one_in(int chances) { return below(chances) == 0; }
  std::string any_of(const std::vector<std::string>& all) {
    return all.empty() ? "none" : all[static_cast<size_t>(below(static_cast<int>(all.size())))];
  }
  std::string any_name() { return one_in(20) ? new_name() : any_of(program_.declared()); }
  std::string new_name() {
    return one_in(10) ? any_of({"when", "3x", "", "nil", "__assert_0", "int"})
                      : "n" + std::to_string(below(30));
  }
  std::string any_expression() {
    const auto equations = program_.equations();
    switch (below(6)) {
      case 0:
        return any_name();
      case 1:
        return std::to_string(below(50)) + (one_in(3) ? ".5" : "");
      case 2:
        return any_name() + " + " + std::to_string(below(50));
      case 3:
        return "not " + any_name();
      default:
        return equations.empty()
                   ? "true"
                   : equations[static_cast<size_t>(below(static_cast<int>(equations.size())))]
                         .second;
    }
  }

  bool declare() {
    const std::string name = new_name();
    const std::string type = any_of({"int", "bool", any_name()});
    switch (below(4)) {
      case 0:
        return program_.editor.declare_type(
            name, one_in(2) ? Editor::Names{new_name(), new_name()} : Editor::Names{});
      case 1:
        return program_.editor.declare_function(
            name, {{one_in(2) ? new_name() : "", type}, {"", "int"}}, {{"", "bool"}});
      default:
        return program_.editor.declare(name_kinds[below(4)], type, name,
                                       one_in(4) ? any_name() : "");
    }
  }

  bool define() {
    Editor::Names names = {any_name()};
    while (one_in(4)) names.push_back(any_name());
    std::string right = any_expression();
    if (one_in(2)) {  // one that fits
      const auto equations = program_.equations();
      if (!equations.empty()) {
        const auto& equation =
            equations[static_cast<size_t>(below(static_cast<int>(equations.size())))];
        names = equation.first;
        right = equation.second;
        if (names.size() > 1 && one_in(2)) names.pop_back();
      }
    }
    return program_.define(names, right);
  }

  bool assert_or_retract() {
    const int count = program_.prg.nb_assertions;
    if (one_in(2)) return program_.assert_that(any_expression());
    return program_.editor.retract({below(count + 1), below(count + 1)});
  }

  bool substitute() {
    std::optional<Draft> value = program_.draft(any_expression());
    if (!value.has_value()) return false;
    const Editor::Names in = {any_name(), any_name()};
    int count = 0;
    if (one_in(2))
      return program_.editor.substitute(any_name(), std::move(*value), nullptr, &count);
    return program_.editor.substitute(any_name(), std::move(*value), &in, &count);
  }

  bool rename() {
    std::vector<std::pair<std::string, std::string>> names;
    do {
      const std::string old = one_in(10) ? program_.name(program_.prg.name) : any_name();
      const std::string other = one_in(3) ? any_name() : new_name();
      names.emplace_back(old, other);
    } while (one_in(2));
    return program_.editor.rename(names);
  }

  Edited& program_;
  std::mt19937 random_;
};

std::string generated(unsigned seed) {
  GeneratorOptions options = options_of(seed);
  options.equations = 4 + static_cast<int>(seed % 12);
  return program_text(options);
}

}  // namespace

TEST(Editor, BuildsEveryProgramAgain) {
  for (unsigned seed = 1; seed <= 150; ++seed) {
    SCOPED_TRACE(seed);
    Edited program, again;
    ASSERT_EQ(0, program.read(generated(seed)));
    build_again(&program, &again);
    EXPECT_EQ(program.facts(), again.facts());
  }
}

TEST(Editor, LeavesWhatTheTextLoadsAs) {
  int done = 0;
  for (unsigned seed = 1; seed <= 30; ++seed) {
    Edited program;
    ASSERT_EQ(0, program.read(generated(seed)));
    Player player(&program, seed);
    for (int step = 0; step < 60; ++step) {
      SCOPED_TRACE(std::to_string(seed) + ", step " + std::to_string(step));
      const std::string before = program.facts();
      if (!player.step()) {
        ASSERT_EQ(before, program.facts()) << program.editor.refusal.message;
        continue;
      }
      ++done;
      if (program.prg.inputs == nullptr || program.prg.outputs == nullptr) break;
      Edited loaded;
      ASSERT_EQ(0, loaded.read(program.source())) << program.source();
      ASSERT_EQ(loaded.facts(), program.facts());
    }
    Edited copy;
    copy.prg.copy_from(program.prg);
    EXPECT_EQ(program.facts(), copy.facts());
  }
  EXPECT_GT(done, 300);
}
