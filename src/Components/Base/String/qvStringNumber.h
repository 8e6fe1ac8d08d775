// Digits of numbers, for the formatter: what doesn't depend on the width of its characters. Private.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qvString {

/// Write the digits of `value` so that they end at `end`, and return the first; no digit for 0. At most 20
/// decimal, 22 octal (`bits` 3) or 16 hexadecimal (`bits` 4) digits.
char* decimalDigits(std::uint64_t value, char* end) noexcept;
char* binaryDigits(std::uint64_t value, unsigned int bits, bool capitals, char* end) noexcept;

/// A finite number without its sign, as `%f`, `%e` and `%g` print it in the calling thread's locale.
class FloatDigits {
public:
  /// False where only the C runtime can tell: for great precisions, for other letters, if numbers aren't
  /// rounded to the nearest, or if the decimal point isn't an ASCII character. `magnitude` isn't negative.
  [[nodiscard]] bool make(double magnitude, char letter, int precision) noexcept;

  [[nodiscard]] const char* begin() const noexcept { return begin_; }
  [[nodiscard]] std::size_t size() const noexcept { return static_cast<std::size_t>(end_ - begin_); }

private:
  static constexpr int kMostPrecision = 60;
  static constexpr int kMostWhole = 309;

  bool makeFixed(double magnitude, int precision, char point) noexcept;
  bool makeAny(double magnitude, char letter, int precision, char point) noexcept;

  char digits_[kMostWhole + kMostPrecision + 8];
  const char* begin_;
  const char* end_;
};

} // namespace qvString
