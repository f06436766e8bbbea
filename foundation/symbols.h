// foundation/symbols.h: names, interned once and from then on handled as numbers.
//
// A symbol number counts from 1 in order of first insertion; 0 means "none". Numbers and texts stay
// valid until the table is deleted, or cut back to before them. A name is given as a printf format
// with its arguments, and is the formatted text; a text that comes from a user or a file is an
// argument of
// "%s" or goes through add_text and find_text, which read no format. Names of any length work.
// Throws bad_alloc at most.
#ifndef FOUNDATION_SYMBOLS_H
#define FOUNDATION_SYMBOLS_H

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "foundation/chunks.h"
#include "foundation/text.h"
#include "foundation/textindex.h"

// One page of string storage. A string that no ordinary page can hold gets a longer page of its
// own.
struct STapePage {
  static constexpr size_t room = 16380;  // bytes of `chars` that are counted

  STapePage* next;  // the page filled before this one
  char chars[16384];
};

struct STapeHashItem {
  char* str;            // in a page, which owns the characters
  int number;           // from 1, in order of insertion
  int depth;            // items of the bucket from this one on
  STapeHashItem* next;  // of the same bucket; owned by the tape
};

// Stores the characters of every distinct string in pages. The buckets are fixed in number and say
// how names collide; names are found through an index beside them, which grows.
class StringTape {
 public:
  StringTape() = default;
  ~StringTape();
  StringTape(const StringTape&) = delete;
  StringTape& operator=(const StringTape&) = delete;

  // Prepares a fresh tape with `size` (from 1) buckets. To be called once, before anything else.
  void init(int size);
  // The bucket of `s`, from 0.
  int hash_code(const char* s) const;
  // The item of `s`, inserted if it is new. Never null; borrowed from the tape.
  STapeHashItem* internal_add(const char* s);
  // The item of `s`, or null. A search in vain counts in the statistic.
  STapeHashItem* internal_find(const char* s);
  // The number of `s`, or 0. Counts nothing.
  int known(const char* s) { return find(s, index_.key(s, std::strlen(s))); }
  // Forgets the last string, `s`.
  void forget_last(const char* s);

  STapeHashItem** hash_table = nullptr;  // `hash_size` heads of chains, newest item first
  int hash_size = 0;
  int nb_strings = 0;  // also the number of the last string
  int occupied = 0;    // buckets that are not empty
  int coll_max = 0;    // a statistic of collisions, which steers nothing
  STapePage* current_page = nullptr;
  int page_room = 0;            // bytes counted as free in the current page
  char* page_cursor = nullptr;  // where the next string goes

 private:
  int find(const char* s, const tamsel::TextKey& key) {
    return index_.find(s, key, [this](int number) { return item(number).str; });
  }
  STapeHashItem& item(int number) { return items_[number - 1]; }
  // Notes in the statistic that a walk through `bucket` would have been in vain.
  void note_vain_walk(int bucket);
  char* store(const char* s, size_t size);

  tamsel::TextIndex index_;
  tamsel::ChunkArray<STapeHashItem> items_{100};  // by number
};

// Texts by number: entry i belongs to symbol i + 1. The texts live in the tape.
using StringArray = tamsel::ChunkArray<char*>;

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
  int add_text(const char* text);
  int find_text(const char* text);
  // find_text for who only asks: counts nothing.
  int known(const char* text) { return tape->known(text); }

  // Forgets the newest names until `count` are left, for an operation that failed half-way.
  void cut_back(int count);

  // The text of symbol `number`, borrowed from the table; "?" for a number that names nothing.
  const char* name(int number) const {
    return number < 1 || number > nb_symbols ? "?" : (*names)[number - 1];
  }

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
  StringArray* names;     // owned
};

#endif
