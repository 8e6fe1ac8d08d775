// The number space is that of `GetLastError`, which includes the numbers of sockets. What only the C runtime
// reports, in `errno`, becomes the number of the same event (see qvPlatformRuntime.cpp).
#include "Base/Platform/Windows/qvPlatformSystem.h"
#include "Base/Platform/qvPlatformErrorRows.h"

#include <locale.h>
#include <winsock2.h>

namespace qvPlatform {

namespace {

// Numbers that not every header of the system has.
constexpr int directoryNotSupported = 336;
constexpr int diskQuotaExceeded = 1295;

constexpr ErrorRow rows[] = {
    {ErrorKind::none, 0},
    {ErrorKind::notFound, ERROR_FILE_NOT_FOUND},
    {ErrorKind::notFound, ERROR_PATH_NOT_FOUND},
    {ErrorKind::notFound, ERROR_INVALID_DRIVE},
    {ErrorKind::notFound, ERROR_BAD_NETPATH},
    {ErrorKind::notFound, ERROR_BAD_NET_NAME},
    {ErrorKind::notFound, ERROR_BAD_PATHNAME},
    {ErrorKind::notDirectory, ERROR_DIRECTORY},
    {ErrorKind::exists, ERROR_FILE_EXISTS},
    {ErrorKind::exists, ERROR_ALREADY_EXISTS},
    {ErrorKind::notEmpty, ERROR_DIR_NOT_EMPTY},
    {ErrorKind::denied, ERROR_ACCESS_DENIED},
    {ErrorKind::denied, ERROR_SHARING_VIOLATION},
    {ErrorKind::denied, ERROR_LOCK_VIOLATION},
    {ErrorKind::denied, ERROR_WRITE_PROTECT},
    {ErrorKind::denied, ERROR_NETWORK_ACCESS_DENIED},
    {ErrorKind::denied, ERROR_PRIVILEGE_NOT_HELD},
    {ErrorKind::isDirectory, directoryNotSupported},
    {ErrorKind::invalid, ERROR_INVALID_PARAMETER},
    {ErrorKind::invalid, ERROR_INVALID_NAME},
    {ErrorKind::invalid, ERROR_NEGATIVE_SEEK},
    {ErrorKind::invalid, ERROR_NOT_A_REPARSE_POINT},
    {ErrorKind::crossDevice, ERROR_NOT_SAME_DEVICE},
    {ErrorKind::noSpace, ERROR_DISK_FULL},
    {ErrorKind::noSpace, ERROR_HANDLE_DISK_FULL},
    {ErrorKind::noSpace, diskQuotaExceeded},
    {ErrorKind::tooLong, ERROR_FILENAME_EXCED_RANGE},
    {ErrorKind::tooLong, ERROR_BUFFER_OVERFLOW},
    {ErrorKind::badText, ERROR_NO_UNICODE_TRANSLATION},
    {ErrorKind::interrupted, WSAEINTR},
    {ErrorKind::ioFailure, ERROR_IO_DEVICE},
    {ErrorKind::ioFailure, ERROR_CRC},
    {ErrorKind::ioFailure, ERROR_SECTOR_NOT_FOUND},
    {ErrorKind::ioFailure, ERROR_WRITE_FAULT},
    {ErrorKind::ioFailure, ERROR_READ_FAULT},
    {ErrorKind::ioFailure, ERROR_GEN_FAILURE},
    {ErrorKind::other, ERROR_NOT_SUPPORTED},
};

/// In the encoding of the C runtime's locale. That of the "C" locale has the first 256 codes.
std::string inDefaultEncoding(const std::wstring& text) {
  constexpr UINT latin1 = 28591;
  const UINT locale = ___lc_codepage_func();
  const UINT page = locale ? locale : latin1;
  const int length = static_cast<int>(text.size());
  const int size = ::WideCharToMultiByte(page, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string result(static_cast<std::size_t>(size), '\0');
  ::WideCharToMultiByte(page, 0, text.data(), length, result.data(), size, nullptr, nullptr);
  return result;
}

} // namespace

std::span<const ErrorRow> errorRows() noexcept { return rows; }

int lastError() noexcept { return static_cast<int>(::GetLastError()); }

std::wstring systemText(int number) {
  wchar_t text[1024];
  constexpr DWORD flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
  std::size_t length = ::FormatMessageW(flags, nullptr, static_cast<DWORD>(number), 0, text,
                                        static_cast<DWORD>(std::size(text)), nullptr);
  while (length > 0 && text[length - 1] <= L' ') --length;
  return {text, length};
}

std::string systemErrorText(int number) {
  const std::wstring text = systemText(number);
  return text.empty() ? "An unknown WIN32 error occurred: " + std::to_string(number)
                      : inDefaultEncoding(text);
}

} // namespace qvPlatform
