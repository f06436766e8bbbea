// Any text as an expression over a program that has some of everything. An accepted one is printed,
// and its text is accepted with the same type; of a refused one nothing is left.

#include "fuzz/fuzz.h"
#include "tests/compare.h"

static const char program_text[] =
    "type color = (red, green), thing;"
    "const k : int; kt : thing;"
    "function f (a : int) returns (r : int);"
    "function g (a : int; b : bool; c : real) returns (r : color);"
    "function h (t : thing) returns (x : int; y : bool);"
    "node n (a : int; b, c : bool; (s : int) when c; x : real; t : thing)"
    "returns (o : int; p : bool);"
    "let o = a -> pre o + 1; p = b; tel";

static std::string printed(EcPrg* prg, Exp* e) {
  return stdout_text([=] { prg->print_exp(e); });
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  LoadedProgram program;
  EcPrg& prg = program.prg;
  require(program.read(program_text) == 0, "the program is well formed");
  const std::string text = text_of(data, size);
  const EcPrg::Mark before = prg.mark();
  for (int round = 0; round < 2; ++round) {
    Exp* e = prg.exp_parse(text.c_str());
    if (e != nullptr) {
      const EcType* type = prg.type(e);
      require(type != nullptr && prg.exp_refusal == ExpRefusal::none, "accepted means typed");
      prg.clock(e);
      const std::string first = printed(&prg, e);
      Exp* again = prg.exp_parse(first.c_str());
      const bool too_deep = std::string(prg.error_message).find("memory exhausted") == 0;
      require(too_deep || again != nullptr, "what is printed reads back");
      if (again != nullptr)
        require(prg.type(again) == type && printed(&prg, again) == first, "as the same");
      prg.roll_back(before);
    } else {
      require(prg.exp_refusal != ExpRefusal::none && prg.error_message[0] != '\0', "has a reason");
    }
    require(prg.exp_heap.size() == before.expressions.size, "nodes are taken back");
    require(prg.info_heap.size() == before.records, "literals are taken back");
    require(prg.types == before.types, "tuple types are taken back");
  }
  require(prg.exp_parse("f(7) + a") != nullptr, "the program works as before");
  return 0;
}
