// Any text as a file: read, typed, clocked, written, checked and asked about, deleted. What a
// refused text leaves in its program is put through the same.

#include "analysis/check.h"
#include "analysis/describe.h"
#include "analysis/json.h"
#include "analysis/users.h"
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
    if (e->nature == PROJ_n) e = e->args()[0];
    if (e->nb_args > 0) e->type = nullptr;  // which is what the equation claims
    prg.type(e);
    prg.clock(e);
  }
  prg.print_ec();
  quarel_text(&prg);

  // The same once more for who only asks.
  prg.silent = true;
  std::string text;
  tamsel::check(&prg, {std::begin(tamsel::finding_kinds), std::end(tamsel::finding_kinds)});
  tamsel::write_json(&prg, &text);
  tamsel::Users users(&prg);
  for (int symbol = 1; symbol <= program.symbols.nb_symbols; ++symbol) {
    tamsel::ConeOptions options;
    options.users = symbol % 2 == 0 ? &users : nullptr;
    tamsel::cone_of(&prg, {symbol}, options);
    tamsel::Description description;
    if (!tamsel::describe(&prg, symbol, &description)) continue;
    if (Exp* right = tamsel::right_side(description.ident)) tamsel::tree_of(&prg, right);
  }
  return 0;
}
