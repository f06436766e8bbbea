// The entry points of the reader.

#include <new>

#include "ecprg.tab.h"
#include "reader/actions.h"

EcPrg* YY_ecprg;
SymbolTable* YY_Symbols;
Exp* ecexp;

void ecprg_error(const char* message) {
  if (YY_ecprg != nullptr)
    YY_ecprg->error("%s line %d near '%s'", message, yyline, printLexeme(YY_result));
}

// Parses `f`, or `text` where `f` is null.
static int parse(EcPrg* prg, SymbolTable* symbols, int boot, FILE* f, const char* text) {
  YY_ecprg = prg;
  YY_Symbols = symbols;
  ecexp = nullptr;
  reader_out_of_memory = false;
  if (f != nullptr)
    yylexInitFile(boot, f);
  else
    yylexInitString(boot, text);
  const int result = ecprg_parse();
  YY_ecprg = nullptr;
  YY_Symbols = nullptr;
  YY_infile = nullptr;
  YY_instring = nullptr;
  if (reader_out_of_memory) throw std::bad_alloc();
  return result;
}

// Reads one expression into `*out` and tells what refused it. A lexical error ends the text, and
// the grammar may have accepted what stood before it, or complained of that end: the lexical
// message is the one to keep. Of a file, the grammar's word is the last.
static ExpRefusal read_expression(EcPrg* prg, SymbolTable* symbols, FILE* f, const char* text,
                                  Exp** out) {
  *out = nullptr;
  const int result = parse(prg, symbols, START_EXP, f, text);
  if (YY_lexical_error[0] != '\0') prg->error("%s", YY_lexical_error);
  if (result != 0 || YY_lexical_error[0] != '\0') return ExpRefusal::syntax;
  *out = ecexp;
  return ecexp != nullptr ? ExpRefusal::none : ExpRefusal::name;
}

int EcParse(EcPrg* prg, SymbolTable* symbols, const char* path) {
  FILE* file = std::fopen(path, "r");
  if (file == nullptr) {
    std::fprintf(stderr, "EcParse : Can't open file '%s'\n", path);
    return 1;
  }
  std::unique_ptr<FILE, int (*)(FILE*)> held(file, std::fclose);
  return EcParseFile(prg, symbols, file);
}

int EcParseFile(EcPrg* prg, SymbolTable* symbols, FILE* f) {
  return parse(prg, symbols, START_EC, f, nullptr);
}

int EcExpParseFile(EcPrg* prg, SymbolTable* symbols, FILE* f, Exp** out) {
  return read_expression(prg, symbols, f, nullptr, out) != ExpRefusal::none;
}

int EcExpParseString(EcPrg* prg, SymbolTable* symbols, const char* text, Exp** out) {
  return read_expression(prg, symbols, nullptr, text, out) != ExpRefusal::none;
}

Exp* EcPrg::exp_parse(const char* text) {
  const Mark before = mark();
  Exp* e = nullptr;
  try {
    exp_refusal = read_expression(this, symbols, nullptr, text, &e);
    if (e != nullptr && type(e) == nullptr) exp_refusal = ExpRefusal::type;
  } catch (const std::bad_alloc&) {
    roll_back(before);
    throw;
  }
  if (exp_refusal == ExpRefusal::none) return e;
  roll_back(before);
  return nullptr;
}
