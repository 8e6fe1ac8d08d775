#include "Base/IO/ioNumberText.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace {

constexpr std::string_view digits = "0123456789";
constexpr std::string_view hexDigits = "0123456789abcdefABCDEF";

/// As in the C locale.
bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool isOneOf(std::string_view set, char c) { return set.find(c) != set.npos; }
bool startsWithDigit(std::string_view text, std::string_view set) {
  return !text.empty() && isOneOf(set, text.front());
}

/// Takes the blanks and the sign before a number. @return whether it is negative.
bool takeSign(std::string_view& text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  return negative;
}

/// The magnitude of an integer that may be larger than any.
struct Magnitude {
  explicit Magnitude(std::string_view text) {
    if (std::from_chars(text.data(), text.data() + text.size(), value).ec == std::errc::result_out_of_range) {
      value = std::numeric_limits<std::uint64_t>::max();
      tooLarge = true;
    }
  }
  std::uint64_t value = 0;
  bool tooLarge = false;
};

/// The exponent behind a number's digits, as far as an int reaches; 0 where there is none.
int exponentAt(std::string_view text) {
  if (text.empty()) return 0;
  text.remove_prefix(1); // the letter
  if (text.starts_with('+')) text.remove_prefix(1);
  int exponent = 0;
  if (std::from_chars(text.data(), text.data() + text.size(), exponent).ec == std::errc::result_out_of_range)
    return text.starts_with('-') ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
  return exponent;
}

/// Whether `text`, the whole of a number that is out of a double's range, is too large, and not too small.
bool isLarge(std::string_view text, std::string_view digitSet, int exponentOfDigit) {
  std::int64_t places = 0; // of the first digit that is not 0, from the point to the left
  bool found = false, behindPoint = false;
  for (; !text.empty() && (isOneOf(digitSet, text.front()) || text.front() == '.'); text.remove_prefix(1)) {
    if (text.front() == '.') {
      behindPoint = true;
      continue;
    }
    found = found || text.front() != '0';
    if (found && !behindPoint) ++places;
    if (!found && behindPoint) --places;
  }
  return places * exponentOfDigit + exponentAt(text) > 0;
}

/// The number at the start of `text`, which has no sign, if there is one.
std::optional<double> magnitude(std::string_view text) {
  const bool hex = text.starts_with("0x") || text.starts_with("0X");
  std::string_view number = hex ? text.substr(2) : text;
  if (hex && !startsWithDigit(number.substr(number.starts_with('.')), hexDigits)) return 0; // before the x
  if (number.starts_with('-')) return {};                                                   // a second sign
  double value = 0;
  const auto format = hex ? std::chars_format::hex : std::chars_format::general;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value, format);
  if (error == std::errc::invalid_argument) return {};
  if (error != std::errc::result_out_of_range) return value;
  number = {number.data(), end}; // what stands behind it may look like its exponent
  const bool large = hex ? isLarge(number, hexDigits, 4) : isLarge(number, digits, 1);
  return large ? std::numeric_limits<double>::infinity() : 0;
}

} // namespace

namespace ioNumberText {

char* write(char* to, float value) noexcept {
  return std::to_chars(to, to + longest, static_cast<double>(value), std::chars_format::general, 7).ptr;
}

char* write(char* to, double value) noexcept {
  return std::to_chars(to, to + longest, value, std::chars_format::general, 16).ptr;
}

template <class Integer>
Integer read(std::string_view text) noexcept {
  constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<Integer>::max());
  const bool negative = takeSign(text);
  const Magnitude number(text);
  if (!std::numeric_limits<Integer>::is_signed && (number.tooLarge || number.value > most))
    return std::numeric_limits<Integer>::max();
  const std::uint64_t bits =
      std::numeric_limits<Integer>::is_signed ? std::min(number.value, most + negative) : number.value;
  return static_cast<Integer>(negative ? 0 - bits : bits);
}
template std::int32_t read(std::string_view) noexcept;
template std::uint32_t read(std::string_view) noexcept;
template std::int64_t read(std::string_view) noexcept;
template std::uint64_t read(std::string_view) noexcept;

template <>
double read(std::string_view text) noexcept {
  const bool negative = takeSign(text);
  const std::optional<double> value = magnitude(text);
  if (!value) return 0;
  return negative ? -*value : *value;
}

template <>
float read(std::string_view text) noexcept {
  return static_cast<float>(read<double>(text));
}

} // namespace ioNumberText
