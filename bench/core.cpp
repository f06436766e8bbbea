// bench_core FILE.ec [benchmark options]: what the C++ layers cost on one program, beside the
// limits that the machine sets on the same bytes.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cctype>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
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

std::string read_bytes(const std::string& name) {
  std::string bytes;
  FILE* file = std::fopen(name.c_str(), "r");
  char block[65536];
  for (size_t count; (count = std::fread(block, 1, sizeof block, file)) > 0;)
    bytes.append(block, count);
  std::fclose(file);
  return bytes;
}

bool in_word(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

// Calls `word` for every name, keyword or number of a text, and `other` for every other character
// that is not blank.
template <class Word, class Other>
void tokenize(std::string_view text, Word word, Other other) {
  for (const char *p = text.begin(), *end = text.end(); p != end;) {
    const char* start = p;
    while (p != end && in_word(*p)) ++p;
    if (p != start)
      word(std::string_view(start, static_cast<size_t>(p - start)));
    else if (*p++ > ' ')
      other(std::string_view(start, 1));
  }
}

// --- The limits.

void BytesRead(benchmark::State& state) {
  for (auto _ : state) {
    unsigned sum = 0;
    for (const char c : read_bytes(path)) sum += static_cast<unsigned char>(c);
    benchmark::DoNotOptimize(sum);
  }
}

void Tokens(benchmark::State& state) {
  for (auto _ : state) {
    size_t count = 0;
    const auto counted = [&](std::string_view) { ++count; };
    tokenize(read_bytes(path), counted, counted);
    benchmark::DoNotOptimize(count);
  }
}

void TokensInterned(benchmark::State& state) {
  for (auto _ : state) {
    const std::string text = read_bytes(path);
    std::unordered_map<std::string_view, int> numbers;
    size_t count = 0;
    tokenize(
        text,
        [&](std::string_view word) { numbers.emplace(word, static_cast<int>(numbers.size())); },
        [&](std::string_view) { ++count; });
    benchmark::DoNotOptimize(count);
  }
}

// The pieces of the dumped text, pushed through a counter of columns into blocks.
void PiecesWritten(benchmark::State& state) {
  const std::string text = read_bytes(out_path);
  std::vector<std::string> pieces;
  const auto add = [&](std::string_view piece) { pieces.emplace_back(piece); };
  tokenize(text, add, add);
  for (auto _ : state) {
    FILE* file = std::fopen(out_path.c_str(), "w");
    std::string block;
    int column = 0;
    for (const std::string& piece : pieces) {
      column += static_cast<int>(piece.size());
      if (column >= 80) {
        block += '\n';
        column = static_cast<int>(piece.size());
      }
      block += piece;
      if (block.size() >= 65536) {
        std::fwrite(block.data(), 1, block.size(), file);
        block.clear();
      }
    }
    std::fwrite(block.data(), 1, block.size(), file);
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
  Loaded loaded;
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<Exp*> roots;
    for (IntList* list : {loaded.program.outputs, loaded.program.locals})
      for (; list != nullptr; list = list->next)
        if (Exp* e = loaded.program.ident(list->value)->definition) roots.push_back(e);
    loaded.program.exp_heap.each([](Exp* e) {
      if (e->nb_args > 0) e->type = nullptr;
    });
    state.ResumeTiming();
    for (Exp* e : roots) benchmark::DoNotOptimize(loaded.program.type(e));
  }
}

void Dump(benchmark::State& state) {
  Loaded loaded;
  for (auto _ : state) {
    PtyStream out(out_path.c_str(), 80, nullptr);
    out.write_in_blocks();
    loaded.program.print_quarel(&out);
  }
}

// Not a time: what stands in memory after a load, and how many nodes there are.
void report_memory() {
  const auto in_use = [] {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
  };
  const size_t before = in_use();
  auto loaded = std::make_unique<Loaded>();
  std::printf("nodes,%zu\nmemory,%zu\n", loaded->program.exp_heap.size(), in_use() - before);
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc < 2) {
    std::fputs("usage: bench_core FILE.ec [benchmark options]\n", stderr);
    return 1;
  }
  path = argv[1];
  out_path = path + ".out";
  report_memory();
  for (const auto& [name, run] : std::vector<std::pair<const char*, void (*)(benchmark::State&)>>{
           {"bytes", BytesRead},
           {"tokens", Tokens},
           {"interned", TokensInterned},
           {"load", Load},
           {"free", Free},
           {"type", Type},
           {"dump", Dump},
           {"pieces", PiecesWritten}})
    benchmark::RegisterBenchmark(name, run)->Unit(benchmark::kMicrosecond);
  --argc;
  ++argv;
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  std::remove(out_path.c_str());
  return 0;
}
