// A small block of moveable memory.
#pragma once

#include "Base/OS/qvOSLinkedListNode.h"
#include "Base/qvBase.h"

#include <cstddef>
#include <cstdint>
#include <new>

namespace qvOS {

struct ChunkImpl;
template <class Chunk, class Block>
class MMAllocator;

/// A block of a `MoveableAllocator`. Its bytes have an address only while it is mapped; each `map` may give
/// another one. They keep their content meanwhile; what they hold at first is undefined. Threads as for
/// `MoveableMemory`.
class QV_BASE_API MoveableChunk final : public LinkedListNode {
public:
  /// The address, which is the same until `unmap`; null where the address space cannot hold it. The
  /// block counts as mapped after that, too, and makes no other attempt before `unmap`.
  void* map();
  /// Gives the address up. Nothing where the block does not count as mapped. Calls are not counted.
  void unmap();
  [[nodiscard]] bool isMapped() const noexcept { return mapped; }

  /// What `delete` does: unmaps the block and gives it back to its allocator, which keeps the object for as
  /// long as it has a use for it and then releases its memory.
  static void operator delete(MoveableChunk* block, std::destroying_delete_t);
  /// Does not give the block back: for the allocator.
  ~MoveableChunk() override;

private:
  friend class AllocatorImpl;
  friend class MMAllocator<ChunkImpl, MoveableChunk>;

  MoveableChunk(std::uint64_t bytes, ChunkImpl* owner, std::uint64_t start, bool isFree) noexcept
      : size(bytes), chunk(owner), offset(start), free(isFree) {}
  /// The memory of the object is its allocator's.
  static void* operator new(std::size_t bytes, const std::nothrow_t& none) noexcept {
    return ::operator new(bytes, none);
  }
  static void operator delete(void* memory, const std::nothrow_t&) noexcept { ::operator delete(memory); }

  std::uint64_t size;
  ChunkImpl* chunk;
  std::uint64_t offset;
  bool free;
  bool mapped = false;
};

static_assert(sizeof(MoveableChunk) == 3 * sizeof(void*) + 32);

} // namespace qvOS
