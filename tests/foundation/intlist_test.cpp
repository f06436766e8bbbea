#include "foundation/intlist.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

using List = std::unique_ptr<IntList>;

static List make(const std::vector<int>& values) {
  if (values.empty()) return nullptr;
  return List(new IntList(values.data(), static_cast<int>(values.size())));
}

// Calls on a null list are what the sanitizer forbids and the interface allows.
__attribute__((noinline, no_sanitize("undefined"))) static int member_length(IntList* list) {
  return list->length();
}
__attribute__((noinline, no_sanitize("undefined"))) static int member_extract(IntList* list, int i,
                                                                              int* out) {
  return list->extract(i, out);
}
__attribute__((noinline, no_sanitize("undefined"))) static IntList* member_append(IntList* list,
                                                                                  IntList* other) {
  return list->append(other);
}

TEST(IntList, MembersTakeTheNullListAndAnyIndex) {
  IntList* volatile none = nullptr;  // the compiler must not know
  int out = 42;
  EXPECT_EQ(0, member_length(none));
  EXPECT_EQ(1, member_extract(none, 0, &out));
  const List list = make({5, 6});
  EXPECT_EQ(1, list->extract(2, &out));
  EXPECT_EQ(1, list->extract(-1, &out));
  EXPECT_EQ(42, out);
  EXPECT_EQ(0, list->extract(1, &out));
  EXPECT_EQ(6, out);
  EXPECT_EQ(nullptr, member_append(none, nullptr));
  EXPECT_EQ(list.get(), member_append(none, list.get()));
  EXPECT_EQ(list.get(), member_append(list.get(), nullptr));
}

TEST(IntList, ComparesLengthsAndValues) {
  const struct {
    std::vector<int> a, b;
    int is_same;
  } rows[] = {
      {{}, {}, 1}, {{}, {1}, 0}, {{1, 2}, {1, 2}, 1}, {{1, 2}, {1, 2, 3}, 0}, {{1, 2}, {1, 3}, 0}};
  for (const auto& row : rows) {
    EXPECT_EQ(row.is_same, same_values(make(row.a).get(), make(row.b).get()));
  }
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

TEST(IntList, HoldsAMillionCells) {
  const List built = make(std::vector<int>(1000000, 7));
  IntList* appended = nullptr;
  for (int i = 0; i < 1000000; ++i) append_list(appended, 7);
  EXPECT_EQ(1, same_values(built.get(), appended));
  delete appended;
}

TEST(IntList, PrintsTenValuesALine) {
  testing::internal::CaptureStdout();
  make({-3})->print();
  make({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 1})->print();
  EXPECT_EQ(
      "{ -3 }\n"
      "{ 1, 2, 3, 4, 5, 6, 7, 8, 9, 10,\n1, 2, 3, 4, 5, 6, 7, 8, 9, 10,\n1 }\n",
      testing::internal::GetCapturedStdout());
}

TEST(IntIterator, StopsAtTheEndAndBorrowsTheList) {
  IntList* list = make({4, 0, 7}).release();
  {
    IntIterator next(list);
    EXPECT_EQ(4, next());
    EXPECT_EQ(0, next());  // as the end does
    next.reset();
    EXPECT_EQ(4, next());
    next.reset(list->next->next);
    EXPECT_EQ(7, next());
    EXPECT_EQ(0, next());
    EXPECT_EQ(0, next());
    append_list(list, 8);
    EXPECT_EQ(8, next());  // it stayed at the last cell
  }
  EXPECT_EQ(4, length(list));
  delete list;
  EXPECT_EQ(0, IntIterator()());
}

TEST(IntListIndex, FollowsAListThatGrows) {
  IntListIndex index;
  int out = -1;
  EXPECT_EQ(1, index.extract(nullptr, 0, &out));
  IntList* list = nullptr;
  for (int value = 1; value <= 100; ++value) append_list(list, value);
  EXPECT_EQ(0, index.extract(list, 60, &out));
  EXPECT_EQ(61, out);
  EXPECT_EQ(1, index.extract(list, 100, &out));
  append_list(list, 101);
  for (const int place : {100, 0, 99, 61}) {
    EXPECT_EQ(0, index.extract(list, place, &out));
    EXPECT_EQ(place + 1, out);
  }
  EXPECT_EQ(1, index.extract(list, -1, &out));
  EXPECT_EQ(62, out);
  delete list;
}
