// The running sum of the checksum filter: 16-bit words added with end-around carry.
#pragma once

#include <cstddef>
#include <cstdint>

/// Sums data as 16-bit words in the machine's byte order. An odd last byte of a piece enters as a value of
/// its own, which a machine of the other byte order adds to the other half of the word; so a second sum
/// stands for such a writer. Speed: several bytes a cycle, since the words are added 32 bits at a time and
/// the carries are folded in at the end, which gives the same residue modulo 65535.
class ioChecksum {
public:
  /// Adds one piece. Where it has an odd number of bytes, the next piece starts a new word.
  void add(const void* data, std::size_t size) noexcept;
  /// The sum as this machine writes it.
  [[nodiscard]] std::uint16_t sum() const noexcept { return sum_; }
  /// True where a writer of either byte order would have stored `stored`, as it was read by this machine.
  [[nodiscard]] bool matches(std::uint16_t stored) const noexcept {
    return stored == sum_ || stored == otherOrderSum_;
  }

private:
  std::uint16_t sum_ = 0;
  std::uint16_t otherOrderSum_ = 0;
};
