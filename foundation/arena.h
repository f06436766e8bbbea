// foundation/arena.h: memory for many small things that die together.
#ifndef FOUNDATION_ARENA_H
#define FOUNDATION_ARENA_H

#include <cstddef>

namespace tamsel {

// Hands out memory from blocks and takes it back as a whole, or down to a mark. It runs no
// destructors.
class Arena {
 public:
  // How far the arena was filled at some time.
  struct Mark {
    void* block;
    size_t used;
  };

  Arena() = default;
  // With room for `size` bytes, to begin with.
  explicit Arena(size_t size) { add_block(size, size); }
  ~Arena() { cut_back({nullptr, 0}); }
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;

  // Memory for `size` bytes, aligned to 8. Throws bad_alloc with nothing changed.
  void* allocate(size_t size) {
    const size_t rounded = size + (8 - size % 8) % 8;
    if (newest_ == nullptr || newest_->size - used_ < rounded) add_block(rounded, usual_size());
    void* place = newest_->bytes() + used_;
    used_ += rounded;
    return place;
  }

  Mark mark() const { return {newest_, used_}; }
  // Calls `visit` with the start and the end of each stretch of memory that was handed out without
  // a gap since `mark`, the newest first. Sizes were rounded up to 8.
  template <class Visit>
  void each_piece(const Mark& mark, Visit visit) {
    size_t used = used_;
    for (Block* block = newest_; block != nullptr; block = block->before) {
      const bool is_last = block == mark.block;
      const size_t start = is_last ? mark.used : 0;
      if (start != used) visit(block->bytes() + start, block->bytes() + used);
      if (is_last) return;
      if (block->before != nullptr) used = block->before->used;
    }
  }
  // Takes back everything that was handed out since `mark`.
  void cut_back(const Mark& mark);

 private:
  struct alignas(8) Block {
    Block* before;
    size_t size;  // of bytes()
    size_t used;  // of these, once there is a newer block
    char* bytes() { return reinterpret_cast<char*>(this + 1); }
  };

  // A block for `size` bytes, or for `usual` where that is more.
  void add_block(size_t size, size_t usual);
  size_t usual_size() const;

  Block* newest_ = nullptr;
  size_t used_ = 0;  // bytes of the newest block
};

}  // namespace tamsel

#endif
