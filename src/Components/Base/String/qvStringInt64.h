// 64-bit integers to text and back, with C linkage.
#pragma once

#include "Base/qvBase.h"

#include <cstdint>

extern "C" {

/// Writes `value` in decimal into one of three static texts, `slot` 0 to 2 (any other counts as 0), and
/// returns that text. It stays good until the same slot of the same function is written again. Not
/// thread-safe: all threads share the slots.
QV_BASE_API char* int64ToAscii(std::int64_t value, int slot) noexcept;
QV_BASE_API char* uint64ToAscii(std::uint64_t value, int slot) noexcept;

/// The decimal number at the start of `text`, after blanks and a sign. Gives 0 for text that holds none and
/// for null, and the nearest value for a number out of range.
[[nodiscard]] QV_BASE_API std::int64_t asciiToInt64(const char* text) noexcept;
[[nodiscard]] QV_BASE_API std::uint64_t asciiToUInt64(const char* text) noexcept;
}
