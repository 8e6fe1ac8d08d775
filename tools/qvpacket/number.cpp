#include "number.h"

#include <charconv>

namespace {

template <class Number>
std::optional<Number> parse(std::string_view word) {
  Number number{};
  const char* const end = word.data() + word.size();
  const auto [rest, error] = std::from_chars(word.data(), end, number);
  return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

} // namespace

std::uint64_t unsignedNumber(std::string_view bytes, bool littleEndian) {
  std::uint64_t number = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i)
    number = number << 8 | static_cast<unsigned char>(bytes[littleEndian ? bytes.size() - 1 - i : i]);
  return number;
}

std::int64_t signedNumber(std::string_view bytes, bool littleEndian) {
  const int unused = 64 - 8 * static_cast<int>(bytes.size());
  return static_cast<std::int64_t>(unsignedNumber(bytes, littleEndian) << unused) >> unused;
}

std::optional<std::int64_t> parseSigned(std::string_view word, int width) {
  const std::optional<std::int64_t> number = parse<std::int64_t>(word);
  const int bits = 8 * width - 1;
  const bool fits = number && (*number >> bits == 0 || *number >> bits == -1);
  return fits ? number : std::nullopt;
}

std::optional<std::uint64_t> parseUnsigned(std::string_view word, int width) {
  const std::optional<std::uint64_t> number = parse<std::uint64_t>(word);
  return number && (width == 8 || *number >> (8 * width) == 0) ? number : std::nullopt;
}

std::optional<double> parseDouble(std::string_view word) { return parse<double>(word); }
