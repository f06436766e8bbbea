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
  ~Arena() { cut_back({nullptr, 0}); }
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;

  // Memory for `size` bytes, aligned to 8. Throws bad_alloc with nothing changed.
  void* allocate(size_t size) {
    const size_t rounded = size + (8 - size % 8) % 8;
    if (newest_ == nullptr || newest_->size - used_ < rounded) add_block(rounded);
    void* place = newest_->bytes() + used_;
    used_ += rounded;
    return place;
  }

  Mark mark() const { return {newest_, used_}; }
  // Takes back everything that was handed out since `mark`.
  void cut_back(const Mark& mark);

 private:
  struct alignas(8) Block {
    Block* before;
    size_t size;  // of bytes()
    char* bytes() { return reinterpret_cast<char*>(this + 1); }
  };

  void add_block(size_t size);

  Block* newest_ = nullptr;
  size_t used_ = 0;  // bytes of the newest block
};

}  // namespace tamsel

#endif
