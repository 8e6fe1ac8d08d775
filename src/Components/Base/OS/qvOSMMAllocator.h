// The allocator that both levels of moveable memory are made of: large chunks, carved into blocks by exact
// best fit. What a chunk is made of, and where blocks themselves live, is the derived class's. Private to the
// library.
#pragma once

#include "Base/Containers/qvSet.h"
#include "Base/OS/qvOSLinkedList.h"

#include <cstdint>
#include <functional>
#include <utility>

namespace qvOS {

/// `Chunk` has a list `blocks` of all its blocks in the order of their offsets, so that neighbours in the
/// list are neighbours in memory. `Block` is a `LinkedListNode` with the fields `size`, `chunk`, `offset` and
/// `free`. Every byte of a chunk belongs to exactly one block, and no two neighbours are free. Not
/// thread-safe.
template <class Chunk, class Block>
class MMAllocator {
public:
  struct Check; // looks inside for white-box tests, which define it

  virtual ~MMAllocator() = default;
  MMAllocator(const MMAllocator&) = delete;
  MMAllocator& operator=(const MMAllocator&) = delete;

  /// A block of at least `size` bytes: the smallest free one that fits, and among equals that with the lowest
  /// chunk and offset. A size above `maxBlockSize` gets a chunk of exactly that size. Null for 0, and where
  /// no chunk can be made.
  [[nodiscard]] Block* allocate(std::uint64_t size);
  /// Takes a block back, which may then be gone. Its chunk goes with its last block, but for a spare one.
  void free(Block* block);

  /// Blocks handed out and not yet freed.
  [[nodiscard]] int getNumAllocated() const noexcept { return allocatedBlocks; }

protected:
  /// Blocks begin and end at multiples of `unit`, a power of two.
  MMAllocator(std::uint64_t largestBlock, std::uint64_t unit, std::uint64_t normalChunk,
              bool keepsEmptyChunk) noexcept
      : maxBlockSize(largestBlock),
        alignment(unit),
        chunkSize(normalChunk),
        keepEmptyChunk(keepsEmptyChunk) {}

  /// A chunk of that size without blocks; null where there is none to be had.
  virtual Chunk* createChunk(std::uint64_t size) = 0;
  /// A block in no list; null where memory is exhausted.
  virtual Block* createBlock(std::uint64_t size, Chunk* chunk, std::uint64_t offset, bool free) = 0;
  virtual void destroyChunk(Chunk* chunk) = 0;
  virtual void destroyBlock(Block* block) = 0;
  /// @{ Told of each block before it is handed out, and before it is merged with its neighbours.
  virtual void onAllocate(Block*) {}
  virtual void onFree(Block*) {}
  /// @}

  /// Destroys the chunk that is held back, if there is one.
  void destroySpareChunk();

private:
  /// An entry of the free set. A block's place and size do not change while it is there.
  struct FreeBlock {
    std::uint64_t size;
    Chunk* chunk;
    std::uint64_t offset;
    Block* block;
  };
  struct BestFitFirst {
    bool operator()(const FreeBlock& a, const FreeBlock& b) const {
      if (a.size != b.size) return a.size < b.size;
      if (a.chunk != b.chunk) return std::less<>()(a.chunk, b.chunk);
      return a.offset < b.offset;
    }
  };

  static FreeBlock entryOf(Block* block) { return {block->size, block->chunk, block->offset, block}; }

  Block* allocateFromChunks(std::uint64_t size);
  Block* takeBestFit(std::uint64_t size);
  Block* splitFront(Block* rest, std::uint64_t size);
  Block* makeChunk(std::uint64_t size);
  void giveBack(Block* block);
  void retireChunk(Chunk* chunk, std::uint64_t size);
  void remove(Block* block);
  void mergeWithNeighbours(Block* block);

  const std::uint64_t maxBlockSize;
  const std::uint64_t alignment;
  const std::uint64_t chunkSize;
  const bool keepEmptyChunk;
  int allocatedBlocks = 0;
  int chunkCount = 0; // the spare one included
  qv::set<FreeBlock, BestFitFirst> freeBlocks;
  Chunk* spareChunk = nullptr;
};

template <class Chunk, class Block>
Block* MMAllocator<Chunk, Block>::allocate(std::uint64_t size) {
  if (size == 0) return nullptr;
  Block* const block = size > maxBlockSize ? makeChunk(size) : allocateFromChunks(size);
  if (!block) return nullptr;
  block->free = false;
  ++allocatedBlocks;
  onAllocate(block);
  return block;
}

template <class Chunk, class Block>
void MMAllocator<Chunk, Block>::free(Block* block) {
  onFree(block);
  block->free = true;
  mergeWithNeighbours(block);
  giveBack(block);
  --allocatedBlocks;
}

template <class Chunk, class Block>
void MMAllocator<Chunk, Block>::destroySpareChunk() {
  if (Chunk* const chunk = std::exchange(spareChunk, nullptr)) {
    destroyChunk(chunk);
    --chunkCount;
  }
}

template <class Chunk, class Block>
Block* MMAllocator<Chunk, Block>::allocateFromChunks(std::uint64_t size) {
  const std::uint64_t rounded = (size + alignment - 1) & ~(alignment - 1); // at most `maxBlockSize`
  Block* const best = takeBestFit(rounded);
  Block* const whole = best ? best : makeChunk(chunkSize);
  if (!whole || whole->size - rounded <= alignment) return whole; // a rest of one unit stays slack
  return splitFront(whole, rounded);
}

template <class Chunk, class Block>
Block* MMAllocator<Chunk, Block>::takeBestFit(std::uint64_t size) {
  const auto found = freeBlocks.lowerBound(FreeBlock{size, nullptr, 0, nullptr});
  if (found == freeBlocks.end()) return nullptr;
  Block* const block = found->block;
  freeBlocks.erase(found);
  return block;
}

/// The first bytes of `rest`, a block in use from here on; what is left of `rest` becomes free.
template <class Chunk, class Block>
Block* MMAllocator<Chunk, Block>::splitFront(Block* rest, std::uint64_t size) {
  Block* const front = createBlock(size, rest->chunk, rest->offset, false);
  if (front) {
    rest->chunk->blocks.insertBefore(*rest, *front);
    rest->offset += size;
    rest->size -= size;
  }
  giveBack(rest);
  return front;
}

/// The one block of a new chunk or of the spare one; it is free, but not in the free set.
template <class Chunk, class Block>
Block* MMAllocator<Chunk, Block>::makeChunk(std::uint64_t size) {
  Chunk* chunk = size == chunkSize ? std::exchange(spareChunk, nullptr) : nullptr;
  if (!chunk) {
    chunk = createChunk(size);
    if (!chunk) return nullptr;
    ++chunkCount;
  }
  Block* const block = createBlock(size, chunk, 0, true);
  if (block)
    chunk->blocks.append(*block);
  else
    retireChunk(chunk, size);
  return block;
}

/// Enters a free block in the free set, or retires its chunk where there is no other block.
template <class Chunk, class Block>
void MMAllocator<Chunk, Block>::giveBack(Block* block) {
  Chunk* const chunk = block->chunk;
  if (chunk->blocks.before(*block) || chunk->blocks.after(*block)) {
    freeBlocks.insert(entryOf(block));
    return;
  }
  const std::uint64_t size = block->size;
  remove(block);
  retireChunk(chunk, size);
}

/// Keeps a chunk that has no blocks as the spare one, or destroys it.
template <class Chunk, class Block>
void MMAllocator<Chunk, Block>::retireChunk(Chunk* chunk, std::uint64_t size) {
  if (keepEmptyChunk && !spareChunk && size == chunkSize) {
    spareChunk = chunk;
  } else {
    destroyChunk(chunk);
    --chunkCount;
  }
}

template <class Chunk, class Block>
void MMAllocator<Chunk, Block>::remove(Block* block) {
  LinkedList::unlink(*block);
  destroyBlock(block);
}

template <class Chunk, class Block>
void MMAllocator<Chunk, Block>::mergeWithNeighbours(Block* block) {
  const LinkedList& blocks = block->chunk->blocks;
  for (LinkedListNode* const neighbour : {blocks.before(*block), blocks.after(*block)}) {
    Block* const other = static_cast<Block*>(neighbour);
    if (!other || !other->free) continue;
    freeBlocks.erase(entryOf(other));
    if (other->offset < block->offset) block->offset = other->offset;
    block->size += other->size;
    remove(other);
  }
}

} // namespace qvOS
