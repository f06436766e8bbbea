// foundation/text.h: formatting and reading of plain text, the same under every locale and at any
// length.
#ifndef FOUNDATION_TEXT_H
#define FOUNDATION_TEXT_H

#include <endian.h>

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

// Lets the compiler check the arguments of a printf-style operation: the places of its format and
// of the first argument (0 for a va_list), from 1, where a member's `this` counts.
#define PRINTF_LIKE(text, arguments) __attribute__((format(printf, text, arguments)))

namespace tamsel {

// How many bytes, with their end, the places of fixed size have that messages and lexemes are kept
// in.
constexpr size_t text_room = 1024;

// The whole formatted text, however long. Leaves `args` undefined, as vprintf does.
std::string format_text(const char* format, va_list args) PRINTF_LIKE(1, 0);

// The name that a user's `text` stands for where names are formats: "%%" gives "%", and any other
// "%" stays as it is written. No argument is ever read, so any text is harmless.
std::string formatted_name(const char* text);

// strtol in base 10, cut to int. `end`, where not null, receives the first character not read.
int read_int(const char* text, const char** end = nullptr);

// strtod and strtof with a decimal point whatever the locale.
double read_double(const char* text);
float read_float(const char* text);

// Character classes of plain ASCII; `c` is any int, -1 included.
constexpr bool is_blank(int c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool is_digit(int c) { return c >= '0' && c <= '9'; }
constexpr bool is_letter(int c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z' && c > 0; }

// The place (from 0) of the first byte below a blank among the 8 at `text`, all of which can be
// read; 8 where there is none. So the length of a short text, unless it has such characters.
inline int short_length(const char* text) {
  uint64_t word;
  std::memcpy(&word, text, sizeof word);
  word = le64toh(word);
  // The high bits of such bytes; the first of them is right.
  const uint64_t ends = (word - 0x2020202020202020) & ~word & 0x8080808080808080;
  return ends != 0 ? __builtin_ctzll(ends) / 8 : 8;
}

}  // namespace tamsel

#endif
