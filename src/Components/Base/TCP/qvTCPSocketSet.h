// The sockets of one wait. Not installed.
#pragma once

#include "Base/Platform/qvPlatformSocket.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace qvTCP {

/// Different sockets, at most as many as every system can wait for.
class SocketSet {
public:
  static constexpr std::size_t capacity = 64;

  /// Passes over what is no socket, what is there already, and what there is no room for.
  void add(qvPlatform::SocketHandle handle) noexcept {
    if (handle != qvPlatform::noSocket && size_ < capacity && !contains(handle))
      entries_[size_++] = {handle, false};
  }
  void clear() noexcept { size_ = 0; }
  [[nodiscard]] bool isEmpty() const noexcept { return size_ == 0; }
  [[nodiscard]] bool contains(qvPlatform::SocketHandle handle) const noexcept {
    const auto isIt = [&](const qvPlatform::SocketWait& entry) { return entry.socket == handle; };
    return std::any_of(entries_.begin(), end(), isIt);
  }

  /// The one that was added first, of a set that is not empty.
  [[nodiscard]] qvPlatform::SocketHandle first() const noexcept { return entries_[0].socket; }

  /// As `qvPlatform::waitReadable`; keeps those that are ready. A failure leaves the set as it was.
  [[nodiscard]] int wait(const qvPlatform::Deadline& deadline) noexcept {
    if (const int number = qvPlatform::waitReadable(entries_.data(), size_, deadline)) return number;
    const auto isReady = [](const qvPlatform::SocketWait& entry) { return entry.ready; };
    size_ =
        static_cast<std::size_t>(std::stable_partition(entries_.begin(), end(), isReady) - entries_.begin());
    return 0;
  }

private:
  using Entries = std::array<qvPlatform::SocketWait, capacity>;
  [[nodiscard]] Entries::iterator end() noexcept { return entries_.begin() + size_; }
  [[nodiscard]] Entries::const_iterator end() const noexcept { return entries_.begin() + size_; }

  Entries entries_;
  std::size_t size_ = 0;
};

} // namespace qvTCP
