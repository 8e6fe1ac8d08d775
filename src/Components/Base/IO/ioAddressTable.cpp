#include "Base/IO/ioAddressTable.h"

#include <new>
#include <utility>

void ioAddressTable::set(const void* address, int number) {
  const std::size_t capacity = slots_ ? groupSize << groupBits_ : 0;
  if (used_ >= capacity / 4 * 3) grow();
  Entry* const entry = slot(address);
  if (!entry->address) ++used_;
  *entry = {address, number};
}

void ioAddressTable::grow() {
  const std::size_t old = slots_ ? std::size_t(groupSize) << groupBits_ : 0;
  const int bits = slots_ ? groupBits_ + 1 : 4;
  constexpr std::size_t line = 64;
  std::size_t size = (sizeof(Entry) * groupSize << bits) + line;
  std::unique_ptr<void, Free> block(std::calloc(size, 1));
  void* place = block.get();
  if (!place || !std::align(line, size - line, place, size)) throw std::bad_alloc();
  const Entry* const from = std::exchange(slots_, static_cast<Entry*>(place));
  groupBits_ = bits;
  for (std::size_t i = 0; i < old; ++i)
    if (from[i].address) *slot(from[i].address) = from[i];
  block_ = std::move(block);
}
