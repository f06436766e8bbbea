// foundation/symbols.h: names, interned once and from then on handled as numbers.
//
// A symbol number counts from 1 in order of first insertion; 0 means "none". Numbers stay valid
// until the table is deleted, or cut back to before them, and texts until then or until their
// symbol gets another one. A name is given as a printf format with its arguments, and is the
// formatted text; a text that comes from a user or a file is an argument of "%s" or goes through
// add_text and find_text, which read no format. Names of any length work. Throws bad_alloc at most.
#ifndef FOUNDATION_SYMBOLS_H
#define FOUNDATION_SYMBOLS_H

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <deque>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "foundation/chunks.h"
#include "foundation/text.h"
#include "foundation/textindex.h"

// One page of string storage. The first are short, so that a small table takes little, and each
// twice as long as the one before until they are of the ordinary length. A string that no ordinary
// page can hold gets a longer page of its own.
struct STapePage {
  static constexpr size_t room = 16380;  // bytes of an ordinary page
  // Bytes after these, so that behind each string some can be read (see PtyStream::put_name).
  static constexpr size_t padding = 8;

  STapePage* next;  // the page filled before this one
  // The characters stand behind.
  char* chars() { return reinterpret_cast<char*>(this + 1); }
};

// A string in its bucket.
struct STapeHashItem {
  char* str;            // in a page, which owns the characters
  int number;           // from 1, in order of insertion
  int depth;            // items of the bucket from this one on
  STapeHashItem* next;  // of the same bucket; owned by the tape
};

// Texts by number: entry i belongs to symbol i + 1. The texts live in the tape.
using StringArray = tamsel::ChunkArray<char*>;

// Stores the characters of every distinct string in pages, and numbers the strings. They are found
// through an index. The buckets, which are fixed in number, say how names collide: a statistic that
// steers nothing, and is made when it is asked for.
class StringTape {
 public:
  StringTape() = default;
  ~StringTape();
  StringTape(const StringTape&) = delete;
  StringTape& operator=(const StringTape&) = delete;

  // Prepares a fresh tape with `size` (from 1) buckets. To be called once, before anything else.
  void init(int size) { hash_size = size; }
  // The bucket of `s`, from 0.
  int hash_code(const char* s) const;
  // The item of `s`, inserted if it is new. Never null. Items are made when they are asked for, and
  // are good until a string is forgotten or gets another text.
  STapeHashItem* internal_add(const char* s);
  // The item of `s`, or null. A search in vain counts in the statistic.
  STapeHashItem* internal_find(const char* s);
  // `hash_size` heads of chains, newest item first; as good as the items.
  STapeHashItem** hash_table();

  // The same without items: the number of `s`, inserted if it is new; never 0.
  int add(std::string_view s) { return add(s, key(s)); }
  int add(std::string_view s, const tamsel::TextKey& key);
  // The number of `s`, or 0. A search in vain counts in the statistic.
  int find(const char* s);
  // The number of `s`, or 0. Counts nothing.
  int known(std::string_view s) { return known(s, key(s)); }
  int known(std::string_view s, const tamsel::TextKey& key) {
    return index_.find(s, key, [this](int number) { return texts[number - 1]; });
  }
  // The parts of these two: what a string is looked for by, and a step to have it fetched ahead.
  tamsel::TextKey key(std::string_view s) const { return index_.key(s); }
  void fetch(const tamsel::TextKey& key) const { index_.fetch(key); }
  // Forgets the last string.
  void forget_last();
  // Exchange the texts of two numbers, and give one a text that has none. The statistic counts the
  // texts that they had before.
  void swap(int a, int b) noexcept;
  void replace(int number, const char* s);

  // Buckets that are not empty, and the statistic of collisions: one more than the longest walk
  // through a bucket, in vain, that raised it. A string that was forgotten before one of them was
  // asked for, or a search was in vain, counts in neither.
  int occupied();
  int coll_max();

  int hash_size = 0;
  int nb_strings = 0;  // also the number of the last string
  STapePage* current_page = nullptr;
  int page_room = 0;            // bytes that are free in the current page
  char* page_cursor = nullptr;  // where the next string goes
  StringArray texts{1000};      // by number
  int steady = INT_MAX;         // up to this number none was forgotten or got another text

 private:
  // All items, so far as they were asked for.
  struct Buckets {
    std::vector<STapeHashItem*> heads;
    std::deque<STapeHashItem> items;  // by number
  };
  Buckets& buckets();
  // Brings the statistic up to date.
  void count_buckets();
  // Notes in it that a walk through `walked` strings was in vain.
  void note_vain_walk(int walked);
  char* store(std::string_view s);

  tamsel::TextIndex index_;
  size_t page_size_ = 0;                        // of the current page
  std::unordered_map<int, int> bucket_counts_;  // strings by bucket, of those that are counted
  int counted_ = 0;                             // how many strings these are, the first
  int coll_max_ = 0;
  std::unique_ptr<Buckets> buckets_;  // null where nobody asks
};

class SymbolTable {
 public:
  SymbolTable();
  ~SymbolTable();
  SymbolTable(const SymbolTable&) = delete;
  SymbolTable& operator=(const SymbolTable&) = delete;

  // The number of the formatted name, added if it is new.
  int add(const char* format, ...) PRINTF_LIKE(2, 3);
  int vadd(const char* format, va_list args) PRINTF_LIKE(2, 0);
  // The number of the formatted name, or 0 if it is not in the table. Adds nothing.
  int find(const char* format, ...) PRINTF_LIKE(2, 3);
  // Interns the name and stores its number. Returns 1 if it was there before, 0 if this call added
  // it.
  int find_then_add(int* number, const char* format, ...) PRINTF_LIKE(3, 4);
  // Stores the number of the name and returns 1; returns 0 with `*number` untouched if it is not
  // there.
  int find_then_get(int* number, const char* format, ...) PRINTF_LIKE(3, 4);

  // add and find for a text as it stands; no format is read.
  int add_text(std::string_view text) { return add_text(text, tape->key(text)); }
  int add_text(std::string_view text, const tamsel::TextKey& key) {
    const int number = tape->add(text, key);
    nb_symbols = tape->nb_strings;
    return number;
  }
  int find_text(const char* text);
  // find_text for who only asks: counts nothing.
  int known(const char* text) { return tape->known(text); }

  // Forgets the newest names until `count` are left, for an operation that failed half-way.
  void cut_back(int count);

  // Exchanges the texts of two symbols.
  void swap_names(int a, int b) noexcept;
  // Gives symbol `number` a text that is not in the table; the one that it had is so no more.
  // Throws bad_alloc with nothing changed.
  void replace_name(int number, const char* text);

  // The text of symbol `number`, borrowed from the table; "?" for a number that names nothing. The
  // 8 bytes where it begins can be read, however short it is.
  const char* name(int number) const {
    return number < 1 || number > nb_symbols ? "?\0\0\0\0\0\0" : (*names)[number - 1];
  }

  // Symbols up to this number have the text that they had from the start. So a text that was copied
  // while its symbol was among them is good as long as the symbol still is.
  int steady() const { return std::min(tape->steady, nb_symbols); }

  // Prints one line a symbol on standard output, in order of numbers.
  void print();
  // iterate yields the texts of symbols 1, 2, ... and then null, as often as it is called.
  void init_iterate();
  char* iterate();
  void print_statistics(FILE* stream);

  int nb_symbols = 0;  // also the highest number in use
  int iter_index = 0;
  StringTape* tape;       // owned
  int chunk_size = 1000;  // of `names`
  StringArray* names;     // the tape's
};

#endif
