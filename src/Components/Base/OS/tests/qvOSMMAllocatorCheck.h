// Looks into both levels of moveable memory: walks all chunks, and tells what only the inside knows.
#pragma once

#include "Base/OS/qvOSMoveableAllocator.h"
#include "Base/OS/qvOSMoveableAllocatorImpl.h"
#include "Base/OS/qvOSMoveableMemoryImpl.h"

#include <gtest/gtest.h>

#include <set>
#include <tuple>
#include <type_traits>
#include <vector>

namespace qvOS {

/// @{ What a handle holds: an `ImplHandle` is all that there is of it.
template <class Impl, class Handle>
const Impl& implOf(const Handle& handle) {
  static_assert(std::is_standard_layout_v<Handle> && sizeof(Handle) == sizeof(qv::ImplHandle));
  return reinterpret_cast<const qv::ImplHandle&>(handle).as<Impl>();
}
inline const MoveableMemImpl& implOf(const MoveableMemory& memory) {
  return implOf<MoveableMemImpl, MoveableMemory>(memory);
}
inline const AllocatorImpl& implOf(const MoveableAllocator& allocator) {
  return implOf<AllocatorImpl, MoveableAllocator>(allocator);
}
/// @}

/// Sees what its allocator sees, the fields of `MoveableChunk` too.
template <class Chunk, class Block>
struct MMAllocator<Chunk, Block>::Check {
  struct Chunks {
    int count;
    bool hasSpare;
    bool operator==(const Chunks&) const = default;
  };
  static Chunks chunks(const MMAllocator& allocator) {
    return {allocator.chunkCount, allocator.spareChunk != nullptr};
  }
  template <class Mapping>
  static Block* blockOf(const Mapping& mapping) {
    return &mapping.block;
  }

  /// The free blocks of a level by size, chunk and offset: the first that is large enough fits best.
  using Key = std::tuple<std::uint64_t, std::uintptr_t, std::uint64_t>;
  struct State {
    std::set<Chunk*> chunks; // but for a spare one
    std::set<Key> free;
  };

  /// Checks that `used` are all blocks in use, that blocks fill their chunks without a gap, that no two free
  /// neighbours are there, and that the free set has all free blocks in their order, and no others.
  static State walk(const MMAllocator& allocator, const std::set<Block*>& used) {
    State state;
    for (Block* block : used) state.chunks.insert(block->chunk);
    std::vector<Key> told;
    for (const auto& entry : allocator.freeBlocks) {
      state.chunks.insert(entry.chunk);
      told.push_back(keyOf(entry));
      EXPECT_TRUE(entry.block->free && keyOf(*entry.block) == told.back());
    }
    std::size_t inUse = 0;
    for (Chunk* chunk : state.chunks) {
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
        if (block->free)
          state.free.insert(keyOf(*block));
        else
          ++inUse;
      }
      EXPECT_EQ(end, sizeOf(*chunk));
    }
    EXPECT_EQ(told, std::vector<Key>(state.free.begin(), state.free.end()));
    EXPECT_EQ(used.size(), inUse);
    EXPECT_EQ(allocator.getNumAllocated(), static_cast<int>(inUse));
    EXPECT_EQ(static_cast<int>(state.chunks.size()) + (allocator.spareChunk ? 1 : 0), allocator.chunkCount);
    return state;
  }

  /// Whether a block is where a request of that size belonged in this state: in the best fit, if there was
  /// any.
  static bool isBestFit(const MMAllocator& allocator, const State& state, std::uint64_t size,
                        const Block& block) {
    if (size > allocator.maxBlockSize) return block.size == size;
    const std::uint64_t rounded =
        (size + allocator.alignment - 1) / allocator.alignment * allocator.alignment;
    const auto best = state.free.lower_bound(Key(rounded, 0, 0));
    return best == state.free.end() ||
           (std::get<1>(*best) == std::get<1>(keyOf(block)) && std::get<2>(*best) == block.offset);
  }

private:
  template <class Place>
  static Key keyOf(const Place& place) {
    return {place.size, reinterpret_cast<std::uintptr_t>(place.chunk), place.offset};
  }
  static std::uint64_t sizeOf(const qvOS::Chunk& chunk) {
    return static_cast<std::uint64_t>(chunk.file.getSize());
  }
  static std::uint64_t sizeOf(const ChunkImpl& chunk) { return chunk.size; }
};

} // namespace qvOS
