// The memory of one packet: it doubles as the packet grows, as far as signed 32-bit offsets reach.
#pragma once

#include "Base/qvBase.h"

#include <cstddef>
#include <memory>

/// A block of bytes that keeps its size from packet to packet. A packet of 2 GiB or more does not fit: the
/// block remembers that until `startPacket`.
class ioPacketBlock {
public:
  ioPacketBlock();

  [[nodiscard]] char* data() noexcept { return data_.get(); }
  [[nodiscard]] const char* data() const noexcept { return data_.get(); }

  /// Makes room for `size` bytes at offset `at`, and for one more byte behind them. What stood in the block
  /// stays. False where the packet would become too large.
  [[nodiscard]] bool makeRoom(int at, std::size_t size) {
    return (size <= static_cast<std::size_t>(capacity_) && at <= capacity_ - static_cast<int>(size)) ||
           grow(at, size);
  }

  void startPacket() noexcept { tooLarge_ = false; }
  /// Whether `makeRoom` failed since the packet was started.
  [[nodiscard]] bool tooLarge() const noexcept { return tooLarge_; }

private:
  [[nodiscard]] bool grow(int at, std::size_t size);

  int capacity_ = 50000;
  std::unique_ptr<char[]> data_; // one byte more than the capacity
  bool tooLarge_ = false;
};
