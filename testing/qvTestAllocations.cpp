#include "testing/qvTestAllocations.h"

#include <cstdlib>
#include <new>

static thread_local long count = 0;

long qvTest::allocations() noexcept { return count; }

// The array and nothrow forms end in these by default.
void* operator new(std::size_t size) {
  ++count;
  if (void* const memory = std::malloc(size ? size : 1)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
