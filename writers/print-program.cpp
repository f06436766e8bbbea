// Programs as EC text and as Quarel text. What goes into one put call is never broken across lines.

#include "model/ecprg.h"

namespace {

// Which clocks declarations show: none, those that are not the base clock, or all.
enum class Clocks { none, sampled, all };

}  // namespace

struct EcPrg::Dialect {
  const char* type_end;
  Clocks of_constants;
  Clocks of_variables;
  bool needs_functions;  // an undeclared function ends the text
  const char* end;
};

namespace {

// Calls `write` for each name, and writes `separator` between two of them.
template <class Write>
void put_separated(IntList* list, const char* separator, PtyStream* out, Write write) {
  for (const IntList* cell = list; cell != nullptr; cell = cell->next) {
    if (cell != list) out->put_text(separator);
    write(cell->value);
  }
}

void put_declarations(EcPrg* prg, IntList* idents, Clocks clocks, PtyStream* out) {
  put_separated(idents, ";", out, [=](int symbol) {
    const IdentInfo* ident = prg->ident(symbol);
    const int clock = ident != nullptr ? ident->clock : 0;
    const bool shows_clock =
        clocks == Clocks::all || (clocks == Clocks::sampled && clock != prg->true_clock);
    out->cr();
    if (shows_clock) out->put_literal("( ");
    out->put_text(prg->symbols->name(symbol));
    out->put_literal(" : ");
    out->put_text(prg->type_name(ident != nullptr ? ident->type : nullptr, "?"));
    if (!shows_clock) return;
    if (clocks == Clocks::all) {
      out->put_literal(" ) when ");
    } else {
      out->put_literal(" )");
      out->put_literal(" when ");
    }
    out->put_text(prg->symbols->name(clock));
  });
}

}  // namespace

void EcPrg::print_ident_list(IntList* idents, PtyStream* out) {
  put_declarations(this, idents, Clocks::none, out);
}

void EcPrg::print_clocked_ident_list(IntList* idents, PtyStream* out) {
  put_declarations(this, idents, Clocks::sampled, out);
}

void EcPrg::print_all_clocked_ident_list(IntList* idents, PtyStream* out) {
  put_declarations(this, idents, Clocks::all, out);
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
  out->cr();
  out->put_literal("function ");
  out->put_text(symbols->name(symbol));
  out->put_literal(" (");
  declared->print_params(declared->params, symbols, out);
  out->put_literal(")");
  out->cr();
  out->put_literal("returns (");
  declared->print_params(declared->results, symbols, out);
  out->put_literal(");");
  return 0;
}

int EcPrg::print_func_list(IntList* list, PtyStream* out) {
  for (const IntList* cell = list; cell != nullptr; cell = cell->next) {
    if (print_func_decl(cell->value, out) != 0) return 1;
    out->cr();
  }
  return 0;
}

void EcPrg::print_assert_def(PtyStream* out) {
  for (const IntList* cell = assertions; cell != nullptr; cell = cell->next) {
    const IdentInfo* assertion = ident(cell->value);
    if (assertion == nullptr || assertion->definition == nullptr) continue;
    out->cr();
    out->put_literal("assert ");
    assertion->definition->print_def(out, symbols);
    out->put_literal(";");
  }
}

// An equation of several names is written once, with the first of them.
void EcPrg::print_ident_def(IntList* idents, PtyStream* out) {
  for (const IntList* cell = idents; cell != nullptr; cell = cell->next) {
    const IdentInfo* defined = ident(cell->value);
    if (defined == nullptr || defined->definition == nullptr) continue;
    Exp* right = defined->definition;
    if (defined->tuple_names != nullptr && right->projection_order() != 1) continue;
    out->cr();
    if (defined->tuple_names != nullptr) {
      right = right->args[0];
      put_separated(defined->tuple_names, ", ", out,
                    [=](int symbol) { out->put_text(symbols->name(symbol)); });
    } else {
      out->put_text(symbols->name(cell->value));
    }
    out->put_literal(" = ");
    right->print_def(out, symbols);
    out->put_literal(";");
  }
}

unsigned EcPrg::print_program(const Dialect& dialect, PtyStream* out) {
  if (user_types != nullptr) {
    out->put_literal("type");
    out->tab();
    out->cr();
    put_separated(user_types, ",\n", out,
                  [=](int symbol) { out->put_text(symbols->name(symbol)); });
    out->put_text(dialect.type_end);
    out->untab();
    out->cr();
  }
  // The line after a section of constants or locals keeps the section's indentation.
  if (constants != nullptr) {
    out->cr();
    out->put_literal("const");
    out->tab();
    put_declarations(this, constants, dialect.of_constants, out);
    out->put_literal(";");
    out->cr();
    out->untab();
  }
  for (IntList* list : {functions, tuple_functions})
    if (print_func_list(list, out) != 0 && dialect.needs_functions) return 1;

  out->cr();
  out->put_literal("node ");
  out->put_text(symbols->name(name));
  out->put_literal("( ");
  out->tab();
  put_declarations(this, inputs, dialect.of_variables, out);
  out->untab();
  out->cr();
  out->put_literal(") returns (");
  out->tab();
  put_declarations(this, outputs, dialect.of_variables, out);
  out->untab();
  out->cr();
  out->put_literal(");");
  out->cr();
  if (locals != nullptr) {
    out->put_literal("var");
    out->tab();
    put_declarations(this, locals, dialect.of_variables, out);
    out->put_literal(";");
    out->cr();
    out->untab();
  }
  out->cr();
  out->put_literal("let");
  out->tab();
  print_assert_def(out);
  print_ident_def(outputs, out);
  print_ident_def(locals, out);
  out->untab();
  out->cr();
  out->put_text(dialect.end);
  return 0;
}

unsigned EcPrg::print_ec() {
  static const Dialect ec = {".", Clocks::all, Clocks::all, true, "tel."};
  PtyStream out(80, nullptr);
  return print_program(ec, &out);
}

void EcPrg::print_quarel(PtyStream* out) {
  static const Dialect quarel = {";", Clocks::none, Clocks::sampled, false, "tel"};
  print_program(quarel, out);
}
