// More data than the address space holds: blocks in large temporary files, each mapped only while it is used.
#pragma once

#include "Base/OS/qvOSMoveableMapping.h"
#include "Base/String/qvStringIString.h"
#include "Base/Utility/qvImplBase.h"
#include "Base/Utility/qvReferenceCount.h"
#include "Base/qvBase.h"

#include <cstdint>

namespace qvOS {

/// Hands out blocks of 64 KiB and more from files of 128 MiB in a directory of the host's choice, which are
/// gone with the process however that ends. A block never moves in its file. What is much smaller goes into a
/// `MoveableAllocator`. Every mapping and every allocator on it goes before the memory does. A copy is a
/// second handle that owns nothing, good while the first one lives. Not thread-safe: a memory, its mappings
/// and its allocators are used by one thread at a time.
class MoveableMemory {
public:
  struct Stats {
    std::uint64_t granularity; ///< `FileMapping::getGranularity`.
    std::uint64_t fileCount;   ///< Files that there are,
    std::uint64_t fileBytes;   ///< and the sum of their sizes.
    std::uint64_t usedBlocks;  ///< Blocks handed out and not yet given back,
    std::uint64_t usedBytes;   ///< and the sum of their sizes.
    /// Bytes in the address space. A mapping that goes while it is mapped stays counted for good; that is
    /// meant so.
    std::uint64_t mappedBytes;
  };

  QV_BASE_API MoveableMemory();

  /// Names the directory for the files, and what their names begin with. Comes before the first allocation.
  /// @return false, and nothing changes, where a text is empty or there is no such directory.
  QV_BASE_API bool initializeFiles(const qvString::IString& directory, const qvString::IString& filePrefix);
  /// A block of at least `size` bytes, rounded up to 64 KiB; one of more than 32 MiB has a file of exactly
  /// its size. Null for 0, before `initializeFiles`, and where the file cannot be made or the disk is full.
  [[nodiscard]] QV_BASE_API qv::Reference<MoveableMapping> allocate(std::uint64_t size);
  /// The figures, after giving back the one empty file that is otherwise kept for the next need.
  [[nodiscard]] QV_BASE_API Stats getStats();

private:
  qv::ImplHandle handle_;
};

static_assert(sizeof(MoveableMemory) == 2 * sizeof(void*) && sizeof(MoveableMemory::Stats) == 48);

} // namespace qvOS
