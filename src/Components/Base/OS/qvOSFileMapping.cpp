#include "Base/OS/qvOSFileMapping.h"

#include "Base/Platform/qvPlatformMap.h"

#include <algorithm>
#include <atomic>

namespace qvOS {

void FileMapping::unmap() noexcept {
  if (!address_) return;
  qvPlatform::unmapWindow(address_, size_);
  *this = FileMapping();
}

void FileMapping::flush(std::uint64_t from, std::uint64_t to) const noexcept {
  to = std::min(to, size_);
  if (address_ && from < to) (void)qvPlatform::flushWindow(address_, from, to);
}

void FileMapping::load(std::uint64_t from, std::uint64_t to) const noexcept {
  if (address_) accessPagesSequentially(from, to);
}

void FileMapping::accessPagesSequentially(std::uint64_t from, std::uint64_t to) const noexcept {
  constexpr std::uint64_t rounding = 0x100000, step = 4096;
  const std::uint64_t last = to & ~(rounding - 1);
  const auto* const bytes = static_cast<const volatile char*>(address_);
  for (std::uint64_t at = from & ~(rounding - 1); at <= last && at < size_; at += step) (void)bytes[at];
}

std::uint64_t FileMapping::getGranularity() noexcept {
  static std::atomic<std::uint64_t> cached{0}; // two threads may both store the same number
  std::uint64_t granularity = cached.load(std::memory_order_relaxed);
  if (granularity == 0) {
    granularity = qvPlatform::mapGranularity();
    cached.store(granularity, std::memory_order_relaxed);
  }
  return granularity;
}

} // namespace qvOS
