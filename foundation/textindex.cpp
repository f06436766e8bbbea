#include "foundation/textindex.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <ctime>

namespace tamsel {

// From the system, or else from what differs from process to process by itself. Odd, as a product
// with an even number loses bits.
static uint64_t new_secret() {
  uint64_t bits;
  if (getentropy(&bits, sizeof bits) != 0) {
    const auto place = reinterpret_cast<uintptr_t>(&bits);
    bits = (place ^ static_cast<uint64_t>(std::clock())) * 0x9E3779B97F4A7C15u;
  }
  return bits | 1;
}

TextIndex::TextIndex() {
  static const std::array<uint64_t, 3> secrets = {new_secret(), new_secret(), new_secret()};
  std::copy(secrets.begin(), secrets.end(), secrets_);
}

uint64_t TextIndex::hash(std::string_view whole) const {
  const char* text = whole.data();
  size_t length = whole.size();
  uint64_t hash = length;
  for (; length > 8; text += 8, length -= 8) hash = mixed(hash, short_word(text, 8));
  return mixed(hash, short_word(text, length));
}

void TextIndex::make_room() {
  if (3 * (taken_ + 1) <= 2 * slots_.size()) return;
  std::vector<Slot> larger(slots_.empty() ? 16 : 2 * slots_.size());
  larger.swap(slots_);
  for (const Slot& slot : larger) {
    if (slot.number == 0) continue;
    size_t i = place(slot);
    while (slots_[i].number != 0) i = (i + 1) & mask();
    slots_[i] = slot;
  }
}

void TextIndex::insert(int number, const TextKey& key) noexcept {
  size_t i = key.start & mask();
  while (slots_[i].number != 0) i = (i + 1) & mask();
  slots_[i] = {key.word, key.length, number};
  ++taken_;
}

void TextIndex::remove(int number, const TextKey& key) noexcept {
  size_t gap = key.start & mask();
  while (slots_[gap].number != number) gap = (gap + 1) & mask();
  // Each text after the gap moves into it, unless its search begins after the gap.
  for (size_t i = (gap + 1) & mask(); slots_[i].number != 0; i = (i + 1) & mask()) {
    if (((i - place(slots_[i])) & mask()) < ((i - gap) & mask())) continue;
    slots_[gap] = slots_[i];
    gap = i;
  }
  slots_[gap].number = 0;
  --taken_;
}

}  // namespace tamsel
