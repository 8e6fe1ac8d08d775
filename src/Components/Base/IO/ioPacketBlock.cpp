#include "Base/IO/ioPacketBlock.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

constexpr std::int64_t largest = std::numeric_limits<int>::max();

std::unique_ptr<char[]> allocate(int capacity) {
  return std::make_unique_for_overwrite<char[]>(static_cast<std::size_t>(capacity) + 1);
}

} // namespace

ioPacketBlock::ioPacketBlock() : data_(allocate(capacity_)) {}

bool ioPacketBlock::grow(int at, std::size_t size) {
  tooLarge_ = tooLarge_ || size > static_cast<std::size_t>(largest - at);
  if (tooLarge_) return false;
  const std::int64_t needed = at + static_cast<std::int64_t>(size);
  std::int64_t capacity = capacity_;
  while (capacity < needed) capacity *= 2;
  const int larger = static_cast<int>(std::min(capacity, largest));
  std::unique_ptr<char[]> data = allocate(larger);
  std::memcpy(data.get(), data_.get(), static_cast<std::size_t>(capacity_));
  data_ = std::move(data);
  capacity_ = larger;
  return true;
}
