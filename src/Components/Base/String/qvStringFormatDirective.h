// One directive of a format, from its `%` to its letter, and the scanner that reads it. Private to the
// formatter.
#pragma once

#include "Base/String/qvStringFormatEngine.h"

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

} // namespace qvString
