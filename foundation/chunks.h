// foundation/chunks.h: arrays that grow by chunks of one size.
//
// An array is its first chunk; the chunks after it are owned by it. Items that pointers lead to
// are not owned. Any index from 0 is valid: reading past the end adds chunks of null items. The
// first chunk takes memory as it fills, and moves its items then.
#ifndef FOUNDATION_CHUNKS_H
#define FOUNDATION_CHUNKS_H

#include <algorithm>
#include <cstdint>
#include <vector>

namespace tamsel {

template <class Item>
class ChunkArray {
 public:
  // A chunk of `size` (from 1) null items, the first of which has the global index `first`.
  explicit ChunkArray(int size, int first = 0)
      : size_(size), base(first), room_(first == 0 ? std::min(size, 16) : size) {
    items = new Item[room_]();
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
    if (i >= reached_) reach(i);
    return *at(i);
  }

  // The place of the item at `i`; null where that is no index, or lies after all that were used.
  // Adds nothing.
  const Item* find(int i) const {
    return static_cast<unsigned>(i) < static_cast<unsigned>(reached_) ? at(i) : nullptr;
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

  Item* items;                 // `size_` of them, of the first chunk as many as were needed
  int size_;                   // of this chunk
  ChunkArray* next = nullptr;  // owned
  int last_used = -1;          // highest index of this chunk that was read or written
  int base;                    // global index of items[0]

 private:
  // What is asked of a chunk at each access, side by side with that of the others.
  struct Entry {
    ChunkArray* chunk;
    Item* items;
  };

  Item* at(int i) const {
    // i / size_, by a multiplication that is exact for all ints and takes a third of the time.
    const uint64_t rank = (static_cast<uint64_t>(i) * reciprocal_) >> shift_;
    return &directory_[rank].items[i - static_cast<int>(rank) * size_];
  }
  // Makes `i` one of those that were used. Out of the way of those calls that need it not.
  [[gnu::noinline]] void reach(int i) {
    const size_t rank = static_cast<size_t>(i / size_);
    const int place = i % size_;
    if (directory_.empty()) directory_.push_back({this, items});
    while (directory_.size() <= rank) {
      Entry& last = directory_.back();
      last.chunk->make_room(size_);
      last.items = last.chunk->items;
      if (last.chunk->next == nullptr)
        last.chunk->next = new ChunkArray(size_, last.chunk->base + size_);
      last.chunk->last_used = size_ - 1;
      ChunkArray* chunk = last.chunk->next;
      directory_.push_back({chunk, chunk->items});
    }
    ChunkArray* chunk = directory_[rank].chunk;
    chunk->make_room(place + 1);
    chunk->last_used = std::max(chunk->last_used, place);
    directory_[rank].items = chunk->items;
    reached_ = i + 1;
  }
  // Makes room for `count` items in this chunk.
  void make_room(int count) {
    if (count <= room_) return;
    const int room = std::min(std::max(count, 2 * room_), size_);
    Item* larger = new Item[room]();
    std::copy_n(items, room_, larger);
    delete[] items;
    items = larger;
    room_ = room;
  }

  uint64_t reciprocal_;  // of size_, times 2 to the power of shift_
  int shift_ = 31;
  int reached_ = 0;               // one more than the highest index that was used by this chunk
  int room_;                      // items that there is memory for
  std::vector<Entry> directory_;  // the chunks from this one, as far as they were asked for
};

}  // namespace tamsel

#endif
