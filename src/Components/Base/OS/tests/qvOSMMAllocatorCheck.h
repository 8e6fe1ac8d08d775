// Looks into both levels of moveable memory: walks all chunks, and tells what only the inside knows.
#pragma once

#include "Base/OS/qvOSMoveableAllocator.h"
#include "Base/OS/qvOSMoveableAllocatorImpl.h"
#include "Base/OS/qvOSMoveableMemoryImpl.h"

#include <gtest/gtest.h>

#include <set>
#include <tuple>
#include <vector>

namespace qvOS {

struct MMAllocatorCheck {
  using Mapping = qv::Reference<MoveableMapping>;

  static const MoveableMemImpl& of(const MoveableMemory& memory) {
    return memory.handle_.as<MoveableMemImpl>();
  }
  static const AllocatorImpl& of(const MoveableAllocator& allocator) {
    return allocator.handle_.as<AllocatorImpl>();
  }
  static VChunk* blockOf(const Mapping& mapping) { return &static_cast<MappingImpl&>(*mapping).block; }
  static std::uint64_t offsetOf(const MoveableChunk& block) { return block.offset; }
  static const Mapping& mappingOf(const MoveableChunk& block) { return block.chunk->mapping; }
  static int chunkCount(const MoveableMemory& memory) { return of(memory).chunkCount; }
  static bool hasSpare(const MoveableMemory& memory) { return of(memory).spareChunk != nullptr; }

  /// Checks that `used` are all blocks in use, that blocks fill their chunks without a gap, that no two free
  /// neighbours are there, and that the free set has all free blocks in their order, and no others.
  /// @return the chunks, but for a spare one.
  template <class Chunk, class Block>
  static std::set<Chunk*> walk(const MMAllocator<Chunk, Block>& allocator, const std::set<Block*>& used) {
    std::set<Chunk*> chunks;
    for (Block* block : used) chunks.insert(block->chunk);
    for (const auto& entry : allocator.freeBlocks) chunks.insert(entry.chunk);
    int inUse = 0, free = 0;
    for (Chunk* chunk : chunks) {
      std::uint64_t end = 0;
      bool wasFree = false;
      for (LinkedListNode* node = chunk->blocks.first(); node; node = chunk->blocks.after(*node)) {
        auto* const block = static_cast<Block*>(node);
        EXPECT_TRUE(block->chunk == chunk && block->offset == end && block->size > 0);
        EXPECT_EQ(block->offset % allocator.alignment, 0u);
        EXPECT_FALSE(wasFree && block->free);
        EXPECT_EQ(used.count(block), block->free ? 0u : 1u);
        end += block->size;
        wasFree = block->free;
        ++(block->free ? free : inUse);
      }
      EXPECT_EQ(end, sizeOf(*chunk));
    }
    EXPECT_EQ(inUse, allocator.getNumAllocated());
    EXPECT_EQ(used.size(), static_cast<std::size_t>(inUse));
    EXPECT_EQ(free, allocator.freeBlocks.size());
    EXPECT_EQ(static_cast<int>(chunks.size()) + (allocator.spareChunk ? 1 : 0), allocator.chunkCount);
    auto before = std::make_tuple(std::uint64_t(0), std::uintptr_t(0), std::uint64_t(0));
    for (const auto& entry : allocator.freeBlocks) {
      const Block* block = entry.block;
      EXPECT_TRUE(block->free && block->size == entry.size && block->chunk == entry.chunk &&
                  block->offset == entry.offset);
      const auto key =
          std::make_tuple(entry.size, reinterpret_cast<std::uintptr_t>(entry.chunk), entry.offset);
      EXPECT_LT(before, key);
      before = key;
    }
    return chunks;
  }

  /// The chunk and offset that a request must get; none where it needs a chunk of its own or a new one.
  template <class Chunk, class Block>
  static std::pair<Chunk*, std::uint64_t> bestFit(const MMAllocator<Chunk, Block>& allocator,
                                                  const std::set<Chunk*>& chunks, std::uint64_t size) {
    using Key = std::tuple<std::uint64_t, std::uintptr_t, std::uint64_t>;
    Key best(~std::uint64_t(0), 0, 0);
    if (size > allocator.maxBlockSize) return {};
    for (Chunk* chunk : chunks)
      for (LinkedListNode* node = chunk->blocks.first(); node; node = chunk->blocks.after(*node)) {
        const auto* const block = static_cast<Block*>(node);
        const std::uint64_t rounded =
            (size + allocator.alignment - 1) / allocator.alignment * allocator.alignment;
        if (block->free && block->size >= rounded)
          best = std::min(best, Key(block->size, reinterpret_cast<std::uintptr_t>(chunk), block->offset));
      }
    return {reinterpret_cast<Chunk*>(std::get<1>(best)), std::get<2>(best)};
  }

private:
  static std::uint64_t sizeOf(const Chunk& chunk) { return static_cast<std::uint64_t>(chunk.file.getSize()); }
  static std::uint64_t sizeOf(const ChunkImpl& chunk) { return chunk.size; }
};

} // namespace qvOS
