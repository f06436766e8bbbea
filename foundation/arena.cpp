#include "foundation/arena.h"

#include <algorithm>
#include <cstdint>
#include <new>

#include <sys/mman.h>
#include <unistd.h>

namespace tamsel {

// Blocks double, so that a small program takes little, and a large one few blocks.
static const size_t SmallestBlock = 240;
static const size_t LargestBlock = 256 * 1024;

// Has the pages of a block made together, where the system can: faults for one page each take 5 %
// of the time of a load.
static void make_pages(char* start, size_t size) {
#ifdef MADV_POPULATE_WRITE
  static const uintptr_t page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
  const uintptr_t first = (reinterpret_cast<uintptr_t>(start) + page - 1) & ~(page - 1);
  const uintptr_t end = (reinterpret_cast<uintptr_t>(start) + size) & ~(page - 1);
  if (first < end) madvise(reinterpret_cast<void*>(first), end - first, MADV_POPULATE_WRITE);
#endif
}

size_t Arena::usual_size() const {
  return newest_ == nullptr ? SmallestBlock : std::min(2 * newest_->size, LargestBlock);
}

void Arena::add_block(size_t size, size_t usual) {
  if (size > static_cast<size_t>(-1) / 2) throw std::bad_alloc();
  const size_t room = std::max(usual, size);
  Block* block = static_cast<Block*>(::operator new(sizeof(Block) + room));
  if (room == LargestBlock) make_pages(reinterpret_cast<char*>(block), room);
  if (newest_ != nullptr) newest_->used = used_;
  block->before = newest_;
  block->size = room;
  newest_ = block;
  used_ = 0;
}

void Arena::cut_back(const Mark& mark) {
  while (newest_ != mark.block) {
    Block* before = newest_->before;
    ::operator delete(newest_);
    newest_ = before;
  }
  used_ = mark.used;
}

}  // namespace tamsel
