#include "Base/OS/qvOSMemoryIOStream.h"

#include "Base/OS/qvOSFile.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace qvOS {

using qvUtil::Error;

namespace {

constexpr std::size_t leastCapacity = 256;

} // namespace

MemoryIOStream::MemoryIOStream(void* block, std::size_t capacity, std::size_t size)
    : block_(static_cast<unsigned char*>(block)),
      size_(std::min(size, capacity)),
      capacity_(capacity),
      kind_(Block::lent) {}

MemoryIOStream::MemoryIOStream(const void* block, std::size_t size)
    : block_(static_cast<unsigned char*>(const_cast<void*>(block))),
      size_(size),
      capacity_(size),
      kind_(Block::constant) {}

MemoryIOStream::~MemoryIOStream() {
  if (kind_ == Block::own) std::free(block_);
}

Error MemoryIOStream::read(void* buffer, std::uint64_t size, std::uint64_t* count) {
  const std::size_t left = size_ - position_;
  const std::size_t taken = std::min<std::uint64_t>(size, left);
  if (taken) std::memcpy(buffer, block_ + position_, taken);
  position_ += taken;
  if (count) *count = taken;
  return taken < size ? File::getError(FileError::endOfFile) : Error();
}

Error MemoryIOStream::write(const void* buffer, std::uint64_t size, std::uint64_t* count) {
  const std::size_t put = std::min<std::uint64_t>(size, roomFor(size));
  if (put) std::memcpy(block_ + position_, buffer, put);
  position_ += put;
  size_ = std::max(size_, position_);
  if (count) *count = put;
  return put < size ? File::getError(FileError::ioProblem) : Error();
}

/// How much room there is from the position on, at best for `size` bytes. A block of its own grows by
/// doubling, or where there is no memory for all has room for nothing.
std::size_t MemoryIOStream::roomFor(std::uint64_t size) {
  if (kind_ == Block::constant) return 0;
  const std::size_t room = capacity_ - position_;
  if (kind_ == Block::lent || size <= room) return room;
  if (size > PTRDIFF_MAX - position_) return 0;
  const std::size_t doubled = std::min<std::size_t>(capacity_ * 2, PTRDIFF_MAX);
  const std::size_t wanted = std::max({static_cast<std::size_t>(position_ + size), doubled, leastCapacity});
  void* block = std::realloc(block_, wanted);
  if (!block) return 0;
  block_ = static_cast<unsigned char*>(block);
  capacity_ = wanted;
  return capacity_ - position_;
}

bool MemoryIOStream::seek(std::size_t position) noexcept {
  if (position > size_) return false;
  position_ = position;
  return true;
}

void MemoryIOStream::truncate(std::size_t size) noexcept {
  size_ = std::min(size_, size);
  position_ = std::min(position_, size_);
}

} // namespace qvOS
