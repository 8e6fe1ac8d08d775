#include "Base/Platform/qvPlatformError.h"

#include <errno.h>
#include <string.h>

namespace qvPlatform {

namespace {

// The first row of a kind gives its own number.
constexpr struct {
  ErrorKind kind;
  int number;
} kinds[] = {
    {ErrorKind::none, 0},
    {ErrorKind::notFound, ENOENT},
    {ErrorKind::notDirectory, ENOTDIR},
    {ErrorKind::exists, EEXIST},
    {ErrorKind::notEmpty, ENOTEMPTY},
    {ErrorKind::denied, EACCES},
    {ErrorKind::denied, EPERM},
    {ErrorKind::denied, EROFS},
    {ErrorKind::isDirectory, EISDIR},
    {ErrorKind::invalid, EINVAL},
    {ErrorKind::crossDevice, EXDEV},
    {ErrorKind::noSpace, ENOSPC},
    {ErrorKind::noSpace, EDQUOT},
    {ErrorKind::tooLong, ENAMETOOLONG},
    {ErrorKind::badText, EILSEQ},
    {ErrorKind::interrupted, EINTR},
    {ErrorKind::ioFailure, EIO},
    {ErrorKind::other, EPROTO},
};

// The system has one of two forms of strerror_r: one that answers with the text, and one that fills the
// buffer.
[[maybe_unused]] const char* textOf(const char* text, const char*) { return text; }
[[maybe_unused]] const char* textOf(int, const char* buffer) { return buffer; }

} // namespace

ErrorKind errorKind(int number) noexcept {
  for (const auto& row : kinds)
    if (row.number == number) return row.kind;
  return ErrorKind::other;
}

int errorNumber(ErrorKind kind) noexcept {
  for (const auto& row : kinds)
    if (row.kind == kind) return row.number;
  return EPROTO;
}

bool isNotFound(int number) noexcept { return number == ENOENT || number == ENOTDIR; }

int lastError() noexcept { return errno; }

std::string systemErrorText(int number) {
  char buffer[256] = "";
  return textOf(strerror_r(number, buffer, sizeof buffer), buffer);
}

} // namespace qvPlatform
