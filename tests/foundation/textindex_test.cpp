#include "foundation/textindex.h"

#include <gtest/gtest.h>

namespace {

struct Item {
  const char* str;
};

}  // namespace

TEST(TextIndex, FindsTheOthersWhenOneIsTakenOut) {
  const Item items[] = {{"a"}, {"b"}, {"c"}, {"d"}, {"e"}, {"f"}};
  // Items of one hash, of one slot, of its neighbours, and around the end of the table of 64.
  const uint64_t hashes[] = {63, 62, 63, 0, 63 + 64, 63 + 64};
  for (size_t taken_out = 0; taken_out < 6; ++taken_out) {
    TextIndex<const Item> index;
    EXPECT_EQ(nullptr, index.find("a", 63));
    index.make_room();
    for (size_t i = 0; i < 6; ++i) index.insert(&items[i], hashes[i]);
    EXPECT_EQ(nullptr, index.find("g", 63));
    index.remove(&items[taken_out], hashes[taken_out]);
    for (size_t i = 0; i < 6; ++i)
      EXPECT_EQ(i == taken_out ? nullptr : &items[i], index.find(items[i].str, hashes[i])) << i;
  }
}
