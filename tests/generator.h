// tests/generator.h: random programs that are well formed and well typed.
//
// The same options give the same text on every machine. A program of n equations takes time and
// space linear in n, so that the generator serves benchmarks as well.
#ifndef TESTS_GENERATOR_H
#define TESTS_GENERATOR_H

#include <iosfwd>
#include <string>

struct GeneratorOptions {
  unsigned seed = 1;
  int equations = 10;        // from 1; a tuple equation counts as one
  int expression_size = 10;  // operators in an equation, about
  // How many variables around its own an equation mentions, as programs do that were put together
  // of parts; 0: any.
  int reach = 0;
  bool long_names = false;  // names of some 50 characters instead of 2 or 3
  bool tuple_equations = false;
  bool clocks = true;  // some variables run on a clock of their own
  bool types = true;   // abstract and enumerated types, with constants
  bool functions = true;
  bool assertions = true;
  bool sound = false;  // clocks fit everywhere, and no equation needs itself now
};

void write_program(const GeneratorOptions& options, std::ostream& out);
std::string program_text(const GeneratorOptions& options);

// Options of all kinds but `sound`, by seed.
GeneratorOptions options_of(unsigned seed);

#endif
