// What the C++ layers cost on one program, beside the limits that the machine sets on the same
// bytes.
//   bench_core FILE.ec [benchmark options]   the costs of all operations, by Google Benchmark
//   bench_core FILE.ec --once                one load in this fresh process: its time, and what
//   then
//                                            stands in memory

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "reader/reader.h"

namespace {

std::string path;      // of the program
std::string out_path;  // of what is written

struct Loaded {
  SymbolTable symbols;
  EcPrg program;

  Loaded() {
    program.EcPrgInit(&symbols);
    if (EcParse(&program, &symbols, path.c_str()) != 0) std::abort();
  }
};

// The program that the operations work on which leave it as it is. Made at first use.
std::unique_ptr<Loaded> shared;
EcPrg& shared_program() {
  if (shared == nullptr) shared = std::make_unique<Loaded>();
  return shared->program;
}

// The bytes of a file, read at once.
class Text {
 public:
  explicit Text(const std::string& name) {
    FILE* file = std::fopen(name.c_str(), "r");
    if (file == nullptr) std::abort();
    std::fseek(file, 0, SEEK_END);
    size_ = static_cast<size_t>(std::ftell(file));
    std::rewind(file);
    bytes_.reset(new char[size_]);
    if (std::fread(bytes_.get(), 1, size_, file) != size_) std::abort();
    std::fclose(file);
  }
  operator std::string_view() const { return {bytes_.get(), size_}; }

 private:
  std::unique_ptr<char[]> bytes_;
  size_t size_;
};

enum Class : unsigned char { blank, word, bracket, sign };
const std::array<Class, 256> classes = [] {
  std::array<Class, 256> table;
  for (int c = 0; c < 256; ++c) {
    const bool in_word = is_letter(c) || is_digit(c) || c == '_';
    const bool stands_alone = c != 0 && std::strchr("()[],;", c) != nullptr;
    table[static_cast<size_t>(c)] = c <= ' '       ? blank
                                    : in_word      ? word
                                    : stands_alone ? bracket
                                                   : sign;
  }
  return table;
}();
Class class_of(char c) { return classes[static_cast<unsigned char>(c)]; }

// Calls `take` with the class and the text of each token: a word or number, a bracket, or signs in
// a row.
template <class Take>
void tokenize(std::string_view text, Take take) {
  for (const char *p = text.begin(), *end = text.end(); p != end;) {
    const char* start = p++;
    const Class kind = class_of(*start);
    if (kind == blank) continue;
    if (kind != bracket)
      while (p != end && class_of(*p) == kind) ++p;
    take(kind, std::string_view(start, static_cast<size_t>(p - start)));
  }
}

// A hash table that does nothing but number texts: open addressing, at most half full, hashes
// beside the numbers. Borrows the texts.
class Numbers {
 public:
  uint32_t number_of(std::string_view text) {
    if (2 * texts_.size() >= slots_.size()) grow();
    const uint32_t hash = hash_of(text);
    for (size_t i = hash & (slots_.size() - 1);; i = (i + 1) & (slots_.size() - 1)) {
      Slot& slot = slots_[i];
      if (slot.number == 0) {
        texts_.push_back(text);
        slot = {hash, static_cast<uint32_t>(texts_.size())};
        return slot.number;
      }
      if (slot.hash == hash && texts_[slot.number - 1] == text) return slot.number;
    }
  }

 private:
  struct Slot {
    uint32_t hash;
    uint32_t number;  // 0: free
  };

  static uint32_t hash_of(std::string_view text) {
    constexpr uint64_t odd = 0x9E3779B97F4A7C15u;
    uint64_t mixed = text.size();
    while (!text.empty()) {
      uint64_t part = 0;
      const size_t size = std::min<size_t>(text.size(), 8);
      std::memcpy(&part, text.data(), size);
      mixed = (mixed ^ part) * odd;
      mixed ^= mixed >> 32;
      text.remove_prefix(size);
    }
    return static_cast<uint32_t>(mixed * odd >> 32);
  }

  void grow() {
    std::vector<Slot> larger(slots_.empty() ? 1024 : 2 * slots_.size());
    for (const Slot& slot : slots_) {
      if (slot.number == 0) continue;
      size_t i = slot.hash & (larger.size() - 1);
      while (larger[i].number != 0) i = (i + 1) & (larger.size() - 1);
      larger[i] = slot;
    }
    slots_.swap(larger);
  }

  std::vector<Slot> slots_;  // a power of two
  std::vector<std::string_view> texts_;
};

// --- The limits.

void BytesRead(benchmark::State& state) {
  for (auto _ : state) {
    const Text text(path);
    unsigned sum = 0;
    for (const char c : std::string_view(text)) sum += static_cast<unsigned char>(c);
    benchmark::DoNotOptimize(sum);
  }
}

void Tokens(benchmark::State& state) {
  for (auto _ : state) {
    const Text text(path);
    size_t count = 0;
    tokenize(text, [&](Class, std::string_view) { ++count; });
    benchmark::DoNotOptimize(count);
  }
}

void TokensInterned(benchmark::State& state) {
  for (auto _ : state) {
    const Text text(path);
    Numbers numbers;
    size_t sum = 0;
    tokenize(text, [&](Class kind, std::string_view token) {
      sum += kind == word ? numbers.number_of(token) : 1;
    });
    benchmark::DoNotOptimize(sum);
  }
}

void dump() {
  PtyStream out(out_path.c_str(), 80, nullptr);
  out.write_in_blocks();
  shared_program().print_quarel(&out);
}

// The pieces of the dumped text, each with the blanks behind it, pushed through a counter of
// columns into blocks.
void PiecesWritten(benchmark::State& state) {
  dump();
  const Text text(out_path);
  std::vector<uint8_t> lengths;  // one byte a piece: what a piece costs is its copying
  const char* taken = std::string_view(text).begin();
  const auto end_piece = [&](const char* end) {
    for (; end - taken > 255; taken += 255) lengths.push_back(255);
    lengths.push_back(static_cast<uint8_t>(end - taken));
    taken = end;
  };
  tokenize(text, [&](Class, std::string_view token) {
    if (token.begin() != taken) end_piece(token.begin());
  });
  end_piece(std::string_view(text).end());
  for (auto _ : state) {
    FILE* file = std::fopen(out_path.c_str(), "w");
    std::setvbuf(file, nullptr, _IONBF, 0);
    static char block[65536];
    size_t used = 0;
    unsigned column = 0;
    const char* piece = std::string_view(text).begin();
    for (const uint8_t length : lengths) {
      if (used + length + 1 > sizeof block) {
        std::fwrite(block, 1, used, file);
        used = 0;
      }
      column += length;
      if (column >= 80) {
        block[used++] = '\n';
        column = length;
      }
      std::memcpy(block + used, piece, length);
      used += length;
      piece += length;
    }
    std::fwrite(block, 1, used, file);
    std::fclose(file);
  }
}

// --- The system.

void Load(benchmark::State& state) {
  for (auto _ : state) {
    auto loaded = std::make_unique<Loaded>();
    state.PauseTiming();
    loaded.reset();
    state.ResumeTiming();
  }
}

void Free(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    auto loaded = std::make_unique<Loaded>();
    state.ResumeTiming();
    loaded.reset();
  }
}

void Type(benchmark::State& state) {
  EcPrg& program = shared_program();
  std::vector<Exp*> roots;
  for (IntList* list : {program.outputs, program.locals})
    for (; list != nullptr; list = list->next)
      if (Exp* e = program.ident(list->value)->definition) roots.push_back(e);
  for (auto _ : state) {
    state.PauseTiming();
    program.exp_heap.each([](Exp* e) {
      if (e->nb_args > 0) e->type = nullptr;
    });
    state.ResumeTiming();
    for (Exp* e : roots) benchmark::DoNotOptimize(program.type(e));
  }
}

void Dump(benchmark::State& state) {
  shared_program();
  for (auto _ : state) dump();
}

// In the order in which they run: `load` and `free` before anything is kept.
const struct {
  const char* name;
  void (*run)(benchmark::State&);
} costs[] = {
    {"load", Load},
    {"free", Free},
    {"bytes", BytesRead},
    {"tokens", Tokens},
    {"interned", TokensInterned},
    {"type", Type},
    {"dump", Dump},
    {"pieces", PiecesWritten},
};

// --- One load.

double processor_time() {
  timespec now;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) / 1e3;
}

size_t allocated_bytes() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

size_t resident_bytes() {
  size_t total = 0, resident = 0;
  FILE* file = std::fopen("/proc/self/statm", "r");
  if (file == nullptr || std::fscanf(file, "%zu %zu", &total, &resident) != 2) std::abort();
  std::fclose(file);
  return resident * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

void load_once() {
  const size_t allocated = allocated_bytes();
  const size_t resident = resident_bytes();
  const double start = processor_time();
  const auto loaded = std::make_unique<Loaded>();
  std::printf("once,%.1f\n", processor_time() - start);
  std::printf("nodes,%zu\n", loaded->program.exp_heap.size());
  std::printf("allocated,%zu\n", allocated_bytes() - allocated);
  std::printf("resident,%zu\n", resident_bytes() - resident);
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc < 2) {
    std::fputs("usage: bench_core FILE.ec [--once | benchmark options]\n", stderr);
    return 1;
  }
  path = argv[1];
  out_path = path + ".out";
  if (argc == 3 && std::strcmp(argv[2], "--once") == 0) {
    load_once();
    return 0;
  }
  for (const auto& cost : costs)
    benchmark::RegisterBenchmark(cost.name, cost.run)->Unit(benchmark::kMicrosecond);
  --argc;
  ++argv;
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  std::remove(out_path.c_str());
  return 0;
}
