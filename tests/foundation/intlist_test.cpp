#include "foundation/intlist.h"

#include <vector>

#include "tests/support.h"

using namespace tamsel;

using List = std::unique_ptr<IntList>;

static List make(const std::vector<int>& values) {
  return List(new IntList(values.data(), static_cast<int>(values.size())));
}

// Calls on a null list are what the sanitizer forbids and the interface allows.
__attribute__((noinline, no_sanitize("undefined"))) static void expect_empty(IntList* none,
                                                                             IntList* other) {
  int out = 42;
  EXPECT_EQ(0, none->length());
  EXPECT_EQ(1, none->extract(0, &out));
  EXPECT_EQ(42, out);
  EXPECT_EQ(other, none->append(other));
}

TEST(IntList, MembersTakeTheNullListAndAnyIndex) {
  IntList* volatile none = nullptr;  // the compiler must not know
  const List list = make({5, 6});
  expect_empty(none, nullptr);
  expect_empty(none, list.get());
  EXPECT_EQ(list.get(), list->append(nullptr));
  int out = 42;
  for (const int outside : {2, -1}) EXPECT_EQ(1, list->extract(outside, &out));
  EXPECT_EQ(42, out);
  EXPECT_EQ(0, list->extract(1, &out));
  EXPECT_EQ(6, out);
}

TEST(IntList, ConcatenationKeepsEveryHintLeadingToTheEnd) {
  IntList* head = make({1, 2}).release();
  IntList* second = head->next;
  EXPECT_EQ(second, head->last_);
  for (int i = 3; i < 9; i += 2) head->concat(make({i, i + 1}).release());
  append_list(head, 9);
  IntList* end = head;
  while (end->next != nullptr) end = end->next;
  for (IntList* cell = head; cell != nullptr; cell = cell->next) {
    EXPECT_EQ(end, cell->last()) << cell->value;
    EXPECT_EQ(end, cell->last_) << cell->value;
  }
  second->concat(make({10}).release());  // from the middle: the head's hint is stale now
  EXPECT_EQ(10, head->last()->value);
  EXPECT_EQ(1, same_values(head, make({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}).get()));
  for (int rest = 9; rest >= 0; --rest) {
    head = head->delete_head();
    EXPECT_EQ(rest, length(head));
  }
}

TEST(IntList, PrintsTenValuesALine) {
  EXPECT_EQ("{ 1, 2, 3, 4, 5, 6, 7, 8, 9, 10,\n11 }\n", stdout_text([] {
              make({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11})->print();
            }));
}

TEST(IntIterator, StopsAtTheEndAndBorrowsTheList) {
  const List list = make({4, 0, 7});
  IntIterator next(list.get());
  for (const int expected : {4, 0}) EXPECT_EQ(expected, next());  // the element 0 is no end
  next.reset();
  EXPECT_EQ(4, next());
  next.reset(list->next->next);
  for (const int expected : {7, 0, 0}) EXPECT_EQ(expected, next());
  append_list(list->next, 8);
  EXPECT_EQ(8, next());  // it stayed at the last cell
  EXPECT_EQ(0, IntIterator()());
}
