// foundation/wordindex.h: finds a row of a fixed table by its word.
#ifndef FOUNDATION_WORDINDEX_H
#define FOUNDATION_WORDINDEX_H

#include <cstddef>
#include <string_view>

namespace tamsel {

// An index of a table of `rows` rows, made by the compiler. A search takes a step or two, wherever
// the row stands and whether there is one or not.
template <class Row, size_t rows>
class WordIndex {
 public:
  // `word` is the member with a row's word; no two rows have the same. Borrows the table.
  constexpr WordIndex(const Row (&table)[rows], const char* Row::*word) {
    for (const Row& row : table) {
      size_t place = place_of(row.*word);
      while (slots_[place].row != nullptr) place = behind(place);
      slots_[place].word = row.*word;
      slots_[place].row = &row;
    }
  }

  // The row of `word`; null where there is none.
  const Row* find(std::string_view word) const {
    size_t place = place_of(word);
    while (slots_[place].row != nullptr && slots_[place].word != word) place = behind(place);
    return slots_[place].row;
  }

 private:
  struct Slot {
    std::string_view word;
    const Row* row = nullptr;  // null: a free slot, where a search ends
  };

  // A power of two, at least twice the rows.
  static constexpr size_t slot_count() {
    size_t count = 2;
    while (count < 2 * rows) count *= 2;
    return count;
  }
  static constexpr size_t behind(size_t place) { return (place + 1) % slot_count(); }
  // Weighs a few characters so that the words of this library's tables seldom meet.
  static constexpr size_t place_of(std::string_view word) {
    if (word.empty()) return 0;
    const auto character = [word](size_t i) { return static_cast<unsigned char>(word[i]); };
    const size_t length = word.size();
    return (4 * length + 3 * character(0) + 2 * character(length / 2) + character(3 * length / 4)) %
           slot_count();
  }

  Slot slots_[slot_count()] = {};
};

}  // namespace tamsel

#endif
