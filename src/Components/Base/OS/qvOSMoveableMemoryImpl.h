// The upper level of moveable memory: blocks of files. Private to the library.
#pragma once

#include "Base/OS/qvOSFileMapping.h"
#include "Base/OS/qvOSMMAllocator.h"
#include "Base/OS/qvOSMemoryMappedFile.h"
#include "Base/OS/qvOSMoveableMemory.h"
#include "Base/Utility/qvImplBase.h"

namespace qvOS {

struct Chunk {
  MemoryMappedFile file;
  LinkedList blocks;
};

struct VChunk final : LinkedListNode {
  VChunk(std::uint64_t bytes, Chunk* owner, std::uint64_t start, bool isFree) noexcept
      : size(bytes), chunk(owner), offset(start), free(isFree) {}

  std::uint64_t size;
  Chunk* chunk;
  std::uint64_t offset;
  bool free;
};

class MoveableMemImpl final : public MMAllocator<Chunk, VChunk>, public qv::ImplBase {
public:
  MoveableMemImpl() noexcept;
  ~MoveableMemImpl() override;

  bool initializeFiles(const qvString::IString& place, const qvString::IString& prefix);
  MoveableMemory::Stats getStats();
  /// Counts bytes that a mapping mapped or unmapped.
  void addMapped(std::uint64_t bytes) noexcept { stats.mappedBytes += bytes; }
  void subtractMapped(std::uint64_t bytes) noexcept { stats.mappedBytes -= bytes; }

private:
  Chunk* createChunk(std::uint64_t size) override;
  VChunk* createBlock(std::uint64_t size, Chunk* chunk, std::uint64_t offset, bool free) override;
  void destroyChunk(Chunk* chunk) override;
  void destroyBlock(VChunk* block) override;
  void onAllocate(VChunk* block) override;
  void onFree(VChunk* block) override;

  bool filesReady = false;
  MoveableMemory::Stats stats{}; // its fields are this object's, in their order
  qvString::IString directory;
  qvString::IString filePrefix;
};

class MappingImpl final : public MoveableMapping {
public:
  MappingImpl(MoveableMemImpl& source, VChunk& handedOut) noexcept : memory(source), block(handedOut) {}
  ~MappingImpl() override;

  [[nodiscard]] std::uint64_t getSize() const override { return block.size; }
  void* map() override;
  void unmap() override;
  [[nodiscard]] void* getPtr() const override { return window.getPtr(); }
  void flush(std::uint64_t begin, std::uint64_t end) override { window.flush(begin, end); }
  void load(std::uint64_t begin, std::uint64_t end) override { window.load(begin, end); }

private:
  friend MMAllocator<Chunk, VChunk>::Check;

  MoveableMemImpl& memory;
  VChunk& block;
  FileMapping window;
};

} // namespace qvOS
