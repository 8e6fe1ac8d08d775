#include "Base/String/qvStringInt64.h"

#include <charconv>
#include <cstdlib>

namespace {

constexpr int kSlots = 3;
constexpr int kSlotSize = 28;

template <class Integer>
char* toSlot(char (&slots)[kSlots][kSlotSize], Integer value, int slot) noexcept {
  char* const text = slots[slot >= 0 && slot < kSlots ? slot : 0];
  *std::to_chars(text, text + kSlotSize - 1, value).ptr = '\0';
  return text;
}

} // namespace

char* int64ToAscii(std::int64_t value, int slot) noexcept {
  static char slots[kSlots][kSlotSize];
  return toSlot(slots, value, slot);
}

char* uint64ToAscii(std::uint64_t value, int slot) noexcept {
  static char slots[kSlots][kSlotSize];
  return toSlot(slots, value, slot);
}

std::int64_t asciiToInt64(const char* text) noexcept { return text ? std::strtoll(text, nullptr, 10) : 0; }

std::uint64_t asciiToUInt64(const char* text) noexcept { return text ? std::strtoull(text, nullptr, 10) : 0; }
