// generate EQUATIONS [SHAPE]: writes a program of that size to standard output. Shapes: random, the
// default; and a plain one with names of 24 characters, which are ordinary or collide in one bucket
// of the symbol table.

#include <cstdlib>
#include <iostream>
#include <string>

#include "tests/generator.h"

// The bucket of a name depends on the low four bits of its characters alone, which `zero` and `one`
// share where the names are to collide.
static std::string name_of(int number, char zero, char one) {
  std::string name(24, zero);
  for (size_t place = name.size(); number > 0; number >>= 1)
    if (--place, number & 1) name[place] = one;
  return name;
}

static void write_plain(int equations, char zero, char one) {
  std::cout << "node plain(i : int) returns (o : int);\nvar\n";
  for (int k = 0; k < equations; ++k) std::cout << (k == 0 ? "" : ",\n") << name_of(k, zero, one);
  std::cout << " : int;\nlet\n  o = i;\n";
  for (int k = 0; k < equations; ++k)
    std::cout << name_of(k, zero, one) << " = 0 -> pre " << name_of(k / 2, zero, one) << " + i;\n";
  std::cout << "tel\n";
}

int main(int argc, char* argv[]) {
  std::ios::sync_with_stdio(false);
  const int equations = argc > 1 ? std::atoi(argv[1]) : 0;
  const std::string shape = argc > 2 ? argv[2] : "random";
  if (equations < 1) {
    std::cerr << "usage: generate EQUATIONS [random|ordinary|colliding]\n";
    return 1;
  }
  if (shape == "colliding") {
    write_plain(equations, 'a', 'q');
  } else if (shape == "ordinary") {
    write_plain(equations, 'a', 'b');
  } else {
    GeneratorOptions options;
    options.equations = equations;
    write_program(options, std::cout);
  }
  return std::cout.flush() ? 0 : 1;
}
