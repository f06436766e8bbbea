#include "analysis/describe.h"

#include <algorithm>
#include <unordered_set>

#include "analysis/equations.h"
#include "model/walk.h"

namespace tamsel {

// The names and types that a declaration lists, or else the types alone.
static std::vector<Parameter> listed(const IntList* list, const EcType* type) {
  std::vector<Parameter> found;
  for (; list != nullptr && list->next != nullptr; list = list->next->next)
    found.push_back({list->value, list->next->value});
  if (!found.empty() || type == nullptr) return found;
  if (!type->is_tuple) return {{0, type->name}};
  for (const int member : values_of(type->members)) found.push_back({0, member});
  return found;
}

std::vector<Parameter> parameters_of(const FuncInfo* function) {
  return listed(function->params, function->param_type);
}

std::vector<Parameter> results_of(const FuncInfo* function) {
  return listed(function->results, function->result_type);
}

int Description::index(EcPrg* prg) const {
  const bool is_listed =
      kind < NameKind::constant || (function != nullptr && !function->tuple_result);
  return is_listed ? prg->place_of(prg->list_of(kind, symbol), symbol) : -1;
}

bool Description::has_equation() const { return right_side(ident) != nullptr; }

std::vector<int> Description::defined_with() const {
  if (!has_equation()) return {};
  return Equation{ident, nullptr}.names();
}

int Description::line() const {
  if (ident != nullptr) return ident->line;
  return function != nullptr ? function->line : type->line;
}

int Description::equation_line() const { return has_equation() ? ident->equation_line : 0; }

int Description::rank() const {
  return ident != nullptr && ident->mode == ENUM_CONST_mode ? ident->order : -1;
}

Description describe_as(EcPrg* prg, int symbol, NameKind kind) {
  Description description;
  description.symbol = symbol;
  description.kind = kind;
  if (kind == NameKind::type)
    description.type = prg->named_type(symbol);
  else if (kind == NameKind::function)
    description.function = prg->function(symbol);
  else
    description.ident = prg->ident(symbol);
  return description;
}

// False for a record of something that is not declared: a literal, an assertion.
static bool kind_of(const IdentInfo* ident, NameKind* kind) {
  switch (ident->mode) {
    case INPUT_mode:
      *kind = NameKind::input;
      return true;
    case OUTPUT_mode:
      *kind = NameKind::output;
      return true;
    case LOCAL_mode:
      *kind = NameKind::local;
      return true;
    case USR_CONST_mode:
    case ENUM_CONST_mode:
      *kind = NameKind::constant;
      return true;
    case ASSERT_mode:
    case BOOL_CONST_mode:
    case INT_CONST_mode:
    case REAL_CONST_mode:
      break;
  }
  return false;
}

bool describe(EcPrg* prg, int symbol, Description* description) {
  const IdentInfo* ident = prg->ident(symbol);
  NameKind kind = NameKind::function;
  if (ident == nullptr || !kind_of(ident, &kind)) {
    if (prg->function(symbol) == nullptr) {
      const EcType* type = prg->named_type(symbol);
      if (type == nullptr || type->number == 0) return false;
      kind = NameKind::type;
    }
  }
  *description = describe_as(prg, symbol, kind);
  return true;
}

std::vector<int> constants_of(EcPrg* prg, const EcType* type) {
  std::vector<int> names;
  for (int rank = 0; rank < type->nb_enum; ++rank)
    if (type->enum_consts[rank] != nullptr) names.push_back(type->enum_consts[rank]->name);
  // Each counts where it stands last, and some are of this type no more.
  std::vector<int> listed;
  for (const int symbol : values_of(type->constants)) listed.push_back(symbol);
  std::unordered_set<int> seen;
  const auto is_none = [&](int symbol) {
    const IdentInfo* constant = prg->ident(symbol);
    return constant == nullptr || constant->mode != USR_CONST_mode || constant->type != type ||
           !seen.insert(symbol).second;
  };
  const auto last = std::remove_if(listed.rbegin(), listed.rend(), is_none);
  names.insert(names.end(), last.base(), listed.end());
  return names;
}

namespace {

class TreeVisitor : public ExpVisitor {
 public:
  TreeVisitor(EcPrg* prg, std::vector<TreeNode>* nodes) : prg_(prg), nodes_(nodes) {}

  bool enter(Exp* exp, Exp* parent, int) {
    // A call takes the members of its tuple as arguments.
    if (exp->nature == TUPLE_n && parent != nullptr && parent->nature == CALL_n) return true;
    nodes_->push_back(node_of(exp));
    return true;
  }

 private:
  const char* name(int symbol) const { return prg_->symbols->name(symbol); }

  TreeNode node_of(const Exp* exp) const {
    if (exp->nature == CALL_n) {
      const Exp* argument = exp->nb_args == 1 ? exp->args()[0] : nullptr;
      const bool has_tuple = argument != nullptr && argument->nature == TUPLE_n;
      return {"call", has_tuple ? argument->nb_args : exp->nb_args, name(exp->order())};
    }
    if (exp->nb_args == 0 && exp->ident != 0)
      return {is_literal(prg_, exp) ? "constant" : "name", 0, name(exp->ident)};
    const ExpKind* kind = exp_kind(exp->nature);
    const char* op = kind != nullptr && kind->keyword[0] != '\0' ? kind->keyword
                     : exp->nature == IF_n                       ? "if"
                     : exp->nature == TUPLE_n                    ? "tuple"
                                                                 : nodekey(exp->nature);
    return {op, exp->nb_args, ""};
  }

  EcPrg* prg_;
  std::vector<TreeNode>* nodes_;
};

}  // namespace

std::vector<TreeNode> tree_of(EcPrg* prg, Exp* e) {
  std::vector<TreeNode> nodes;
  TreeVisitor visitor(prg, &nodes);
  walk(e, visitor);
  return nodes;
}

}  // namespace tamsel
