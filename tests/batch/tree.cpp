// tree FOLDER COUNT: writes COUNT programs below FOLDER, a hundred to a folder, some of them
// corrupted.
//
// Prints the names of the corrupted ones, each on a line and relative to FOLDER.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include "tests/generator.h"

static std::string corrupted(std::string text, int kind) {
  switch (kind % 3) {
    case 0:
      return "";
    case 1:
      return text.substr(0, text.size() / 2);
    default:
      return text.insert(text.rfind("tel"), "\x01");
  }
}

int main(int argc, char* argv[]) {
  const int count = argc == 3 ? std::atoi(argv[2]) : 0;
  if (count < 1) {
    std::cerr << "usage: tree FOLDER COUNT\n";
    return 2;
  }
  for (int i = 0; i < count; ++i) {
    GeneratorOptions options = options_of(static_cast<unsigned>(i) + 1);
    options.equations = 5 + i % 50 * 4;
    options.expression_size = 10;
    std::ostringstream text;
    write_program(options, text);

    const std::string folder = std::to_string(i / 100);
    const std::string name = folder + "/" + std::to_string(i) + ".ec";
    std::filesystem::create_directories(std::filesystem::path(argv[1]) / folder);
    std::ofstream file(std::filesystem::path(argv[1]) / name, std::ios::binary);
    const bool bad = i % 40 == 39;
    file << (bad ? corrupted(text.str(), i / 40) : text.str());
    if (!file.flush()) {
      std::cerr << "tree: cannot write " << name << "\n";
      return 1;
    }
    if (bad) std::cout << name << "\n";
  }
  return 0;
}
