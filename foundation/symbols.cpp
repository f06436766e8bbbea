#include "foundation/symbols.h"

#include <algorithm>
#include <cstring>
#include <new>

using namespace tamsel;

static const int BucketCount = 5041;  // of the tape of a symbol table
static const size_t SmallestPage = 100;

StringTape::~StringTape() {
  while (current_page != nullptr) {
    STapePage* behind = current_page->next;
    ::operator delete(current_page);
    current_page = behind;
  }
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
void StringTape::note_vain_walk(int walked) {
  if (walked > coll_max_) coll_max_ = walked + 1;
}

void StringTape::count_buckets() {
  while (counted_ < nb_strings) {
    int& count = bucket_counts_[hash_code(texts[counted_])];
    note_vain_walk(count++);
    ++counted_;
  }
}

int StringTape::occupied() {
  count_buckets();
  return static_cast<int>(bucket_counts_.size());
}

int StringTape::coll_max() {
  count_buckets();
  return coll_max_;
}

// The copy of `s` in a page.
char* StringTape::store(std::string_view s) {
  const size_t size = s.size() + 1;
  const auto copy_to = [s](char* place) {
    place[s.copy(place, s.size())] = '\0';
    return place;
  };
  const auto new_page = [](size_t room) {
    return static_cast<STapePage*>(::operator new(sizeof(STapePage) + room + STapePage::padding));
  };
  if (size > STapePage::room) {
    STapePage* page = new_page(size);
    // After the current page, which goes on being filled.
    STapePage*& place = current_page != nullptr ? current_page->next : current_page;
    page->next = place;
    place = page;
    return copy_to(page->chars());
  }
  if (size > static_cast<size_t>(page_room)) {
    const size_t room =
        std::max(size, std::min(page_size_ == 0 ? SmallestPage : 2 * page_size_, STapePage::room));
    STapePage* page = new_page(room);
    page->next = current_page;
    current_page = page;
    page_cursor = page->chars();
    page_size_ = room;
    page_room = static_cast<int>(room);
  }
  char* copy = copy_to(page_cursor);
  page_cursor += size;
  page_room -= static_cast<int>(size);
  return copy;
}

int StringTape::add(std::string_view s, const TextKey& key) {
  if (const int number = known(s, key)) return number;
  // What can fail stands first, so that a failure leaves the tape as it was.
  index_.make_room();
  char*& slot = texts[nb_strings];
  slot = store(s);
  index_.insert(++nb_strings, key);
  return nb_strings;
}

StringTape::Buckets& StringTape::buckets() {
  if (buckets_ == nullptr) buckets_ = std::make_unique<Buckets>();
  Buckets& made = *buckets_;
  made.heads.resize(static_cast<size_t>(hash_size));
  while (made.items.size() < static_cast<size_t>(nb_strings)) {
    const int number = static_cast<int>(made.items.size()) + 1;
    char* const text = texts[number - 1];
    STapeHashItem*& head = made.heads[static_cast<size_t>(hash_code(text))];
    made.items.push_back({text, number, head != nullptr ? head->depth + 1 : 1, head});
    head = &made.items.back();
  }
  return made;
}

STapeHashItem** StringTape::hash_table() { return buckets().heads.data(); }

STapeHashItem* StringTape::internal_add(const char* s) {
  const size_t number = static_cast<size_t>(add(s));
  return &buckets().items[number - 1];
}

STapeHashItem* StringTape::internal_find(const char* s) {
  const size_t number = static_cast<size_t>(find(s));
  return number != 0 ? &buckets().items[number - 1] : nullptr;
}

int StringTape::find(const char* s) {
  if (const int number = known(s)) return number;
  count_buckets();
  const auto bucket = bucket_counts_.find(hash_code(s));
  note_vain_walk(bucket != bucket_counts_.end() ? bucket->second : 0);
  return 0;
}

// What was stored last gives its room back, so that names that come and go take none.
void StringTape::forget_last() {
  buckets_.reset();
  char* const s = texts[nb_strings - 1];
  const size_t length = strlen(s);
  index_.remove(nb_strings, key(s));
  steady = std::min(steady, nb_strings - 1);
  if (counted_ == nb_strings--) {
    const auto bucket = bucket_counts_.find(hash_code(s));
    // One that was given another text may be counted elsewhere.
    if (bucket != bucket_counts_.end() && --bucket->second == 0) bucket_counts_.erase(bucket);
    --counted_;
  }
  if (s + length + 1 != page_cursor) return;
  page_room += static_cast<int>(length) + 1;
  page_cursor = s;
}

void StringTape::swap(int a, int b) noexcept {
  buckets_.reset();
  steady = std::min({steady, a - 1, b - 1});
  char*& first = texts[a - 1];
  char*& second = texts[b - 1];
  const TextKey keys[] = {key(first), key(second)};
  index_.remove(a, keys[0]);
  index_.remove(b, keys[1]);
  index_.insert(b, keys[0]);
  index_.insert(a, keys[1]);
  std::swap(first, second);
}

// A text that fits takes the place of the one before, so that a number may change its text without
// end.
void StringTape::replace(int number, const char* s) {
  buckets_.reset();
  char*& text = texts[number - 1];
  const size_t length = strlen(s);
  char* const place = length <= strlen(text) ? text : store(s);
  index_.remove(number, key(text));
  if (place == text) memcpy(place, s, length + 1);
  text = place;
  steady = std::min(steady, number - 1);
  index_.insert(number, key(s));
}

// The text that a name's format stands for: the format itself where there is nothing to fill in,
// else a text kept in `storage`.
PRINTF_LIKE(1, 0)
static const char* name_text(const char* format, va_list args, std::string* storage) {
  if (strchr(format, '%') == nullptr) return format;
  *storage = format_text(format, args);
  return storage->c_str();
}

SymbolTable::SymbolTable() : tape(new StringTape), names(&tape->texts) { tape->init(BucketCount); }

SymbolTable::~SymbolTable() { delete tape; }

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

int SymbolTable::find_text(const char* text) { return tape->find(text); }

void SymbolTable::cut_back(int count) {
  while (tape->nb_strings > count) tape->forget_last();
  nb_symbols = tape->nb_strings;
}

void SymbolTable::swap_names(int a, int b) noexcept {
  if (a != b) tape->swap(a, b);
}

void SymbolTable::replace_name(int number, const char* text) { tape->replace(number, text); }

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
  fprintf(stream, "occupied   : %5d\n", tape->occupied());
  fprintf(stream, "coll max   : %5d\n", tape->coll_max());
  fprintf(stream, "nb strings : %5d\n", tape->nb_strings);
}
