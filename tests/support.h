// tests/support.h: programs from texts, and what they print.
#ifndef TESTS_SUPPORT_H
#define TESTS_SUPPORT_H

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>

#include "reader/reader.h"

using File = std::unique_ptr<FILE, int (*)(FILE*)>;

// A file that holds `text` and stands at its start.
inline File file_of(const std::string& text) {
  File file(std::tmpfile(), std::fclose);
  std::fwrite(text.data(), 1, text.size(), file.get());
  std::rewind(file.get());
  return file;
}

// A program with its table.
struct Program {
  Program() { prg.EcPrgInit(&symbols); }
  explicit Program(const std::string& text) : Program() { EXPECT_EQ(0, read(text)) << message(); }

  // What EcParseFile answers for `text`.
  int read(const std::string& text) { return EcParseFile(&prg, &symbols, file_of(text).get()); }
  // The expression `text`, not yet typed; null if it is refused.
  Exp* exp(const std::string& text) {
    Exp* e = nullptr;
    EcExpParseString(&prg, &symbols, text.c_str(), &e);
    return e;
  }
  Exp* leaf(const char* name) { return ident(name)->ident_exp; }
  IdentInfo* ident(const char* name) { return prg.ident(symbol(name)); }
  int symbol(const char* name) { return symbols.add_text(name); }
  std::string message() const { return prg.error_message; }

  SymbolTable symbols;
  EcPrg prg;
};

inline std::string stdout_of(const std::function<void()>& work) {
  testing::internal::CaptureStdout();
  work();
  return testing::internal::GetCapturedStdout();
}

inline std::string stderr_of(const std::function<void()>& work) {
  testing::internal::CaptureStderr();
  work();
  return testing::internal::GetCapturedStderr();
}

// What `write` writes to a stream of width 80.
inline std::string written(const std::function<void(PtyStream*)>& write) {
  char* text = nullptr;
  size_t size = 0;
  {
    PtyStream stream(open_memstream(&text, &size), 80, nullptr);
    write(&stream);
  }
  const std::string result(text, size);
  std::free(text);
  return result;
}

inline std::string quarel(Program& program) {
  return written([&](PtyStream* out) { program.prg.print_quarel(out); });
}

// `text` with one blank for every run of white space, and none at the ends.
inline std::string squeezed(const std::string& text) {
  std::string result;
  for (const char c : text) {
    const bool is_space = c == ' ' || c == '\n';
    if (!is_space) result += c;
    if (is_space && !result.empty() && result.back() != ' ') result += ' ';
  }
  if (!result.empty() && result.back() == ' ') result.pop_back();
  return result;
}

#endif
