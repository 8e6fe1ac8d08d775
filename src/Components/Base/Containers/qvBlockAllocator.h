// A pool of elements of one size, from which the nodes of the associative containers come.
#pragma once

#include "Base/qvBase.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qv {

namespace detail {
struct ContainerCheck;
}

/// Hands out elements of one size from blocks of the C heap. A freed element is the next one handed out;
/// blocks go back to the heap only all together. Elements are aligned as the heap's blocks are, if their size
/// is a multiple of that alignment. Not thread-safe.
class BlockAllocator {
public:
  /// An empty pool. A size below 8 is raised to 8, and a number below 1 to 1. Allocates nothing.
  QV_BASE_API BlockAllocator(std::size_t elementSize, int numElementsInBlock) noexcept;
  BlockAllocator(const BlockAllocator&) = delete;
  BlockAllocator& operator=(const BlockAllocator&) = delete;
  ~BlockAllocator() { freeEverything(); }

  /// Sets how many elements later blocks hold. Takes effect only while no element is out and none was freed.
  QV_BASE_API void setNumElementsInBlock(int numElementsInBlock) noexcept;
  /// Sets a mark that is exchanged by `swap` and changes nothing else.
  void setLazy() noexcept { lazy_ = true; }

  /// An element with undefined content. Ends the process when memory is exhausted.
  [[nodiscard]] void* alloc() noexcept {
    if (!freeList_) return allocFromBlock();
    void* const element = freeList_;
    std::memcpy(&freeList_, element, sizeof freeList_);
    ++numAllocated_;
    --numFreed_;
    return element;
  }
  /// Takes an element of this pool back; ignores null.
  void free(void* element) noexcept {
    if (!element) return;
    std::memcpy(element, &freeList_, sizeof freeList_);
    freeList_ = element;
    --numAllocated_;
    ++numFreed_;
  }
  /// Gives all blocks back to the heap. Runs no destructors; all elements become invalid.
  QV_BASE_API void freeEverything() noexcept;

  /// Elements handed out and not yet returned.
  [[nodiscard]] int numAllocated() const noexcept { return numAllocated_; }
  /// Returned elements that wait for reuse.
  [[nodiscard]] int numFreed() const noexcept { return numFreed_; }

  /// Exchanges everything.
  QV_BASE_API void swap(BlockAllocator& other) noexcept;

private:
  friend struct detail::ContainerCheck;
  struct Block;
  struct Layout;

  QV_BASE_API void* allocFromBlock() noexcept;

  Block* blocks_;
  void* freeList_;
  std::uint64_t elementSize_;
  std::int32_t numElementsInBlock_;
  std::uint64_t blockSize_;
  std::int32_t numAllocated_;
  std::int32_t numFreed_;
  bool lazy_;
};

} // namespace qv
