// Surrogates: how UTF-16 writes a code above FFFF as two units. Private to what converts text.
#pragma once

#include "Base/qvBase.h"

#include <cstdint>

namespace qvPlatform::text {

constexpr bool isSurrogate(std::uint32_t c) noexcept { return (c & 0xFFFFF800) == 0xD800; }
constexpr bool isHigh(std::uint32_t c) noexcept { return (c & 0xFFFFFC00) == 0xD800; }
constexpr bool isLow(std::uint32_t c) noexcept { return (c & 0xFFFFFC00) == 0xDC00; }

/// The code of a pair.
constexpr std::uint32_t joined(std::uint32_t high, std::uint32_t low) noexcept {
  return 0x10000 + ((high & 0x3FF) << 10 | (low & 0x3FF));
}
/// The two units of a code from 10000 to 10FFFF.
constexpr qv::WChar highOf(std::uint32_t code) noexcept {
  return static_cast<qv::WChar>(0xD7C0 + (code >> 10));
}
constexpr qv::WChar lowOf(std::uint32_t code) noexcept {
  return static_cast<qv::WChar>(0xDC00 | (code & 0x3FF));
}

} // namespace qvPlatform::text
