// Values whose bytes are reversed, for data from a machine of the other byte order.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace ioByteOrder {

/// The unsigned type of that many bytes.
template <std::size_t size>
using Bits =
    std::conditional_t<size == 2, std::uint16_t, std::conditional_t<size == 4, std::uint32_t, std::uint64_t>>;

[[nodiscard]] constexpr std::uint16_t reversed(std::uint16_t value) noexcept {
  return static_cast<std::uint16_t>(value << 8 | value >> 8);
}
[[nodiscard]] constexpr std::uint32_t reversed(std::uint32_t value) noexcept {
  return value << 24 | (value & 0xFF00) << 8 | (value >> 8 & 0xFF00) | value >> 24;
}
[[nodiscard]] constexpr std::uint64_t reversed(std::uint64_t value) noexcept {
  return std::uint64_t(reversed(std::uint32_t(value))) << 32 | reversed(std::uint32_t(value >> 32));
}
[[nodiscard]] constexpr int reversed(int value) noexcept {
  return static_cast<int>(reversed(static_cast<std::uint32_t>(value)));
}

/// Reverses the bytes of each element in its place.
template <class T>
void reverseEach(T* values, int count) noexcept {
  for (int i = 0; i < count; ++i) {
    Bits<sizeof(T)> bits;
    std::memcpy(&bits, values + i, sizeof bits);
    bits = reversed(bits);
    std::memcpy(values + i, &bits, sizeof bits);
  }
}

} // namespace ioByteOrder
