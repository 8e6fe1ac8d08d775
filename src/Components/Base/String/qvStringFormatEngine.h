// The one formatter of the library. Private: callers inside the library that own growing buffers use it to
// learn the length of a text in one call; everybody else uses qvStringFormat.h.
#pragma once

#include "Base/qvBase.h"

#include <cstddef>

namespace qvString {

/// Formats by the rules of qvStringFormat.h into `buffer` of `size` characters (null only if `size` is 0).
/// What doesn't fit is dropped; the text is terminated whenever `size` isn't 0. A null format is an empty
/// one. `args` stays as it was, so the caller can format it again into a bigger buffer.
/// @return the length of the whole text without the terminator, as if there had been room.
std::size_t formatText(char* buffer, std::size_t size, const char* format, va_list args) noexcept;
std::size_t formatText(qv::WChar* buffer, std::size_t size, const qv::WChar* format, va_list args) noexcept;

/// Reads a text as a format for which there are no arguments: `%%` is printed as `%`, and every other
/// directive as it stands.
/// @return the length of the whole text, as above.
std::size_t formatWithoutArguments(char* buffer, std::size_t size, const char* format) noexcept;

/// The letter of a directive that stands between `afterPercent` and it nothing but one `-`, a width, a dot
/// and a precision, all optional. Any other character where there is something else.
const qv::WChar* plainLetter(const qv::WChar* afterPercent) noexcept;

} // namespace qvString
