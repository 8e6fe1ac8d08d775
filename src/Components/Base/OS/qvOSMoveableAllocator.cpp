#include "Base/OS/qvOSMoveableAllocator.h"

#include "Base/OS/qvOSMoveableAllocatorImpl.h"

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

namespace qvOS {

AllocatorImpl::AllocatorImpl(MoveableMemory& source) noexcept
    : MMAllocator(256 * 1024, 32, 1024 * 1024, false), memory(&source) {}

void* AllocatorImpl::map(ChunkImpl& chunk) {
  if (chunk.mapCount++ == 0) removeFromCache(chunk);
  void* const address = chunk.mapping->getPtr();
  return address ? address : chunk.mapping->map();
}

void AllocatorImpl::unmap(ChunkImpl& chunk) {
  if (--chunk.mapCount == 0) addToCache(chunk);
}

void AllocatorImpl::unmapCachedMappings() {
  while (cachedCount > 0) unmapLastCached();
}

void AllocatorImpl::addToCache(ChunkImpl& chunk) {
  ChunkImpl** const end = cachedChunks + cachedCount;
  if (std::find(cachedChunks, end, &chunk) != end) return;
  if (cachedCount == cacheRoom) unmapLastCached();
  cachedChunks[cachedCount++] = &chunk;
}

bool AllocatorImpl::removeFromCache(const ChunkImpl& chunk) {
  ChunkImpl** const end = cachedChunks + cachedCount;
  ChunkImpl** const found = std::find(cachedChunks, end, &chunk);
  if (found == end) return false;
  std::move(found + 1, end, found);
  --cachedCount;
  return true;
}

void AllocatorImpl::unmapLastCached() { cachedChunks[--cachedCount]->mapping->unmap(); }

ChunkImpl* AllocatorImpl::createChunk(std::uint64_t size) {
  const qv::Reference<MoveableMapping> mapping = memory->allocate(size);
  return mapping ? new (std::nothrow) ChunkImpl{this, 0, {}, size, mapping} : nullptr;
}

MoveableChunk* AllocatorImpl::createBlock(std::uint64_t size, ChunkImpl* chunk, std::uint64_t offset,
                                          bool free) {
  return new (std::nothrow) MoveableChunk(size, chunk, offset, free);
}

void AllocatorImpl::destroyChunk(ChunkImpl* chunk) {
  if (removeFromCache(*chunk)) chunk->mapping->unmap();
  delete chunk;
}

void AllocatorImpl::destroyBlock(MoveableChunk* block) {
  block->~MoveableChunk();
  ::operator delete(block);
}

void* MoveableChunk::map() {
  void* const start = mapped ? chunk->mapping->getPtr() : chunk->owner->map(*chunk);
  mapped = true;
  return start ? static_cast<char*>(start) + offset : nullptr;
}

void MoveableChunk::unmap() {
  if (std::exchange(mapped, false)) chunk->owner->unmap(*chunk);
}

MoveableChunk::~MoveableChunk() = default;

void MoveableChunk::operator delete(MoveableChunk* block, std::destroying_delete_t) {
  if (!block) return; // the language lets `delete` come here with null, too
  block->unmap();
  block->chunk->owner->free(block);
}

MoveableAllocator::MoveableAllocator(MoveableMemory& memory) : handle_(new AllocatorImpl(memory)) {}

MoveableChunk* MoveableAllocator::allocate(std::uint64_t size) {
  return handle_.as<AllocatorImpl>().allocate(size);
}

int MoveableAllocator::getNumAllocated() const noexcept {
  return handle_.as<AllocatorImpl>().getNumAllocated();
}

void MoveableAllocator::unmapCachedMappings() { handle_.as<AllocatorImpl>().unmapCachedMappings(); }

} // namespace qvOS
