// A program like another one.

#include "model/copier.h"
#include "model/ecprg.h"

using namespace tamsel;

namespace {

// Copies expressions into another program's heap.
class ExpCopier : public Copier<ExpCopier> {
 public:
  using Types = std::unordered_map<const EcType*, EcType*>;

  ExpCopier(ExpHeap* nodes, const Types& types) : nodes_(nodes), types_(types) {}

  void note_leaf(const Exp* e, Exp* copy) { leaves_[e] = copy; }
  // Leaves are shared: one has one copy.
  Exp* leaf(Exp* e) {
    Exp*& copy = leaves_[e];
    if (copy == nullptr) copy = node(e, nullptr);
    return copy;
  }
  Exp* node(const Exp* e, Exp* const* operands) {
    Exp* made = nodes_->copy(e, operands);
    made->type = type(e->type);
    return made;
  }
  // Null for a type that is gone.
  EcType* type(const EcType* type) const {
    const auto known = types_.find(type);
    return known != types_.end() ? known->second : nullptr;
  }

 private:
  ExpHeap* nodes_;
  const Types& types_;
  std::unordered_map<const Exp*, Exp*> leaves_;
};

std::unique_ptr<IntList> copy_of(const IntList* list) {
  std::vector<int> values;
  for (const int value : values_of(list)) values.push_back(value);
  if (values.empty()) return nullptr;
  return std::make_unique<IntList>(values.data(), static_cast<int>(values.size()));
}

}  // namespace

// What has that type in the other program has its copy here.
class EcPrg::Copier {
 public:
  Copier(EcPrg& from, EcPrg& to) : from_(from), to_(to), nodes_(&to.exp_heap, types_) {}

  void copy() {
    for (int symbol = 1; symbol <= from_.symbols->nb_symbols; ++symbol)
      to_.symbols->add_text(from_.symbols->name(symbol));
    copy_types();
    for (int symbol = 1; symbol <= from_.symbols->nb_symbols; ++symbol) {
      if (const FuncInfo* function = from_.function(symbol)) copy_function(*function);
      if (const IdentInfo* ident = from_.ident(symbol)) copy_ident(*ident);
    }
    for (int symbol = 1; symbol <= from_.symbols->nb_symbols; ++symbol)
      if (const IdentInfo* ident = from_.ident(symbol)) copy_definition(*ident);
    to_.copy_lists(from_);
    to_.name = from_.name;
    to_.messages = from_.messages;
    to_.retired_ = from_.retired_;
    to_.free_assertions_ = from_.free_assertions_;
    to_.has_repeated_names_ = from_.has_repeated_names_;
  }

 private:
  void copy_types() {
    std::vector<const EcType*> newest_first;
    for (const EcType* type = from_.types; type != nullptr; type = type->next)
      newest_first.push_back(type);
    for (size_t i = newest_first.size(); i-- > 0;) copy_type(*newest_first[i]);
  }

  // Not a type that is gone. A tuple's members need not be declared.
  void copy_type(const EcType& type) {
    if (type.is_tuple) {
      const IntListRange names = values_of(type.members);
      const std::vector<int> members(names.begin(), names.end());
      types_[&type] = to_.define_type(members.data(), static_cast<int>(members.size()));
    } else if (from_.named_type(type.name) == &type) {
      EcType* made = to_.named_type(type.name);
      if (made == nullptr) made = to_.define_named_type(type.name);
      types_[&type] = made;
      made->number = type.number;
      made->line = type.line;
      made->constants = copy_of(type.constants).release();
      made->gone_constants = type.gone_constants;
      made->enum_consts = std::make_unique<IdentInfo*[]>(static_cast<size_t>(type.nb_enum));
      made->nb_enum = type.nb_enum;
    }
  }

  void copy_function(const FuncInfo& function) {
    std::unique_ptr<IntList> params = copy_of(function.params);
    std::unique_ptr<IntList> results = copy_of(function.results);
    auto made =
        std::make_unique<FuncInfo>(function.name, nodes_.type(function.param_type),
                                   nodes_.type(function.result_type), params.get(), results.get());
    params.release();
    results.release();
    made->index = function.index;
    made->line = function.line;
    to_.prepare_slot(function.name);
    to_.install(function.name, std::move(made));
  }

  // Those that every program has from the start are there.
  void copy_ident(const IdentInfo& ident) {
    const IdentInfo* known = to_.ident(ident.name);
    if (known != nullptr && known->mode == ident.mode)
      return nodes_.note_leaf(ident.ident_exp, known->ident_exp);
    auto made =
        std::make_unique<IdentInfo>(ident.mode, ident.name, nodes_.type(ident.type), ident.clock);
    made->print_name = ident.print_name;
    made->value = ident.value;
    made->order = ident.order;
    made->line = ident.line;
    made->equation_line = ident.equation_line;
    if (ident.ident_exp != nullptr) {
      made->ident_exp = nodes_.leaf(ident.ident_exp);
      to_.hold_name(made->ident_exp);
    }
    if (ident.definition == ident.ident_exp) made->definition = made->ident_exp;
    if (ident.mode == ENUM_CONST_mode && made->type != nullptr && ident.order >= 0 &&
        ident.order < made->type->nb_enum && ident.type->enum_consts[ident.order] == &ident)
      made->type->enum_consts[ident.order] = made.get();
    to_.info_heap.make_room();
    to_.prepare_slot(made->name);
    to_.enter(std::move(made));
  }

  // Of a tuple equation all at once, with the first of its names.
  void copy_definition(const IdentInfo& ident) {
    if (ident.definition == nullptr || ident.definition == ident.ident_exp) return;
    if (ident.tuple_names == nullptr) {
      to_.ident(ident.name)->definition = nodes_.copy(ident.definition);
    } else if (ident.tuple_names->value == ident.name) {
      to_.tuple_names_.push_back(copy_of(ident.tuple_names));
      IntList* names = to_.tuple_names_.back().get();
      Exp* right = nodes_.copy(ident.definition->args()[0]);
      for (const int symbol : values_of(names)) {
        to_.ident(symbol)->definition = nodes_.node(from_.ident(symbol)->definition, &right);
        to_.ident(symbol)->tuple_names = names;
      }
    }
  }

  EcPrg& from_;
  EcPrg& to_;
  ExpCopier::Types types_;
  ExpCopier nodes_;
};

void EcPrg::copy_from(EcPrg& other) { Copier(other, *this).copy(); }
