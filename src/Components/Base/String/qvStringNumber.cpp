#include "Base/String/qvStringNumber.h"

#include "Base/Platform/qvPlatformText.h"

#include <bit>
#include <cfenv>
#include <charconv>
#include <cstring>
#include <iterator>

namespace qvString {

namespace {

constexpr struct DigitPairs {
  char text[200]{};
  constexpr DigitPairs() {
    for (int i = 0; i < 100; ++i) {
      text[2 * i] = static_cast<char>('0' + i / 10);
      text[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
  }
} kDigitPairs;

constexpr std::uint64_t kPowersOfTen[] = {1,      10,      100,      1000,      10000,
                                          100000, 1000000, 10000000, 100000000, 1000000000};
constexpr int kMostFixedPrecision = static_cast<int>(std::size(kPowersOfTen)) - 1;

/// `fraction`, below 1, times 10 to the power of `precision`, as a whole number rounded exactly: to the
/// nearest, and from the middle to the even one; with no digits behind the point, `wholeIsOdd` says which
/// that is.
std::uint64_t scaledFraction(double fraction, int precision, bool wholeIsOdd) noexcept {
  const std::uint64_t bits = std::bit_cast<std::uint64_t>(fraction);
  // The fraction is significand / 2^shift, with 53 bits and a shift of at least 53.
  const std::uint64_t significand = (bits & 0xFFFFFFFFFFFFFu) | 0x10000000000000u;
  const int shift = 1075 - static_cast<int>(bits >> 52);
  if (shift > 95) // also for subnormal numbers: far below one half, even times 10^9
    return 0;
  // The product has up to 83 bits: high * 2^32 + low.
  const std::uint64_t power = kPowersOfTen[precision];
  const std::uint64_t lower = (significand & 0xFFFFFFFFu) * power;
  const std::uint64_t high = (significand >> 32) * power + (lower >> 32);
  const std::uint64_t low = lower & 0xFFFFFFFFu;
  const std::uint64_t unit = std::uint64_t{1} << (shift - 32);
  const std::uint64_t quotient = high / unit;
  const std::uint64_t rest = high % unit;
  const bool odd = precision ? quotient & 1 : wholeIsOdd;
  const bool up = rest > unit / 2 || (rest == unit / 2 && (low || odd));
  return quotient + up;
}

/// The decimal point where it is one ASCII character, or 0.
char asciiPoint() noexcept {
  const char* const point = qvPlatform::decimalPoint();
  return static_cast<unsigned char>(point[0]) < 0x80 && point[0] && !point[1] ? point[0] : '\0';
}

} // namespace

char* decimalDigits(std::uint64_t value, char* end) noexcept {
  while (value >= 100) {
    end -= 2;
    std::memcpy(end, kDigitPairs.text + 2 * (value % 100), 2);
    value /= 100;
  }
  if (value >= 10) {
    end -= 2;
    std::memcpy(end, kDigitPairs.text + 2 * value, 2);
  } else if (value) {
    *--end = static_cast<char>('0' + value);
  }
  return end;
}

char* binaryDigits(std::uint64_t value, unsigned int bits, bool capitals, char* end) noexcept {
  const char* const alphabet = capitals ? "0123456789ABCDEF" : "0123456789abcdef";
  for (; value; value >>= bits) *--end = alphabet[value & ((1u << bits) - 1)];
  return end;
}

bool FloatDigits::make(double magnitude, char letter, int precision) noexcept {
  if (precision < 0) precision = 6;
  if (precision > kMostPrecision || std::fegetround() != FE_TONEAREST) return false;
  const char point = asciiPoint();
  if (!point) return false;
  if (letter == 'f' && precision <= kMostFixedPrecision && magnitude < 0x1p63)
    return makeFixed(magnitude, precision, point);
  return makeAny(magnitude, letter, precision, point);
}

bool FloatDigits::makeFixed(double magnitude, int precision, char point) noexcept {
  std::uint64_t whole = static_cast<std::uint64_t>(magnitude);
  std::uint64_t fraction = scaledFraction(magnitude - static_cast<double>(whole), precision, whole & 1);
  if (fraction >= kPowersOfTen[precision]) {
    fraction -= kPowersOfTen[precision];
    ++whole;
  }
  char* p = digits_ + sizeof digits_;
  end_ = p;
  if (precision) {
    char* const first = p - precision;
    p = decimalDigits(fraction, p);
    while (p != first) *--p = '0';
    *--p = point;
  }
  if (whole)
    p = decimalDigits(whole, p);
  else
    *--p = '0';
  begin_ = p;
  return true;
}

/// `std::to_chars` is defined to make the runtime's digits.
bool FloatDigits::makeAny(double magnitude, char letter, int precision, char point) noexcept {
  std::chars_format form = std::chars_format::fixed;
  if (letter == 'e')
    form = std::chars_format::scientific;
  else if (letter == 'g')
    form = std::chars_format::general;
  else if (letter != 'f')
    return false;
  const auto made = std::to_chars(digits_, digits_ + sizeof digits_, magnitude, form, precision);
  if (made.ec != std::errc()) return false;
  begin_ = digits_;
  end_ = made.ptr;
  if (point != '.') {
    void* const found = std::memchr(digits_, '.', size());
    if (found) *static_cast<char*>(found) = point;
  }
  return true;
}

} // namespace qvString
