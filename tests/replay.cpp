// replay N FOLDER...: gives each file of the folders, and then N generated programs, to the fuzz
// target that it is linked with.
#include <filesystem>
#include <fstream>
#include <sstream>

#include "fuzz/fuzz.h"
#include "tests/generator.h"

static void play(const std::string& input) {
  LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(input.data()), input.size());
}

int main(int argc, char* argv[]) {
  const unsigned seeds = argc > 1 ? static_cast<unsigned>(std::atoi(argv[1])) : 0;
  for (int i = 2; i < argc; ++i) {
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
      if (!entry.is_regular_file()) continue;
      std::fprintf(stderr, "\n--- %s\n", entry.path().c_str());
      std::stringstream input;
      input << std::ifstream(entry.path()).rdbuf();
      play(input.str());
    }
  }
  for (unsigned seed = 1; seed <= seeds; ++seed) {
    std::fprintf(stderr, "\n--- seed %u\n", seed);
    play(program_text(options_of(seed)));
  }
}
