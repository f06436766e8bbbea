// Any text as a file: read, typed, clocked, written both ways, deleted. What a refused text leaves
// in its program is put through the same.

#include "fuzz/fuzz.h"
#include "tests/compare.h"

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  LoadedProgram program;
  program.read(text_of(data, size));
  EcPrg& prg = program.prg;
  for (int symbol = 1; symbol <= program.symbols.nb_symbols; ++symbol) {
    const IdentInfo* ident = prg.ident(symbol);
    if (ident == nullptr || ident->definition == nullptr) continue;
    Exp* e = ident->definition;
    if (e->nature == PROJ_n) e = e->args[0];
    if (e->nb_args > 0) e->type = nullptr;  // which is what the equation claims
    prg.type(e);
    prg.clock(e);
  }
  prg.print_ec();
  quarel_text(&prg);
  return 0;
}
