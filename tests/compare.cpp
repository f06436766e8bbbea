#include "tests/compare.h"

#include <cstdlib>
#include <unordered_set>
#include <vector>

namespace {

// A stream into memory.
struct MemoryFile {
  ~MemoryFile() { std::free(buffer); }
  std::string text() const { return {buffer, size}; }  // once `file` is closed

  char* buffer = nullptr;
  size_t size = 0;
  FILE* file = open_memstream(&buffer, &size);
};

// The lists of declared names, in the order of the writers.
constexpr IntList* EcPrg::*name_lists[] = {
    &EcPrg::constants, &EcPrg::functions, &EcPrg::tuple_functions, &EcPrg::inputs,
    &EcPrg::outputs,   &EcPrg::locals,    &EcPrg::assertions};

// One line a fact. Equal nodes of two programs have equal texts by name, so nothing is compared by
// symbol numbers.
class Account {
 public:
  explicit Account(EcPrg* prg) : prg_(prg) {
    add("node", prg->symbols->name(prg->name));
    for (const int symbol : tamsel::values_of(prg->user_types)) add("type", name(symbol));
    for (IntList* EcPrg::*const list : name_lists)
      for (const int symbol : tamsel::values_of(prg->*list)) add_record(symbol);
  }
  const std::vector<std::string>& lines() const { return lines_; }

 private:
  const char* name(int symbol) const { return prg_->symbols->name(symbol); }
  void add(const std::string& what, const std::string& text) {
    lines_.push_back(what + " " + text);
  }

  std::string type_text(const EcType* type) const {
    if (type == nullptr) return "?";
    if (!type->is_tuple) return name(type->name);
    std::string text = "(";
    for (const int member : tamsel::values_of(type->members))
      text += std::string(name(member)) + ",";
    return text + ")";
  }
  std::string names_text(const IntList* list) const {
    std::string text;
    for (const int symbol : tamsel::values_of(list)) text += std::string(" ") + name(symbol);
    return text;
  }

  void add_record(int symbol) {
    if (const FuncInfo* function = prg_->function(symbol)) {
      add("function", name(symbol) + names_text(function->params) + " :" +
                          names_text(function->results) + " = " + type_text(function->param_type) +
                          " " + type_text(function->result_type));
      return;
    }
    const IdentInfo* ident = prg_->ident(symbol);
    const IdentMode mode = ident->mode == ENUM_CONST_mode ? USR_CONST_mode : ident->mode;
    add(std::to_string(mode),
        std::string(name(symbol)) + " : " + type_text(ident->type) + " when " + name(ident->clock));
    if (ident->definition == nullptr || ident->definition->nb_args == 0) {
      add("is", ident->definition != nullptr ? name(ident->definition->ident) : "undefined");
      return;
    }
    add_expression(ident->definition);
  }

  // Node by node, each with its number of operands, in the order of reading.
  void add_expression(Exp* root) {
    const EcType* declared = root->type;
    root->type = nullptr;  // what an equation declares is not what its right side is
    const EcType* found = prg_->type(root);
    add("typed", type_text(declared) + " " + type_text(found));
    root->type = const_cast<EcType*>(declared);
    add("clocked", name(prg_->clock(root)));
    std::vector<const Exp*> rest = {root};
    while (!rest.empty()) {
      const Exp* exp = rest.back();
      rest.pop_back();
      add(nodekey(exp->nature), std::to_string(exp->nb_args) + " " +
                                    name(exp->nature == CALL_n ? exp->order : exp->ident));
      for (int i = exp->nb_args; i > 0; --i) rest.push_back(exp->args[i - 1]);
    }
  }

  EcPrg* prg_;
  std::vector<std::string> lines_;
};

}  // namespace

File file_of(const std::string& text) {
  File file(fmemopen(nullptr, text.size() + 1, "w+"), std::fclose);
  std::fwrite(text.data(), 1, text.size(), file.get());
  std::rewind(file.get());
  return file;
}

int LoadedProgram::read(const std::string& text) {
  return EcParseFile(&prg, &symbols, file_of(text).get());
}

std::string stdout_text(const std::function<void()>& work) {
  MemoryFile memory;
  FILE* const before = stdout;
  stdout = memory.file;
  work();
  std::fclose(memory.file);
  stdout = before;
  return memory.text();
}

std::string written(const std::function<void(PtyStream*)>& work) {
  MemoryFile memory;
  {
    PtyStream out(memory.file, 80, nullptr);
    work(&out);
  }
  return memory.text();
}

std::string ec_text(EcPrg* prg) {
  return stdout_text([=] { prg->print_ec(); });
}

std::string quarel_text(EcPrg* prg) {
  return written([=](PtyStream* out) { prg->print_quarel(out); });
}

bool is_reloadable(EcPrg* prg) {
  if (prg->name == 0 || prg->error_message[0] != '\0') return false;
  std::unordered_set<int> seen;
  for (IntList* EcPrg::*const list : name_lists) {
    for (const int symbol : tamsel::values_of(prg->*list)) {
      const IdentInfo* ident = prg->ident(symbol);
      if (!seen.insert(symbol).second || (ident != nullptr && ident->tuple_names != nullptr))
        return false;
    }
  }
  return true;
}

std::string difference(EcPrg* a, EcPrg* b) {
  const std::vector<std::string> as = Account(a).lines();
  const std::vector<std::string> bs = Account(b).lines();
  for (size_t i = 0; i < as.size() || i < bs.size(); ++i) {
    const std::string& of_a = i < as.size() ? as[i] : "nothing";
    const std::string& of_b = i < bs.size() ? bs[i] : "nothing";
    if (of_a != of_b) return of_a + " | " + of_b;
  }
  return "";
}
