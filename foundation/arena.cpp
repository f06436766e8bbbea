#include "foundation/arena.h"

#include <algorithm>
#include <new>

// Blocks double, so that a small program takes little, and a large one few blocks.
static const size_t SmallestBlock = 2000;
static const size_t LargestBlock = 256 * 1024;

void Arena::add_block(size_t size) {
  if (size > static_cast<size_t>(-1) / 2) throw std::bad_alloc();
  const size_t usual =
      newest_ == nullptr ? SmallestBlock : std::min(2 * newest_->size, LargestBlock);
  const size_t room = std::max(usual, size);
  Block* block = static_cast<Block*>(::operator new(sizeof(Block) + room));
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
