// Numbers in bytes of a told order, at any address.
#pragma once

#include "Base/IO/ioByteOrder.h"

#include <bit>
#include <cstdint>
#include <cstring>

[[nodiscard]] inline std::uint32_t ioLoadBig32(const unsigned char* bytes) noexcept {
  return static_cast<std::uint32_t>(bytes[0]) << 24 | static_cast<std::uint32_t>(bytes[1]) << 16 |
         static_cast<std::uint32_t>(bytes[2]) << 8 | bytes[3];
}

inline void ioStoreBig32(unsigned char* bytes, std::uint32_t value) noexcept {
  for (int i = 0; i < 4; ++i) bytes[i] = static_cast<unsigned char>(value >> (24 - 8 * i));
}

[[nodiscard]] inline std::uint32_t ioLoadLittle32(const unsigned char* bytes) noexcept {
  std::uint32_t value;
  std::memcpy(&value, bytes, sizeof value);
  if constexpr (std::endian::native == std::endian::big) value = ioByteOrder::reversed(value);
  return value;
}

inline void ioStoreLittle32(unsigned char* bytes, std::uint32_t value) noexcept {
  for (int i = 0; i < 4; ++i) bytes[i] = static_cast<unsigned char>(value >> (8 * i));
}

inline void ioStoreLittle64(unsigned char* bytes, std::uint64_t value) noexcept {
  if constexpr (std::endian::native == std::endian::big) value = ioByteOrder::reversed(value);
  std::memcpy(bytes, &value, sizeof value);
}
