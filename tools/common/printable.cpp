#include "printable.h"

#include <cstdio>

std::string printable(const std::string& text) {
  const auto byteAt = [&](std::size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
  };
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const unsigned byte = byteAt(i);
    // Past ASCII, control characters are 0xC2 and a byte of 0x80 to 0x9F.
    const unsigned second = byte == 0xC2 ? byteAt(i + 1) : i > 0 && byteAt(i - 1) == 0xC2 ? byte : 0;
    const bool isControl = byte < 0x20 || byte == 0x7F || (second >= 0x80 && second < 0xA0);
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\x%02x", byte);
    out += isControl ? std::string(escape) : std::string(1, text[i]);
  }
  return out;
}
