// Expressions as text. Every operand stands in parentheses of its own, so no priorities are needed.

#include "model/ecprg.h"
#include "model/walk.h"

int Iprint_current_mark;

namespace {

// What the two ways to print an expression differ in.
struct ExpNotation {
  const char* printer;  // as the reports of what cannot be written call it
  const char* implementer;
  bool cuts_cycles;
};

constexpr ExpNotation plain_notation = {"Exp::print_def", "print_def", false};
constexpr ExpNotation guarded_notation = {"Exp::Iprint_def", "Exp::Iprint_def", true};

void* const set_mark = reinterpret_cast<void*>(1);

class ExpPrinter : public ExpVisitor {
 public:
  // With `by_structure`, the root is written by its structure even where it has a name.
  ExpPrinter(const ExpNotation& notation, bool by_structure, PtyStream* out, SymbolTable* symbols)
      : notation_(notation), by_structure_(by_structure), out_(out), symbols_(symbols) {}

  bool enter(Exp* exp, Exp* parent, int place);
  void between(Exp* exp, int place);
  void leave(Exp* exp, Exp* parent);

 private:
  // A call writes the members of a tuple that it is given as its own arguments, and nothing else.
  static bool takes_tuple(const Exp* exp) {
    return exp != nullptr && exp->nature == CALL_n && exp->nb_args > 0 && exp->args[0] != nullptr &&
           exp->args[0]->nature == TUPLE_n;
  }
  bool is_marked(const Exp* parent) const {
    return notation_.cuts_cycles && !(by_structure_ && parent == nullptr);
  }
  bool open(Exp* exp);

  void write(int number) { out_->put(number); }
  void write(const Fract& number) { number.print(out_->direct_file()); }
  // A negative integer keeps its sign behind the minus of its term.
  static int magnitude(int number) { return number; }
  static Fract magnitude(const Fract& number) { return abs(number); }

  // The parts of a linear combination.
  template <class Number>
  bool open_combination(const Exp* exp, const Number* coefficients, const Number& constant) {
    if (exp->nb_args == 0) {
      write(constant);
      return false;
    }
    const Number first = coefficients != nullptr ? coefficients[0] : Number(1);
    if (first == -1)
      out_->put_literal("-");
    else if (first != 1)
      write_factor(first);
    return true;
  }
  template <class Number>
  void continue_combination(const Number* coefficients, int place) {
    const Number next = coefficients != nullptr ? coefficients[place] : Number(1);
    out_->put_text(next < 0 ? " -" : " +");
    if (next != 1 && next != -1) write_factor(magnitude(next));
  }
  template <class Number>
  void close_combination(const Number& constant) {
    if (constant == 0) return;
    out_->put_text(constant < 0 ? " " : " +");
    write(constant);
  }
  template <class Number>
  void write_factor(const Number& number) {
    write(number);
    out_->put_literal("*");
  }

  const ExpNotation& notation_;
  const bool by_structure_;
  PtyStream* const out_;
  SymbolTable* const symbols_;
};

bool ExpPrinter::enter(Exp* exp, Exp* parent, int place) {
  if (takes_tuple(parent)) return place == 0;
  if (exp->ident != 0 && !(by_structure_ && parent == nullptr)) {
    out_->put_text(symbols_->name(exp->ident));
    return false;
  }
  if (is_marked(parent)) {
    if (exp->get_int_info(Iprint_current_mark) != 0) {
      out_->put_literal("WARNING : RECURSION ");
      return false;
    }
    exp->put_info(Iprint_current_mark, set_mark);
  }
  if (open(exp)) return true;
  if (is_marked(parent)) exp->drop_info(Iprint_current_mark);
  return false;
}

// Writes what stands before the operands. False where nothing follows.
bool ExpPrinter::open(Exp* exp) {
  const ExpKind* kind = exp_kind(exp->nature);
  switch (kind != nullptr ? kind->form : ExpForm::none) {
    case ExpForm::none:
      EcPrg::ierror("%s '%s' is not implemented", notation_.implementer, nodekey(exp->nature));
      return false;
    case ExpForm::leaf:
      if (exp->ident != 0)
        out_->put_text(symbols_->name(exp->ident));
      else
        EcPrg::ierror("%s : '%s' Exp must have an identifier", notation_.printer, kind->name);
      return false;
    case ExpForm::infix:
      out_->put_literal("(");
      return true;
    case ExpForm::prefix:
    case ExpForm::list:
      out_->put_text(kind->keyword);
      out_->put_literal("(");
      return true;
    case ExpForm::conditional:
      out_->put_literal(" if (");
      return true;
    case ExpForm::projection:
      out_->put_literal("proj(");
      out_->put(exp->projection_order());
      out_->put_literal(")(");
      return true;
    case ExpForm::call:
      out_->put_text(symbols_->name(exp->function_ident()));
      out_->put_literal("(");
      return true;
    case ExpForm::rational:
      return open_combination(exp, exp->coeffs.get(), exp->constant);
    case ExpForm::integer:
      return open_combination(exp, exp->ints.get(), exp->int_param);
  }
  return false;
}

void ExpPrinter::between(Exp* exp, int place) {
  if (takes_tuple(exp)) return;
  switch (exp_kind(exp->nature)->form) {
    case ExpForm::infix:
      out_->put_literal(")");
      out_->put_text(opkey(exp->nature));
      out_->put_literal("(");
      return;
    case ExpForm::conditional:
      out_->put_text(place == 1 ? ") then (" : ") else (");
      return;
    case ExpForm::rational:
      return continue_combination(exp->coeffs.get(), place);
    case ExpForm::integer:
      return continue_combination(exp->ints.get(), place);
    default:
      out_->put_literal(", ");
  }
}

void ExpPrinter::leave(Exp* exp, Exp* parent) {
  if (takes_tuple(parent)) return;
  switch (exp_kind(exp->nature)->form) {
    case ExpForm::rational:
      close_combination(exp->constant);
      break;
    case ExpForm::integer:
      close_combination(exp->int_param);
      break;
    default:
      out_->put_literal(")");
  }
  if (is_marked(parent)) exp->drop_info(Iprint_current_mark);
}

void print_with(const ExpNotation& notation, bool by_structure, Exp* exp, PtyStream* out,
                SymbolTable* symbols) {
  ExpPrinter printer(notation, by_structure, out, symbols);
  walk(exp, printer);
}

}  // namespace

void Exp::print(PtyStream* out, SymbolTable* symbols) {
  print_with(plain_notation, false, this, out, symbols);
}

void Exp::print_def(PtyStream* out, SymbolTable* symbols) {
  print_with(plain_notation, true, this, out, symbols);
}

void Exp::Iprint(PtyStream* out, SymbolTable* symbols) {
  print_with(guarded_notation, false, this, out, symbols);
}

void Exp::Iprint_def(PtyStream* out, SymbolTable* symbols) {
  print_with(guarded_notation, true, this, out, symbols);
}

void EcPrg::print_exp(Exp* e) {
  PtyStream out(80, nullptr);
  Iprint_current_mark = take_a_key();
  e->Iprint(&out, symbols);
}
