#include "foundation/text.h"

#include <cstdio>
#include <cstdlib>
#include <new>

#include <locale.h>  // newlocale, uselocale

namespace tamsel {

// Lives until the process ends.
static locale_t plain_locale() {
  static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
  return locale;
}

// Makes the plain locale the thread's own while it stands.
class PlainLocaleScope {
 public:
  PlainLocaleScope() : before_(uselocale(plain_locale())) {}
  ~PlainLocaleScope() { uselocale(before_); }
  PlainLocaleScope(const PlainLocaleScope&) = delete;
  PlainLocaleScope& operator=(const PlainLocaleScope&) = delete;

 private:
  locale_t before_;
};

std::string format_text(const char* format, va_list args) {
  const PlainLocaleScope scope;
  char short_text[1024];
  va_list again;
  va_copy(again, args);
  const int length = vsnprintf(short_text, sizeof short_text, format, args);
  std::string text;
  if (length >= 0 && static_cast<size_t>(length) < sizeof short_text) {
    text.assign(short_text, static_cast<size_t>(length));
  } else if (length >= 0) {
    text.resize(static_cast<size_t>(length));
    vsnprintf(&text[0], text.size() + 1, format, again);
  }
  va_end(again);
  if (length < 0) throw std::bad_alloc();  // longer than printf can count
  return text;
}

std::string formatted_name(const char* text) {
  std::string name;
  for (; *text != '\0'; ++text) {
    if (text[0] == '%' && text[1] == '%') ++text;
    name += *text;
  }
  return name;
}

int read_int(const char* text, const char** end) {
  char* stop;
  const long number = strtol(text, &stop, 10);
  if (end != nullptr) *end = stop;
  return static_cast<int>(number);
}

double read_double(const char* text) { return strtod_l(text, nullptr, plain_locale()); }

float read_float(const char* text) { return strtof_l(text, nullptr, plain_locale()); }

}  // namespace tamsel
