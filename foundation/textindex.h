// foundation/textindex.h: finds texts by their characters in constant time, however many there are
// and whatever they look like.
#ifndef FOUNDATION_TEXTINDEX_H
#define FOUNDATION_TEXTINDEX_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

// An index of items that have a text, `str`. Borrows the items, and their texts stay as they are.
template <class Item>
class TextIndex {
 public:
  // A text's hash, by which the other operations want it.
  static uint64_t hash(const char* text, size_t length);

  // The item of `text`, or null.
  Item* find(const char* text, uint64_t text_hash) const;
  // After this, one `insert` cannot fail. Throws bad_alloc.
  void make_room();
  // Enters an item whose text is not there yet, and for which there is room.
  void insert(Item* item, uint64_t text_hash) noexcept;
  // Takes out an item that is there.
  void remove(const Item* item, uint64_t text_hash) noexcept;

 private:
  // A slot is free where `item` is null. Items whose first slot is taken stand in the next free
  // one.
  struct Slot {
    uint64_t hash;
    Item* item;
  };

  std::vector<Slot> slots_;  // a power of two of them, at most two thirds taken
  size_t taken_ = 0;
};

template <class Item>
uint64_t TextIndex<Item>::hash(const char* text, size_t length) {
  constexpr uint64_t odd = 0x9E3779B97F4A7C15u;
  uint64_t mixed = length * odd;
  const auto mix_in = [&mixed](uint64_t word) {
    mixed = (mixed ^ word) * odd;
    mixed ^= mixed >> 29;
  };
  for (; length >= 8; text += 8, length -= 8) {
    uint64_t word;
    std::memcpy(&word, text, 8);
    mix_in(word);
  }
  uint64_t rest = 0;
  while (length > 0) rest = (rest << 8) | static_cast<unsigned char>(text[--length]);
  mix_in(rest);
  mixed *= odd;
  return mixed ^ (mixed >> 32);
}

template <class Item>
Item* TextIndex<Item>::find(const char* text, uint64_t text_hash) const {
  if (slots_.empty()) return nullptr;
  const size_t mask = slots_.size() - 1;
  for (size_t i = text_hash & mask; slots_[i].item != nullptr; i = (i + 1) & mask) {
    const Slot& slot = slots_[i];
    if (slot.hash == text_hash && std::strcmp(slot.item->str, text) == 0) return slot.item;
  }
  return nullptr;
}

template <class Item>
void TextIndex<Item>::make_room() {
  if (3 * (taken_ + 1) <= 2 * slots_.size()) return;
  std::vector<Slot> larger(slots_.empty() ? 64 : 2 * slots_.size());
  larger.swap(slots_);
  taken_ = 0;
  for (const Slot& slot : larger)
    if (slot.item != nullptr) insert(slot.item, slot.hash);
}

template <class Item>
void TextIndex<Item>::insert(Item* item, uint64_t text_hash) noexcept {
  const size_t mask = slots_.size() - 1;
  size_t i = text_hash & mask;
  while (slots_[i].item != nullptr) i = (i + 1) & mask;
  slots_[i] = {text_hash, item};
  ++taken_;
}

template <class Item>
void TextIndex<Item>::remove(const Item* item, uint64_t text_hash) noexcept {
  const size_t mask = slots_.size() - 1;
  size_t gap = text_hash & mask;
  while (slots_[gap].item != item) gap = (gap + 1) & mask;
  // Each item behind the gap moves into it, unless its search begins behind the gap.
  for (size_t i = (gap + 1) & mask; slots_[i].item != nullptr; i = (i + 1) & mask) {
    if (((i - slots_[i].hash) & mask) < ((i - gap) & mask)) continue;
    slots_[gap] = slots_[i];
    gap = i;
  }
  slots_[gap].item = nullptr;
  --taken_;
}

#endif
