#include "tests/calls.h"

#include <algorithm>
#include <climits>
#include <map>
#include <stdexcept>
#include <vector>

#include "tests/compare.h"

namespace {

// Ends the calls where the library and the model differ.
#define REQUIRE(...) \
  if (!(__VA_ARGS__)) throw std::logic_error(#__VA_ARGS__)

// The bytes of an input as numbers; 0 where they have ended.
class Choices {
 public:
  Choices(const uint8_t* data, size_t size) : at_(data), end_(data + size) {}

  bool left() const { return at_ != end_; }
  int below(int n) { return at_ == end_ ? 0 : *at_++ % n; }
  bool yes() { return below(2) == 1; }
  // Short texts of few letters, and now and then one that nearly fills a page or a block.
  std::string text(const std::string& letters) {
    std::string text;
    for (int length = below(12); length > 0; --length)
      text += letters[static_cast<size_t>(below(static_cast<int>(letters.size())))];
    static const size_t lengths[] = {100, 1500, 16375, 65500};
    return below(16) == 15 ? text + std::string(lengths[below(4)], 'x') : text;
  }

 private:
  const uint8_t* at_;
  const uint8_t* end_;
};

// --- A symbol table is a list of texts.

void call_symbols(Choices choices) {
  SymbolTable table;
  std::vector<std::string> names;
  while (choices.left()) {
    const std::string text = choices.text("\x7f\x80\xff");
    const auto found = std::find(names.begin(), names.end(), text);
    const int known = found == names.end() ? 0 : static_cast<int>(found - names.begin()) + 1;
    const int expected = known != 0 ? known : static_cast<int>(names.size()) + 1;
    int number = -1;
    switch (choices.below(4)) {
      case 0:
        REQUIRE(table.find_text(text.c_str()) == known);
        continue;
      case 1:
        REQUIRE(table.find_then_get(&number, "%s", text.c_str()) == (known != 0) &&
                number == (known != 0 ? known : -1));
        continue;
      case 2:
        names.resize(std::min(names.size(), static_cast<size_t>(choices.below(256))));
        table.cut_back(static_cast<int>(names.size()));
        break;
      default:
        REQUIRE(table.find_then_add(&number, "%s", text.c_str()) == (known != 0) &&
                number == expected);
        if (known == 0) names.push_back(text);
    }
    REQUIRE(table.nb_symbols == static_cast<int>(names.size()));
    table.init_iterate();
    for (const std::string& name : names) REQUIRE(table.iterate() == name);
    std::vector<bool> taken(static_cast<size_t>(table.tape->hash_size));
    for (const std::string& name : names)
      taken[static_cast<size_t>(table.tape->hash_code(name.c_str()))] = true;
    REQUIRE(table.tape->occupied() == std::count(taken.begin(), taken.end(), true));
  }
}

// --- A stream is a text and a column.

class SlowStream {
 public:
  SlowStream(int width, const std::string& tab) : width_(width), tab_(tab) {}

  void piece(const std::string& text) {
    column += static_cast<long long>(text.size());
    if (column >= width_) {
      written += '\n';
      column = static_cast<long long>(text.size());
    }
    written += text;
  }
  void end_line(bool indented) {
    written += '\n';
    column = 0;
    for (int i = 0; indented && i < depth; ++i, column += static_cast<long long>(tab_.size()))
      written += tab_;
  }
  void put(const std::string& text) {
    std::string rest;
    for (const char c : text) {
      if (c != '\n' && c != '\f') {
        rest += c;
        continue;
      }
      piece(rest);
      rest.clear();
      end_line(c == '\n');
    }
    if (!rest.empty()) piece(rest);
  }

  void copy(const std::string& text) {
    for (const char c : text) c == '\n' || c == '\f' ? end_line(c == '\n') : written.push_back(c);
  }

  std::string written;
  long long column = 0;
  int depth = 0;

 private:
  const int width_;
  const std::string tab_;
};

void call_stream(Choices choices) {
  const int width = choices.below(100);
  const std::string tab(static_cast<size_t>(choices.below(6)), '.');
  SlowStream slow(width, tab);
  TmpPtyStream stream(width, tab.c_str());
  const tamsel::PieceRun run = {") ", "", "and", "("};
  while (choices.left()) {
    switch (choices.below(10)) {
      case 8:
        slow.column = stream.column = choices.yes() ? INT_MAX : choices.below(100);
        break;
      case 9: {
        const std::string text = choices.text("a\n\f\xff");
        TmpPtyStream inner(80, nullptr);
        inner.put_uncounted(text);
        stream.put(&inner);
        slow.copy(text);
        break;
      }
      case 0:
        stream.tab();
        ++slow.depth;
        break;
      case 1:
        if (slow.depth == 0) break;
        stream.untab();
        --slow.depth;
        break;
      case 2:
        stream.cr();
        slow.end_line(true);
        break;
      case 3:
        stream.lf();
        slow.end_line(false);
        break;
      case 4:
        for (const char* piece : {") ", "and", "("}) slow.piece(piece);
        stream.put(run);
        break;
      case 5:
        slow.piece("function ");
        stream.put_literal("function ");
        break;
      case 6:
        if (choices.yes()) {
          stream.write_in_blocks();
        } else {
          stream.put_uncounted("!");
          slow.written += '!';
        }
        break;
      default: {
        const std::string text = choices.text("a \n\f%");
        stream.put("%s", text.c_str());
        slow.put(text);
      }
    }
    REQUIRE(stream.column == slow.column);
  }
  const std::string copy = written([&](PtyStream* out) { out->put(&stream); });
  REQUIRE(copy == slow.written);
}

// --- A registry is a map of records, and lists of names.

struct Record {
  bool is_function = false;
  IdentMode mode = INPUT_mode;
  EcType* type = nullptr;
  int order = -1;  // of a function its index
  int value = 0;
  bool defined = true;
  bool in_tuple = false;
};

struct List {
  IntList* EcPrg::*names;
  int EcPrg::*count;
  std::vector<int> expected;
};

class Registry {
 public:
  explicit Registry(Choices choices) : choices_(choices) {
    for (const char* name : {"a", "b", "c", "d", "e", "f", "7", "08", "__assert_0", "__assert_1"})
      names_.push_back(symbols_.add_text(name));
    for (const char* name : {"bool", "int", "real"})
      named_[names_.emplace_back(symbols_.add_text(name))] =
          prg_.get_named_type(symbols_.add_text(name));
    for (const auto& [name, type] : named_) types_.push_back(type);
  }
  void play() {
    for (int calls = 0; choices_.left() && calls < 1000; ++calls) {
      call();
      compare();
    }
  }

 private:
  // The first four as in IdentMode.
  enum { INPUTS, OUTPUTS, LOCALS, CONSTANTS, FUNCTIONS, TUPLE_FUNCTIONS, ASSERTIONS, TYPES };

  int name() {
    return names_[static_cast<size_t>(choices_.below(static_cast<int>(names_.size())))];
  }
  std::vector<int> some_names() {
    std::vector<int> some;
    for (int left = 1 + choices_.below(4); left > 0; --left) some.push_back(name());
    return some;
  }
  EcType* type() {
    return types_[static_cast<size_t>(choices_.below(static_cast<int>(types_.size())))];
  }
  static IntList* list_of(const std::vector<int>& values) {
    return new IntList(values.data(), static_cast<int>(values.size()));
  }
  // Enters `name` into a list and returns its place there.
  int enter(int list, int name, bool at_front = false) {
    std::vector<int>& expected = lists_[list].expected;
    expected.insert(at_front ? expected.begin() : expected.end(), name);
    return static_cast<int>(expected.size()) - 1;
  }
  Record& declare(int name, IdentMode mode, EcType* type) {
    Record& record = records_[name] = Record();
    record.mode = mode;
    record.type = type;
    return record;
  }
  bool is_definable(int name) const {
    const auto record = records_.find(name);
    return record != records_.end() && !record->second.is_function &&
           record->second.mode != ASSERT_mode;
  }

  void call() {
    const int symbol = name();
    EcType* const its_type = type();
    const int clock = prg_.true_clock;
    switch (const int kind = choices_.below(13); kind) {
      case INPUTS:
      case OUTPUTS:
      case LOCALS:
      case CONSTANTS: {
        const bool at_front = kind == OUTPUTS && choices_.yes();
        if (kind == INPUTS) prg_.add_input(symbol, its_type, clock);
        if (kind == OUTPUTS) prg_.add_output(symbol, its_type, clock, at_front);
        if (kind == LOCALS) prg_.add_local(symbol, its_type, clock);
        if (kind == CONSTANTS) prg_.add_usr_const(symbol, its_type, clock);
        Record& record = declare(symbol, static_cast<IdentMode>(kind), its_type);
        (kind == CONSTANTS ? record.value : record.order) = enter(kind, symbol, at_front);
        record.defined = kind == INPUTS || kind == CONSTANTS;
        break;
      }
      case 4: {
        prg_.add_usr_func(symbol, type(), its_type, nullptr, nullptr);
        Record& record = declare(symbol, INPUT_mode, its_type);
        record.is_function = true;
        const bool several = its_type != nullptr && its_type->is_tuple;
        record.order = enter(several ? TUPLE_FUNCTIONS : FUNCTIONS, symbol);
        break;
      }
      case 5:
        declare_type(symbol);
        break;
      case 6:
        define_type(some_names());
        break;
      case 7: {
        const bool good = is_definable(symbol);
        const bool replaces = good && !records_[symbol].in_tuple;
        REQUIRE((prg_.define_ident(symbol, prg_.nil_exp) != nullptr) == replaces);
        if (good) records_[symbol].defined = true;
        break;
      }
      case 8:
        define_tuple(some_names());
        break;
      case 9: {
        const std::string generated =
            "__assert_" + std::to_string(lists_[ASSERTIONS].expected.size());
        prg_.add_assertion(prg_.true_exp);
        const int number = symbols_.find_text(generated.c_str());
        REQUIRE(number != 0);
        declare(number, ASSERT_mode, prg_.bool_type);
        enter(ASSERTIONS, number);
        break;
      }
      case 10:
        make_literal(symbol, true);
        break;
      case 11: {
        const int rank = choices_.below(6) - 1;
        prg_.add_enum_const(symbol, its_type, clock, rank);
        Record& record = declare(symbol, ENUM_CONST_mode, its_type);
        record.order = rank;
        record.value = enter(CONSTANTS, symbol);
        break;
      }
      default: {
        const EcPrg::Mark before = prg_.mark();
        for (const int literal : some_names()) make_literal(literal, false);
        Exp* operands[] = {prg_.true_exp, prg_.nil_exp};
        prg_.exp_heap.node(AND_n, 2, operands)->put_info(1, this);
        prg_.enter(new Exp(NOT_n, prg_.nil_exp))->put_info(1, this);
        std::vector<int> members = some_names();
        if (members.size() > 1) prg_.define_type(members.data(), static_cast<int>(members.size()));
        prg_.roll_back(before);
        REQUIRE(prg_.exp_heap.size() == before.expressions.size);
        REQUIRE(prg_.types == before.types);
      }
    }
  }

  void declare_type(int symbol) {
    const std::vector<int> constants = some_names();
    const bool is_new = named_.count(symbol) == 0, is_enum = choices_.yes();
    if (is_enum) {
      const std::unique_ptr<IntList> list(list_of(constants));
      prg_.add_usr_type(symbol, list.get());
    } else {
      prg_.add_usr_type(symbol);
    }
    if (!is_new) return;
    EcType* made = prg_.types;
    REQUIRE(made != nullptr && !made->is_tuple && made->name == symbol);
    REQUIRE(made->number == enter(TYPES, symbol) + 1);
    types_.push_back(named_[symbol] = made);
    int rank = static_cast<int>(constants.size());
    for (const int constant : constants) {
      if (!is_enum) break;
      Record& record = declare(constant, ENUM_CONST_mode, made);
      record.order = --rank;
      record.value = enter(CONSTANTS, constant);
      REQUIRE(made->enum_const(rank)->name == constant);
    }
  }

  void define_type(const std::vector<int>& members) {
    std::unique_ptr<IntList> list(list_of(members));
    EcType* found = prg_.define_type(list.get());
    if (members.size() == 1) {
      const auto named = named_.find(members[0]);
      REQUIRE(found == (named != named_.end() ? named->second : nullptr));
      return;
    }
    EcType*& known = tuples_[members];
    REQUIRE(found != nullptr && (known == nullptr || known == found));
    REQUIRE((found->members == list.get()) == (known == nullptr));
    if (known != nullptr) return;
    list.release();
    types_.push_back(known = found);
    for (size_t i = 0; i <= members.size(); ++i)
      REQUIRE(found->member(static_cast<int>(i) + 1) == (i < members.size() ? members[i] : 0));
  }

  void define_tuple(const std::vector<int>& defined) {
    bool good = true;
    for (size_t i = 0; i < defined.size(); ++i)
      good = good && is_definable(defined[i]) && !records_[defined[i]].defined &&
             std::count(defined.begin(), defined.end(), defined[i]) == 1;
    const IdentInfo* last = prg_.define_tuple(list_of(defined), prg_.nil_exp);
    REQUIRE(last == (good ? prg_.ident(defined.back()) : nullptr));
    for (size_t i = 0; good && i < defined.size(); ++i) {
      records_[defined[i]].defined = records_[defined[i]].in_tuple = true;
      REQUIRE(prg_.ident(defined[i])->definition->projection_order() == static_cast<int>(i) + 1);
    }
  }

  void make_literal(int symbol, bool stays) {
    const IdentInfo* known = prg_.ident(symbol);
    Exp* leaf = prg_.get_int_const(symbol);
    REQUIRE(known == nullptr || leaf == known->ident_exp);
    if (known != nullptr || !stays) return;
    declare(symbol, INT_CONST_mode, prg_.int_type).value = std::atoi(symbols_.name(symbol));
  }

  void compare() {
    for (const int symbol : names_) {
      const auto found = records_.find(symbol);
      const IdentInfo* ident = prg_.ident(symbol);
      const FuncInfo* function = prg_.function(symbol);
      if (found == records_.end()) {
        REQUIRE(ident == nullptr && function == nullptr);
        continue;
      }
      const Record& record = found->second;
      REQUIRE((function != nullptr) == record.is_function &&
              (ident != nullptr) != record.is_function);
      if (function != nullptr) {
        REQUIRE(function->index == record.order && function->result_type == record.type);
        continue;
      }
      const ExpNature leaf = record.mode == INPUT_mode                                 ? INPUT_n
                             : record.mode == OUTPUT_mode || record.mode == LOCAL_mode ? ECREF_n
                                                                                       : CONST_n;
      REQUIRE(record.mode == ASSERT_mode || ident->ident_exp->nature == leaf);
      REQUIRE(ident->mode == record.mode && ident->type == record.type &&
              ident->order == record.order && ident->value == record.value);
      REQUIRE((ident->definition != nullptr) == record.defined &&
              (ident->tuple_names != nullptr) == record.in_tuple);
    }
    for (const List& list : lists_) {
      const IntList* cell = prg_.*list.names;
      for (const int expected : list.expected) {
        REQUIRE(cell != nullptr && cell->value == expected);
        cell = cell->next;
      }
      REQUIRE(cell == nullptr && prg_.*list.count == static_cast<int>(list.expected.size()));
    }
  }

  Choices choices_;
  LoadedProgram program_;
  EcPrg& prg_ = program_.prg;
  SymbolTable& symbols_ = program_.symbols;
  std::vector<int> names_;  // that calls mention
  std::map<int, Record> records_;
  std::map<int, EcType*> named_;
  std::map<std::vector<int>, EcType*> tuples_;
  std::vector<EcType*> types_ = {nullptr};
  List lists_[8] = {{&EcPrg::inputs, &EcPrg::nb_inputs, {}},
                    {&EcPrg::outputs, &EcPrg::nb_outputs, {}},
                    {&EcPrg::locals, &EcPrg::nb_locals, {}},
                    {&EcPrg::constants, &EcPrg::nb_constants, {}},
                    {&EcPrg::functions, &EcPrg::nb_functions, {}},
                    {&EcPrg::tuple_functions, &EcPrg::nb_tuple_functions, {}},
                    {&EcPrg::assertions, &EcPrg::nb_assertions, {}},
                    {&EcPrg::user_types, &EcPrg::nb_user_types, {}}};
};

}  // namespace

void play_calls(const uint8_t* data, size_t size) {
  Choices choices(data, size);
  switch (choices.below(3)) {
    case 0:
      return call_symbols(choices);
    case 1:
      return call_stream(choices);
    default:
      Registry(choices).play();
  }
}
