#include "testing/qvTestAllocations.h"

#include <cstdlib>
#include <new>

static thread_local long count = 0;

long qvTest::allocations() noexcept { return count; }

// All the common forms, so that what allocates and what frees belong together under a sanitizer, too.
void* operator new(std::size_t size) {
  if (void* const memory = operator new(size, std::nothrow)) return memory;
  throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  ++count;
  return std::malloc(size ? size : 1);
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new[](std::size_t size, const std::nothrow_t& none) noexcept {
  return operator new(size, none);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
