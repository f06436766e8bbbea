// Any text as a file that, where it declares something sensible, is written as EC text and read
// back: the same program, the same texts.

#include "fuzz/fuzz.h"
#include "tests/compare.h"

// What reads back of programs that lack something, too.
static void check_source(EcPrg* prg) {
  if (prg->name == 0 || prg->declared_names(NameKind::input).empty() ||
      prg->declared_names(NameKind::output).empty())
    return;
  const auto source_text = [](EcPrg* program) {
    return written([=](PtyStream* out) { program->print_source(out); });
  };
  LoadedProgram second;
  const std::string text = source_text(prg);
  // An assertion takes its generated name from whatever is called so.
  if (text.find("__assert_") != text.npos) return;
  const int result = second.read(text);
  if (result == 2) return;
  require(result == 0 && source_text(&second.prg) == text, "the source text is a fixed point");
  require(account_of(&second.prg, true) == account_of(prg, true), "and loses nothing");
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  LoadedProgram first;
  if (first.read(text_of(data, size)) != 0) return 0;
  check_source(&first.prg);
  if (!is_reloadable(&first.prg)) return 0;
  const std::string text = ec_text(&first.prg);
  LoadedProgram second;
  const int result = second.read(text);
  if (result == 2) return 0;  // the parentheses nest too deep
  require(result == 0 && is_reloadable(&second.prg), "what is written reads back");
  require(ec_text(&second.prg) == text, "the text is a fixed point");
  require(quarel_text(&second.prg) == quarel_text(&first.prg), "so is Quarel text");
  require(account_of(&first.prg, false) == account_of(&second.prg, false),
          "the program is the same");
  return 0;
}
