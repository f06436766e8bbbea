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

template <class Item>
static void make_room_for_one(std::vector<Item>* items) {
  if (items->size() == items->capacity()) items->reserve(2 * items->size() + 16);
}

static size_t lowest_bit(size_t i) { return i & (~i + 1); }

int IntListIndex::gone_before(size_t slot) const {
  if (gone_ == 0) return 0;
  int count = 0;
  for (; slot > 0; slot -= lowest_bit(slot)) count += gone_in_[slot - 1];
  return count;
}

bool IntListIndex::walk_on(IntList* list) {
  IntList* cell = walked_to_ != nullptr ? walked_to_->next : list;
  if (cell == nullptr) return false;
  make_room_for_one(&values_);
  if (can_remove_) {
    make_room_for_one(&cells_);
    make_room_for_one(&gone_in_);
    const size_t last = cells_.size() + 1;
    cells_.push_back(cell);
    gone_in_.push_back(gone_before(last - 1) - gone_before(last - lowest_bit(last)));
  }
  values_.push_back(cell->value);
  walked_to_ = cell;
  return true;
}

// The slot of the element before which `rank` others stand: goes down the tree.
size_t IntListIndex::slot_of(int rank) const {
  size_t step = 1;
  while (2 * step <= gone_in_.size()) step *= 2;
  size_t slot = 0;
  for (size_t left = static_cast<size_t>(rank); step > 0; step /= 2) {
    if (slot + step > gone_in_.size()) continue;
    const size_t there = step - static_cast<size_t>(gone_in_[slot + step - 1]);
    if (there > left) continue;
    slot += step;
    left -= there;
  }
  return slot;
}

int IntListIndex::extract_slowly(IntList* list, int i, int* out) {
  if (i < 0) return 1;
  while (values_.size() - static_cast<size_t>(gone_) <= static_cast<size_t>(i))
    if (!walk_on(list)) return 1;
  *out = values_[gone_ == 0 ? static_cast<size_t>(i) : slot_of(i)];
  return 0;
}

void IntListIndex::prepare_removal(IntList* list) {
  if (!can_remove_) {
    *this = IntListIndex();
    can_remove_ = true;
  }
  while (walk_on(list)) {
  }
}

void IntListIndex::remove(IntList*& list, int slot) noexcept {
  const size_t place = static_cast<size_t>(slot);
  const int before = rank(slot);
  IntList* const cell = cells_[place];
  IntList* const previous =
      before > 0 ? cells_[gone_ == 0 ? place - 1 : slot_of(before - 1)] : nullptr;
  if (previous != nullptr)
    previous->next = cell->next;
  else
    list = cell->next;
  if (walked_to_ == cell) walked_to_ = previous;
  cell->next = nullptr;
  delete cell;
  for (size_t i = place + 1; i <= gone_in_.size(); i += lowest_bit(i)) ++gone_in_[i - 1];
  ++gone_;
  // Hints of other cells may lead to the one that is gone: from now on nobody follows them.
  if (list == nullptr) return;
  walked_to_->last_ = walked_to_;
  list->last_ = walked_to_;
}
