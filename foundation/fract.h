// foundation/fract.h: exact rational numbers over 64 bits.
//
// A value that the constructor of two numbers made is in normal form: den is positive, num and den
// have no common divisor, zero is 0/1. Everything else copies the fields as they are.
// Nothing is allocated. Products and sums that leave 64 bits wrap, and nothing tells; of the
// numbers read from text only exact ones are let through. A division by zero and a text that cannot
// be held print a message on standard error and exit the process with status 1.
#ifndef FOUNDATION_FRACT_H
#define FOUNDATION_FRACT_H

#include <cstdio>
#include <string>

class Fract {
 public:
  // The normal form of numerator/denominator. Exits if `denominator` is 0.
  Fract(long long numerator, long long denominator);
  // n/1. Meant to convert: a number is used where a rational is asked for.
  Fract(long long n = 0) : num(n), den(1) {}
  Fract& operator=(long long n) { return *this = Fract(n); }

  // num / den, both as doubles. Exits if den is 0, which no normal form has.
  double todouble() const;
  // "-7/2", or "3" where den is 1; print writes it to `f` or to standard output.
  std::string text() const;
  void print(FILE* f) const;
  void print() const;

  long long num;
  long long den;
};

// The greatest common divisor of the magnitudes. Traps as a division by zero does if either is 0.
long long pgcd(long long a, long long b);
// The least common multiple, with the sign of a * b. Traps likewise.
long long ppcm(long long a, long long b);

// Reads a number such as "12", "-0.5" or "1.5e2" at the start of `text` under any locale; what
// follows it is ignored, and without any digit the number is 0. Exits if the number is not held
// exactly, and if the "." has no digit after it.
Fract atofract(const char* text);

Fract uminus(const Fract& x);
Fract abs(const Fract& x);
Fract plus(const Fract& x, const Fract& y);
Fract minus(const Fract& x, const Fract& y);
Fract times(const Fract& x, const Fract& y);
Fract slash(const Fract& x, const Fract& y);  // exits if `y` is 0

// Right for normal forms whose products fit 64 bits.
bool operator==(const Fract& x, const Fract& y);
bool operator!=(const Fract& x, const Fract& y);
bool operator<(const Fract& x, const Fract& y);
bool operator<=(const Fract& x, const Fract& y);
bool operator>(const Fract& x, const Fract& y);
bool operator>=(const Fract& x, const Fract& y);

inline bool operator==(const Fract& x, long long n) { return x == Fract(n); }
inline bool operator!=(const Fract& x, long long n) { return x != Fract(n); }
inline bool operator<(const Fract& x, long long n) { return x < Fract(n); }
inline bool operator<=(const Fract& x, long long n) { return x <= Fract(n); }
inline bool operator>(const Fract& x, long long n) { return x > Fract(n); }
inline bool operator>=(const Fract& x, long long n) { return x >= Fract(n); }

inline bool operator==(long long n, const Fract& x) { return Fract(n) == x; }
inline bool operator!=(long long n, const Fract& x) { return Fract(n) != x; }
inline bool operator<(long long n, const Fract& x) { return Fract(n) < x; }
inline bool operator<=(long long n, const Fract& x) { return Fract(n) <= x; }
inline bool operator>(long long n, const Fract& x) { return Fract(n) > x; }
inline bool operator>=(long long n, const Fract& x) { return Fract(n) >= x; }

#endif
