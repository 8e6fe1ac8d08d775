// From an address to its number: the hash table under the reference map.
#pragma once

#include <bit>
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
/// Where that group is full the search jumps about. A group fills from its start, and the first one that is
/// not full ends every search.
class ioAddressTable {
public:
  /// The number of `address`, which is not null; 0 if it has none.
  template <class AddressOf>
  [[nodiscard]] int find(const void* address, const AddressOf& addressOf) const {
    if (!groups_) return 0;
    const Place place = search(address, addressOf);
    return place.entry < groupSize ? place.group->numbers[place.entry] : 0;
  }

  /// Sets the number of `address`, which is not null. The record of `number` has that address already.
  template <class AddressOf>
  void set(const void* address, int number, const AddressOf& addressOf) {
    if (used_ >= numGroups() * 3) grow(addressOf); // of four entries
    put(address, number, addressOf);
  }

private:
  static constexpr int groupSize = 4;
  struct Group {
    std::uint32_t tags[groupSize];
    int numbers[groupSize]; // 0 in an empty entry
  };
  static_assert(sizeof(Group) == 32);

  struct Place {
    Group* group;
    int entry; // `groupSize` where the address is not there and the group has an empty entry
  };

  struct Free {
    void operator()(Group* groups) const noexcept { std::free(groups); }
  };

  [[nodiscard]] std::size_t numGroups() const noexcept { return groups_ ? std::size_t(1) << groupBits_ : 0; }
  [[nodiscard]] static std::uint32_t tagOf(const void* address) noexcept {
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(address));
  }

  /// There is always a group that is not full.
  template <class AddressOf>
  [[nodiscard]] Place search(const void* address, const AddressOf& addressOf) const {
    const std::uint64_t mask = (std::uint64_t(1) << groupBits_) - 1;
    const std::uint32_t tag = tagOf(address);
    std::uint64_t index = reinterpret_cast<std::uintptr_t>(address) >> 6;
    std::uint64_t step = 0;
    for (;; index += step) {
      Group* const group = groups_.get() + (index & mask);
      // All four at once, without a branch: which one it is cannot be foretold.
      const auto is = [&](int i) { return static_cast<unsigned int>(group->tags[i] == tag) << i; };
      unsigned int matches = is(0) | is(1) | is(2) | is(3);
      for (; matches; matches &= matches - 1) {
        const int entry = std::countr_zero(matches);
        if (group->numbers[entry] && addressOf(group->numbers[entry]) == address) return {group, entry};
      }
      if (!group->numbers[groupSize - 1]) return {group, groupSize};
      // Full groups stand side by side: the next look is far away, and an odd step reaches every group.
      if (step == 0) step = (reinterpret_cast<std::uintptr_t>(address) * 0x9E3779B97F4A7C15u) >> 24 | 1;
    }
  }

  template <class AddressOf>
  void put(const void* address, int number, const AddressOf& addressOf) {
    Place place = search(address, addressOf);
    if (place.entry == groupSize) {
      const auto isTaken = [&](int i) { return static_cast<int>(place.group->numbers[i] != 0); };
      place.entry = isTaken(0) + isTaken(1) + isTaken(2);
      ++used_;
    }
    place.group->tags[place.entry] = tagOf(address);
    place.group->numbers[place.entry] = number;
  }

  template <class AddressOf>
  void grow(const AddressOf& addressOf) {
    const std::size_t old = numGroups();
    const int bits = groups_ ? groupBits_ + 1 : 4;
    std::unique_ptr<Group[], Free> from(
        static_cast<Group*>(std::calloc(std::size_t(1) << bits, sizeof(Group))));
    if (!from) throw std::bad_alloc();
    groups_.swap(from);
    groupBits_ = bits;
    used_ = 0;
    for (std::size_t i = 0; i < old; ++i)
      for (int entry = 0; entry < groupSize; ++entry) {
        const int number = from[i].numbers[entry];
        const void* const address = number ? addressOf(number) : nullptr;
        if (address && tagOf(address) == from[i].tags[entry]) put(address, number, addressOf);
      }
  }

  std::unique_ptr<Group[], Free> groups_;
  std::size_t used_ = 0;
  int groupBits_ = 0; // there are 2^groupBits_ groups
};
