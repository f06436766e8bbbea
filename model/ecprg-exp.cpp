// Types and clocks of expressions.

#include <vector>

#include "model/ecprg.h"
#include "model/walk.h"

using namespace tamsel;

namespace {

// Types a tree from its leaves up and stops at the first node that is ill-typed.
class TypeChecker : public ExpVisitor {
 public:
  explicit TypeChecker(EcPrg* prg) : prg_(prg) {}

  bool enter(Exp* exp, Exp*, int) { return !failed_ && exp->type == nullptr; }
  // A tuple's members are looked at one after another: the first that is none ends the typing.
  void between(Exp* exp, int place) {
    if (exp->nature == TUPLE_n && !failed_) failed_ = !is_member(exp, place - 1);
  }
  void leave(Exp* exp, Exp*) {
    if (failed_) return;
    exp->type = typed(exp);
    failed_ = exp->type == nullptr;
  }

 private:
  // The type of a node whose operands are typed, or null with a message.
  EcType* typed(Exp* exp);
  bool is_member(Exp* tuple, int place);
  EcType* tuple(Exp* exp);
  EcType* call(Exp* exp);

  static EcType* type_of(const Exp* exp, int place) {
    const bool there = place < exp->nb_args && exp->args()[place] != nullptr;
    return there ? exp->args()[place]->type : nullptr;
  }
  static bool all_are(const Exp* exp, const EcType* type) {
    for (int i = 0; i < exp->nb_args; ++i)
      if (type_of(exp, i) != type) return false;
    return true;
  }
  bool is_number(const EcType* type) const {
    return type == prg_->int_type || type == prg_->real_type;
  }
  // `type` where the operands are good, else null with the message for one operand or several.
  EcType* if_good(bool good, EcType* type, const Exp* exp) {
    if (!good) prg_->error("type error: bad '%s' operand", nodekey(exp->nature));
    return good ? type : nullptr;
  }
  EcType* if_all_good(bool good, EcType* type, const char* what) {
    if (!good) prg_->error("type error: bad '%s' operands", what);
    return good ? type : nullptr;
  }

  EcPrg* prg_;
  bool failed_ = false;
  std::vector<int> members_;  // of the tuple that is looked at; kept for the next one
};

EcType* TypeChecker::typed(Exp* exp) {
  if (exp->nature > EXP_NATURES) return nullptr;
  const ExpKind* kind = exp_kind(exp->nature);
  EcType* boolean = prg_->bool_type;
  EcType* t0 = type_of(exp, 0);
  EcType* t1 = type_of(exp, 1);
  const bool alike = t0 != nullptr && t0 == t1;
  switch (kind != nullptr ? kind->typing : ExpTyping::unexpected) {
    case ExpTyping::unexpected:
      prg_->error("%s", "type error: unexpected '$s'");
      return nullptr;
    case ExpTyping::first:
      return t0;
    case ExpTyping::booleans:
      return if_all_good(all_are(exp, boolean), boolean, kind->name);
    case ExpTyping::number:
      return if_good(is_number(t0), t0, exp);
    case ExpTyping::int_to_real:
      return if_good(t0 == prg_->int_type, prg_->real_type, exp);
    case ExpTyping::real_to_int:
      return if_good(t0 == prg_->real_type, prg_->int_type, exp);
    case ExpTyping::alike:
      return if_all_good(alike, t0, kind->name);
    case ExpTyping::sampled:
      return if_all_good(t1 == boolean, t0, kind->name);
    case ExpTyping::compared:
      return if_all_good(alike, boolean, kind->name);
    case ExpTyping::ordered:
      return if_all_good(alike && is_number(t0), boolean, kind->name);
    case ExpTyping::integers:
      return if_all_good(alike && t0 == prg_->int_type, t0, kind->name);
    case ExpTyping::arithmetic:
      return if_all_good(alike && is_number(t0), t0, kind->name);
    case ExpTyping::conditional:
      return if_all_good(t0 == boolean && t1 != nullptr && t1 == type_of(exp, 2), t1, kind->name);
    case ExpTyping::tuple:
      return tuple(exp);
    case ExpTyping::call:
      return call(exp);
    case ExpTyping::not_supported:
      prg_->error("sorry, type of '%s' not yet implemented", kind->name);
      return nullptr;
  }
  return nullptr;
}

// Tuples do not nest; asking for the name of a nested one is an internal misuse, and reported as
// such.
bool TypeChecker::is_member(Exp* tuple, int place) {
  const EcType* type = type_of(tuple, place);
  if (type == nullptr) return false;
  if (!type->is_tuple) return true;
  if (!prg_->silent) tuple->function_ident();
  if_all_good(false, nullptr, nodekey(tuple->nature));
  return false;
}

// `between` has looked at the members but the last.
EcType* TypeChecker::tuple(Exp* exp) {
  if (exp->nb_args == 0) return if_all_good(false, nullptr, nodekey(exp->nature));
  if (!is_member(exp, exp->nb_args - 1)) return nullptr;
  members_.clear();
  for (int i = 0; i < exp->nb_args; ++i) members_.push_back(type_of(exp, i)->name);
  return prg_->define_type(members_.data(), exp->nb_args);
}

EcType* TypeChecker::call(Exp* exp) {
  const char* name = prg_->symbols->name(exp->function_ident());
  const FuncInfo* function = prg_->function(exp->function_ident());
  if (function == nullptr) {
    prg_->error("error: undeclared function '%s'", name);
    return nullptr;
  }
  const EcType* given = type_of(exp, 0);
  if (given == nullptr || given != function->param_type) return if_all_good(false, nullptr, name);
  if (function->result_type == nullptr) prg_->error("function '%s' has no known result type", name);
  return function->result_type;
}

}  // namespace

EcType* EcPrg::type(Exp* e) {
  if (e->type != nullptr) return e->type;
  TypeChecker checker(this);
  walk(e, checker);
  return e->type;
}

EcType* EcPrg::type_of_operands(Exp* e) {
  if (e->nb_args == 0) return type(e);
  EcType* const known = e->type;
  e->type = nullptr;
  EcType* found = nullptr;
  try {
    found = type(e);
  } catch (...) {
    e->type = known;
    throw;
  }
  e->type = known;
  return found;
}

int EcPrg::clock(Exp* e) {
  std::vector<Exp*> waiting;  // each takes the clock of the next
  while (e->clock == -1 && e->nature != WHEN_n && e->nature != CURRENT_n && e->nb_args > 0) {
    waiting.push_back(e);
    e = e->args()[0];
  }
  if (e->clock == -1) {
    if (e->nature == WHEN_n && e->nb_args == 2) {
      e->clock = e->args()[1]->ident;
      if (e->clock == 0 && !silent) ierror("The clock operand of 'when' operator must be named");
    } else if (!silent) {
      ierror("EcPrg::clock '%s' is not implemented", nodekey(e->nature));
    }
  }
  for (Exp* exp : waiting) exp->clock = e->clock;
  return e->clock;
}
