// Numbers as text in packet files: the same text on every machine and in every locale.
#pragma once

#include <charconv>
#include <cstdint>
#include <string_view>

namespace ioNumberText {

/// The most characters that a number takes.
inline constexpr int longest = 24;

/// Write a number at `to`, which has room for `longest` characters: integers in decimal, a float in the form
/// of the C locale's "%.7g", a double in that of "%.16g". Not terminated. @return the end.
template <class Integer>
[[nodiscard]] char* write(char* to, Integer value) noexcept {
  return std::to_chars(to, to + longest, value).ptr;
}
[[nodiscard]] char* write(char* to, float value) noexcept;
[[nodiscard]] char* write(char* to, double value) noexcept;

/// Reads the decimal integer at the start of `text`, after blanks of any kind and a sign; 0 where there is
/// none. One out of range becomes the nearest that the type has, and where the type is unsigned and the
/// number is not too large, a negative one becomes its two's complement.
template <class Integer>
[[nodiscard]] Integer read(std::string_view text) noexcept;
extern template std::int32_t read(std::string_view) noexcept;
extern template std::uint32_t read(std::string_view) noexcept;
extern template std::int64_t read(std::string_view) noexcept;
extern template std::uint64_t read(std::string_view) noexcept;

/// Reads the number at the start of `text` in the same way, in any form that a C program writes in the C
/// locale: decimal, hexadecimal after "0x", "inf", "infinity" and "nan". Too large gives an infinity, too
/// small a zero.
template <>
[[nodiscard]] double read(std::string_view text) noexcept;
/// The double that stands there, rounded once more.
template <>
[[nodiscard]] float read(std::string_view text) noexcept;

} // namespace ioNumberText
