// From an address to its number: the hash table under the reference map.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

/// An open-addressing hash of addresses that never forgets one. Objects that lie near each other are mostly
/// written one after the other, so the first place to look keeps their neighbourhood: a group of four
/// entries, one cache line, for each 64 bytes of address space, wrapped round the table. Where that group is
/// full the search goes on from a scattered place. Without removal, the first empty entry ends every search.
class ioAddressTable {
public:
  /// The number of `address`, which is not null; 0 if it has none.
  [[nodiscard]] int find(const void* address) const noexcept { return slots_ ? slot(address)->number : 0; }
  /// Sets the number of `address`, which is not null; the number is not 0.
  void set(const void* address, int number);

private:
  struct Entry {
    const void* address;
    int number;
  };
  static constexpr int groupSize = 4;
  static_assert(sizeof(Entry) * groupSize <= 64);

  struct Free {
    void operator()(void* block) const noexcept { std::free(block); }
  };

  [[nodiscard]] Entry* slot(const void* address) const noexcept;
  void grow();

  std::unique_ptr<void, Free> block_;
  Entry* slots_ = nullptr; // in the block, on a cache line
  std::size_t used_ = 0;
  int groupBits_ = 0; // there are 2^groupBits_ groups
};

/// The entry of `address`, or the empty one where it belongs. There is always an empty entry.
inline ioAddressTable::Entry* ioAddressTable::slot(const void* address) const noexcept {
  const std::uint64_t line = reinterpret_cast<std::uintptr_t>(address) >> 6;
  const std::uint64_t mask = (std::uint64_t(1) << groupBits_) - 1;
  // Each further stretch of addresses that wraps round lands at another offset, so that a stride of some
  // power of two does not crowd a few groups.
  std::uint64_t group = line + (line >> groupBits_) * 0x9E3779B1u;
  std::uint64_t step = 0;
  for (;; group += step) {
    Entry* const entries = slots_ + (group & mask) * groupSize;
    for (int i = 0; i < groupSize; ++i)
      if (entries[i].address == address || !entries[i].address) return entries + i;
    // Full groups stand side by side: the next look is far away, and an odd step reaches every group.
    if (step == 0) step = (reinterpret_cast<std::uintptr_t>(address) * 0x9E3779B97F4A7C15u) >> 24 | 1;
  }
}
