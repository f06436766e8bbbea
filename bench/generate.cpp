// generate SIZE [SHAPE]: writes a program to standard output. `shapes` lists the shapes; SIZE
// counts equations, or what a shape has many of instead.

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>

#include "tests/generator.h"

namespace {

void write_random(int size, int expression_size, bool long_names, int reach = 1000,
                  bool sound = false) {
  GeneratorOptions options;
  options.sound = sound;
  options.reach = reach;
  options.equations = size;
  options.expression_size = expression_size;
  options.long_names = long_names;
  write_program(options, std::cout);
}

// The bucket of a name in the symbol table depends on the low four bits of its characters alone,
// which `zero` and `one` share where the names are to collide.
std::string name_of(int number, char zero, char one) {
  std::string name(24, zero);
  for (size_t place = name.size(); number > 0; number >>= 1)
    if (--place, number & 1) name[place] = one;
  return name;
}

void write_plain(int equations, char zero, char one) {
  std::cout << "node plain(i : int) returns (o : int);\nvar\n";
  for (int k = 0; k < equations; ++k) std::cout << (k == 0 ? "" : ",\n") << name_of(k, zero, one);
  std::cout << " : int;\nlet\n  o = i;\n";
  for (int k = 0; k < equations; ++k)
    std::cout << name_of(k, zero, one) << " = 0 -> pre " << name_of(k / 2, zero, one) << " + i;\n";
  std::cout << "tel\n";
}

void write_chain(int operators) {
  std::cout << "node chain(i : int) returns (o : int);\nlet\n  o = i";
  for (int k = 0; k < operators; ++k) std::cout << (k % 20 == 19 ? "\n + i" : " + i");
  std::cout << ";\ntel\n";
}

void write_wide(int inputs) {
  static const char* const types[] = {"bool", "int", "real"};
  std::cout << "node wide(";
  for (int k = 0; k < inputs; ++k)
    std::cout << (k == 0 ? "" : ";\n") << "i" << k << " : " << types[k % 3];
  std::cout << ") returns (o : bool);\nlet\n  o = i0;\ntel\n";
}

const struct {
  const char* name;
  void (*write)(int size);
} shapes[] = {
    {"random", [](int size) { write_random(size, 10, false); }},
    {"scattered", [](int size) { write_random(size, 10, false, 0); }},  // names from anywhere
    {"sound", [](int size) { write_random(size, 10, false, 1000, true); }},
    {"small", [](int size) { write_random(size, 2, false); }},
    {"large", [](int size) { write_random(size, 50, false); }},
    {"long-names", [](int size) { write_random(size, 10, true); }},
    {"ordinary", [](int size) { write_plain(size, 'a', 'b'); }},   // names of 24 characters
    {"colliding", [](int size) { write_plain(size, 'a', 'q'); }},  // the same in one bucket
    {"chain", write_chain},                                        // one equation of SIZE operators
    {"wide", write_wide},                                          // SIZE inputs
};

}  // namespace

int main(int argc, char* argv[]) {
  std::ios::sync_with_stdio(false);
  const int size = argc > 1 ? std::atoi(argv[1]) : 0;
  for (const auto& shape : shapes) {
    if (size < 1 || std::strcmp(shape.name, argc > 2 ? argv[2] : shapes[0].name) != 0) continue;
    shape.write(size);
    return std::cout.flush() ? 0 : 1;
  }
  std::cerr << "usage: generate SIZE [SHAPE]\nshapes:";
  for (const auto& shape : shapes) std::cerr << ' ' << shape.name;
  std::cerr << '\n';
  return 1;
}
