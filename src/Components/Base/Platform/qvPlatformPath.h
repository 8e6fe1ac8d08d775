// Native paths: what the process and the system know of them, and their conversion to and from wide paths.
// A native path is bytes as the system takes them, whatever their encoding. Windows takes units instead:
// there it is the wide path in UTF-8, each lone surrogate in the three bytes that UTF-8 would give to its
// code.
#pragma once

#include "Base/qvBase.h"

#include <cstddef>
#include <string>

namespace qvPlatform {

/// Between two directories of a list such as "PATH".
#if defined(_WIN32)
inline constexpr char pathListSeparator = ';';
#else
inline constexpr char pathListSeparator = ':';
#endif

/// The wide path of `length` units as a native path. Empty where no native path can be meant: a zero unit,
/// and where there are no drives another one than `C:` or a network name. The rules stand in
/// OS/qvOSNativePath.h.
[[nodiscard]] std::string nativePath(const qv::WChar* path, std::size_t length);
/// The native path of `length` bytes as a wide path that `nativePath` turns into the same bytes.
[[nodiscard]] std::basic_string<qv::WChar> widePath(const char* path, std::size_t length);

/// The process's current directory, absolute and without links [getcwd].
[[nodiscard]] int workingDirectory(std::string* path);
/// Changes it for the whole process [chdir].
[[nodiscard]] int setWorkingDirectory(const char* path) noexcept;
/// The user's directory for temporary files, absolute; not checked for existence. Always ends without a
/// separator unless it is the root.
[[nodiscard]] std::string temporaryDirectory();
/// The file that this process runs, absolute [executable].
[[nodiscard]] int executablePath(std::string* path);

/// `path` made absolute from the current directory [getcwd], with no `.` and no doubled separators. A `..` is
/// resolved only against the current directory, where it cannot lead through a link; on Windows everywhere,
/// as the system resolves it in every path. Nothing needs to exist.
[[nodiscard]] int absolutePath(const char* path, std::string* absolute);
/// The absolute path of an existing file without links, `.` and `..` [realpath].
[[nodiscard]] int realPath(const char* path, std::string* real);

} // namespace qvPlatform
