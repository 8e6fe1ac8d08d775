// Small things that the classes of this component share. Private.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>

namespace qvUndo {

/// Whether a report is open.
[[nodiscard]] bool isReporting() noexcept;

/// An own copy; null of null.
[[nodiscard]] inline std::unique_ptr<char[]> copyOfName(const char* name) {
  if (!name) return nullptr;
  const std::size_t size = std::strlen(name) + 1;
  std::unique_ptr<char[]> copy(new char[size]);
  std::memcpy(copy.get(), name, size);
  return copy;
}

/// A sum of bytes as the interfaces tell it; one out of range is told as the nearest that is in it.
[[nodiscard]] inline int byteCount(std::int64_t sum) noexcept {
  using Limits = std::numeric_limits<int>;
  return static_cast<int>(std::clamp<std::int64_t>(sum, Limits::min(), Limits::max()));
}

/// The number after `last`. The greatest is followed by the smallest.
[[nodiscard]] inline std::int32_t numberAfter(std::int32_t last) noexcept {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(last) + 1);
}

} // namespace qvUndo
