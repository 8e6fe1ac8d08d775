#include "Base/OS/qvOSMoveableMemory.h"

#include "Base/OS/qvOSFile.h"
#include "Base/OS/qvOSFileStatus.h"
#include "Base/OS/qvOSFilename.h"
#include "Base/OS/qvOSMoveableMemoryImpl.h"
#include "Base/OS/qvOSUuid.h"
#include "Base/Platform/qvPlatformProcess.h"

#include <memory>
#include <new>

namespace qvOS {

using qvString::IString;

MoveableMapping::~MoveableMapping() = default;

namespace {

constexpr std::uint64_t mib = 1 << 20;

} // namespace

/// Leaves the count of mapped bytes as it is, also where this is still mapped.
MappingImpl::~MappingImpl() {
  window.unmap();
  memory.free(&block);
}

void* MappingImpl::map() {
  if (window) return window.getPtr();
  window = block.chunk->file.map(static_cast<std::int64_t>(block.offset), getSize());
  if (window) memory.addMapped(getSize());
  return window.getPtr();
}

void MappingImpl::unmap() {
  if (!window) return;
  window.unmap();
  memory.subtractMapped(getSize());
}

MoveableMemImpl::MoveableMemImpl() noexcept : MMAllocator(32 * mib, 65536, 128 * mib, true) {
  stats.granularity = FileMapping::getGranularity();
}

MoveableMemImpl::~MoveableMemImpl() { destroySpareChunk(); }

bool MoveableMemImpl::initializeFiles(const IString& place, const IString& prefix) {
  if (place.isEmpty() || prefix.isEmpty()) return false;
  FileStatus status;
  if (File::query(place, status) || !status.isDirectory()) return false;
  directory = place;
  filePrefix = prefix;
  filesReady = true;
  return true;
}

MoveableMemory::Stats MoveableMemImpl::getStats() {
  destroySpareChunk();
  return stats;
}

Chunk* MoveableMemImpl::createChunk(std::uint64_t size) {
  if (!filesReady) return nullptr;
  auto chunk = std::make_unique<Chunk>();
  IString name;
  name.format("%S-%d-%s", filePrefix.asWChar(), qvPlatform::processId(),
              Uuid::generate().asString().asChar());
  if (!chunk->file.createFile(Filename::join(directory, name), size, true)) return nullptr;
  ++stats.fileCount;
  stats.fileBytes += size;
  return chunk.release();
}

VChunk* MoveableMemImpl::createBlock(std::uint64_t size, Chunk* chunk, std::uint64_t offset, bool free) {
  return new (std::nothrow) VChunk(size, chunk, offset, free);
}

void MoveableMemImpl::destroyChunk(Chunk* chunk) {
  --stats.fileCount;
  stats.fileBytes -= static_cast<std::uint64_t>(chunk->file.getSize());
  delete chunk;
}

void MoveableMemImpl::destroyBlock(VChunk* block) { delete block; }

void MoveableMemImpl::onAllocate(VChunk* block) {
  ++stats.usedBlocks;
  stats.usedBytes += block->size;
}

void MoveableMemImpl::onFree(VChunk* block) {
  --stats.usedBlocks;
  stats.usedBytes -= block->size;
}

MoveableMemory::MoveableMemory() : handle_(new MoveableMemImpl) {}

bool MoveableMemory::initializeFiles(const IString& directory, const IString& filePrefix) {
  return handle_.as<MoveableMemImpl>().initializeFiles(directory, filePrefix);
}

qv::Reference<MoveableMapping> MoveableMemory::allocate(std::uint64_t size) {
  MoveableMemImpl& memory = handle_.as<MoveableMemImpl>();
  VChunk* const block = memory.allocate(size);
  return block ? new (std::nothrow) MappingImpl(memory, *block)
               : nullptr; // without memory it stays allocated
}

MoveableMemory::Stats MoveableMemory::getStats() { return handle_.as<MoveableMemImpl>().getStats(); }

} // namespace qvOS
