// What the C++ layers cost on one program, beside the limits that the machine sets on the same
// bytes.
//   bench_core FILE.ec [benchmark options]   the costs of all operations, by Google Benchmark
//   bench_core FILE.ec --once                one load and one dump in this fresh process: time and
//                                            memory

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "reader/reader.h"

using namespace tamsel;

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

enum Class : unsigned char { blank, letter, digit, sign };
const std::array<Class, 256> classes = [] {
  std::array<Class, 256> table;
  for (int c = 0; c < 256; ++c)
    table[static_cast<size_t>(c)] = c <= ' '                   ? blank
                                    : is_letter(c) || c == '_' ? letter
                                    : is_digit(c)              ? digit
                                                               : sign;
  return table;
}();
Class class_of(char c) { return classes[static_cast<unsigned char>(c)]; }

// Where the token that begins at `p` ends; a comment ends where it began.
const char* end_of_token(const char* p, const char* end) {
  const auto skip_digits = [&] {
    while (p != end && class_of(*p) == digit) ++p;
  };
  const char* start = p++;
  const auto follows = [&](const char* pair) {
    return p != end && *start == pair[0] && *p == pair[1];
  };
  switch (class_of(*start)) {
    case letter:
      while (p != end && (class_of(*p) == letter || class_of(*p) == digit)) ++p;
      return p;
    case digit:
      skip_digits();
      if (p != end && *p == '.') {
        ++p;
        skip_digits();
      }
      if (p != end && (*p | 0x20) == 'e') {
        ++p;
        if (p != end && (*p == '+' || *p == '-')) ++p;
        skip_digits();
      }
      return p;
    default:
      if (follows("--") || follows("(*")) return start;
      for (const char* pair : {"->", "=>", "<=", ">=", "<>", "**"})
        if (follows(pair)) return p + 1;
      return p;
  }
}

const char* end_of_comment(std::string_view text) {
  const std::string_view last = text[0] == '-' ? "\n" : "*)";
  const size_t place = text.find(last, 1);
  return place == text.npos ? text.end() : text.begin() + place + last.size();
}

// Calls `take` with the first character's class and the text of each token.
template <class Take>
void tokenize(std::string_view text, Take take) {
  for (const char *p = text.begin(), *end = text.end(); p != end;) {
    const Class kind = class_of(*p);
    const char* start = p;
    if (kind == blank) {
      ++p;
    } else if (p = end_of_token(start, end); p != start) {
      take(kind, std::string_view(start, static_cast<size_t>(p - start)));
    } else {
      p = end_of_comment(std::string_view(start, static_cast<size_t>(end - start)));
    }
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
        texts_.push_back(keep(text));
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

  std::string_view keep(std::string_view text) {
    if (room_ < text.size()) {
      room_ = std::max<size_t>(text.size(), 65536);
      pages_.emplace_back(new char[room_]);
      free_ = pages_.back().get();
    }
    char* copy = static_cast<char*>(std::memcpy(free_, text.data(), text.size()));
    free_ += text.size();
    room_ -= text.size();
    return {copy, text.size()};
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
  std::vector<std::unique_ptr<char[]>> pages_;
  char* free_ = nullptr;  // of the last page
  size_t room_ = 0;
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
      sum += kind == letter || kind == digit ? numbers.number_of(token) : 1;
    });
    benchmark::DoNotOptimize(sum);
  }
}

void dump() {
  PtyStream out(out_path.c_str(), 80, nullptr);
  out.write_in_blocks();
  shared_program().print_quarel(&out);
}

// The pieces of the dumped text: each token with the blanks before it, and each new line with its
// indentation.
std::vector<std::string_view> pieces_of(std::string_view text) {
  std::vector<std::string_view> pieces;
  const char* taken = text.begin();
  const auto add = [&](const char* end) {
    if (end != taken) pieces.emplace_back(taken, static_cast<size_t>(end - taken));
    taken = end;
  };
  tokenize(text, [&](Class, std::string_view token) {
    const std::string_view blanks(taken, static_cast<size_t>(token.begin() - taken));
    if (blanks.find('\n') != blanks.npos) add(token.begin());
    add(token.end());
  });
  add(text.end());
  return pieces;
}

// The pieces pushed through a counter of columns into blocks.
void PiecesWritten(benchmark::State& state) {
  dump();
  const Text text(out_path);
  const std::vector<std::string_view> pieces = pieces_of(text);
  for (auto _ : state) {
    FILE* file = std::fopen(out_path.c_str(), "w");
    std::setvbuf(file, nullptr, _IONBF, 0);
    static char block[65536];
    size_t used = 0;
    size_t column = 0;
    for (const std::string_view piece : pieces) {
      if (used + piece.size() + 1 > sizeof block) {
        std::fwrite(block, 1, used, file);
        used = 0;
      }
      column += piece.size();
      if (column >= 80) {
        block[used++] = '\n';
        column = piece.size();
      }
      std::memcpy(block + used, piece.data(), piece.size());
      used += piece.size();
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
  for (const IntList* list : {program.outputs, program.locals})
    for (const int symbol : values_of(list))
      if (Exp* e = program.ident(symbol)->definition) roots.push_back(e);
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

// A line of /proc/self/status, which counts kilobytes.
size_t status_bytes(const char* what) {
  FILE* file = std::fopen("/proc/self/status", "r");
  if (file == nullptr) std::abort();
  char line[256];
  size_t kilobytes = 0;
  while (std::fgets(line, sizeof line, file) != nullptr)
    if (std::strncmp(line, what, std::strlen(what)) == 0)
      kilobytes = std::strtoul(line + std::strlen(what), nullptr, 10);
  std::fclose(file);
  return 1024 * kilobytes;
}

void load_once() {
  const size_t allocated = allocated_bytes();
  const size_t resident = status_bytes("VmRSS:");
  const double start = processor_time();
  shared = std::make_unique<Loaded>();
  std::printf("once,%.1f\n", processor_time() - start);
  std::printf("nodes,%zu\n", shared->program.exp_heap.size());
  std::printf("allocated,%zu\n", allocated_bytes() - allocated);
  std::printf("resident,%zu\n", status_bytes("VmRSS:") - resident);
  std::printf("peak,%zu\n", status_bytes("VmHWM:") - resident);
  const double loaded = processor_time();
  dump();
  std::printf("dump_once,%.1f\n", processor_time() - loaded);
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
    std::remove(out_path.c_str());
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
