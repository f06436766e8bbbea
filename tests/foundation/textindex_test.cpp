#include "foundation/textindex.h"

#include <gtest/gtest.h>

#include <string>

using namespace tamsel;

namespace {

struct Texts {
  std::vector<std::string> texts;
  TextIndex index;

  int find(const std::string& text, const TextKey& key) const {
    return index.find(text.c_str(), key,
                      [&](int number) { return texts[static_cast<size_t>(number) - 1].c_str(); });
  }
};

}  // namespace

// Texts of all lengths, and long ones that have one key, in a table so full that they stand in each
// other's way and around its end.
TEST(TextIndex, FindsTheOthersWhenOneIsTakenOut) {
  const std::string letters = "abcdefghijklmnopqrstuvwxyz";
  Texts all;
  for (size_t length = 0; length < 20; ++length)
    for (const size_t start : {0, 1}) all.texts.push_back(letters.substr(start, length));
  all.texts.erase(all.texts.begin());  // the second empty one
  std::vector<TextKey> keys;
  for (const std::string& text : all.texts)
    keys.push_back(text.size() < 15 ? all.index.key(text.c_str(), text.size())
                                    : all.index.key("xxxxxxxxx", 9));
  const int count = static_cast<int>(all.texts.size());
  EXPECT_EQ(0, all.find("a", keys[1]));
  for (int taken_out = 1; taken_out <= count; ++taken_out) {
    all.index = TextIndex();
    for (int n = 1; n <= count; ++n) {
      all.index.make_room();
      all.index.insert(n, keys[static_cast<size_t>(n) - 1]);
    }
    all.index.remove(taken_out, keys[static_cast<size_t>(taken_out) - 1]);
    for (int n = 1; n <= count; ++n) {
      const size_t i = static_cast<size_t>(n) - 1;
      EXPECT_EQ(n == taken_out ? 0 : n, all.find(all.texts[i], keys[i])) << all.texts[i];
    }
    EXPECT_EQ(0, all.find("none of these", keys.back()));
  }
}
