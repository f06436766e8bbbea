// The entry points of the reader.

#include <new>

#include "ecprg.tab.h"
#include "reader/actions.h"

using namespace tamsel;

thread_local int& carcour = thread_reader().carcour;
thread_local int& yyline = thread_reader().yyline;
thread_local const char*& YY_instring = thread_reader().YY_instring;
thread_local FILE*& YY_infile = thread_reader().YY_infile;
thread_local int& YYLEX_BOOT = thread_reader().YYLEX_BOOT;
thread_local int& YY_result = thread_reader().YY_result;
thread_local char (&buffer)[text_room] = thread_reader().buffer;
thread_local char (&lexemeBuff)[text_room] = thread_reader().lexemeBuff;
thread_local EcPrg*& YY_ecprg = thread_reader().YY_ecprg;
thread_local SymbolTable*& YY_Symbols = thread_reader().YY_Symbols;
thread_local Exp*& ecexp = thread_reader().ecexp;
thread_local EcValue& ecprg_lval = thread_reader().ecprg_lval;
thread_local int& ecprg_char = thread_reader().ecprg_char;
thread_local int& ecprg_nerrs = thread_reader().ecprg_nerrs;

EcPosition tamsel::token_place() { return thread_reader().token_place; }

// The references above are made all at once, when one of them is asked for.
void tamsel::prepare_reader() { ::YY_ecprg = thread_reader().YY_ecprg; }

// Clang may read a reference of a thread ahead of the call that makes it. So those of the first
// thread are there from the start.
static const bool is_prepared = (prepare_reader(), true);

bool tamsel::reader_is_busy() { return thread_reader().is_busy; }

void Reader::report_syntax_error(const char* message) {
  window_.settle();
  if (YY_ecprg != nullptr)
    YY_ecprg->error("%s line %d near '%s'", message, yyline, printLexeme(YY_result));
}

void ecprg_error(const char* message) { thread_reader().report_syntax_error(message); }

int Reader::run_parser() {
  window_.begin(this, YY_Symbols, YY_ecprg);
  const int result = ecprg_parse(*this);
  window_.end();
  return result;
}

int ecprg_parse() { return thread_reader().run_parser(); }

void Reader::end_parse() {
  YY_ecprg = nullptr;
  YY_Symbols = nullptr;
  end_scan();
  forget_names();
  is_busy = false;
}

// Parses `f`, or `text` where `f` is null. Not to be called while the reader is busy.
int Reader::parse(EcPrg* prg, SymbolTable* symbols, int boot, FILE* f, const char* text) {
  struct Turn {
    ~Turn() { reader.end_parse(); }
    Reader& reader;
  };
  YY_ecprg = prg;
  YY_Symbols = symbols;
  ecexp = nullptr;
  ecprg_char = -2;
  ecprg_nerrs = 0;
  out_of_memory = false;
  keeps_messages = boot == START_EC;
  int result;
  {
    const Turn turn{*this};
    is_busy = true;  // before the first character is read
    start_scan(boot, f, text, true);
    result = run_parser();
  }
  ecprg_nerrs = result == 1;  // the first ends the parse
  if (out_of_memory) throw std::bad_alloc();
  // After a whole program a lexical error ends the text, and the grammar does not complain.
  if (result == 0 && boot == START_EC && lexical_message[0] != '\0')
    prg->messages.push_back({lexical_message, 0, token_place.line});
  return result;
}

static int read_program(EcPrg* prg, SymbolTable* symbols, FILE* f, const char* text) {
  Reader& reader = thread_reader();
  if (reader.is_busy) return prg->error("%s", busy_message);
  return reader.parse(prg, symbols, START_EC, f, text);
}

// Reads one expression into `*out` and tells what refused it. A lexical error ends the text, and
// the grammar may have accepted what stood before it, or complained of that end: the lexical
// message is the one to keep. Of a file, the grammar's word is the last.
static ExpRefusal read_expression(EcPrg* prg, SymbolTable* symbols, FILE* f, const char* text,
                                  Exp** out) {
  *out = nullptr;
  Reader& reader = thread_reader();
  if (reader.is_busy) {
    prg->error("%s", busy_message);
    return ExpRefusal::busy;
  }
  const int result = reader.parse(prg, symbols, START_EXP, f, text);
  const bool is_cut = reader.lexical_message[0] != '\0';
  if (is_cut) prg->error("%s", reader.lexical_message);
  if (result != 0 || is_cut) return ExpRefusal::syntax;
  *out = reader.ecexp;
  return *out != nullptr ? ExpRefusal::none : ExpRefusal::name;
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
  return read_program(prg, symbols, f, nullptr);
}

int tamsel::EcParseString(EcPrg* prg, SymbolTable* symbols, const char* text) {
  return read_program(prg, symbols, nullptr, text);
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
