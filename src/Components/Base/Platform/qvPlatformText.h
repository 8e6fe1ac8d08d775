// The one UTF-8 routine of the library, on counted spans, and the few facts about the C runtime's locale that
// standard C offers no thread-safe way to learn.
#pragma once

#include "Base/qvBase.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace qvPlatform {

/// What a conversion found.
struct Converted {
  std::size_t count = 0; ///< Characters of the whole converted text, written or not; no terminator.
  bool valid = true;     ///< False where a replacement stands for something in the source.
};

/// UTF-8 to UTF-16. Each maximal ill-formed piece (overlong forms, surrogates and codes above 10FFFF count as
/// such) becomes one U+FFFD. A byte order mark is a character like any other; so is NUL.
/// A null `destination` only counts. Otherwise at most `room` units are written, no terminator; where the
/// count exceeds `room`, what was written is unspecified. `room >= size` always suffices, and saves a
/// counting pass.
Converted decodeUtf8(const char* source, std::size_t size, qv::WChar* destination, std::size_t room) noexcept;

/// UTF-16 to UTF-8, a lone surrogate as U+FFFD (and then not valid). Otherwise as `decodeUtf8`.
/// `room >= 3 * size` always suffices, and saves a counting pass.
Converted encodeUtf8(const qv::WChar* source, std::size_t size, char* destination, std::size_t room) noexcept;

/// A native file name, which may hold any bytes, to UTF-16 without loss: as `decodeUtf8`, but each byte of an
/// ill-formed piece becomes the lone surrogate U+DC00 + byte (so U+DC80 to U+DCFF). Always valid.
Converted decodeNative(const char* source, std::size_t size, qv::WChar* destination,
                       std::size_t room) noexcept;

/// The way back: as `encodeUtf8`, but a lone surrogate U+DC80 to U+DCFF, U+DC5C (backslash) or U+DC3A (colon)
/// becomes its low byte. Any other lone surrogate becomes U+FFFD, and the result is not valid.
Converted encodeNative(const qv::WChar* source, std::size_t size, char* destination,
                       std::size_t room) noexcept;

/// The same four for callers that hold strings; `valid` may be null.
[[nodiscard]] std::basic_string<qv::WChar> decodeUtf8(std::string_view source, bool* valid = nullptr);
[[nodiscard]] std::string encodeUtf8(std::basic_string_view<qv::WChar> source, bool* valid = nullptr);
[[nodiscard]] std::basic_string<qv::WChar> decodeNative(std::string_view source);
[[nodiscard]] std::string encodeNative(std::basic_string_view<qv::WChar> source, bool* valid = nullptr);

/// The decimal point that the C runtime prints in the calling thread's locale; lives as long as that locale.
[[nodiscard]] const char* decimalPoint() noexcept;

/// True where the encoding of the calling thread's locale is known to use every byte below 128 for its ASCII
/// character and for nothing else.
[[nodiscard]] bool localeKeepsAscii() noexcept;

} // namespace qvPlatform
