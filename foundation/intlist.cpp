#include "foundation/intlist.h"

#include <cstdio>
#include <memory>
#include <utility>

using namespace tamsel;

// Built from the end, so that every cell's hint is the last cell itself.
IntList::IntList(const int* values, int n) : value(values[0]), last_(this) {
  std::unique_ptr<IntList> tail;  // freed where a further cell cannot be made
  for (int i = n - 1; i > 0; --i) {
    auto cell = std::make_unique<IntList>(values + i, 1);
    if (tail != nullptr) cell->last_ = tail->last_;
    cell->next = tail.release();
    tail = std::move(cell);
  }
  if (tail != nullptr) last_ = tail->last_;
  next = tail.release();
}

IntList::~IntList() {
  for (IntList* cell = next; cell != nullptr;) {
    IntList* behind = cell->next;
    cell->next = nullptr;  // the cell's own destructor finds nothing
    delete cell;
    cell = behind;
  }
}

// May be called on a null list, which the sanitizers must not take for a fault.
#define ON_NULL_TOO __attribute__((no_sanitize("undefined")))

ON_NULL_TOO int IntList::extract(int i, int* out) { return ::extract(this, i, out); }

ON_NULL_TOO IntList* IntList::append(IntList* other) { return ::append(this, other); }

ON_NULL_TOO int IntList::length() { return ::length(this); }

IntList* IntList::delete_head() {
  IntList* rest = next;
  next = nullptr;
  delete this;
  return rest;
}

IntList* IntList::last() {
  while (last_->last_ != last_) last_ = last_->last_;
  return last_;
}

void IntList::concat(IntList* other) {
  if (other == nullptr) return;
  IntList* old_end = last();
  old_end->next = other;
  old_end->last_ = other->last();  // older hints lead here, and now on to the new end
  last_ = old_end->last_;
}

void IntList::print() {
  printf("{ %d", value);
  int on_line = 1;
  for (const int further : values_of(next)) {
    const bool is_full = on_line == 10;
    printf(is_full ? ",\n%d" : ", %d", further);
    on_line = is_full ? 1 : on_line + 1;
  }
  printf(" }\n");
}

int length(const IntList* list) {
  int count = 0;
  for (; list != nullptr; list = list->next) ++count;
  return count;
}

int extract(const IntList* list, int i, int* out) {
  if (i < 0) return 1;
  for (; list != nullptr && i > 0; --i) list = list->next;
  if (list == nullptr) return 1;
  *out = list->value;
  return 0;
}

IntList* append(IntList* list, IntList* other) {
  if (list == nullptr) return other;
  list->concat(other);
  return list;
}

int tamsel::same_values(const IntList* a, const IntList* b) {
  while (a != nullptr && b != nullptr && a->value == b->value) {
    a = a->next;
    b = b->next;
  }
  return a == nullptr && b == nullptr;
}

int operator==(IntList& a, IntList& b) { return same_values(&a, &b); }

void append_list(IntList*& list, int value) { list = append(list, new IntList(&value, 1)); }

static const int sentinel_value = 0;

IntIterator::IntIterator() : IntIterator(nullptr) {}

IntIterator::IntIterator(IntList* list) : sentinel(&sentinel_value, 1) {
  sentinel.last_ = nullptr;
  reset(list);
}

// The sentinel would delete the list, which is borrowed.
IntIterator::~IntIterator() { sentinel.next = nullptr; }

void IntIterator::reset() { cursor = &sentinel; }

void IntIterator::reset(IntList* list) {
  sentinel.next = list;
  reset();
}

int IntIterator::operator()() {
  if (cursor->next == nullptr) return 0;
  cursor = cursor->next;
  return cursor->value;
}

bool IntListIndex::walk_to(const IntList* list, int i) {
  if (i < 0) return false;
  while (values_.size() <= static_cast<size_t>(i)) {
    const IntList* cell = walked_to_ != nullptr ? walked_to_->next : list;
    if (cell == nullptr) return false;
    values_.push_back(cell->value);
    walked_to_ = cell;
  }
  return true;
}
