// foundation/textindex.h: finds the numbers of texts by their characters in constant time, however
// many there are and whatever they look like: also where somebody has chosen them against it, since
// each process mixes them in a way of its own.
#ifndef FOUNDATION_TEXTINDEX_H
#define FOUNDATION_TEXTINDEX_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace tamsel {

// What is compared of a text: all of a short one, which is then found without a look at any text.
struct TextKey {
  static constexpr size_t short_length = 8;

  uint64_t word;    // the characters; of a longer text their hash
  uint32_t length;  // its low bits
  uint32_t start;   // where a search for it begins, in an index of any size
};

// An index of texts that have a number, from 1. The texts themselves are kept by somebody else:
// where an operation wants `text_of`, that is a function from a number to its text.
class TextIndex {
 public:
  TextIndex();

  // The key of a text, the same in all indexes of the process.
  TextKey key(std::string_view text) const {
    const auto length = static_cast<uint32_t>(text.size());
    const uint64_t word =
        text.size() <= TextKey::short_length ? short_word(text.data(), text.size()) : hash(text);
    return {word, length, start(word, length)};
  }
  // Has the memory fetch what a search for a text with that key begins with.
  void fetch(const TextKey& key) const {
    if (!slots_.empty()) __builtin_prefetch(&slots_[key.start & mask()]);
  }
  // The number of `text`, which has that key, or 0.
  template <class TextOf>
  int find(std::string_view text, const TextKey& key, TextOf text_of) const {
    if (slots_.empty()) return 0;
    for (size_t i = key.start & mask(); slots_[i].number != 0; i = (i + 1) & mask()) {
      const Slot& slot = slots_[i];
      if (slot.word == key.word && slot.length == key.length &&
          (key.length <= TextKey::short_length || text == text_of(slot.number)))
        return slot.number;
    }
    return 0;
  }
  // After this, one `insert` cannot fail. Throws bad_alloc.
  void make_room();
  // Enters a text that is not there yet, and for which there is room.
  void insert(int number, const TextKey& key) noexcept;
  // Takes out a text that is there.
  void remove(int number, const TextKey& key) noexcept;

 private:
  // A slot is free where `number` is 0. Texts whose first slot is taken stand in the next free one.
  struct Slot {
    uint64_t word;
    uint32_t length;
    int number;
  };

  size_t mask() const { return slots_.size() - 1; }
  size_t place(const Slot& slot) const { return start(slot.word, slot.length) & mask(); }
  uint32_t start(uint64_t word, uint32_t length) const {
    return static_cast<uint32_t>(mixed(word, length));
  }
  uint64_t hash(std::string_view text) const;
  static uint64_t four_characters(const char* text) {
    uint32_t word;
    std::memcpy(&word, text, sizeof word);
    return word;
  }
  // The characters of two ends that overlap where there are fewer than eight. Texts of one length
  // have different words.
  static uint64_t short_word(const char* text, size_t length) {
    if (length >= 4) return four_characters(text) | four_characters(text + length - 4) << 32;
    if (length == 0) return 0;
    const auto character = [text](size_t i) {
      return uint64_t{static_cast<unsigned char>(text[i])};
    };
    return character(0) | character(length / 2) << 8 | character(length - 1) << 16;
  }
  // A word in which all bits of both take part. Without the secrets nobody can choose pairs that
  // give words with the same low bits more often than chance does.
  uint64_t mixed(uint64_t a, uint64_t b) const {
    return folded(folded(a ^ secrets_[0], b ^ secrets_[1]), secrets_[2]);
  }
  static uint64_t folded(uint64_t a, uint64_t b) {
    __extension__ typedef unsigned __int128 Wide;
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<uint64_t>(product) ^ static_cast<uint64_t>(product >> 64);
  }

  uint64_t secrets_[3];
  std::vector<Slot> slots_;  // a power of two of them, at most two thirds taken
  size_t taken_ = 0;
};

}  // namespace tamsel

#endif
