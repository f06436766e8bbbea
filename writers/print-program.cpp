// Programs as EC text and as Quarel text. What goes into one put call is never broken across lines.

#include <string>
#include <unordered_map>

#include "model/ecprg.h"

namespace {

// Which clocks declarations show: none, those that are not the base clock, or all.
enum class Clocks { none, sampled, all };

using Names = std::vector<int>;

Names names_in(const IntList* list) {
  Names names;
  for (const int name : tamsel::values_of(list)) names.push_back(name);
  return names;
}

// Calls `write` for each name, and writes `separator` between two of them.
template <class Write>
void put_separated(const Names& names, const char* separator, PtyStream* out, Write write) {
  for (size_t i = 0; i < names.size(); ++i) {
    if (i > 0) out->put_text(separator);
    write(names[i]);
  }
}

}  // namespace

struct EcPrg::Dialect {
  const char* type_end;
  Clocks of_constants;
  Clocks of_variables;
  bool needs_functions;  // an undeclared function ends the text
  bool reads_back;       // as print_source says; expressions are written in brief
  const char* end;
};

const EcPrg::Dialect EcPrg::ec = {".", Clocks::all, Clocks::all, true, false, "tel."};
const EcPrg::Dialect EcPrg::source = {";", Clocks::sampled, Clocks::sampled, false, true, "tel"};
const EcPrg::Dialect EcPrg::quarel = {";", Clocks::none, Clocks::sampled, false, false, "tel"};

// What writes the parts of a program in a dialect.
class EcPrg::Printer {
 public:
  Printer(EcPrg* prg, const Dialect& dialect, PtyStream* out)
      : prg_(prg), symbols_(prg->symbols), dialect_(dialect), out_(out) {
    if (dialect.reads_back) untyped_ = undeclared_type();
  }

  // 1 where it stopped at a function that is not declared.
  unsigned print();
  void put_declarations(const Names& names, Clocks clocks);
  void put_equations(const Names& names);
  void put_assertions(const Names& names);
  void put_function(int symbol, FuncInfo* function);

 private:
  void put_name(int symbol) { out_->put_name(symbols_->name(symbol)); }
  // What the program has of a kind, of which `list` is all.
  Names names_of(NameKind kind, const IntList* list) const {
    return dialect_.reads_back ? prg_->declared_names(kind) : names_in(list);
  }
  std::string undeclared_type() const;
  void put_types(const Names& names);
  void put_section(const char* title, const Names& names, Clocks clocks);
  void put_constants(const Names& names);
  void put_types_and_constants();
  void put_params(FuncInfo* function, IntList* list, const EcType* type, char prefix);
  void put_expression(Exp* e) { prg_->print_own(e, dialect_.reads_back, out_); }

  EcPrg* const prg_;
  SymbolTable* const symbols_;
  const Dialect& dialect_;
  PtyStream* const out_;
  std::string untyped_ = "?";  // stands for the type of what has none
};

// A name of the language that no type has.
std::string EcPrg::Printer::undeclared_type() const {
  std::string word = "_";
  int symbol;
  while (symbols_->find_then_get(&symbol, "%s", word.c_str()) != 0 &&
         prg_->named_type(symbol) != nullptr)
    word += '_';
  return word;
}

void EcPrg::Printer::put_declarations(const Names& names, Clocks clocks) {
  put_separated(names, ";", out_, [=](int symbol) {
    const IdentInfo* ident = prg_->ident(symbol);
    const int clock = ident != nullptr ? ident->clock : 0;
    const bool shows_clock =
        clocks == Clocks::all || (clocks == Clocks::sampled && clock != prg_->true_clock);
    out_->cr();
    if (shows_clock) out_->put_literal("( ");
    put_name(symbol);
    out_->put_literal(" : ");
    out_->put_text(prg_->type_name(ident != nullptr ? ident->type : nullptr, untyped_.c_str()));
    if (!shows_clock) return;
    if (clocks == Clocks::all) {
      out_->put_literal(" ) when ");
    } else {
      out_->put_literal(" )");
      out_->put_literal(" when ");
    }
    put_name(clock);
  });
}

void EcPrg::Printer::put_types(const Names& names) {
  if (names.empty()) return;
  out_->put_literal("type");
  out_->tab();
  out_->cr();
  put_separated(names, ",\n", out_, [=](int symbol) {
    put_name(symbol);
    const EcType* type = dialect_.reads_back ? prg_->named_type(symbol) : nullptr;
    if (type == nullptr || type->nb_enum == 0) return;
    out_->put_literal(" = (");
    for (int rank = type->nb_enum - 1; rank >= 0; --rank) {
      if (type->enum_consts[rank] != nullptr) put_name(type->enum_consts[rank]->name);
      if (rank > 0) out_->put_literal(", ");
    }
    out_->put_literal(")");
  });
  out_->put_text(dialect_.type_end);
  out_->untab();
  out_->cr();
}

// A section of constants or locals. The line after it keeps its indentation, but in EC text that
// reads back.
void EcPrg::Printer::put_section(const char* title, const Names& names, Clocks clocks) {
  out_->put_text(title);
  out_->tab();
  put_declarations(names, clocks);
  out_->put_literal(";");
  if (dialect_.reads_back) out_->untab();
  out_->cr();
  if (!dialect_.reads_back) out_->untab();
}

void EcPrg::Printer::put_constants(const Names& names) {
  if (names.empty()) return;
  if (!dialect_.reads_back) out_->cr();
  put_section("const", names, dialect_.of_constants);
}

// In an order in which they can be read: a type stands before its constants, and an enumeration
// among the constants where its values do.
void EcPrg::Printer::put_types_and_constants() {
  const Names declared = prg_->declared_names(NameKind::type);
  std::unordered_map<int, size_t> place;  // of a type and of each value of one, from 1
  for (size_t i = 0; i < declared.size(); ++i) {
    const EcType* type = prg_->named_type(declared[i]);
    for (int rank = 0; rank < type->nb_enum; ++rank)
      if (type->enum_consts[rank] != nullptr) place[type->enum_consts[rank]->name] = i + 1;
  }
  for (size_t i = 0; i < declared.size(); ++i) place.emplace(declared[i], i + 1);

  // What is read, written in sections that are as long as the order allows.
  size_t read = 0;  // types
  Names section;
  bool holds_types = true;
  const auto write_section = [&] {
    if (holds_types)
      put_types(section);
    else
      put_constants(section);
    section.clear();
  };
  const auto add = [&](bool is_type, int symbol) {
    if (is_type != holds_types) write_section();
    holds_types = is_type;
    section.push_back(symbol);
  };
  const auto read_types = [&](size_t count) {
    for (; read < count; ++read) add(true, declared[read]);
    // Those without values go along: they are before no constant that they should be after.
    for (; read < declared.size() && prg_->named_type(declared[read])->nb_enum == 0; ++read)
      add(true, declared[read]);
  };
  read_types(0);
  const auto place_of = [&](int symbol) {
    const auto known = place.find(symbol);
    return known != place.end() ? known->second : 0;
  };
  for (const int symbol : prg_->declared_names(NameKind::constant)) {
    const IdentInfo* constant = prg_->ident(symbol);
    read_types(place_of(symbol));
    if (constant->type != nullptr) read_types(place_of(constant->type->name));
    if (constant->mode == USR_CONST_mode) add(false, symbol);
  }
  read_types(declared.size());
  write_section();
}

// Parameters that have no names are given some: the prefix and a number.
void EcPrg::Printer::put_params(FuncInfo* function, IntList* list, const EcType* type,
                                char prefix) {
  if (list != nullptr || !dialect_.reads_back || type == nullptr) {
    function->print_params(list, symbols_, out_);
    return;
  }
  int number = 0;
  const Names of_types = type->is_tuple ? names_in(type->members) : Names{type->name};
  put_separated(of_types, "; ", out_, [&](int symbol) {
    const std::string word = prefix + std::to_string(++number);
    out_->put_text(word.c_str());
    out_->put_literal(" : ");
    put_name(symbol);
  });
}

void EcPrg::Printer::put_function(int symbol, FuncInfo* function) {
  out_->cr();
  out_->put_literal("function ");
  put_name(symbol);
  out_->put_literal(" (");
  put_params(function, function->params, function->param_type, 'p');
  out_->put_literal(")");
  out_->cr();
  out_->put_literal("returns (");
  put_params(function, function->results, function->result_type, 'r');
  out_->put_literal(");");
}

void EcPrg::Printer::put_assertions(const Names& names) {
  for (const int symbol : names) {
    const IdentInfo* assertion = prg_->ident(symbol);
    if (assertion == nullptr || assertion->definition == nullptr) continue;
    out_->cr();
    out_->put_literal("assert ");
    put_expression(assertion->definition);
    out_->put_literal(";");
  }
}

// An equation of several names is written once, with the first of them.
void EcPrg::Printer::put_equations(const Names& names) {
  for (const int symbol : names) {
    const IdentInfo* defined = prg_->ident(symbol);
    if (defined == nullptr || defined->definition == nullptr) continue;
    Exp* right = defined->definition;
    if (defined->tuple_names != nullptr && right->projection_order() != 1) continue;
    out_->cr();
    if (defined->tuple_names != nullptr) {
      right = right->args()[0];
      const bool has_brackets = dialect_.reads_back && defined->tuple_names->next != nullptr;
      if (has_brackets) out_->put_literal("(");
      put_separated(names_in(defined->tuple_names), ", ", out_,
                    [=](int member) { put_name(member); });
      if (has_brackets) out_->put_literal(")");
    } else {
      put_name(symbol);
    }
    out_->put_literal(" = ");
    put_expression(right);
    out_->put_literal(";");
  }
}

unsigned EcPrg::Printer::print() {
  if (dialect_.reads_back) {
    put_types_and_constants();
    for (const int symbol : prg_->declared_names(NameKind::function)) {
      put_function(symbol, prg_->function(symbol));
      out_->cr();
    }
  } else {
    put_types(names_in(prg_->user_types));
    put_constants(names_in(prg_->constants));
    for (IntList* list : {prg_->functions, prg_->tuple_functions})
      if (prg_->print_func_list(list, out_) != 0 && dialect_.needs_functions) return 1;
  }
  const Names output_names = names_of(NameKind::output, prg_->outputs);
  const Names local_names = names_of(NameKind::local, prg_->locals);
  out_->cr();
  out_->put_literal("node ");
  put_name(prg_->name);
  out_->put_text(dialect_.reads_back ? " (" : "( ");
  out_->tab();
  put_declarations(names_of(NameKind::input, prg_->inputs), dialect_.of_variables);
  out_->untab();
  out_->cr();
  out_->put_literal(") returns (");
  out_->tab();
  put_declarations(output_names, dialect_.of_variables);
  out_->untab();
  out_->cr();
  out_->put_literal(");");
  out_->cr();
  if (!local_names.empty()) put_section("var", local_names, dialect_.of_variables);
  if (!dialect_.reads_back) out_->cr();
  out_->put_literal("let");
  out_->tab();
  put_assertions(names_in(prg_->assertions));
  put_equations(output_names);
  put_equations(local_names);
  out_->untab();
  out_->cr();
  out_->put_text(dialect_.end);
  return 0;
}

void EcPrg::print_ident_list(IntList* idents, PtyStream* out) {
  Printer(this, quarel, out).put_declarations(names_in(idents), Clocks::none);
}

void EcPrg::print_clocked_ident_list(IntList* idents, PtyStream* out) {
  Printer(this, quarel, out).put_declarations(names_in(idents), Clocks::sampled);
}

void EcPrg::print_all_clocked_ident_list(IntList* idents, PtyStream* out) {
  Printer(this, quarel, out).put_declarations(names_in(idents), Clocks::all);
}

void FuncInfo::print_params(IntList* list, SymbolTable* table, PtyStream* out) {
  for (const IntList* cell = list; cell != nullptr && cell->next != nullptr;
       cell = cell->next->next) {
    if (cell != list) out->put_literal("; ");
    out->put_text(table->name(cell->value));
    out->put_literal(" : ");
    out->put_text(table->name(cell->next->value));
  }
}

int EcPrg::print_func_decl(int symbol, PtyStream* out) {
  FuncInfo* declared = function(symbol);
  if (declared == nullptr) return error("undeclared function `%s`", symbols->name(symbol));
  Printer(this, quarel, out).put_function(symbol, declared);
  return 0;
}

int EcPrg::print_func_list(IntList* list, PtyStream* out) {
  for (const int symbol : tamsel::values_of(list)) {
    if (print_func_decl(symbol, out) != 0) return 1;
    out->cr();
  }
  return 0;
}

void EcPrg::print_assert_def(PtyStream* out) {
  Printer(this, quarel, out).put_assertions(names_in(assertions));
}

void EcPrg::print_ident_def(IntList* idents, PtyStream* out) {
  Printer(this, quarel, out).put_equations(names_in(idents));
}

unsigned EcPrg::print_ec() {
  PtyStream out(80, nullptr);
  return Printer(this, ec, &out).print();
}

void EcPrg::print_source(PtyStream* out) {
  Printer(this, source, out).print();
  out->cr();
}

void EcPrg::print_quarel(PtyStream* out) { Printer(this, quarel, out).print(); }
