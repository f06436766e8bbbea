#include "foundation/arena.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

TEST(Arena, HandsOutMemoryOfItsOwnForEachThing) {
  Arena arena;
  struct Piece {
    unsigned char* place;
    size_t size;
  };
  std::vector<Piece> pieces;
  for (size_t i = 0; i < 3000; ++i) {
    const size_t size = i % 1000 == 999 ? 300000 : i % 71;  // some larger than any block
    auto* place = static_cast<unsigned char*>(arena.allocate(size));
    ASSERT_EQ(0u, reinterpret_cast<uintptr_t>(place) % 8);
    std::memset(place, static_cast<int>(i % 251), size);
    pieces.push_back({place, size});
  }
  for (size_t i = 0; i < pieces.size(); ++i)
    for (size_t k = 0; k < pieces[i].size; k += 13) ASSERT_EQ(i % 251, pieces[i].place[k]);
}

TEST(Arena, IsTakenBackToAMark) {
  Arena arena;
  const Arena::Mark empty = arena.mark();
  auto* kept = static_cast<char*>(arena.allocate(16));
  std::strcpy(kept, "kept");
  const Arena::Mark mark = arena.mark();
  void* first = arena.allocate(24);
  for (int i = 0; i < 1000; ++i) std::memset(arena.allocate(1000), 'x', 1000);
  arena.cut_back(mark);
  EXPECT_STREQ("kept", kept);
  EXPECT_EQ(first, arena.allocate(24));
  arena.cut_back(empty);
  EXPECT_EQ(nullptr, arena.mark().block);
  EXPECT_NE(nullptr, arena.allocate(1));
}
