// Small things that the classes of this component share. Private.
#pragma once

#include "Base/Undo/qvUndoReport.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <limits>

namespace qvUndo {

/// The report that is open, or null.
extern std::FILE* reportFile;

/// Whether a report is open. Only then are bytes counted that nobody else asks for.
[[nodiscard]] inline bool isReporting() noexcept { return reportFile != nullptr; }

/// `qvUndoReport`, at the cost of one comparison where no report is open.
template <class... Args>
void report(const char* format, Args... args) {
  if (isReporting()) qvUndoReport(format, args...);
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
