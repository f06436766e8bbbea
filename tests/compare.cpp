#include "tests/compare.h"

#include <cstdlib>
#include <unordered_set>

#include "analysis/describe.h"
#include "analysis/equations.h"

using namespace tamsel;

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
    for (const int symbol : values_of(prg->*list)) {
      const IdentInfo* ident = prg->ident(symbol);
      if (!seen.insert(symbol).second || (ident != nullptr && ident->tuple_names != nullptr))
        return false;
    }
  }
  return true;
}

std::string account_of(EcPrg* prg, bool with_values) {
  const auto name = [prg](int symbol) { return std::string(prg->symbols->name(symbol)) + " "; };
  std::string text = name(prg->name);
  const auto put_right_side = [&](Exp* right) {
    text += "= " + std::string(prg->type_name(prg->type_of_operands(right), "?")) + " on " +
            name(prg->clock(right));
    for (const TreeNode& node : tree_of(prg, right))
      text += node.op + std::to_string(node.operands) + node.label + " ";
  };
  for (const NameKind kind : name_kinds)
    for (const int symbol : prg->declared_names(kind)) {
      const Description known = describe_as(prg, symbol, kind);
      text += "\n" + std::string(kind_word(kind)) + " " + name(symbol);
      if (known.ident != nullptr)
        text += prg->type_name(known.ident->type, "?") + (" when " + name(known.ident->clock));
      for (const int other : known.defined_with()) text += name(other);
      if (known.has_equation()) put_right_side(right_side(known.ident));
      if (with_values) text += std::to_string(known.rank()) + " ";
      if (with_values && known.type != nullptr)
        for (const int constant : constants_of(prg, known.type)) text += name(constant);
      if (known.function != nullptr)
        for (const auto& list : {parameters_of(known.function), results_of(known.function)})
          for (const Parameter& parameter : list)
            text += name(parameter.name) + name(parameter.type);
    }
  for (const int symbol : values_of(prg->assertions)) {
    text += "\nassert ";
    put_right_side(prg->ident(symbol)->definition);
  }
  return text;
}
