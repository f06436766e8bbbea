#include "foundation/textindex.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>

namespace {

struct Item {
  std::string text;
  const char* str;
};
using Index = TextIndex<Item>;

uint64_t hash_of(const std::string& text) { return Index::hash(text.c_str(), text.size()); }

}  // namespace

TEST(TextIndex, FindsEachOfManyTextsAndNoOther) {
  Index index;
  EXPECT_EQ(nullptr, index.find("", hash_of("")));
  std::deque<Item> items;
  for (int i = 0; i < 5000; ++i) {
    // Texts that are alike: numbers, long prefixes, one character, none.
    items.push_back(
        {i == 0 ? "" : std::string(static_cast<size_t>(i % 40), 'a') + std::to_string(i), nullptr});
    items.back().str = items.back().text.c_str();
    index.make_room();
    index.insert(&items.back(), hash_of(items.back().text));
  }
  for (Item& item : items) {
    EXPECT_EQ(&item, index.find(item.str, hash_of(item.text)));
    EXPECT_EQ(nullptr, index.find((item.text + "!").c_str(), hash_of(item.text + "!")));
  }
}

TEST(TextIndex, TellsTextsOfOneHashApart) {
  Index index;
  std::deque<Item> items;
  for (const char* text : {"one", "two", "three"}) {
    items.push_back({text, text});
    index.make_room();
    index.insert(&items.back(), 7);
  }
  for (Item& item : items) EXPECT_EQ(&item, index.find(item.str, 7));
  EXPECT_EQ(nullptr, index.find("four", 7));
}

TEST(TextIndex, FindsTheOthersWhenOneIsTakenOut) {
  const std::vector<Item> items = {{"a", "a"}, {"b", "b"}, {"c", "c"}, {"d", "d"}, {"e", "e"}};
  // Items of one slot, of its neighbours, and around the end of the table of 64.
  const uint64_t hashes[] = {63, 62, 63, 0, 63 + 64};
  for (size_t taken_out = 0; taken_out < items.size(); ++taken_out) {
    TextIndex<const Item> index;
    index.make_room();
    for (size_t i = 0; i < items.size(); ++i) index.insert(&items[i], hashes[i]);
    index.remove(&items[taken_out], hashes[taken_out]);
    for (size_t i = 0; i < items.size(); ++i)
      EXPECT_EQ(i == taken_out ? nullptr : &items[i], index.find(items[i].str, hashes[i])) << i;
  }
}
