#include "foundation/symbols.h"

#include "tests/support.h"

using namespace tamsel;

TEST(StringTape, HashesLowNibblesInGroups) {
  const struct {
    const char* name;
    unsigned sum;
  } rows[] = {
      // clang-format off
      {"", 0}, {"a", 1}, {"q", 1},  // the high nibble does not count
      {"abcdefg", 0x1234567}, {"abcdefgh", 0x1234567 + 8},  // a group of seven, and the next
      {"abcdefghijklmno", 0x1234567 + 0x89abcdefu},
      {"abcdefghijklmnopqrstuvwx", 0x1234567 + 0x89abcdefu + 0x01234567 + 8},
      {"ooooooooooooooo", 0xfffffffu + 0xffffffffu},  // 32 bits wrap
      // clang-format on
  };
  StringTape tape;
  tape.init(5041);
  for (const auto& row : rows) {
    EXPECT_EQ(static_cast<int>(row.sum % 5041), tape.hash_code(row.name)) << row.name;
  }
}

TEST(StringTape, CountsBucketsAndCollisions) {
  const struct {
    bool is_search;
    const char* name;
    int number, occupied, coll_max;
  } steps[] = {
      {false, "a", 1, 1, 0}, {false, "b", 2, 2, 0},
      {false, "q", 3, 2, 2},                        // one more than it walked
      {false, "A", 4, 2, 2}, {true, "Q", 0, 2, 4},  // a vain search counts
      {false, "a", 1, 2, 4}, {true, "a", 1, 2, 4},
  };
  StringTape tape;
  tape.init(5041);
  for (const auto& step : steps) {
    const STapeHashItem* item =
        step.is_search ? tape.internal_find(step.name) : tape.internal_add(step.name);
    EXPECT_EQ(step.number, item != nullptr ? item->number : 0) << step.name;
    EXPECT_EQ(step.occupied, tape.occupied()) << step.name;
    EXPECT_EQ(step.coll_max, tape.coll_max()) << step.name;
  }
  // The newest first, of those that are there and have that text.
  tape.forget_last();
  tape.swap(2, 3);
  const STapeHashItem* item = tape.hash_table()[tape.hash_code("a")];
  EXPECT_STREQ("q", item->str);
  EXPECT_EQ(2, item->depth);
  EXPECT_EQ(1, item->next->number);
  EXPECT_EQ(nullptr, item->next->next);
}

TEST(StringTape, FillsPagesAroundLongStrings) {
  StringTape tape;
  tape.init(7);
  std::string longest(100000, 'l');
  const auto text = [&](int length) {
    const STapeHashItem* item =
        tape.internal_add(longest.c_str() + longest.size() - static_cast<size_t>(length));
    EXPECT_EQ(length, static_cast<int>(std::strlen(item->str)));
  };
  text(100000);
  EXPECT_EQ(0, tape.page_room);
  for (const int length : {1, 15000, 15001})
    text(length);  // in pages of their length, and an ordinary one
  const STapePage* filled = tape.current_page;
  for (const int length : {16380, 16384, 99999}) text(length);
  EXPECT_EQ(filled, tape.current_page);
  EXPECT_EQ(1378, tape.page_room);
  text(1377);  // fills the page to its last byte
  EXPECT_EQ(filled, tape.current_page);
  EXPECT_EQ(0, tape.page_room);
  text(0);
  EXPECT_EQ(filled, tape.current_page->next);
  EXPECT_EQ(16379, tape.page_room);
}

TEST(SymbolTable, PrintsInOrder) {
  SymbolTable table;
  for (const char* name : {"b", "a"}) table.add_text(name);
  EXPECT_EQ(
      "symbol[  1]= \"b\"\nsymbol[  2]= \"a\"\n"
      "hash size  :  5041\noccupied   :     2\ncoll max   :     0\nnb strings :     2\n",
      stdout_text([&] { table.print(), table.print_statistics(stdout); }));
}

TEST(SymbolTable, IsCutBackToAnEarlierChunk) {
  SymbolTable table;
  for (int i = 1; i <= 4000; ++i) EXPECT_EQ(i, table.add("a_name%d", i));
  table.cut_back(1000);
  EXPECT_EQ(1000, table.find("a_name%d", 1000));
  EXPECT_EQ(0, table.find("a_name%d", 1001));
  EXPECT_EQ(1001, table.add_text("a_name4000"));  // the first of the next chunk
  EXPECT_STREQ("a_name4000", table.names->next->items[0]);
  for (const int nothing : {0, -1, 1002}) EXPECT_STREQ("?", table.name(nothing)) << nothing;
}
