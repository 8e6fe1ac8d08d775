// The lower level of moveable memory: small blocks of shared mappings. Private to the library.
#pragma once

#include "Base/OS/qvOSMMAllocator.h"
#include "Base/OS/qvOSMoveableChunk.h"
#include "Base/OS/qvOSMoveableMemory.h"
#include "Base/Utility/qvImplBase.h"
#include "Base/Utility/qvReferenceCount.h"

namespace qvOS {

class AllocatorImpl;

struct ChunkImpl {
  AllocatorImpl* owner;
  int mapCount; // blocks that count as mapped
  LinkedList blocks;
  std::uint64_t size;
  qv::Reference<MoveableMapping> mapping;
};

class AllocatorImpl final : public MMAllocator<ChunkImpl, MoveableChunk>, public qv::ImplBase {
public:
  explicit AllocatorImpl(MoveableMemory& source) noexcept;

  /// Counts one more mapped block of the chunk. @return the chunk's address, or null.
  void* map(ChunkImpl& chunk);
  /// Counts one less. A chunk without any becomes the cached one and stays mapped.
  void unmap(ChunkImpl& chunk);
  void unmapCachedMappings();

private:
  ChunkImpl* createChunk(std::uint64_t size) override;
  MoveableChunk* createBlock(std::uint64_t size, ChunkImpl* chunk, std::uint64_t offset, bool free) override;
  void destroyChunk(ChunkImpl* chunk) override;
  void destroyBlock(MoveableChunk* block) override;

  void addToCache(ChunkImpl& chunk);
  /// Leaves the chunk mapped. @return whether it was there.
  bool removeFromCache(const ChunkImpl& chunk);
  void unmapLastCached();

  static constexpr int cacheRoom = 1;

  MoveableMemory* memory;
  ChunkImpl* cachedChunks[cacheRoom] = {};
  int cachedCount = 0;
};

} // namespace qvOS
