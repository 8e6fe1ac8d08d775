// Patterns by which a test knows blocks of memory again, in some of their bytes only, so that large ones cost
// little.
#pragma once

#include <cstdint>

namespace qvTest {

/// Calls `visit(byte, value)` for the first and the last byte of the block and some between them.
template <class Byte, class Visit>
void forPattern(Byte* block, std::uint64_t size, std::uint64_t seed, Visit visit) {
  for (std::uint64_t part = 0; part < 8; ++part) {
    const std::uint64_t at = part == 7 ? size - 1 : (size - 1) / 7 * part;
    visit(block[at], static_cast<char>(seed * 31 + at * 7 + 1));
  }
}
inline void writePattern(void* block, std::uint64_t size, std::uint64_t seed) {
  forPattern(static_cast<char*>(block), size, seed, [](char& byte, char value) { byte = value; });
}
[[nodiscard]] inline bool hasPattern(const void* block, std::uint64_t size, std::uint64_t seed) {
  bool same = true;
  forPattern(static_cast<const char*>(block), size, seed,
             [&](char byte, char value) { same = same && byte == value; });
  return same;
}

} // namespace qvTest
