// foundation/chunks.h: arrays that grow by chunks of one size and never move an item.
//
// An array is its first chunk; the chunks after it are owned by it. Items that pointers lead to
// are not owned. Any index from 0 is valid: reading past the end adds chunks of null items.
#ifndef FOUNDATION_CHUNKS_H
#define FOUNDATION_CHUNKS_H

#include <cstdint>
#include <vector>

namespace tamsel {

template <class Item>
class ChunkArray {
 public:
  // A chunk of `size` (from 1) null items, the first of which has the global index `first`.
  explicit ChunkArray(int size, int first = 0) : items(new Item[size]()), size_(size), base(first) {
    while (size > 1ll << (shift_ - 31)) ++shift_;
    reciprocal_ = (uint64_t{1} << shift_) / static_cast<uint64_t>(size) + 1;
  }
  ~ChunkArray() {
    delete[] items;
    for (ChunkArray* chunk = next; chunk != nullptr;) {
      ChunkArray* behind = chunk->next;
      chunk->next = nullptr;
      delete chunk;
      chunk = behind;
    }
  }
  ChunkArray(const ChunkArray&) = delete;
  ChunkArray& operator=(const ChunkArray&) = delete;

  // The item at `i` (from 0, counted from this chunk). Constant time; adds chunks where `i` lies
  // after the last. Throws bad_alloc with the array as it was or longer.
  Item& operator[](int i) {
    // i / size_, by a multiplication that is exact for all ints and takes a third of the time.
    const uint64_t rank = (static_cast<uint64_t>(i) * reciprocal_) >> shift_;
    if (rank >= directory_.size()) extend(rank);
    const Entry& entry = directory_[rank];
    const int place = i - static_cast<int>(rank) * size_;
    if (place > entry.chunk->last_used) entry.chunk->last_used = place;
    return entry.items[place];
  }

  // One more than the highest index used, counted from this chunk.
  int size() const {
    int before = 0;
    const ChunkArray* chunk = this;
    while (chunk->last_used == chunk->size_ - 1 && chunk->next != nullptr) {
      before += chunk->size_;
      chunk = chunk->next;
    }
    return before + chunk->last_used + 1;
  }

  Item* items;                 // `size_` of them
  int size_;                   // of this chunk
  ChunkArray* next = nullptr;  // owned
  int last_used = -1;          // highest index of this chunk that was read or written
  int base;                    // global index of items[0]

 private:
  // Covers the chunk `rank`, from 0. Out of the way of those calls that need it not.
  [[gnu::noinline]] void extend(uint64_t rank) {
    while (directory_.size() <= rank) {
      ChunkArray* last = directory_.empty() ? nullptr : directory_.back().chunk;
      if (last != nullptr && last->next == nullptr) last->grow();
      ChunkArray* chunk = last != nullptr ? last->next : this;
      directory_.push_back({chunk, chunk->items});
    }
  }
  void grow() {
    next = new ChunkArray(size_, base + size_);
    last_used = size_ - 1;
  }

  struct Entry {
    ChunkArray* chunk;
    Item* items;  // of the chunk
  };

  uint64_t reciprocal_;  // of size_, times 2 to the power of shift_
  int shift_ = 31;
  std::vector<Entry> directory_;  // the chunks from this one, as far as they were asked for
};

}  // namespace tamsel

#endif
