#include "describe.h"

#include "printable.h"

#include <charconv>
#include <cmath>

std::string describe(const FileHeader& header) {
  const std::string order = header.littleEndian ? "little-endian" : "big-endian";
  const std::string form = header.isText() ? "text" : "binary";
  return order + ", " + form + (header.isTagged() ? " with type tags" : "") + " (method " +
         std::to_string(header.method) + ")";
}

std::string typeText(const FileHeader& header, int id) {
  const std::string name = printable(header.nameOf(id));
  return name.empty() ? "type " + std::to_string(id) : name;
}

std::string scalarText(const Scalar& scalar, std::string (*quote)(std::string_view)) {
  if (const auto* const text = std::get_if<std::string_view>(&scalar)) return quote(*text);
  if (const auto* const yes = std::get_if<bool>(&scalar)) return *yes ? "true" : "false";
  char digits[32] = {};
  const bool isFinite = std::visit(
      [&](auto number) {
        using Number = decltype(number);
        if constexpr (std::is_arithmetic_v<Number> && !std::is_same_v<Number, bool>)
          std::to_chars(digits, digits + sizeof digits, number);
        if constexpr (std::is_floating_point_v<Number>) return std::isfinite(number);
        return true;
      },
      scalar);
  return isFinite ? digits : quote(digits);
}
