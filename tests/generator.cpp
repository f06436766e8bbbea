#include "tests/generator.h"

#include <algorithm>
#include <random>
#include <sstream>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

// Types are numbers: the predefined ones, then those of the user.
enum { BOOL, INT, REAL, COLOR, THING };
const char* const type_names[] = {"bool", "int", "real", "color", "thing"};

struct Function {
  const char* name;
  std::vector<int> params;
  std::vector<int> results;
};
const Function functions[] = {
    {"f", {INT}, {INT}},
    {"g", {BOOL, REAL, INT}, {REAL}},
    {"test", {THING, COLOR}, {BOOL}},
    {"both", {INT, INT}, {BOOL, REAL}},
    {"make", {REAL}, {THING, COLOR, INT}},
};

class Generator {
 public:
  Generator(const GeneratorOptions& options, std::ostream& out)
      : options_(options), out_(out), random_(options.seed) {}

  void write() {
    type_count_ = options_.types ? 5 : 3;
    if (options_.types) out_ << "type color = (red, green, blue), thing;\n";
    out_ << "const k_bool : bool; k_int : int; k_real : real";
    if (options_.types) out_ << "; k_thing : thing";
    out_ << ";\n";
    if (options_.functions)
      for (const Function& function : functions)
        if (is_usable(function)) write_function(function);
    write_header();
    out_ << "let\n";
    for (const Equation& equation : equations_) write_equation(equation);
    for (int i = 0; options_.assertions && i <= options_.equations / 10; ++i) {
      around_ = 10 * i;
      on_clock_ = false;
      in_past_ = true;  // it may mention any variable
      out_ << "  assert ";
      write_expression(BOOL, options_.expression_size);
      out_ << ";\n";
    }
    out_ << "tel\n";
  }

 private:
  struct Equation {
    int first;                 // number of its first variable
    const Function* function;  // null for a simple equation
  };

  int random(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }
  bool one_in(int n) { return random(n) == 0; }
  bool is_usable(const Function& function) const {
    for (const std::vector<int>* list : {&function.params, &function.results})
      for (const int type : *list)
        if (type >= type_count_) return false;
    return true;
  }

  // The variable with that number, which is an input if it is negative.
  std::string name(int number) const {
    std::string text = number < 0 ? "i" + std::to_string(-number) : "v" + std::to_string(number);
    if (options_.long_names) text += "_of_a_program_that_another_program_has_written";
    return text;
  }
  int type_of(int number) const {
    return number < 0 ? -number % type_count_ : types_[static_cast<size_t>(number)];
  }
  // Inputs 1 to `inputs` have the types in turn, and the first boolean among them is the clock.
  int inputs() const { return 2 * type_count_; }
  int clock() const { return -type_count_; }

  void write_function(const Function& function) {
    const auto write_list = [this](const std::vector<int>& types, char prefix) {
      for (size_t i = 0; i < types.size(); ++i)
        out_ << (i > 0 ? "; " : "") << prefix << i << " : " << type_names[types[i]];
    };
    out_ << "function " << function.name << "(";
    write_list(function.params, 'p');
    out_ << ") returns (";
    write_list(function.results, 'r');
    out_ << ");\n";
  }

  // `shares` the clock of the one declared before.
  void write_declaration(int number, bool may_be_clocked, bool shares = false) {
    const bool clocked =
        shares ? clocked_[number - 1] : may_be_clocked && options_.clocks && one_in(4);
    clocked_[number] = clocked;
    out_ << (clocked ? "  (" : "  ") << name(number) << " : " << type_names[type_of(number)];
    if (clocked) out_ << ") when " << name(clock());
  }

  // Settles the variables as well; the first of them are outputs.
  void write_header() {
    for (int i = 0; i < options_.equations; ++i) {
      const Function* function = nullptr;
      if (options_.tuple_equations && options_.functions && one_in(4))
        function = &functions[options_.types && one_in(2) ? 4 : 3];
      equations_.push_back({static_cast<int>(types_.size()), function});
      if (function != nullptr)
        types_.insert(types_.end(), function->results.begin(), function->results.end());
      else
        types_.push_back(random(type_count_));
    }
    out_ << "node n (\n";
    for (int i = 1; i <= inputs(); ++i) {
      if (i > 1) out_ << ";\n";
      write_declaration(-i, -i != clock());
    }
    out_ << ")\nreturns (\n";
    const int variables = static_cast<int>(types_.size());
    const int outputs = 1 + variables / 5;
    for (int i = 0; i < variables; ++i) {
      if (i == outputs) out_ << ");\nvar\n";
      write_declaration(i, true, options_.sound && is_later_member(i));
      if (i + 1 != outputs && i + 1 != variables) out_ << ";\n";
    }
    out_ << (variables > outputs ? ";\n" : ");\n");
  }

  // Whether the variable stands in a tuple equation, and not as the first.
  bool is_later_member(int number) const {
    const auto follows = [](int n, const Equation& equation) { return n < equation.first; };
    return std::upper_bound(equations_.begin(), equations_.end(), number, follows)[-1].first !=
           number;
  }

  void write_equation(const Equation& equation) {
    around_ = equation.first;
    on_clock_ = clocked_[equation.first];
    if (equation.function == nullptr) {
      out_ << "  " << name(equation.first) << " = ";
      write_expression(type_of(equation.first), options_.expression_size);
    } else {
      for (size_t i = 0; i < equation.function->results.size(); ++i)
        out_ << (i == 0 ? "  (" : ", ") << name(equation.first + static_cast<int>(i));
      out_ << ") = ";
      write_call(*equation.function, options_.expression_size);
    }
    out_ << ";\n";
  }

  void write_call(const Function& function, int size) {
    out_ << function.name << "(";
    const int count = static_cast<int>(function.params.size());
    for (int i = 0; i < count; ++i) {
      if (i > 0) out_ << ", ";
      write_expression(function.params[static_cast<size_t>(i)], size / count);
    }
    out_ << ")";
  }

  int variable_within_reach() {
    const int count = static_cast<int>(types_.size());
    const int reach = options_.reach > 0 ? std::min(options_.reach, count) : count;
    const int first = std::clamp(around_ - reach / 2, 0, count - reach);
    return first + random(reach);
  }

  void write_leaf(int type) {
    static const char* const literals[] = {"true", "7", "0.5", "green", "k_thing"};
    static const char* const constants[] = {"k_bool", "k_int", "k_real", "red", "k_thing"};
    if (one_in(4)) {
      out_ << (one_in(2) ? literals : constants)[type];
      return;
    }
    // A variable within reach, or else an input of the type.
    const int variable = variable_within_reach();
    const int input = -(type == BOOL ? type_count_ : type) - (one_in(2) ? type_count_ : 0);
    const bool fits =
        !options_.sound || (clocked_[variable] == on_clock_ && (in_past_ || variable < around_));
    if (type_of(variable) == type && fits)
      out_ << name(variable);
    else if (!options_.sound || clocked_[input] == on_clock_)
      out_ << name(input);
    else if (on_clock_)
      out_ << "(" << name(input) << " when " << name(clock()) << ")";
    else
      out_ << "(current " << name(input) << ")";
  }

  // From one clock to the other and back; what is written between keeps to its own.
  void write_on_other_clock(int type, int size) {
    const bool outer = std::exchange(on_clock_, !on_clock_);
    out_ << (outer ? "((" : "(current (");
    write_expression(type, size);
    out_ << ")";
    if (outer) out_ << " when " << name(clock());
    out_ << ")";
    on_clock_ = outer;
  }

  // In parentheses wherever precedence could matter. Recursion is as deep as `size` at most.
  void write_expression(int type, int size) {
    if (size <= 0) return write_leaf(type);
    --size;
    // What any type can have.
    switch (random(8)) {
      case 0: {
        const bool outer = std::exchange(in_past_, true);
        write_parts(size, {{"pre (", type}, {")", -1}});
        in_past_ = outer;
        return;
      }
      case 1:
        return write_parts(size, {{"(", type}, {" -> ", type}, {")", -1}});
      case 2:
        return write_parts(size, {{"(if ", BOOL}, {" then ", type}, {" else ", type}, {")", -1}});
      case 3:
        if (!options_.clocks) break;
        if (options_.sound) return write_on_other_clock(type, size);
        out_ << "current (";
        write_expression(type, size);
        out_ << " when " << name(clock()) << ")";
        return;
      case 4:
        if (const Function* function = function_of(type)) return write_call(*function, size);
        break;
      default:
        break;
    }
    switch (type) {
      case BOOL:
        return write_boolean(size);
      case INT:
      case REAL:
        return write_number(type, size);
      default:
        return write_leaf(type);
    }
  }

  void write_boolean(int size) {
    static const char* const connectives[] = {" and ", " or ", " xor ", " => "};
    static const char* const orders[] = {" < ", " <= ", " > ", " >= "};
    const int compared = random(type_count_);
    switch (random(6)) {
      case 0:
        return write_parts(size, {{"not (", BOOL}, {")", -1}});
      case 1:
        return write_parts(size, {{one_in(2) ? "#(" : "nor(", BOOL}, {", ", BOOL}, {")", -1}});
      case 2:
        return write_parts(size,
                           {{"(", compared}, {one_in(2) ? " = " : " <> ", compared}, {")", -1}});
      case 3: {
        const int number = one_in(2) ? INT : REAL;
        return write_parts(size, {{"(", number}, {orders[random(4)], number}, {")", -1}});
      }
      case 4:
        return write_parts(
            size, {{"((", INT}, {", ", compared}, {") = (", INT}, {", ", compared}, {"))", -1}});
      default:
        return write_parts(size, {{"(", BOOL}, {connectives[random(4)], BOOL}, {")", -1}});
    }
  }

  void write_number(int type, int size) {
    static const char* const operators[] = {" + ", " - ", " * ", " / ", " ** ", " div ", " mod "};
    switch (random(5)) {
      case 0:
        return write_parts(size, {{"(- ", type}, {")", -1}});
      case 1:
        return write_parts(
            size, {{type == INT ? "int (" : "real (", type == INT ? REAL : INT}, {")", -1}});
      default:
        return write_parts(
            size, {{"(", type}, {operators[random(type == INT ? 7 : 5)], type}, {")", -1}});
    }
  }

  // Texts, each with the type of the operand after it; -1: there is none.
  struct Part {
    const char* text;
    int type;
  };
  void write_parts(int size, std::initializer_list<Part> parts) {
    const int share = size / static_cast<int>(parts.size() - 1);
    for (const Part& part : parts) {
      out_ << part.text;
      if (part.type >= 0) write_expression(part.type, share);
    }
  }

  const Function* function_of(int type) const {
    if (!options_.functions) return nullptr;
    for (const Function& function : functions)
      if (function.results == std::vector<int>{type} && is_usable(function)) return &function;
    return nullptr;
  }

  const GeneratorOptions& options_;
  std::ostream& out_;
  std::mt19937 random_;
  int type_count_ = 0;
  std::vector<int> types_;  // of the variables
  std::vector<Equation> equations_;
  int around_ = 0;                         // the variable whose equation is being written
  std::unordered_map<int, bool> clocked_;  // the variables and inputs that are, by number
  bool on_clock_ = false;                  // where sound: what is being written runs on the clock
  bool in_past_ = false;                   // within a `pre`
};

}  // namespace

void write_program(const GeneratorOptions& options, std::ostream& out) {
  Generator(options, out).write();
}

std::string program_text(const GeneratorOptions& options) {
  std::ostringstream text;
  write_program(options, text);
  return text.str();
}

GeneratorOptions options_of(unsigned seed) {
  GeneratorOptions options;
  options.seed = seed;
  options.equations = 1 + static_cast<int>(seed * 7 % 30);
  options.expression_size = static_cast<int>(seed % 5 * seed % 60);
  options.long_names = seed % 7 == 0;
  options.tuple_equations = seed % 8 < 4;
  options.clocks = seed % 2 == 0;
  options.types = seed % 3 != 0;
  options.functions = seed % 4 != 0;
  options.assertions = seed % 5 != 0;
  return options;
}
