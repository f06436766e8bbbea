// A file of its own: where the compiler sees through a replaced operator, it takes new and delete
// for mismatched.

#include "tests/allocations.h"

#include <cstdlib>
#include <new>

long live_allocations;

// For the test library too, in places; else what a sanitizer handed out would be freed below.
void* operator new(size_t size, const std::nothrow_t&) noexcept {
  void* memory = std::malloc(size);
  if (memory != nullptr) ++live_allocations;
  return memory;
}

void* operator new(size_t size) {
  void* memory = operator new(size, std::nothrow);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void operator delete(void* memory) noexcept {
  if (memory != nullptr) --live_allocations;
  std::free(memory);
}

void operator delete(void* memory, size_t) noexcept { operator delete(memory); }
