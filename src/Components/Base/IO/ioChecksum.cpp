#include "Base/IO/ioChecksum.h"

#include <bit>
#include <cstring>

namespace {

/// The sum of `size` bytes as 16-bit words, without folding. 2^16 is 1 modulo 65535, so the words may be
/// taken two and four at a time.
std::uint64_t wordSum(const unsigned char* bytes, std::size_t size) noexcept {
  std::uint64_t lanes[4] = {};
  for (; size >= 32; size -= 32, bytes += 32) {
    std::uint64_t words[4];
    std::memcpy(words, bytes, sizeof words);
    for (int i = 0; i < 4; ++i) lanes[i] += (words[i] & 0xFFFFFFFFU) + (words[i] >> 32);
  }
  std::uint64_t total = lanes[0] + lanes[1] + lanes[2] + lanes[3];
  for (; size >= 2; size -= 2, bytes += 2) {
    std::uint16_t word;
    std::memcpy(&word, bytes, sizeof word);
    total += word;
  }
  return total;
}

/// Folds the carries in. A sum that is not 0 never becomes 0.
std::uint16_t folded(std::uint64_t total) noexcept {
  while (total >> 16) total = (total & 0xFFFFU) + (total >> 16);
  return static_cast<std::uint16_t>(total);
}

} // namespace

void ioChecksum::add(const void* data, std::size_t size) noexcept {
  const auto* bytes = static_cast<const unsigned char*>(data);
  const std::uint64_t words = wordSum(bytes, size);
  const std::uint32_t odd = size % 2 ? bytes[size - 1] : 0U;
  sum_ = folded(sum_ + words + odd);
  otherOrderSum_ = folded(otherOrderSum_ + words + (odd << 8));
}
