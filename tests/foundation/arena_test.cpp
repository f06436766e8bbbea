#include "foundation/arena.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

using namespace tamsel;

TEST(Arena, KeepsPiecesApartAndIsTakenBackToAMark) {
  Arena arena;
  const Arena::Mark empty = arena.mark();
  std::vector<std::pair<unsigned char*, size_t>> pieces;
  for (size_t i = 0; i < 3000; ++i) {
    const size_t size = i % 1000 == 999 ? 300000 : i % 71;  // some larger than any block
    auto* place = static_cast<unsigned char*>(arena.allocate(size));
    ASSERT_EQ(0u, reinterpret_cast<uintptr_t>(place) % 8);
    std::memset(place, static_cast<int>(i % 251), size);
    pieces.push_back({place, size});
  }
  arena.allocate(16);  // in a block that has room for more
  const Arena::Mark mark = arena.mark();
  void* first = arena.allocate(24);
  for (int i = 0; i < 1000; ++i) std::memset(arena.allocate(1000), 255, 1000);
  arena.cut_back(mark);
  EXPECT_EQ(first, arena.allocate(24));
  for (size_t i = 0; i < pieces.size(); ++i)
    for (size_t k = 0; k < pieces[i].second; k += 13) ASSERT_EQ(i % 251, pieces[i].first[k]);
  arena.cut_back(empty);
  EXPECT_EQ(nullptr, arena.mark().block);
  EXPECT_NE(nullptr, arena.allocate(1));
}
