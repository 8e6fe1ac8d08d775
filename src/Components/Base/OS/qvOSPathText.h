// What file names and locators do alike to the separators of a path, for either kind of character. All of it
// is linear in the length of the text.
#pragma once

#include "Base/qvBase.h"

#include <string>
#include <string_view>

namespace qvOS {

/// Either kind of separator as `sep`. The other kind of '/' is the backslash; of everything else it is '/'.
template <class C>
std::basic_string<C> unifySeparators(std::basic_string_view<C> text, C sep) {
  std::basic_string<C> result(text);
  const C other = sep == C('/') ? C('\\') : C('/');
  for (C& c : result)
    if (c == other) c = sep;
  return result;
}

/// One `sep` for several in a row. The first character is not looked at, so that a leading pair survives and
/// a network name stays one.
template <class C>
std::basic_string<C> collapseSeparators(std::basic_string_view<C> text, C sep) {
  std::basic_string<C> result;
  result.reserve(text.size());
  for (const C c : text)
    if (c != sep || result.size() < 2 || result.back() != sep) result += c;
  return result;
}

/// The length without the separators at the end that carry no meaning. A drive's root keeps its separator,
/// and so does a network name that has one separator after its leading pair. The first character always
/// stays.
template <class C>
std::size_t lengthWithoutTrailing(std::basic_string_view<C> text, C sep) {
  if (text.size() == 3 && text[1] == C(':') && text[2] == sep) return text.size();
  if (text.size() > 2 && text[0] == sep && text[1] == sep && text.rfind(sep) == text.find(sep, 2))
    return text.size();
  std::size_t length = text.size();
  while (length > 1 && text[length - 1] == sep) --length;
  return length;
}

} // namespace qvOS
