// One directive of a format, from its `%` to its letter, the scanner that reads it, and the argument that it
// takes. Private to the formatter.
#pragma once

#include "Base/String/qvStringFormatEngine.h"

#include <array>
#include <cstddef>
#include <type_traits>

namespace qvString {

enum class Size : unsigned char {
  None,
  Char,
  Short,
  Long,
  LongLong,
  LongDouble,
  Int32,
  Int64,
  Max,
  Pointer,
  Wide
};

template <class C>
struct Directive {
  bool left = false;
  bool plus = false;
  bool blank = false;
  bool alternate = false;
  bool zero = false;
  bool starWidth = false;
  bool starPrecision = false;
  Size size = Size::None;
  char letter = 0; ///< 0 where the format ends first, or where there is no ASCII character.
  int width = 0;
  int precision = -1;     ///< -1 for none.
  const C* end = nullptr; ///< Behind the letter; where there is none, at the character in its place.
};

/// A run of digits; a number out of range counts as the greatest.
template <class C>
int scanNumber(const C*& p) noexcept {
  constexpr int kGreatest = 0x7FFFFFFF;
  int number = 0;
  for (; *p >= '0' && *p <= '9'; ++p) {
    const int digit = static_cast<int>(*p) - '0';
    number = number > (kGreatest - digit) / 10 ? kGreatest : number * 10 + digit;
  }
  return number;
}

template <class C>
bool scanFlag(const C* p, Directive<C>& directive) noexcept {
  switch (*p) {
  case '-':
    return directive.left = true;
  case '+':
    return directive.plus = true;
  case ' ':
    return directive.blank = true;
  case '#':
    return directive.alternate = true;
  case '0':
    return directive.zero = true;
  default:
    return false;
  }
}

template <class C>
Size scanSize(const C*& p) noexcept {
  switch (*p) {
  case 'h':
    if (p[1] != 'h') return ++p, Size::Short;
    return p += 2, Size::Char;
  case 'l':
    if (p[1] != 'l') return ++p, Size::Long;
    return p += 2, Size::LongLong;
  case 'L':
    return ++p, Size::LongDouble;
  case 'j':
    return ++p, Size::Max;
  case 'w':
    return ++p, Size::Wide;
  case 'z':
  case 't':
    return ++p, Size::Pointer;
  case 'I':
    if (p[1] == '6' && p[2] == '4') return p += 3, Size::Int64;
    if (p[1] == '3' && p[2] == '2') return p += 3, Size::Int32;
    return ++p, Size::Pointer;
  default:
    return Size::None;
  }
}

/// Flags, width and precision.
template <class C>
void scanNumbers(const C*& p, Directive<C>& directive) noexcept {
  while (scanFlag(p, directive)) ++p;
  if (*p == '*') {
    directive.starWidth = true;
    ++p;
  } else {
    directive.width = scanNumber(p);
  }
  if (*p != '.') return;
  ++p;
  if (*p == '*') {
    directive.starPrecision = true;
    ++p;
  } else {
    directive.precision = scanNumber(p);
  }
}

/// Reads the directive whose `%` stands before `p`.
template <class C>
Directive<C> scanDirective(const C* p) noexcept {
  Directive<C> directive;
  if (*p < 'A') scanNumbers(p, directive); // there are no letters among them
  directive.size = scanSize(p);
  const bool ascii = *p > 0 && *p < 0x80;
  // A percent sign in the place of the letter begins a directive of its own.
  directive.letter = ascii && *p != '%' ? static_cast<char>(*p) : '\0';
  directive.end = *p && *p != '%' ? p + 1 : p;
  return directive;
}

/// What a directive prints.
enum class Kind : unsigned char { Unknown, Signed, Unsigned, Floating, Pointer, String, Character };

/// The kind that each letter stands for, if its size is one of that kind.
inline constexpr auto kindsOfLetters = [] {
  std::array<Kind, 128> kinds{};
  const auto set = [&kinds](const char* letters, Kind kind) {
    for (; *letters; ++letters) kinds[static_cast<std::size_t>(*letters)] = kind;
  };
  set("di", Kind::Signed);
  set("uoxX", Kind::Unsigned);
  set("aAeEfFgG", Kind::Floating);
  set("p", Kind::Pointer);
  set("sS", Kind::String);
  set("cC", Kind::Character);
  return kinds;
}();

/// For each kind the sizes that it may have, a bit for each.
inline constexpr auto sizesOfKinds = [] {
  const auto bits = [](auto... sizes) { return ((1u << static_cast<unsigned>(sizes)) | ...); };
  const unsigned all = ~0u, text = bits(Size::None, Size::Short, Size::Long, Size::Wide);
  std::array<unsigned, 7> sizes{};
  const auto set = [&sizes](Kind kind, unsigned which) { sizes[static_cast<std::size_t>(kind)] = which; };
  set(Kind::Unknown, all);
  set(Kind::Signed, all & ~bits(Size::Wide));
  set(Kind::Unsigned, all & ~bits(Size::Wide));
  set(Kind::Floating, bits(Size::None, Size::Long, Size::LongDouble));
  set(Kind::Pointer, bits(Size::None));
  set(Kind::String, text);
  set(Kind::Character, text);
  return sizes;
}();

/// `Unknown` for what is printed as it stands and takes no argument.
template <class C>
Kind kindOf(const Directive<C>& directive) noexcept {
  const Kind kind = kindsOfLetters[static_cast<std::size_t>(directive.letter)];
  const unsigned sizes = sizesOfKinds[static_cast<std::size_t>(kind)];
  return sizes >> static_cast<unsigned>(directive.size) & 1 ? kind : Kind::Unknown;
}

/// Whether a string or a character is a wide one. The runtime's reading of the letters is the width of the
/// format for the small one and the other width for the capital; a plain directive in a wide format has it
/// exchanged.
template <class C>
bool takesWide(const Directive<C>& directive, const C* afterPercent) noexcept {
  if (directive.size != Size::None) return directive.size != Size::Short;
  const bool capital = directive.letter == 'S' || directive.letter == 'C';
  if constexpr (std::is_same_v<C, char>)
    return capital;
  else
    return capital == (plainLetter(afterPercent) + 1 == directive.end);
}

} // namespace qvString
