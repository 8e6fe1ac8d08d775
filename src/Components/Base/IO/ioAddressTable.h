// From an address to its number: the hash table under the reference map.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

/// An open-addressing hash that finds the number of an address. It stores a number and 32 bits of the
/// address; the whole address stands in the caller's record of that number, and `addressOf(number)` gets it
/// there. An entry whose record has another address by now is dead, and goes when the table grows.
///
/// Objects that lie near each other are mostly written one after the other, so the first place to look keeps
/// their neighbourhood: a group of four entries for each 64 bytes of address space, wrapped round the table.
/// Where that group is full the search jumps about. The first empty entry ends every search.
class ioAddressTable {
public:
  /// The number of `address`, which is not null; 0 if it has none.
  template <class AddressOf>
  [[nodiscard]] int find(const void* address, const AddressOf& addressOf) const {
    return slots_ ? slot(address, addressOf)->number : 0;
  }

  /// Sets the number of `address`, which is not null. The record of `number` has that address already.
  template <class AddressOf>
  void set(const void* address, int number, const AddressOf& addressOf) {
    if (used_ >= capacity() / 4 * 3) grow(addressOf);
    Entry* const entry = slot(address, addressOf);
    if (!entry->number) ++used_;
    *entry = {tagOf(address), number};
  }

private:
  struct Entry {
    std::uint32_t tag;
    int number; // 0 in an empty entry
  };
  static constexpr int groupSize = 4;

  struct Free {
    void operator()(Entry* entries) const noexcept { std::free(entries); }
  };

  [[nodiscard]] std::size_t capacity() const noexcept {
    return slots_ ? std::size_t(groupSize) << groupBits_ : 0;
  }
  [[nodiscard]] static std::uint32_t tagOf(const void* address) noexcept {
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(address));
  }

  /// The entry of `address`, or the empty one where it belongs. There is always an empty entry.
  template <class AddressOf>
  [[nodiscard]] Entry* slot(const void* address, const AddressOf& addressOf) const {
    const std::uint64_t line = reinterpret_cast<std::uintptr_t>(address) >> 6;
    const std::uint64_t mask = (std::uint64_t(1) << groupBits_) - 1;
    // Each further stretch of addresses that wraps round lands at another offset, so that a stride of some
    // power of two does not crowd a few groups.
    std::uint64_t group = line + (line >> groupBits_) * 0x9E3779B1u;
    std::uint64_t step = 0;
    for (;; group += step) {
      Entry* const entries = slots_.get() + (group & mask) * groupSize;
      for (Entry* entry = entries; entry != entries + groupSize; ++entry)
        if (!entry->number || (entry->tag == tagOf(address) && addressOf(entry->number) == address))
          return entry;
      // Full groups stand side by side: the next look is far away, and an odd step reaches every group.
      if (step == 0) step = (reinterpret_cast<std::uintptr_t>(address) * 0x9E3779B97F4A7C15u) >> 24 | 1;
    }
  }

  template <class AddressOf>
  void grow(const AddressOf& addressOf) {
    const std::size_t old = capacity();
    const int bits = slots_ ? groupBits_ + 1 : 4;
    std::unique_ptr<Entry, Free> from(
        static_cast<Entry*>(std::calloc(std::size_t(1) << bits, groupSize * sizeof(Entry))));
    if (!from) throw std::bad_alloc();
    slots_.swap(from);
    groupBits_ = bits;
    used_ = 0;
    for (std::size_t i = 0; i < old; ++i) {
      const Entry& entry = from.get()[i];
      const void* const address = entry.number ? addressOf(entry.number) : nullptr;
      if (!address || tagOf(address) != entry.tag) continue;
      Entry* const place = slot(address, addressOf);
      if (!place->number) ++used_;
      *place = entry;
    }
  }

  std::unique_ptr<Entry, Free> slots_;
  std::size_t used_ = 0;
  int groupBits_ = 0; // there are 2^groupBits_ groups
};
