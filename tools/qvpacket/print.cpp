#include "print.h"

#include "printable.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <type_traits>

namespace {

/// Takes the next few thousand bytes off `text`, and no part of a character.
std::string_view takePart(std::string_view& text) {
  constexpr std::size_t most = 4096;
  const auto isInside = [&](std::size_t at) {
    return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
  };
  std::size_t size = std::min(most, text.size());
  // A character has at most three bytes behind its first; more of them belong to none.
  std::size_t begin = size;
  while (isInside(begin) && size - begin < 3) --begin;
  if (!isInside(begin)) size = begin;
  const std::string_view part = text.substr(0, size);
  text.remove_prefix(size);
  return part;
}

void print(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stdout); }

void printQuoted(std::string_view text, Quote quote) {
  print("\"");
  while (!text.empty()) {
    const std::string part = quote(takePart(text));
    print(std::string_view(part).substr(1, part.size() - 2));
  }
  print("\"");
}

template <class Number>
void printNumber(Number number, Quote quote) {
  char digits[32];
  const std::string_view text(digits, std::to_chars(digits, digits + sizeof digits, number).ptr - digits);
  if constexpr (std::is_floating_point_v<Number>)
    if (!std::isfinite(number)) return printQuoted(text, quote);
  print(text);
}

} // namespace

void printScalar(const Scalar& scalar, Quote quote) {
  std::visit(
      [&](auto value) {
        if constexpr (std::is_same_v<decltype(value), std::string_view>)
          printQuoted(value, quote);
        else if constexpr (std::is_same_v<decltype(value), bool>)
          print(value ? "true" : "false");
        else
          printNumber(value, quote);
      },
      scalar);
}

void printText(std::string_view text) {
  while (!text.empty()) print(printable(takePart(text)));
}

void printHex(std::string_view bytes, const char* separator) {
  constexpr const char* digits = "0123456789abcdef";
  while (!bytes.empty()) {
    std::string hex;
    for (const char c : takePart(bytes)) {
      hex += separator;
      hex += digits[static_cast<unsigned char>(c) >> 4];
      hex += digits[static_cast<unsigned char>(c) & 15];
    }
    print(hex);
  }
}
