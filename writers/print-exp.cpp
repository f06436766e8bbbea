// Expressions as text. Every operand stands in parentheses of its own, so no priorities are needed.

#include <array>

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

// How a kind is written. What stands between operands stands before the second and each further
// one.
struct Layout {
  ExpForm form = ExpForm::none;
  PieceRun open;  // behind what a node writes of its own
  PieceRun before_second;
  PieceRun before_others;
  PieceRun close;
};

Layout layout_of(const ExpKind& kind) {
  const PieceRun comma = {", "};
  switch (kind.form) {
    case ExpForm::prefix:
    case ExpForm::list:
      return {kind.form, {kind.keyword, "("}, comma, comma, {")"}};
    case ExpForm::infix: {
      const PieceRun infix = {")", kind.keyword, "("};
      return {kind.form, {"("}, infix, infix, {")"}};
    }
    case ExpForm::conditional:
      return {kind.form, {" if ("}, {") then ("}, {") else ("}, {")"}};
    case ExpForm::projection:
      return {kind.form, {")("}, comma, comma, {")"}};
    case ExpForm::call:
      return {kind.form, {"("}, comma, comma, {")"}};
    case ExpForm::none:
    case ExpForm::leaf:
    case ExpForm::rational:
    case ExpForm::integer:
      break;
  }
  return {kind.form, {}, {}, {}, {}};
}

// The layouts by nature; made once.
const Layout* layouts() {
  static const auto rows = [] {
    std::array<Layout, EXP_NATURES> made;
    for (const ExpKind& kind : ExpNatureKeys) made[kind.nature] = layout_of(kind);
    return made;
  }();
  return rows.data();
}

void* const set_mark = reinterpret_cast<void*>(1);

class ExpPrinter : public ExpVisitor {
 public:
  // With `by_structure`, the root is written by its structure even where it has a name.
  ExpPrinter(const ExpNotation& notation, bool by_structure, PtyStream* out, SymbolTable* symbols)
      : notation_(notation), by_structure_(by_structure), out_(out), symbols_(symbols) {}

  // Inline as far as names go, which most nodes are.
  bool enter(Exp* exp, Exp* parent, int place) {
    if (takes_tuple(parent)) return place == 0;
    if (exp->ident == 0 || (by_structure_ && parent == nullptr)) return enter_node(exp, parent);
    out_->put_text(symbols_->name(exp->ident));
    return false;
  }
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
  const Layout& layout_of(const Exp* exp) const {
    return layouts_[exp->nature < EXP_NATURES ? exp->nature : ERROR_n];
  }
  bool enter_node(Exp* exp, Exp* parent);
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
  const Layout* const layouts_ = layouts();
  PtyStream* const out_;
  SymbolTable* const symbols_;
};

bool ExpPrinter::enter_node(Exp* exp, Exp* parent) {
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
  const Layout& layout = layout_of(exp);
  switch (layout.form) {
    case ExpForm::none:
      EcPrg::ierror("%s '%s' is not implemented", notation_.implementer, nodekey(exp->nature));
      return false;
    case ExpForm::leaf:
      if (exp->ident != 0)
        out_->put_text(symbols_->name(exp->ident));
      else
        EcPrg::ierror("%s : '%s' Exp must have an identifier", notation_.printer,
                      nodekey(exp->nature));
      return false;
    case ExpForm::rational:
      return open_combination(exp, exp->coeffs.get(), exp->constant);
    case ExpForm::integer:
      return open_combination(exp, exp->ints.get(), exp->int_param);
    case ExpForm::projection:
      out_->put_literal("proj(");
      out_->put(exp->projection_order());
      break;
    case ExpForm::call:
      out_->put_text(symbols_->name(exp->function_ident()));
      break;
    case ExpForm::prefix:
    case ExpForm::infix:
    case ExpForm::conditional:
    case ExpForm::list:
      break;
  }
  out_->put(layout.open);
  return true;
}

void ExpPrinter::between(Exp* exp, int place) {
  if (takes_tuple(exp)) return;
  const Layout& layout = layout_of(exp);
  if (layout.form == ExpForm::rational)
    continue_combination(exp->coeffs.get(), place);
  else if (layout.form == ExpForm::integer)
    continue_combination(exp->ints.get(), place);
  else
    out_->put(place == 1 ? layout.before_second : layout.before_others);
}

void ExpPrinter::leave(Exp* exp, Exp* parent) {
  if (takes_tuple(parent)) return;
  const Layout& layout = layout_of(exp);
  if (layout.form == ExpForm::rational)
    close_combination(exp->constant);
  else if (layout.form == ExpForm::integer)
    close_combination(exp->int_param);
  else
    out_->put(layout.close);
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
