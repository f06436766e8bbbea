// Expressions as text. Every operand stands in parentheses of its own, so no priorities are needed;
// but for the brief notation.

#include <array>
#include <vector>

#include "foundation/text.h"
#include "model/ecprg.h"
#include "model/walk.h"

using namespace tamsel;

thread_local int Iprint_current_mark;

namespace {

// What the ways to print an expression differ in.
struct ExpNotation {
  const char* printer;  // as the reports of what cannot be written call it
  const char* implementer;
  bool cuts_cycles;
  bool is_brief;  // has no parentheses that the priorities make needless
};

constexpr ExpNotation plain_notation = {"Exp::print_def", "print_def", false, false};
constexpr ExpNotation guarded_notation = {"Exp::Iprint_def", "Exp::Iprint_def", true, false};
constexpr ExpNotation brief_notation = {"Exp::print_brief", "print_brief", false, true};

// How a kind is written. What stands between operands stands before the second and each further
// one.
struct Layout {
  ExpForm form = ExpForm::none;
  PieceRun open;  // after what a node writes of its own
  PieceRun before_second;
  PieceRun before_others;
  PieceRun close;

  // Whether there is nothing to write beside these and the operands.
  bool is_all() const { return form >= ExpForm::prefix && form <= ExpForm::list; }
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

Layout brief_layout_of(const ExpKind& kind) {
  switch (kind.form) {
    case ExpForm::prefix:
      return {kind.form, {kind.keyword, is_letter(kind.keyword[0]) ? " " : ""}, {}, {}, {}};
    case ExpForm::infix: {
      const PieceRun infix = {" ", kind.keyword, " "};
      return {kind.form, {}, infix, infix, {}};
    }
    case ExpForm::conditional:
      return {kind.form, {"if "}, {" then "}, {" else "}, {}};
    default:
      return layout_of(kind);
  }
}

// The layouts by nature; made once.
const Layout* layouts(bool is_brief) {
  static const auto rows = [] {
    std::array<std::array<Layout, EXP_NATURES>, 2> made;
    for (const ExpKind& kind : ExpNatureKeys) {
      made[false][kind.nature] = layout_of(kind);
      made[true][kind.nature] = brief_layout_of(kind);
    }
    return made;
  }();
  return rows[is_brief].data();
}

// What stands around a node of the brief notation outside of all brackets: the priorities of the
// operator before it, whose last operand it begins, and of the one after it, whose first operand
// it ends; 0: none. A reader who comes to an operator takes what was before it for a whole operand
// unless the operator binds tighter.
struct Neighbours {
  int before = 0;
  int after = 0;
  bool is_bracketed = false;
};

bool needs_brackets(const ExpKind& kind, const Neighbours& neighbours) {
  const bool begins_with_operand =
      kind.form != ExpForm::prefix && kind.form != ExpForm::conditional;
  if (kind.priority == 0) return false;
  if (begins_with_operand && kind.priority <= neighbours.before) return true;
  return kind.priority < neighbours.after || (kind.priority == neighbours.after && !kind.chains);
}

// Those of the operand at `place`.
Neighbours neighbours_of_operand(const ExpKind& kind, const Neighbours& neighbours, int place,
                                 int count) {
  if (kind.priority == 0 || (kind.form == ExpForm::conditional && place < 2)) return {};
  Neighbours around = neighbours;
  if (place > 0 || kind.form == ExpForm::prefix) around.before = kind.priority;
  if (place < count - 1) around.after = kind.priority;
  around.is_bracketed = false;
  return around;
}

void* const set_mark = reinterpret_cast<void*>(1);

class ExpPrinter : public ExpVisitor {
 public:
  // With `by_structure`, the root is written by its structure even where it has a name. The names
  // that leaves hold are those in `symbols`, of symbols up to `held_names`.
  ExpPrinter(const ExpNotation& notation, bool by_structure, PtyStream* out, SymbolTable* symbols,
             int held_names)
      : notation_(notation),
        by_structure_(by_structure),
        out_(out),
        symbols_(symbols),
        held_names_(held_names) {
    if (notation.is_brief) around_.reserve(32);
  }

  // Inline as far as names go, which most nodes are.
  bool enter(Exp* exp, Exp* parent, int place) {
    if (takes_tuple(parent)) return place == 0 && enter_arguments();
    if (exp->ident == 0 || (by_structure_ && parent == nullptr)) {
      const Layout& layout = layout_of(exp);
      if (!is_plain_ || !layout.is_all()) return enter_node(exp, parent, place);
      out_->put(layout.open);
      return true;
    }
    out_->put_name(name_of(exp));
    return false;
  }
  void between(Exp* exp, int place) {
    const Layout& layout = layout_of(exp);
    if (!layout.is_all()) return continue_node(exp, place);
    out_->put(place == 1 ? layout.before_second : layout.before_others);
  }
  void leave(Exp* exp, Exp* parent) {
    const Layout& layout = layout_of(exp);
    if (!is_plain_ || !layout.is_all() || takes_tuple(parent)) return leave_node(exp, parent);
    out_->put(layout.close);
  }

 private:
  const char* name_of(const Exp* exp) const {
    const char* held = exp->ident <= held_names_ ? exp->held_name() : nullptr;
    return held != nullptr ? held : symbols_->name(exp->ident);
  }
  // A call writes the members of a tuple that it is given as its own arguments, and nothing else.
  static bool takes_tuple(const Exp* exp) {
    return exp != nullptr && exp->nature == CALL_n && exp->nb_args > 0 &&
           exp->args()[0] != nullptr && exp->args()[0]->nature == TUPLE_n;
  }
  bool is_marked(const Exp* parent) const {
    return notation_.cuts_cycles && !(by_structure_ && parent == nullptr);
  }
  static const ExpKind& kind_of(const Exp* exp) {
    return ExpNatureKeys[exp->nature < EXP_NATURES ? exp->nature : ERROR_n];
  }
  const Layout& layout_of(const Exp* exp) const {
    return layouts_[exp->nature < EXP_NATURES ? exp->nature : ERROR_n];
  }
  bool enter_arguments() {
    if (notation_.is_brief) around_.emplace_back();
    return true;
  }
  bool enter_node(Exp* exp, Exp* parent, int place);
  bool open_brief(Exp* exp, Exp* parent, int place);
  bool open(Exp* exp);
  void continue_node(Exp* exp, int place);
  void leave_node(Exp* exp, Exp* parent);

  void write(int number) { out_->put(number); }
  void write(const Fract& number) { out_->put_uncounted(number.text()); }
  // A negative integer keeps its sign after the minus of its term.
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
  const bool is_plain_ = !notation_.is_brief && !notation_.cuts_cycles;
  const Layout* const layouts_ = layouts(notation_.is_brief);
  PtyStream* const out_;
  SymbolTable* const symbols_;
  const int held_names_;
  std::vector<Neighbours> around_;  // the nodes that are open; of the brief notation alone
};

bool ExpPrinter::enter_node(Exp* exp, Exp* parent, int place) {
  if (notation_.is_brief) return open_brief(exp, parent, place);
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

bool ExpPrinter::open_brief(Exp* exp, Exp* parent, int place) {
  const ExpKind& kind = kind_of(exp);
  Neighbours around;
  if (parent != nullptr)
    around = neighbours_of_operand(kind_of(parent), around_.back(), place, parent->nb_args);
  if (needs_brackets(kind, around)) {
    out_->put_literal("(");
    around = {0, 0, true};
  }
  // Two of them in a row would begin a comment.
  if (exp->nature == UMINUS_n && parent != nullptr && parent->nature == UMINUS_n)
    out_->put_literal(" ");
  if (!open(exp)) return false;
  around_.push_back(around);
  return true;
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
        out_->put_name(symbols_->name(exp->ident));
      else
        EcPrg::ierror("%s : '%s' Exp must have an identifier", notation_.printer,
                      nodekey(exp->nature));
      return false;
    case ExpForm::rational:
      return open_combination(exp, exp->coeffs(), exp->constant());
    case ExpForm::integer:
      return open_combination(exp, exp->ints(), exp->int_param());
    case ExpForm::projection:
      out_->put_literal("proj(");
      out_->put(exp->projection_order());
      break;
    case ExpForm::call:
      out_->put_name(symbols_->name(exp->function_ident()));
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

void ExpPrinter::continue_node(Exp* exp, int place) {
  if (takes_tuple(exp)) return;
  const Layout& layout = layout_of(exp);
  if (layout.form == ExpForm::rational)
    continue_combination(exp->coeffs(), place);
  else if (layout.form == ExpForm::integer)
    continue_combination(exp->ints(), place);
  else
    out_->put(layout.before_others);  // of a call
}

void ExpPrinter::leave_node(Exp* exp, Exp* parent) {
  bool is_bracketed = false;
  if (notation_.is_brief) {
    is_bracketed = around_.back().is_bracketed;
    around_.pop_back();
  }
  if (takes_tuple(parent)) return;
  const Layout& layout = layout_of(exp);
  if (layout.form == ExpForm::rational)
    close_combination(exp->constant());
  else if (layout.form == ExpForm::integer)
    close_combination(exp->int_param());
  else
    out_->put(layout.close);
  if (is_bracketed) out_->put_literal(")");
  if (is_marked(parent)) exp->drop_info(Iprint_current_mark);
}

void print_with(const ExpNotation& notation, bool by_structure, Exp* exp, PtyStream* out,
                SymbolTable* symbols, int held_names = 0) {
  ExpPrinter printer(notation, by_structure, out, symbols, held_names);
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

void Exp::print_brief(PtyStream* out, SymbolTable* symbols) {
  print_with(brief_notation, true, this, out, symbols);
}

void EcPrg::print_own(Exp* e, bool in_brief, PtyStream* out) {
  print_with(in_brief ? brief_notation : plain_notation, true, e, out, symbols, held_names());
}

void EcPrg::print_exp(Exp* e) {
  PtyStream out(80, nullptr);
  Iprint_current_mark = take_a_key();
  e->Iprint(&out, symbols);
}
