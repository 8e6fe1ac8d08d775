// The format operations of the two string classes, over the library's one formatter. Private.
#pragma once

#include "Base/String/qvStringBase.h"
#include "Base/String/qvStringFormatEngine.h"
#include "Base/String/qvStringScratch.h"

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <string>

namespace qvString {

/// The size of the buffer that formatting begins with, where the caller names none.
inline constexpr unsigned int formatBufferSize = 256;

/// Replaces `out` by the formatted text, up to its first NUL. An empty text counts as a failure and leaves
/// `out` as it was, as does one that is longer than an int can tell.
/// @return the new length of `out`, or `npos`.
template <class C>
unsigned int formatInto(std::basic_string<C>& out, unsigned int bufferSize, const C* format, va_list args) {
  Scratch<C> first(std::max(bufferSize, 1u));
  const std::size_t length = formatText(first.data(), first.size(), format, args);
  if (length == 0 || length >= INT_MAX) return String::npos;
  if (length < first.size()) {
    out.assign(first.data());
  } else {
    Scratch<C> second(length + 1);
    formatText(second.data(), second.size(), format, args);
    out.assign(second.data());
  }
  return static_cast<unsigned int>(out.size());
}

} // namespace qvString
