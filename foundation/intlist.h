// foundation/intlist.h: lists of ints, mostly symbol numbers.
//
// A list is its first cell, and null is the empty list. Whoever holds the head owns all cells; an
// iterator borrows them. No operation recurses or fails (beyond bad_alloc where a cell is made).
// The free functions take null; length, extract and append forward to them and may be called on a
// null list.
#ifndef FOUNDATION_INTLIST_H
#define FOUNDATION_INTLIST_H

#include <cstddef>
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
    explicit Iterator(const IntList* cell) : cell_(cell) {}
    int operator*() const { return cell_->value; }
    Iterator& operator++() {
      cell_ = cell_->next;
      return *this;
    }
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

// The elements by position of a list that changes in no way but growing at its end. Borrows the
// list.
class IntListIndex {
 public:
  // The same as extract of `list`, which is the same list each time, in constant time: a cell is
  // walked over once, however often elements are asked for.
  int extract(const IntList* list, int i, int* out) {
    const size_t place = static_cast<size_t>(i);  // a negative one is after all elements
    if (place >= values_.size() && !walk_to(list, i)) return 1;
    *out = values_[place];
    return 0;
  }

 private:
  // Walks on until element `i` is among the values. False where there is none.
  bool walk_to(const IntList* list, int i);

  std::vector<int> values_;             // of the cells walked over
  const IntList* walked_to_ = nullptr;  // the last of them
};

}  // namespace tamsel

#endif
