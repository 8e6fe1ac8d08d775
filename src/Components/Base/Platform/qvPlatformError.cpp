#include "Base/Platform/qvPlatformError.h"

#include "Base/Platform/qvPlatformErrorRows.h"

namespace qvPlatform {

ErrorKind errorKind(int number) noexcept {
  for (const ErrorRow& row : errorRows())
    if (row.number == number) return row.kind;
  return ErrorKind::other;
}

int errorNumber(ErrorKind kind) noexcept {
  const std::span<const ErrorRow> rows = errorRows();
  std::size_t i = 0;
  while (i + 1 < rows.size() && rows[i].kind != kind) ++i;
  return rows[i].number; // the last row is that of `other`
}

bool isNotFound(int number) noexcept {
  const ErrorKind kind = errorKind(number);
  return kind == ErrorKind::notFound || kind == ErrorKind::notDirectory;
}

} // namespace qvPlatform
