// Many small blocks of moveable memory that share mappings.
#pragma once

#include "Base/OS/qvOSMoveableChunk.h"
#include "Base/Utility/qvImplBase.h"
#include "Base/qvBase.h"

#include <cstdint>

namespace qvOS {

class MoveableMemory;

/// Carves blocks out of mappings of 1 MiB. A mapping stays in the address space while one of its blocks is
/// mapped, and the one that was used last stays a while longer, so that mapping and unmapping blocks of one
/// mapping in turn costs no system call. Goes after all its blocks and before its memory. A copy is a second
/// handle that owns nothing, good while the first one lives. Threads as for `MoveableMemory`.
class MoveableAllocator {
public:
  /// Draws on `memory`, and on this very handle of it, which outlives the allocator.
  QV_BASE_API explicit MoveableAllocator(MoveableMemory& memory);

  /// A block of at least `size` bytes, which the caller deletes; one of more than 256 KiB has a mapping to
  /// itself. Blocks begin at multiples of 32 bytes. Null for 0, and where the memory gives none.
  [[nodiscard]] QV_BASE_API MoveableChunk* allocate(std::uint64_t size);
  /// Blocks that were not deleted yet.
  [[nodiscard]] QV_BASE_API int getNumAllocated() const noexcept;
  /// Unmaps at once what is mapped though no block of it is.
  QV_BASE_API void unmapCachedMappings();

private:
  qv::ImplHandle handle_;
};

static_assert(sizeof(MoveableAllocator) == 2 * sizeof(void*));

} // namespace qvOS
