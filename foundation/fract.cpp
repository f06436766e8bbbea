#include "foundation/fract.h"

#include <csignal>
#include <cstdlib>

#include "foundation/text.h"

using namespace tamsel;

// Arithmetic is done on these, which wrap.
using Bits = unsigned long long;
static_assert(sizeof(Bits) == 8, "rational numbers are held in 64 bits");

static Bits bits(long long n) { return static_cast<Bits>(n); }

static long long number(Bits b) { return static_cast<long long>(b); }

// The smallest number has a magnitude too, which only Bits can hold.
static Bits magnitude(long long n) { return n < 0 ? 0 - bits(n) : bits(n); }

static long long with_sign(bool is_negative, Bits b) { return number(is_negative ? 0 - b : b); }

static long long product(long long a, long long b) { return number(bits(a) * bits(b)); }

static Bits common_divisor(Bits a, Bits b) {
  while (b != 0) {
    const Bits rest = a % b;
    a = b;
    b = rest;
  }
  return a;
}

Fract::Fract(long long numerator, long long denominator) {
  if (denominator == 0) {
    fputs("Fract::Fract: division by zero\n", stderr);
    exit(1);
  }
  const bool is_negative = (numerator < 0) != (denominator < 0);
  Bits over = magnitude(numerator);
  Bits under = magnitude(denominator);
  if (over != 1 && under != 1) {
    const Bits divisor = common_divisor(over, under);  // `under` itself for zero
    over /= divisor;
    under /= divisor;
  }
  num = with_sign(is_negative, over);
  den = number(under);
}

double Fract::todouble() const {
  if (den == 0) {
    fputs("Fract::todouble() : division by zero\n", stderr);
    exit(1);
  }
  return static_cast<double>(num) / static_cast<double>(den);
}

std::string Fract::text() const {
  return den == 1 ? std::to_string(num) : std::to_string(num) + '/' + std::to_string(den);
}

void Fract::print(FILE* f) const { fputs(text().c_str(), f); }

void Fract::print() const { print(stdout); }

// What the machine does at an integer division by zero, which the language leaves undefined.
static void trap_zero(long long a, long long b) {
  if (a != 0 && b != 0) return;
  raise(SIGFPE);
  abort();
}

long long pgcd(long long a, long long b) {
  trap_zero(a, b);
  return number(common_divisor(magnitude(a), magnitude(b)));
}

long long ppcm(long long a, long long b) {
  trap_zero(a, b);
  const Bits divisor = common_divisor(magnitude(a), magnitude(b));
  return with_sign((a < 0) != (b < 0), magnitude(a) * (magnitude(b) / divisor));
}

namespace {

// What the digits of a text say: mantissa * 10^exponent.
struct Decimal {
  bool is_negative = false;
  Bits mantissa = 0;
  long long exponent = 0;

  void take_digit(unsigned char c) { mantissa = mantissa * 10 + c - '0'; }
};

}  // namespace

// The number that an exponent's digits at `text` give. Stops growing far beyond every exponent that
// can be held, and far below what could overflow.
static long long read_exponent(const unsigned char* text) {
  const bool is_negative = *text == '-';
  if (*text == '-' || *text == '+') ++text;
  long long exponent = 0;
  for (; is_digit(*text); ++text) {
    if (exponent < 100000000000000000) exponent = exponent * 10 + (*text - '0');
  }
  return is_negative ? -exponent : exponent;
}

static Decimal read_decimal(const unsigned char* text) {
  Decimal decimal;
  decimal.is_negative = *text == '-';
  if (decimal.is_negative) ++text;
  for (; is_digit(*text); ++text) decimal.take_digit(*text);
  if (*text == '.') {
    const unsigned char* first = ++text;
    while (is_digit(*text)) ++text;
    const unsigned char* end = text;
    while (end > first && end[-1] == '0') --end;
    // The first character counts whatever it is. A "." without digits so gives a wrong number,
    // which atofract refuses.
    if (end == first) ++end;
    for (const unsigned char* c = first; c < end; ++c) decimal.take_digit(*c);
    decimal.exponent = first - end;
  }
  if (*text == 'e' || *text == 'E') decimal.exponent += read_exponent(text + 1);
  return decimal;
}

static Bits power_of_ten(long long exponent) {
  Bits power = 1;
  for (; exponent > 0; --exponent) power *= 10;
  return power;
}

[[noreturn]] static void refuse(const char* text) {
  fprintf(stderr, "Fract::operator=(char*) : arithmetic overflow while parsing '%s'\n", text);
  exit(1);
}

Fract atofract(const char* text) {
  const Decimal decimal = read_decimal(reinterpret_cast<const unsigned char*>(text));
  const long long exponent = decimal.exponent;
  if (exponent < -18 || exponent > 18) refuse(text);  // such a power of ten exceeds 64 bits
  const Bits over = exponent > 0 ? decimal.mantissa * power_of_ten(exponent) : decimal.mantissa;
  const Bits under = exponent < 0 ? power_of_ten(-exponent) : 1;
  const long long p = with_sign(decimal.is_negative, over);
  const long long q = number(under);
  // Whatever wrapped on the way shows here.
  if (static_cast<double>(p) / static_cast<double>(q) != read_double(text)) refuse(text);
  return Fract(p, q);
}

Fract uminus(const Fract& x) { return Fract(product(x.num, -1), x.den); }

Fract abs(const Fract& x) { return x.num < 0 ? uminus(x) : x; }

Fract plus(const Fract& x, const Fract& y) {
  const Bits sum = bits(product(x.num, y.den)) + bits(product(y.num, x.den));
  return Fract(number(sum), product(x.den, y.den));
}

Fract minus(const Fract& x, const Fract& y) {
  const Bits difference = bits(product(x.num, y.den)) - bits(product(y.num, x.den));
  return Fract(number(difference), product(x.den, y.den));
}

Fract times(const Fract& x, const Fract& y) {
  return Fract(product(x.num, y.num), product(x.den, y.den));
}

Fract slash(const Fract& x, const Fract& y) {
  return Fract(product(x.num, y.den), product(x.den, y.num));
}

bool operator==(const Fract& x, const Fract& y) { return x.num == y.num && x.den == y.den; }
bool operator!=(const Fract& x, const Fract& y) { return !(x == y); }
bool operator<(const Fract& x, const Fract& y) {
  return product(x.num, y.den) < product(y.num, x.den);
}
bool operator<=(const Fract& x, const Fract& y) { return !(y < x); }
bool operator>(const Fract& x, const Fract& y) { return y < x; }
bool operator>=(const Fract& x, const Fract& y) { return !(x < y); }
