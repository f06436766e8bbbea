// Programs that are built by edits are those that their texts load as. tests/tcl/ensemble-edit.test
// plays the other edits.

#include "editing/editor.h"

#include <gtest/gtest.h>

#include <optional>

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
