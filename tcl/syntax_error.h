// tcl/syntax_error.h: the errorCode of a text that the reader has refused.
#ifndef TCL_SYNTAX_ERROR_H
#define TCL_SYNTAX_ERROR_H

#include <string>

#include "reader/reader.h"
#include "tcl/support.h"

// SYNTAX, the line of the message, the message, and the line and the column of the token that could
// not be read. To be made before the next text is read.
class SyntaxError {
 public:
  // Borrows `message`.
  explicit SyntaxError(const char* message) : message_(message) {}

  ErrorCode code() const {
    return {{"SYNTAX", line_.c_str(), message_, token_line_.c_str(), token_column_.c_str()}};
  }

 private:
  const char* message_;
  std::string line_ = std::to_string(yyline);
  std::string token_line_ = std::to_string(tamsel::token_place().line);
  std::string token_column_ = std::to_string(tamsel::token_place().column);
};

#endif
