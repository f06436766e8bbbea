// reader/reader.h: reads EC text, whole files and single expressions, into a program.
//
// Each thread has a reader of its own, which reads one text at a time. A text of any size and
// content ends in a result or in a message of the program (EcPrg::error); bad_alloc may be thrown,
// with all that the reader held released.
#ifndef READER_READER_H
#define READER_READER_H

#include <cstdio>

#include "model/ecprg.h"

namespace tamsel {

// A place in a text. A column counts characters of UTF-8, not their bytes.
struct EcPosition {
  // Bison's first place has four numbers.
  EcPosition(int in_line = 1, int in_column = 1, int = 0, int = 0)
      : line(in_line), column(in_column) {}

  int line;    // from 1
  int column;  // from 1
};

// What a token is worth: its text.
struct EcValue {
  char text[text_room];
};

}  // namespace tamsel

// --- Entry points. They borrow everything they are given, and the file is left open where they did
// not open it. They answer 0 for success, 1 after an error, 2 when the text nests deeper than the
// parser's stack. What was declared before the error stays in the program, and what was reported
// stands in its `messages`, but for the syntax error that ended a text.

// Read a whole program. A path that cannot be opened is reported on standard error.
int EcParse(EcPrg* prg, SymbolTable* symbols, const char* path);
int EcParseFile(EcPrg* prg, SymbolTable* symbols, FILE* f);
namespace tamsel {
// A text that is given while another is read on the same thread, as a script of Ctrl-C can do, is
// refused with this message, and nothing else happens.
constexpr char busy_message[] = "the reader is busy";
bool reader_is_busy();
// Makes the reader of this thread, which otherwise is made at first use: where there is no memory
// for it, the system ends the process. A thread but the first calls it before anything that looks
// at the variables below.
void prepare_reader();

int EcParseString(EcPrg* prg, SymbolTable* symbols, const char* text);
}  // namespace tamsel
// Read one expression. `*out` is the expression, owned by `prg`, or null after any error.
int EcExpParseFile(EcPrg* prg, SymbolTable* symbols, FILE* f, Exp** out);
int EcExpParseString(EcPrg* prg, SymbolTable* symbols, const char* text, Exp** out);

// Prints the lexemes of the file `path` on standard output. Returns 0, or 1 if it cannot be opened,
// which is reported on standard error.
int EcLexTest(SymbolTable* symbols, const char* path);

// --- The lexer.

extern thread_local int& carcour;  // the look-ahead character; -1 at the end
extern thread_local int& yyline;   // line of that character, from 1
extern thread_local const char*&
    YY_instring;                       // what is left of the string being read; null for a file
extern thread_local FILE*& YY_infile;  // the file being read; null for a string
extern thread_local int& YYLEX_BOOT;   // token to deliver before any text; 0: none
extern thread_local int& YY_result;    // the token last delivered; 0 at the end or after an error
extern thread_local char (&buffer)[tamsel::text_room];      // the lexeme being assembled
extern thread_local char (&lexemeBuff)[tamsel::text_room];  // room for printLexeme

// Begin a scan at line 1 with the boot token armed. They return 1, or 0 where the text is empty.
int yylexInitFile(int boot, FILE* f);
int yylexInitString(int boot, const char* text);
// Stores the next character in `*c` and returns it; -1 at the end, again and again.
int GetChar(int* c);
// The next token; -1 at the end and after a lexical error, which is reported.
int ecprg_lex();
// Whether a text is a name of the language, which is no keyword and which a text can hold.
namespace tamsel {
bool is_name(const char* text);
}
// A token as text, for messages; valid until the next call or token.
const char* printLexeme(int token);

// --- The parser.

extern thread_local EcPrg*& YY_ecprg;          // the program being filled; null: reports go nowhere
extern thread_local SymbolTable*& YY_Symbols;  // where names are interned
extern thread_local Exp*& ecexp;               // the expression that was read
extern thread_local tamsel::EcValue& ecprg_lval;  // value of the current token
extern thread_local int& ecprg_char;              // the look-ahead token; -2: none
extern thread_local int& ecprg_nerrs;             // syntax errors of the current parse

// Where that token begins; at the end, after the last character.
namespace tamsel {
EcPosition token_place();
}

int ecprg_parse();
// Reports `message` with the line and the token at which it stands.
void ecprg_error(const char* message);

#endif
