#include "Base/String/qvStringCharacter.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cwctype>
#include <iterator>

namespace qvString {

namespace {

int code(char c) noexcept { return static_cast<unsigned char>(c); }
std::wint_t code(qv::WChar c) noexcept { return static_cast<std::wint_t>(c); }

qv::WChar mapped(std::uint32_t to, qv::WChar from) noexcept {
  return to <= 0xFFFF ? static_cast<qv::WChar>(to) : from;
}

struct Range {
  unsigned short first;
  unsigned short last;
};

/// Ascending, neighbours joined.
constexpr Range kLetterModifiers[] = {
    {0x2103, 0x2103}, {0x2116, 0x2116}, {0x2121, 0x2121}, {0x2190, 0x2193}, {0x21D2, 0x21D2},
    {0x21D4, 0x21D4}, {0x2200, 0x2200}, {0x2202, 0x2203}, {0x2207, 0x2208}, {0x220B, 0x220B},
    {0x2211, 0x2211}, {0x221A, 0x221A}, {0x221D, 0x2220}, {0x2225, 0x2225}, {0x2227, 0x222C},
    {0x222E, 0x222E}, {0x2234, 0x2235}, {0x223D, 0x223D}, {0x2252, 0x2252}, {0x2260, 0x2261},
    {0x2266, 0x2267}, {0x226A, 0x226B}, {0x2282, 0x2283}, {0x2286, 0x2287}, {0x22A5, 0x22A5},
    {0x22BF, 0x22BF}, {0x2312, 0x2312}, {0x2460, 0x2473}, {0x2500, 0x2503}, {0x250C, 0x250C},
    {0x250F, 0x2510}, {0x2513, 0x2514}, {0x2517, 0x2518}, {0x251B, 0x251D}, {0x2520, 0x2520},
    {0x2523, 0x2525}, {0x2528, 0x2528}, {0x252B, 0x252C}, {0x252F, 0x2530}, {0x2533, 0x2534},
    {0x2537, 0x2538}, {0x253B, 0x253C}, {0x253F, 0x253F}, {0x2542, 0x2542}, {0x254B, 0x254B},
    {0x25A0, 0x25A1}, {0x25B2, 0x25B3}, {0x25BC, 0x25BD}, {0x25C6, 0x25C7}, {0x25CB, 0x25CB},
    {0x25CE, 0x25CF}, {0x25EF, 0x25EF}, {0x2605, 0x2606}, {0x2640, 0x2640}, {0x2642, 0x2642},
    {0x266A, 0x266A}, {0x266D, 0x266D}, {0x266F, 0x266F}, {0x3005, 0x3005}, {0x3012, 0x3013},
    {0x309B, 0x309E}, {0x30FC, 0x30FE}, {0x3231, 0x3232}, {0x3239, 0x3239}, {0x32A4, 0x32A8},
    {0x3303, 0x3303}, {0x330D, 0x330D}, {0x3314, 0x3314}, {0x3318, 0x3318}, {0x3322, 0x3323},
    {0x3326, 0x3327}, {0x332B, 0x332B}, {0x3336, 0x3336}, {0x333B, 0x333B}, {0x3349, 0x334A},
    {0x334D, 0x334D}, {0x3351, 0x3351}, {0x3357, 0x3357}, {0x337B, 0x337E}, {0x338E, 0x338F},
    {0x339C, 0x339E}, {0x33A1, 0x33A1}, {0x33C4, 0x33C4}, {0x33CD, 0x33CD}, {0xFF04, 0xFF04},
    {0xFF0B, 0xFF0B}, {0xFF1C, 0xFF1E}, {0xFF3E, 0xFF3E}, {0xFF40, 0xFF40}, {0xFF5C, 0xFF5C},
    {0xFF5E, 0xFF5E}, {0xFFE0, 0xFFE5},
};

constexpr int numLetterModifiers() {
  int count = 0;
  for (const Range& range : kLetterModifiers) count += range.last - range.first + 1;
  return count;
}
static_assert(numLetterModifiers() == 178);

} // namespace

bool isAscii(char c) noexcept { return code(c) < 128; }
bool isAscii(qv::WChar c) noexcept { return code(c) < 128; }
bool isAscii(const char* text) noexcept {
  while (text && *text && isAscii(*text)) ++text;
  return !text || !*text;
}

bool isUpper(char c) noexcept { return std::isupper(code(c)) != 0; }
bool isUpper(qv::WChar c) noexcept { return std::iswupper(code(c)) != 0; }
bool isLower(char c) noexcept { return std::islower(code(c)) != 0; }
bool isLower(qv::WChar c) noexcept { return std::iswlower(code(c)) != 0; }
bool isDigit(char c) noexcept { return std::isdigit(code(c)) != 0; }
bool isDigit(qv::WChar c) noexcept { return std::iswdigit(code(c)) != 0; }
bool isXDigit(char c) noexcept { return std::isxdigit(code(c)) != 0; }
bool isXDigit(qv::WChar c) noexcept { return std::iswxdigit(code(c)) != 0; }
bool isSpace(char c) noexcept { return std::isspace(code(c)) != 0; }
bool isSpace(qv::WChar c) noexcept { return std::iswspace(code(c)) != 0; }
bool isCntrl(char c) noexcept { return std::iscntrl(code(c)) != 0; }
bool isCntrl(qv::WChar c) noexcept { return std::iswcntrl(code(c)) != 0; }

char toUpper(char c) noexcept { return static_cast<char>(std::toupper(code(c))); }
qv::WChar toUpper(qv::WChar c) noexcept { return mapped(std::towupper(code(c)), c); }
char toLower(char c) noexcept { return static_cast<char>(std::tolower(code(c))); }
qv::WChar toLower(qv::WChar c) noexcept { return mapped(std::towlower(code(c)), c); }

bool isNewLine(char c) noexcept { return (c == 10 || c == 13) && isCntrl(c); }
bool isNewLine(qv::WChar c) noexcept { return (c == 10 || c == 13) && isCntrl(c); }
bool isTab(char c) noexcept { return c == 9 && isCntrl(c); }
bool isTab(qv::WChar c) noexcept { return c == 9 && isCntrl(c); }

bool isLetterModifier(char) noexcept { return false; }
bool isLetterModifier(qv::WChar c) noexcept {
  const auto* range = std::lower_bound(std::begin(kLetterModifiers), std::end(kLetterModifiers), c,
                                       [](const Range& r, qv::WChar wanted) { return r.last < wanted; });
  return range != std::end(kLetterModifiers) && range->first <= c;
}

bool isAlnum(char c) noexcept { return std::isalnum(code(c)) != 0 || isLetterModifier(c); }
bool isAlnum(qv::WChar c) noexcept { return std::iswalnum(code(c)) != 0 || isLetterModifier(c); }
bool isGraph(char c) noexcept { return std::isgraph(code(c)) != 0 || isLetterModifier(c); }
bool isGraph(qv::WChar c) noexcept { return std::iswgraph(code(c)) != 0 || isLetterModifier(c); }
bool isPrint(char c) noexcept { return std::isprint(code(c)) != 0 || isLetterModifier(c); }
bool isPrint(qv::WChar c) noexcept {
  return !isTab(c) && (std::iswprint(code(c)) != 0 || isLetterModifier(c));
}
bool isAlpha(char c) noexcept { return isAlnum(c) && !isDigit(c); }
bool isAlpha(qv::WChar c) noexcept { return isAlnum(c) && !isDigit(c); }
bool isPunct(char c) noexcept { return std::ispunct(code(c)) != 0 && !isLetterModifier(c); }
bool isPunct(qv::WChar c) noexcept { return std::iswpunct(code(c)) != 0 && !isLetterModifier(c); }

} // namespace qvString
