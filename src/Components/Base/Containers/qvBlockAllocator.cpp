#include "Base/Containers/qvBlockAllocator.h"

#include "Base/Containers/qvContainerHeap.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <utility>

namespace qv {

/// Stands in front of a block's elements.
struct BlockAllocator::Block {
  std::int32_t used;
  Block* older;
};

struct BlockAllocator::Layout {
  static_assert(sizeof(void*) != 8 || sizeof(Block) == 16);
  static_assert(sizeof(void*) != 8 || sizeof(BlockAllocator) == 56);
  static_assert(offsetof(BlockAllocator, freeList_) == sizeof(void*));
  static_assert(offsetof(BlockAllocator, elementSize_) == 2 * sizeof(void*));
  static_assert(offsetof(BlockAllocator, numElementsInBlock_) == 2 * sizeof(void*) + 8);
  static_assert(offsetof(BlockAllocator, blockSize_) == 2 * sizeof(void*) + 16);
  static_assert(offsetof(BlockAllocator, numAllocated_) == offsetof(BlockAllocator, blockSize_) + 8);
  static_assert(offsetof(BlockAllocator, numFreed_) == offsetof(BlockAllocator, numAllocated_) + 4);
};

namespace {

constexpr std::uint64_t blockHeaderSize = 16;

/// Bytes of a block; a product that no 64 bits hold becomes a size that no heap has.
std::uint64_t sizeOfBlock(std::uint64_t elementSize, std::int32_t count) noexcept {
  const std::uint64_t elements = static_cast<std::uint64_t>(count);
  if (elementSize > (PTRDIFF_MAX - blockHeaderSize) / elements) return PTRDIFF_MAX;
  return elementSize * elements + blockHeaderSize;
}

} // namespace

BlockAllocator::BlockAllocator(std::size_t elementSize, int numElementsInBlock) noexcept
    : blocks_(nullptr),
      freeList_(nullptr),
      elementSize_(std::max<std::uint64_t>(elementSize, 8)),
      numElementsInBlock_(std::max(numElementsInBlock, 1)),
      blockSize_(sizeOfBlock(elementSize_, numElementsInBlock_)),
      numAllocated_(0),
      numFreed_(0),
      lazy_(false) {}

void BlockAllocator::setNumElementsInBlock(int numElementsInBlock) noexcept {
  if (numAllocated_ != 0 || numFreed_ != 0) return;
  numElementsInBlock_ = std::max(numElementsInBlock, 1);
  blockSize_ = sizeOfBlock(elementSize_, numElementsInBlock_);
}

void* BlockAllocator::allocFromBlock() noexcept {
  if (!blocks_ || blocks_->used >= numElementsInBlock_) {
    Block* const block = static_cast<Block*>(detail::heapAllocate(static_cast<std::size_t>(blockSize_)));
    block->used = 0;
    block->older = blocks_;
    blocks_ = block;
  }
  numAllocated_ = detail::countSum(numAllocated_, 1);
  char* const elements = reinterpret_cast<char*>(blocks_) + blockHeaderSize;
  return elements + static_cast<std::uint64_t>(blocks_->used++) * elementSize_;
}

void BlockAllocator::freeEverything() noexcept {
  while (blocks_) std::free(std::exchange(blocks_, blocks_->older));
  freeList_ = nullptr;
  numAllocated_ = 0;
  numFreed_ = 0;
}

void BlockAllocator::swap(BlockAllocator& other) noexcept {
  std::swap(blocks_, other.blocks_);
  std::swap(freeList_, other.freeList_);
  std::swap(elementSize_, other.elementSize_);
  std::swap(numElementsInBlock_, other.numElementsInBlock_);
  std::swap(blockSize_, other.blockSize_);
  std::swap(numAllocated_, other.numAllocated_);
  std::swap(numFreed_, other.numFreed_);
  std::swap(lazy_, other.lazy_);
}

} // namespace qv
