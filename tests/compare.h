// tests/compare.h: what a program says, and whether two programs say the same. For tests and fuzz
// targets alike.
#ifndef TESTS_COMPARE_H
#define TESTS_COMPARE_H

#include <functional>
#include <memory>
#include <string>

#include "reader/reader.h"

using File = std::unique_ptr<FILE, int (*)(FILE*)>;

// A file that holds `text` and stands at its start.
File file_of(const std::string& text);

// A program with its table.
struct LoadedProgram {
  LoadedProgram() { prg.EcPrgInit(&symbols); }
  // Reads `text` as a file. Returns what EcParseFile answers.
  int read(const std::string& text);

  SymbolTable symbols;
  EcPrg prg;
};

// What `work` writes to standard output through C stdio, or to a stream of width 80. Kept in
// memory, so that thousands a second cost little.
std::string stdout_text(const std::function<void()>& work);
std::string written(const std::function<void(PtyStream*)>& work);
std::string ec_text(EcPrg* prg);
std::string quarel_text(EcPrg* prg);

// Whether EC text of the program reads back into the same one: it has a node, no message, each name
// once, and no tuple equation.
bool is_reloadable(EcPrg* prg);

// What is known of every name but its places in the text, and of every expression its nodes, its
// type and its clock. EC text has no enumerations: without their values these count as their names.
std::string account_of(EcPrg* prg, bool with_values);

#endif
