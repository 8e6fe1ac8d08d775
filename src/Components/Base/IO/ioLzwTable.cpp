#include "Base/IO/ioLzwTable.h"

#include "Base/IO/ioLzwFormat.h"

#include <algorithm>

namespace {

/// The number that turns a product with `factor` back, modulo 2^32. Each step doubles the bits that are
/// right.
constexpr std::uint32_t inverseOf(std::uint32_t factor) {
  std::uint32_t inverse = factor;
  for (int i = 0; i < 5; ++i) inverse *= 2 - factor * inverse;
  return inverse;
}

} // namespace

ioLzwTable::ioLzwTable() : fastSlots_(new FastSlot[fastSize]()) {}

void ioLzwTable::clear() noexcept {
  slow_ = false;
  slotZeroTaken_ = false;
  std::fill_n(fastSlots_.get(), fastSize, 0);
}

/// Enters a key that goes into the table of 69001, or that sends all others there.
void ioLzwTable::insertSlow(std::uint32_t key, std::uint32_t code) {
  if (!slow_) {
    turnSlow();
    (void)findSlow(key);
  }
  slowSlots_[place_] = static_cast<SlowSlot>(key) << 16 | code;
}

std::uint32_t ioLzwTable::findSlow(std::uint32_t key) noexcept {
  int i = static_cast<int>(firstSlot(key));
  SlowSlot slot = slowSlots_[i];
  if (slot != vacant && slot >> 16 != key) {
    const int step = i == 0 ? 1 : slowSize - i;
    do {
      i -= step;
      if (i < 0) i += slowSize;
      slot = slowSlots_[i];
    } while (slot >> 16 != key && slot >> 16 != 0 && slot != vacant);
  }
  place_ = static_cast<std::uint32_t>(i);
  return slot >> 16 == key ? slot & 0xFFFF : 0;
}

std::uint32_t ioLzwTable::unhashed(std::uint32_t hash) noexcept {
  return hash * inverseOf(hashed(1)) & keyMask;
}

/// Enters all strings into the table of 69001, in the order in which they came.
void ioLzwTable::turnSlow() {
  const auto keys = std::make_unique<std::uint32_t[]>(ioLzwCodeLimit);
  std::fill_n(keys.get(), ioLzwCodeLimit, keyMask + 1);
  for (std::uint32_t i = 0; i < fastSize; ++i) {
    const FastSlot slot = fastSlots_[i];
    if (slot == 0) continue;
    const std::uint32_t place = (i - (slot & farthest)) % fastSize;
    keys[slot >> 16] = unhashed(place << 7 | (slot >> 9 & 127));
  }
  slow_ = true;
  slowSlots_.reset(new SlowSlot[slowSize]);
  std::fill_n(slowSlots_.get(), slowSize, vacant);
  for (std::uint32_t code = ioLzwFirstFreeCode; code < ioLzwCodeLimit && keys[code] <= keyMask; ++code)
    if (!findSlow(keys[code])) insertSlow(keys[code], code);
}
