// The one way from a wide path to the path that the system takes, and back, for hosts that call the system
// themselves. Everything in the library that opens a file goes this way.
#pragma once

#include "Base/OS/qvOSFilename.h"
#include "Base/String/qvStringCString.h"
#include "Base/String/qvStringIString.h"
#include "Base/qvBase.h"

namespace qvOS {

/// The bytes under which the system knows `path`. On POSIX systems:
/// - Either separator separates, and drive `C:` is the root, so that "C:\tmp\x", "\tmp\x", "/tmp/x" and
///   "\\?\C:\tmp\x" are all "/tmp/x". A drive with no separator after it, as in "C:x", counts from the
///   current directory.
/// - All else is UTF-8, with the lone surrogates of `fromNativePath` as the bytes they stand for.
/// - Any other drive, a network or device name, and a path with a zero unit or with any other lone surrogate
///   name nothing here. They give an empty text, which no file has, so the system answers that there is no
///   such file.
///
/// On Windows the result is the path itself in UTF-8, where a lone surrogate has the three bytes that UTF-8
/// would give to its code. Only a path with a zero unit gives an empty text.
[[nodiscard]] QV_BASE_API qvString::CString toNativePath(const qvString::IString& path);
/// The same of the name.
[[nodiscard]] inline qvString::CString toNativePath(const Filename& file) {
  return toNativePath(file.name());
}

/// The wide path of a file that the system knows as `path`. `toNativePath` gives the same bytes again, on
/// POSIX systems whatever they are. There an absolute path begins with "C:\", a byte that is no part of UTF-8
/// becomes the lone surrogate U+DC00 plus the byte, a backslash U+DC5C, and a colon in the second place of a
/// name U+DC3A, so that no name is mistaken for a directory or a drive.
[[nodiscard]] QV_BASE_API qvString::IString fromNativePath(const qvString::CString& path);

} // namespace qvOS
