// foundation/intlist.h: lists of ints, mostly symbol numbers.
//
// A list is its first cell, and null is the empty list. Whoever holds the head owns all cells; an
// iterator borrows them. No operation recurses or fails (beyond bad_alloc where a cell is made).
// The free functions take null; length, extract and append forward to them and may be called on a
// null list.
#ifndef FOUNDATION_INTLIST_H
#define FOUNDATION_INTLIST_H

#include <cstddef>
#include <iterator>
#include <vector>

class IntList {
 public:
  // The list of values[0] .. values[n - 1], n from 1.
  IntList(const int* values, int n);
  // Deletes the cells after this one.
  ~IntList();
  IntList(const IntList&) = delete;
  IntList& operator=(const IntList&) = delete;

  int extract(int i, int* out);
  IntList* append(IntList* other);
  int length();
  // Deletes this cell alone and hands over the rest, which may be null.
  IntList* delete_head();
  // The last cell; shortens this cell's hint on the way.
  IntList* last();
  // Takes `other`, which may be null and shares no cell with this list, and links it at the end.
  // Constant time on the head of a list that grows at its end.
  void concat(IntList* other);
  // Writes "{ 1, 2, 3 }" and a newline to standard output, ten values a line.
  void print();

  int value;
  IntList* next = nullptr;  // owned
  IntList* last_;           // a hint: following hints leads to the last cell, whose hint is itself
};

int length(const IntList* list);
// Stores element i (from 0) and returns 0; returns 1 with `*out` untouched where there is none.
int extract(const IntList* list, int i, int* out);
// Takes both lists and hands over `list` followed by `other`.
IntList* append(IntList* list, IntList* other);
// 1 if both hold the same values in the same order, else 0.
int operator==(IntList& a, IntList& b);
// Appends one cell with `value` to `list`, which may be null.
void append_list(IntList*& list, int value);

// Yields the values of a list of non-zero ints, then 0. Borrows the list.
class IntIterator {
 public:
  IntIterator();
  explicit IntIterator(IntList* list);
  ~IntIterator();
  IntIterator(const IntIterator&) = delete;
  IntIterator& operator=(const IntIterator&) = delete;

  // Back before the first element, of the same list or of `list`.
  void reset();
  void reset(IntList* list);
  // The next value; 0 at the end, where it stays.
  int operator()();

  IntList* cursor;   // the cell last returned, or the sentinel
  IntList sentinel;  // stands before the first cell
};

namespace tamsel {

// The same, and of lists that may be null.
int same_values(const IntList* a, const IntList* b);

// The values of a list, which may be null, as a range. Borrows the list.
class IntListRange {
 public:
  class Iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = int;
    using difference_type = std::ptrdiff_t;
    using pointer = const int*;
    using reference = int;

    explicit Iterator(const IntList* cell) : cell_(cell) {}
    int operator*() const { return cell_->value; }
    Iterator& operator++() {
      cell_ = cell_->next;
      return *this;
    }
    bool operator==(const Iterator& other) const { return cell_ == other.cell_; }
    bool operator!=(const Iterator& other) const { return cell_ != other.cell_; }

   private:
    const IntList* cell_;
  };

  explicit IntListRange(const IntList* list) : list_(list) {}
  Iterator begin() const { return Iterator(list_); }
  Iterator end() const { return Iterator(nullptr); }

 private:
  const IntList* list_;
};
inline IntListRange values_of(const IntList* list) { return IntListRange(list); }

// The elements by position of a list that grows at its end and loses any of its elements, in no
// other way than by `remove`. Borrows the list. Each element has a slot: how many were appended
// before it, with those that are gone.
class IntListIndex {
 public:
  // The same as extract of `list`, which is the same list each time, in constant time: a cell is
  // walked over once, however often elements are asked for. Logarithmic where elements are gone.
  int extract(IntList* list, int i, int* out) {
    const size_t place = static_cast<size_t>(i);  // a negative one is after all elements
    if (gone_ == 0 && place < values_.size()) {
      *out = values_[place];
      return 0;
    }
    return extract_slowly(list, i, out);
  }

  // How many elements stand before the one of `slot`.
  int rank(int slot) const { return slot - gone_before(static_cast<size_t>(slot)); }
  // How many elements are gone.
  int gone() const { return gone_; }
  // Whether `prepare_removal` was ever called.
  bool can_remove() const { return can_remove_; }
  // After this, and until the list grows, elements can be removed.
  void prepare_removal(IntList* list);
  // Takes the element of `slot` out of `list` and deletes its cell.
  void remove(IntList*& list, int slot) noexcept;
  // Whether it is time to forget those that are gone: to begin again with a fresh index, in which
  // the slots are the positions. That costs no more than the removals before it.
  bool is_mostly_gaps() const {
    return gone_ > 64 && 2 * static_cast<size_t>(gone_) > values_.size();
  }

 private:
  int extract_slowly(IntList* list, int i, int* out);
  // Walks over one cell more; false at the end of the list.
  bool walk_on(IntList* list);
  size_t slot_of(int rank) const;
  int gone_before(size_t slot) const;

  std::vector<int> values_;       // by slot, of the cells walked over
  IntList* walked_to_ = nullptr;  // the last of them that is there
  int gone_ = 0;
  // From the first preparation on: the cells, and a Fenwick tree of how many are gone.
  bool can_remove_ = false;
  std::vector<IntList*> cells_;
  std::vector<int>
      gone_in_;  // item i: of the slots before i + 1, as many as the lowest bit of i + 1
};

}  // namespace tamsel

#endif
