#include "foundation/symbols.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>

using namespace tamsel;

static const int BucketCount = 5041;  // of the tape of a symbol table
static const size_t PageSize = sizeof(STapePage::chars);

// A page with at least `size` characters, in one block; `next` is null.
static STapePage* new_page(size_t size) {
  void* block = ::operator new(offsetof(STapePage, chars) + std::max(size, PageSize));
  STapePage* page = new (block) STapePage;
  page->next = nullptr;
  return page;
}

// Not `page->chars`: a page for a long string has more characters than that array.
static char* page_start(STapePage* page) {
  return reinterpret_cast<char*>(page) + offsetof(STapePage, chars);
}

StringTape::~StringTape() {
  delete[] hash_table;
  while (current_page != nullptr) {
    STapePage* behind = current_page->next;
    ::operator delete(current_page);
    current_page = behind;
  }
}

void StringTape::init(int size) {
  hash_table = new STapeHashItem*[static_cast<size_t>(size)]();
  hash_size = size;
  current_page = new_page(PageSize);
  page_cursor = page_start(current_page);
  page_room = STapePage::room;
}

// Adds up groups of low nibbles. The first group has seven of them and the others eight, which
// decides the bucket of every name.
int StringTape::hash_code(const char* s) const {
  unsigned sum = 0;
  unsigned group = 0;
  int left = 8;
  for (; *s != '\0'; ++s) {
    const unsigned nibble = static_cast<unsigned char>(*s) & 15u;
    if (--left > 0) {
      group = (group << 4) | nibble;
    } else {
      sum += group;
      group = nibble;
      left = 8;
    }
  }
  return static_cast<int>((group + sum) % static_cast<unsigned>(hash_size));
}

// The statistic stands one above the longest walk that raised it.
void StringTape::note_vain_walk(int bucket) {
  const STapeHashItem* head = hash_table[bucket];
  const int walked = head != nullptr ? head->depth : 0;
  if (walked > coll_max) coll_max = walked + 1;
}

// The copy in a page of `s`, which has `size` characters with its end.
char* StringTape::store(const char* s, size_t size) {
  if (size > STapePage::room) {
    STapePage* page = new_page(size);
    // After the current page, which goes on being filled.
    page->next = current_page->next;
    current_page->next = page;
    return static_cast<char*>(memcpy(page_start(page), s, size));
  }
  if (size > static_cast<size_t>(page_room)) {
    STapePage* page = new_page(PageSize);
    page->next = current_page;
    current_page = page;
    page_cursor = page_start(page);
    page_room = STapePage::room;
  }
  char* copy = page_cursor;
  memcpy(copy, s, size);
  page_cursor += size;
  page_room -= static_cast<int>(size);
  return copy;
}

STapeHashItem* StringTape::internal_add(const char* s) {
  const size_t length = strlen(s);
  const TextKey key = index_.key(s, length);
  if (const int number = find(s, key)) return &item(number);
  // What can fail stands first, so that a failure leaves the tape as it was.
  index_.make_room();
  STapeHashItem* added = &item(nb_strings + 1);
  added->str = store(s, length + 1);
  const int bucket = hash_code(s);
  STapeHashItem* behind = hash_table[bucket];
  if (behind == nullptr) ++occupied;
  note_vain_walk(bucket);
  added->number = ++nb_strings;
  added->depth = behind != nullptr ? behind->depth + 1 : 1;
  added->next = behind;
  hash_table[bucket] = added;
  index_.insert(added->number, key);
  return added;
}

STapeHashItem* StringTape::internal_find(const char* s) {
  if (const int number = known(s)) return &item(number);
  note_vain_walk(hash_code(s));
  return nullptr;
}

// Its characters stay where they are, and the statistic as it is.
void StringTape::forget_last(const char* s) {
  STapeHashItem*& head = hash_table[hash_code(s)];
  index_.remove(head->number, index_.key(s, strlen(s)));
  head = head->next;
  if (head == nullptr) --occupied;
  --nb_strings;
}

// The text that a name's format stands for: the format itself where there is nothing to fill in,
// else a text kept in `storage`.
PRINTF_LIKE(1, 0)
static const char* name_text(const char* format, va_list args, std::string* storage) {
  if (strchr(format, '%') == nullptr) return format;
  *storage = format_text(format, args);
  return storage->c_str();
}

SymbolTable::SymbolTable() {
  auto fresh_tape = std::make_unique<StringTape>();
  fresh_tape->init(BucketCount);
  names = new StringArray(chunk_size);
  tape = fresh_tape.release();
}

SymbolTable::~SymbolTable() {
  delete names;
  delete tape;
}

int SymbolTable::add(const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int number = vadd(format, args);
  va_end(args);
  return number;
}

int SymbolTable::vadd(const char* format, va_list args) {
  std::string storage;
  return add_text(name_text(format, args, &storage));
}

int SymbolTable::find(const char* format, ...) {
  std::string storage;
  va_list args;
  va_start(args, format);
  const int number = find_text(name_text(format, args, &storage));
  va_end(args);
  return number;
}

int SymbolTable::find_then_add(int* number, const char* format, ...) {
  const int known = nb_symbols;
  va_list args;
  va_start(args, format);
  *number = vadd(format, args);
  va_end(args);
  return *number <= known;
}

int SymbolTable::find_then_get(int* number, const char* format, ...) {
  std::string storage;
  va_list args;
  va_start(args, format);
  const int found = find_text(name_text(format, args, &storage));
  va_end(args);
  if (found == 0) return 0;
  *number = found;
  return 1;
}

int SymbolTable::add_text(const char* text) {
  if (const int number = tape->known(text)) return number;
  // The slot first: where it cannot be made, the tape must not have a string more than there are
  // symbols.
  char*& slot = (*names)[nb_symbols];
  slot = tape->internal_add(text)->str;
  return ++nb_symbols;
}

int SymbolTable::find_text(const char* text) {
  const STapeHashItem* item = tape->internal_find(text);
  return item == nullptr ? 0 : item->number;
}

void SymbolTable::cut_back(int count) {
  while (nb_symbols > count) tape->forget_last((*names)[--nb_symbols]);
}

void SymbolTable::print() {
  for (int number = 1; number <= nb_symbols; ++number) {
    printf("symbol[%3d]= \"%s\"\n", number, name(number));
  }
}

void SymbolTable::init_iterate() { iter_index = 0; }

char* SymbolTable::iterate() {
  if (iter_index >= nb_symbols) return nullptr;
  return (*names)[iter_index++];
}

void SymbolTable::print_statistics(FILE* stream) {
  fprintf(stream, "hash size  : %5d\n", tape->hash_size);
  fprintf(stream, "occupied   : %5d\n", tape->occupied);
  fprintf(stream, "coll max   : %5d\n", tape->coll_max);
  fprintf(stream, "nb strings : %5d\n", tape->nb_strings);
}
