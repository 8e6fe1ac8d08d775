// The numbers of a system that code above tells apart. Private to the platform.
#pragma once

#include "Base/Platform/qvPlatformError.h"

#include <span>

namespace qvPlatform {

struct ErrorRow {
  ErrorKind kind;
  int number;
};

/// At least one row for each kind, `other` last. The first row of a kind gives its own number.
[[nodiscard]] std::span<const ErrorRow> errorRows() noexcept;

} // namespace qvPlatform
