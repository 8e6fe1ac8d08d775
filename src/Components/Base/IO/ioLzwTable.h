// The table of strings of a compressing stream: which code a known string and one more byte have together.
//
// What the stream looks like is fixed by a table of 69001 slots and its probe. A string starts at the slot
// `byte << 8 ^ code` and goes on in steps of 69001 minus that slot (or 1 from slot 0) downwards. It finds
// every string that was entered, with one exception: past its first slot a search takes the string of key 0
// (byte 0 after code 0) for a vacant slot, and a new string replaces it there. Since 69001 is a prime number,
// only strings that start at slot 0 ever come to slot 0. So key 0 can be lost only if another string that
// starts at slot 0 was entered before it.
//
// At full load each failed search in that table takes some twenty probes. So strings are kept in a larger and
// denser table as long as no string can be lost, and in the one above from then on.
#pragma once

#include <cstdint>
#include <memory>

class ioLzwTable {
public:
  ioLzwTable();

  /// The code of `key`, which is a byte in bits 16 to 23 and the code of the string before it in bits 0 to
  /// 15; 0 where there is none.
  [[nodiscard]] std::uint32_t find(std::uint32_t key) noexcept {
    return slow_ ? findSlow(key) : findFast(key);
  }
  /// Enters a code of 258 to 65535 for the key that was just searched in vain. At most 65278 go in.
  void insert(std::uint32_t key, std::uint32_t code);
  void clear() noexcept;

private:
  /// A slot of the table of 69001: the key in bits 16 to 39 and the code in bits 0 to 15, or `vacant`.
  using SlowSlot = std::uint64_t;
  static constexpr SlowSlot vacant = ~SlowSlot{0};
  static constexpr int slowSize = 69001;

  /// A slot of the fast table: the code in bits 16 to 31, then what is left of the hashed key when the slot's
  /// number is taken away in bits 9 to 15, and how far the string stands from its place in bits 0 to 8. 0
  /// where it is vacant.
  using FastSlot = std::uint32_t;
  static constexpr std::uint32_t fastSize = 131072;
  static constexpr std::uint32_t farthest = 511;
  static constexpr std::uint32_t keyMask = 0xFFFFFF;

  /// Where a key starts in the table of 69001.
  [[nodiscard]] static std::uint32_t firstSlot(std::uint32_t key) noexcept {
    return key >> 16 << 8 ^ (key & 0xFFFF);
  }
  /// A key as another number of 24 bits, whose upper 17 bits are the place in the fast table. Keys are turned
  /// back by `unhashed`.
  [[nodiscard]] static std::uint32_t hashed(std::uint32_t key) noexcept {
    return key * 0x9E3779B1U & keyMask;
  }
  [[nodiscard]] static std::uint32_t unhashed(std::uint32_t hash) noexcept;

  [[nodiscard]] std::uint32_t findFast(std::uint32_t key) noexcept;
  [[nodiscard]] std::uint32_t findSlow(std::uint32_t key) noexcept;
  void insertSlow(std::uint32_t key, std::uint32_t code);
  void turnSlow();

  bool slow_ = false;
  bool slotZeroTaken_ = false;
  std::uint32_t place_ = 0;    ///< Where the last search in vain ended,
  std::uint32_t fastSlot_ = 0; ///< and what belongs there in the fast table, without the code.
  std::unique_ptr<FastSlot[]> fastSlots_;
  std::unique_ptr<SlowSlot[]> slowSlots_;
};

inline std::uint32_t ioLzwTable::findFast(std::uint32_t key) noexcept {
  const std::uint32_t hash = hashed(key);
  std::uint32_t place = hash >> 7;
  std::uint32_t wanted = (hash & 127) << 9;
  for (;;) {
    const FastSlot slot = fastSlots_[place];
    if ((slot & 0xFFFF) == wanted && slot != 0) return slot >> 16;
    if (slot == 0 || (wanted & farthest) == farthest) break;
    place = (place + 1) % fastSize;
    ++wanted;
  }
  place_ = place;
  fastSlot_ = wanted;
  return 0;
}

inline void ioLzwTable::insert(std::uint32_t key, std::uint32_t code) {
  const bool losesKeyZero = key == 0 && slotZeroTaken_;
  if (slow_ || losesKeyZero || fastSlots_[place_] != 0) return insertSlow(key, code);
  fastSlots_[place_] = code << 16 | fastSlot_;
  slotZeroTaken_ |= key != 0 && firstSlot(key) == 0;
}
