// The entry points of the reader.

#include <new>

#include "ecprg.tab.h"
#include "reader/actions.h"

using namespace tamsel;

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
  reader_keeps_messages = boot == START_EC;
  if (f != nullptr)
    yylexInitFile(boot, f);
  else
    yylexInitString(boot, text);
  const int result = ecprg_parse();
  YY_ecprg = nullptr;
  YY_Symbols = nullptr;
  YY_infile = nullptr;
  YY_instring = nullptr;
  forget_names();
  if (reader_out_of_memory) throw std::bad_alloc();
  // Behind a whole program a lexical error ends the text, and the grammar does not complain.
  if (result == 0 && boot == START_EC && lexical_message[0] != '\0')
    prg->messages.push_back({lexical_message, 0, ecprg_lloc.line});
  return result;
}

// Reads one expression into `*out` and tells what refused it. A lexical error ends the text, and
// the grammar may have accepted what stood before it, or complained of that end: the lexical
// message is the one to keep. Of a file, the grammar's word is the last.
static ExpRefusal read_expression(EcPrg* prg, SymbolTable* symbols, FILE* f, const char* text,
                                  Exp** out) {
  *out = nullptr;
  const int result = parse(prg, symbols, START_EXP, f, text);
  if (lexical_message[0] != '\0') prg->error("%s", lexical_message);
  if (result != 0 || lexical_message[0] != '\0') return ExpRefusal::syntax;
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

int tamsel::EcParseString(EcPrg* prg, SymbolTable* symbols, const char* text) {
  return parse(prg, symbols, START_EC, nullptr, text);
}

int EcExpParseFile(EcPrg* prg, SymbolTable* symbols, FILE* f, Exp** out) {
  return read_expression(prg, symbols, f, nullptr, out) != ExpRefusal::none;
}

int EcExpParseString(EcPrg* prg, SymbolTable* symbols, const char* text, Exp** out) {
  return read_expression(prg, symbols, nullptr, text, out) != ExpRefusal::none;
}

static Exp* parse_expression(EcPrg* prg, const char* text, bool is_typed) {
  const EcPrg::Mark before = prg->mark();
  Exp* e = nullptr;
  try {
    prg->exp_refusal = read_expression(prg, prg->symbols, nullptr, text, &e);
    if (is_typed && e != nullptr && prg->type(e) == nullptr) prg->exp_refusal = ExpRefusal::type;
  } catch (const std::bad_alloc&) {
    prg->roll_back(before);
    throw;
  }
  if (prg->exp_refusal == ExpRefusal::none) return e;
  prg->roll_back(before);
  return nullptr;
}

Exp* EcPrg::exp_read(const char* text) { return parse_expression(this, text, false); }
Exp* EcPrg::exp_parse(const char* text) { return parse_expression(this, text, true); }
