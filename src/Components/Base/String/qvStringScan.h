// Searching and comparing counted text, and the checks of growth, for both string classes. Private. Positions
// are those of the standard's views; the scans of wide text are written in blocks that the compiler
// vectorises.
#pragma once

#include "Base/String/qvStringBase.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

extern template class std::basic_string<qv::WChar>;

namespace qvString {

template <class C>
using View = std::basic_string_view<C>;

inline constexpr std::size_t nowhere = std::string_view::npos;
inline constexpr std::size_t maxLength = 0xFFFFFFFEu;

/// A terminated text; null is empty.
template <class C>
[[nodiscard]] View<C> viewOf(const C* chars) noexcept {
  return chars ? View<C>(chars) : View<C>();
}

/// The text up to its first NUL.
template <class C>
[[nodiscard]] View<C> terminated(const std::basic_string<C>& text) noexcept {
  return View<C>(text.c_str());
}

/// A position as the string classes tell it.
[[nodiscard]] inline unsigned int position(std::size_t pos) noexcept {
  return pos == nowhere ? String::npos : static_cast<unsigned int>(pos);
}

[[nodiscard]] inline std::size_t findChar(View<char> text, char c, std::size_t pos) noexcept {
  return text.find(c, pos);
}

[[nodiscard]] inline std::size_t findChar(View<qv::WChar> text, qv::WChar c, std::size_t pos) noexcept {
  constexpr std::size_t block = 16;
  while (pos < text.size() && text.size() - pos >= block) {
    std::uint16_t hits = 0;
    for (std::size_t i = 0; i < block; ++i) hits |= static_cast<std::uint16_t>(-(text[pos + i] == c));
    if (hits) break;
    pos += block;
  }
  for (; pos < text.size(); ++pos)
    if (text[pos] == c) return pos;
  return nowhere;
}

/// True if the two stretches of `count` characters are alike.
template <class C>
[[nodiscard]] bool equalChars(const C* a, const C* b, std::size_t count) noexcept {
  return count == 0 || std::memcmp(a, b, count * sizeof(C)) == 0;
}

/// As the standard's `find`, except that an empty needle is found nowhere.
template <class C>
[[nodiscard]] std::size_t findText(View<C> text, View<C> needle, std::size_t pos) noexcept {
  if (needle.empty() || text.size() < needle.size()) return nowhere;
  const View<C> starts = text.substr(0, text.size() - needle.size() + 1);
  while ((pos = findChar(starts, needle[0], pos)) != nowhere) {
    if (equalChars(text.data() + pos, needle.data(), needle.size())) return pos;
    ++pos;
  }
  return nowhere;
}

/// As the standard's `rfind`, except that an empty needle is found nowhere.
template <class C>
[[nodiscard]] std::size_t rfindText(View<C> text, View<C> needle, std::size_t pos) noexcept {
  if (needle.empty() || text.size() < needle.size()) return nowhere;
  for (pos = std::min(pos, text.size() - needle.size());; --pos) {
    if (text[pos] == needle[0] && equalChars(text.data() + pos, needle.data(), needle.size())) return pos;
    if (pos == 0) return nowhere;
  }
}

template <class C, class Predicate>
[[nodiscard]] std::size_t findIf(View<C> text, Predicate predicate, std::size_t pos) {
  for (; pos < text.size(); ++pos)
    if (predicate(text[pos])) return pos;
  return nowhere;
}

template <class C, class Predicate>
[[nodiscard]] std::size_t rfindIf(View<C> text, Predicate predicate, std::size_t pos) {
  for (std::size_t end = pos < text.size() ? pos + 1 : text.size(); end > 0; --end)
    if (predicate(text[end - 1])) return end - 1;
  return nowhere;
}

/// Ordinal order of unsigned characters.
template <class C>
[[nodiscard]] int compareText(View<C> a, View<C> b) noexcept {
  constexpr std::size_t block = 8 / sizeof(C);
  const std::size_t common = std::min(a.size(), b.size());
  std::size_t pos = 0;
  while (common - pos >= block && equalChars(a.data() + pos, b.data() + pos, block)) pos += block;
  for (; pos < common; ++pos) {
    using Unsigned = std::make_unsigned_t<C>;
    if (a[pos] != b[pos]) return static_cast<Unsigned>(a[pos]) < static_cast<Unsigned>(b[pos]) ? -1 : 1;
  }
  return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

/// As `compareText` of texts of which every character went through `lower`.
template <class C, class Lower>
[[nodiscard]] int compareLowered(View<C> a, View<C> b, Lower lower) {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t pos = 0; pos < common; ++pos) {
    if (a[pos] == b[pos]) continue;
    const C left = lower(a[pos]), right = lower(b[pos]);
    if (left != right) return compareText(View<C>(&left, 1), View<C>(&right, 1));
  }
  return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

/// True if every character is below 128; eight bytes at a time.
template <class C>
[[nodiscard]] bool allAscii(View<C> text) noexcept {
  constexpr std::size_t block = 8 / sizeof(C);
  constexpr std::uint64_t above = sizeof(C) == 1 ? 0x8080808080808080u : 0xFF80FF80FF80FF80u;
  std::uint64_t bits = 0;
  std::size_t pos = 0;
  for (; text.size() - pos >= block; pos += block) {
    std::uint64_t word;
    std::memcpy(&word, text.data() + pos, sizeof word);
    bits |= word;
  }
  for (; pos < text.size(); ++pos) bits |= static_cast<std::make_unsigned_t<C>>(text[pos]) >> 7 ? above : 0;
  return (bits & above) == 0;
}

/// Throws where a text of `kept` and `added` characters would be longer than a string can be.
inline void checkLength(std::size_t kept, std::size_t added) {
  if (kept > maxLength || added > maxLength - kept) throw std::length_error("qvString: too long");
}

/// Puts `with` in the place of `count` characters from `pos`; it may be a part of `text`.
template <class C>
void replaceIn(std::basic_string<C>& text, std::size_t pos, std::size_t count, View<C> with) {
  const std::size_t gone = pos < text.size() ? std::min(count, text.size() - pos) : 0;
  checkLength(text.size() - gone, with.size());
  text.replace(pos, count, with.data(), with.size());
}

template <class C>
void appendChar(std::basic_string<C>& text, C c) {
  checkLength(text.size(), 1);
  text.push_back(c);
}

/// Removes what `gone` accepts from the start, or from the end.
template <class C, class Predicate>
void stripIn(std::basic_string<C>& text, Predicate gone) {
  const std::size_t kept = findIf(
      View<C>(text), [&](C c) { return !gone(c); }, 0);
  text.erase(0, kept);
}
template <class C, class Predicate>
void rstripIn(std::basic_string<C>& text, Predicate gone) {
  const std::size_t kept = rfindIf(
      View<C>(text), [&](C c) { return !gone(c); }, nowhere);
  text.erase(kept == nowhere ? 0 : kept + 1);
}

/// A terminated copy from the C heap.
template <class C>
[[nodiscard]] C* heapCopy(View<C> text) {
  C* const copy = static_cast<C*>(std::malloc((text.size() + 1) * sizeof(C)));
  if (!copy) throw std::bad_alloc();
  if (!text.empty()) std::memcpy(copy, text.data(), text.size() * sizeof(C));
  copy[text.size()] = C();
  return copy;
}

} // namespace qvString
