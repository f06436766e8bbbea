// tests/support.h: programs that answer by names, and what is printed.
#ifndef TESTS_SUPPORT_H
#define TESTS_SUPPORT_H

#include <gtest/gtest.h>

#include <sstream>

#include "tests/compare.h"

using namespace tamsel;

struct Program : LoadedProgram {
  Program() = default;
  explicit Program(const std::string& text) { EXPECT_EQ(0, read(text)) << message(); }

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
};

inline std::string stderr_of(const std::function<void()>& work) {
  testing::internal::CaptureStderr();
  work();
  return testing::internal::GetCapturedStderr();
}

// `text` with one blank for every run of white space, and none at the ends.
inline std::string squeezed(const std::string& text) {
  std::istringstream words(text);
  std::string result;
  for (std::string word; words >> word;) result += (result.empty() ? "" : " ") + word;
  return result;
}

#endif
