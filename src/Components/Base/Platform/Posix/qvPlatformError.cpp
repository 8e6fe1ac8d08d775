#include "Base/Platform/qvPlatformErrorRows.h"

#include <errno.h>
#include <string.h>

namespace qvPlatform {

namespace {

constexpr ErrorRow rows[] = {
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

std::span<const ErrorRow> errorRows() noexcept { return rows; }

int lastError() noexcept { return errno; }

std::string systemErrorText(int number) {
  char buffer[256] = "";
  return textOf(strerror_r(number, buffer, sizeof buffer), buffer);
}

} // namespace qvPlatform
