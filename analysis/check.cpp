#include "analysis/check.h"

#include <algorithm>

#include "analysis/clocks.h"
#include "analysis/cycles.h"
#include "analysis/equations.h"

namespace tamsel {

const char* severity_word(FindingKind kind) {
  return kind == FindingKind::unused ? "note" : "error";
}

namespace {

class Checker {
 public:
  explicit Checker(EcPrg* prg) : prg_(prg), clocks_(prg), equations_(equations_of(prg)) {}

  void find_holes();
  void find_type_errors();
  void find_clock_errors();
  void find_cycles();
  void find_unused();

  std::vector<Finding> findings;

 private:
  std::string quoted(int symbol) const {
    return "'" + std::string(prg_->symbols->name(symbol)) + "'";
  }
  std::string type_text(const EcType* type) const;
  bool fits(const EcType* type, const Equation& equation) const;
  std::string left_type_text(const std::vector<int>& names) const;
  void add(FindingKind kind, std::vector<int> names, int line, std::string message) {
    findings.push_back({kind, std::move(names), line, std::move(message)});
  }
  template <class Take>
  void each_assertion(Take take) {
    for (const int symbol : values_of(prg_->assertions)) {
      const IdentInfo* assertion = prg_->ident(symbol);
      if (assertion != nullptr && assertion->definition != nullptr) take(assertion);
    }
  }
  template <class Take>
  void each_declared(std::initializer_list<NameKind> kinds, Take take) {
    for (const NameKind kind : kinds)
      for (const int symbol : prg_->declared_names(kind)) take(prg_->ident(symbol));
  }

  const char* fault_of_clock(const IdentInfo* ident) const;
  std::vector<bool> clock_loops();
  void check_clock(const Equation& equation);

  EcPrg* prg_;
  ClockFinder clocks_;
  std::vector<Equation> equations_;
};

void Checker::find_holes() {
  for (const EcPrg::Message& message : prg_->messages) {
    const bool is_named = message.name != 0;
    add(FindingKind::hole, is_named ? std::vector<int>{message.name} : std::vector<int>{},
        message.line, message.text);
  }
  each_declared({NameKind::output, NameKind::local}, [this](const IdentInfo* ident) {
    if (right_side(ident) == nullptr)
      add(FindingKind::hole, {ident->name}, ident->line, "nothing defines " + quoted(ident->name));
  });
}

// --- Types.

std::string Checker::type_text(const EcType* type) const {
  if (type == nullptr) return "?";
  if (!type->is_tuple) return prg_->symbols->name(type->name);
  std::string text;
  for (const int member : values_of(type->members))
    text += (text.empty() ? "(" : ", ") + std::string(prg_->symbols->name(member));
  return text + ")";
}

// Whether the names of a left side have that type, as far as they have one.
bool Checker::fits(const EcType* type, const Equation& equation) const {
  const auto agrees = [this](int member, int name) {
    const EcType* declared = prg_->ident(name)->type;
    return declared == nullptr || declared->name == member;
  };
  const IntList* names = equation.first->tuple_names;
  if (names == nullptr || names->next == nullptr)
    return !type->is_tuple && agrees(type->name, equation.first->name);
  if (!type->is_tuple) return false;
  const IntList* member = type->members;
  for (const int name : values_of(names)) {
    if (member == nullptr || !agrees(member->value, name)) return false;
    member = member->next;
  }
  return member == nullptr;
}

std::string Checker::left_type_text(const std::vector<int>& names) const {
  if (names.size() == 1) return type_text(prg_->ident(names[0])->type);
  std::string text;
  for (const int name : names)
    text += (text.empty() ? "(" : ", ") + type_text(prg_->ident(name)->type);
  return text + ")";
}

void Checker::find_type_errors() {
  for (const Equation& equation : equations_) {
    const EcType* type = prg_->type_of_operands(equation.right);
    if (type != nullptr && fits(type, equation)) continue;
    const std::vector<int> names = equation.names();
    add(FindingKind::type, names, equation.line(),
        type == nullptr
            ? prg_->error_message
            : "bad type combination '" + left_type_text(names) + " = " + type_text(type) + "'");
  }
  each_assertion([this](const IdentInfo* assertion) {
    const EcType* type = prg_->type_of_operands(assertion->definition);
    if (type == nullptr)
      add(FindingKind::type, {}, assertion->line, prg_->error_message);
    else if (type != prg_->bool_type)
      add(FindingKind::type, {}, assertion->line,
          "an assertion is 'bool', not '" + type_text(type) + "'");
  });
}

// --- Clocks.

// What is wrong with the clock that `ident` declares; null where nothing is.
const char* Checker::fault_of_clock(const IdentInfo* ident) const {
  if (ident->clock == prg_->true_clock) return nullptr;
  const IdentInfo* clock = prg_->ident(ident->clock);
  if (clock == nullptr) return "is not declared";
  const bool is_input = clock->mode == INPUT_mode;
  const bool is_output = clock->mode == OUTPUT_mode;
  if (!is_input && !is_output && clock->mode != LOCAL_mode) return "is a constant";
  if (clock->type != nullptr && clock->type != prg_->bool_type) return "is no boolean";
  if (ident->mode == INPUT_mode && !is_input) return "is no input";
  if (ident->mode == OUTPUT_mode && !is_input && !is_output) return "is no input or output";
  return nullptr;
}

// Which symbols are variables whose clocks lead back to them. From each name at which nobody has
// been, follows its clocks; where that meets its own path, there is a loop.
std::vector<bool> Checker::clock_loops() {
  std::vector<bool> in_loop(static_cast<size_t>(prg_->symbols->nb_symbols) + 1);
  std::vector<int> path_of(in_loop.size());  // 0: not met
  int path = 0;
  const auto next = [this](const IdentInfo* ident) {
    return ident->clock != prg_->true_clock ? prg_->ident(ident->clock) : nullptr;
  };
  each_declared({NameKind::input, NameKind::output, NameKind::local}, [&](const IdentInfo* start) {
    ++path;
    const IdentInfo* ident = start;
    for (; ident != nullptr && path_of[static_cast<size_t>(ident->name)] == 0; ident = next(ident))
      path_of[static_cast<size_t>(ident->name)] = path;
    if (ident == nullptr || path_of[static_cast<size_t>(ident->name)] != path) return;
    for (; !in_loop[static_cast<size_t>(ident->name)]; ident = next(ident))
      in_loop[static_cast<size_t>(ident->name)] = true;
  });
  return in_loop;
}

void Checker::check_clock(const Equation& equation) {
  const IdentInfo* first = equation.first;
  const auto refuse = [&](const std::string& message) {
    add(FindingKind::clock, equation.names(), equation.line(), message);
  };
  const int left = first->clock;
  for (const int name : values_of(first->tuple_names)) {
    const int clock = prg_->ident(name)->clock;
    if (clock == left) continue;
    return refuse("clock error: " + quoted(first->name) + " runs on " + quoted(left) + " and " +
                  quoted(name) + " on " + quoted(clock));
  }
  int right;
  std::string message;
  if (!clocks_.find(equation.right, &right, &message)) return refuse(message);
  if (right != any_clock && right != left)
    refuse("clock error: " + quoted(first->name) + " runs on " + quoted(left) +
           ", and its right side on " + quoted(right));
}

void Checker::find_clock_errors() {
  const std::vector<bool> in_loop = clock_loops();
  each_declared(
      {NameKind::input, NameKind::output, NameKind::local, NameKind::constant},
      [&](const IdentInfo* ident) {
        const auto refuse = [&](const std::string& message) {
          add(FindingKind::clock, {ident->name}, ident->line, "clock error: the " + message);
        };
        if (const char* fault = fault_of_clock(ident))
          refuse("clock " + quoted(ident->clock) + " of " + quoted(ident->name) + " " + fault);
        else if (in_loop[static_cast<size_t>(ident->name)])
          refuse("clocks of " + quoted(ident->name) + " lead back to it");
      });
  for (const Equation& equation : equations_) check_clock(equation);
  each_assertion([this](const IdentInfo* assertion) {
    int clock;
    std::string message;
    if (!clocks_.find(assertion->definition, &clock, &message))
      add(FindingKind::clock, {}, assertion->line, message);
  });
}

// --- Cycles, and what is not used.

void Checker::find_cycles() {
  for (const Cycle& cycle : cycles_of(prg_, equations_)) {
    std::vector<int> names;
    for (const Equation* equation : cycle.equations) {
      const std::vector<int> left = equation->names();
      names.insert(names.end(), left.begin(), left.end());
    }
    std::string message =
        cycle.equations.size() == 1 ? "needs itself now: " : "need one another now: ";
    for (const int name : cycle.loop) message += std::string(prg_->symbols->name(name)) + " -> ";
    message += prg_->symbols->name(cycle.loop[0]);
    add(FindingKind::cycle, std::move(names), cycle.equations[0]->line(), std::move(message));
  }
}

void Checker::find_unused() {
  const size_t symbols = static_cast<size_t>(prg_->symbols->nb_symbols) + 1;
  std::vector<bool> used(symbols);
  std::vector<bool> called(symbols);  // as functions
  const auto use = [symbols](std::vector<bool>* which, int symbol) {
    const size_t place = static_cast<size_t>(symbol);  // a negative one is beyond all
    if (place < symbols) (*which)[place] = true;
  };
  const auto use_all_of = [&](Exp* e) {
    each_mention(e, [&](const Mention& mention, const Exp*) {
      use(mention.is_function ? &called : &used, mention.symbol);
    });
  };
  for (const Equation& equation : equations_) use_all_of(equation.right);
  each_assertion([&](const IdentInfo* assertion) { use_all_of(assertion->definition); });
  each_declared({NameKind::input, NameKind::output, NameKind::local, NameKind::constant},
                [&](const IdentInfo* ident) { use(&used, ident->clock); });

  const auto note = [&](const std::vector<bool>& which, int symbol, int line) {
    if (!which[static_cast<size_t>(symbol)])
      add(FindingKind::unused, {symbol}, line, "nothing mentions " + quoted(symbol));
  };
  each_declared({NameKind::input, NameKind::local, NameKind::constant},
                [&](const IdentInfo* ident) {
                  if (ident->mode != ENUM_CONST_mode) note(used, ident->name, ident->line);
                });
  for (const int symbol : prg_->declared_names(NameKind::function))
    note(called, symbol, prg_->function(symbol)->line);
}

}  // namespace

std::vector<Finding> check(EcPrg* prg, const std::vector<FindingKind>& kinds) {
  constexpr void (Checker::*passes[])() = {&Checker::find_holes, &Checker::find_type_errors,
                                           &Checker::find_clock_errors, &Checker::find_cycles,
                                           &Checker::find_unused};
  Checker checker(prg);
  for (const FindingKind kind : finding_kinds)
    if (std::find(kinds.begin(), kinds.end(), kind) != kinds.end())
      (checker.*passes[static_cast<int>(kind)])();
  return std::move(checker.findings);
}

}  // namespace tamsel
