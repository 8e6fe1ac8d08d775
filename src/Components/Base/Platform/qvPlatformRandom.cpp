#include "Base/Platform/qvPlatformRandom.h"

#include "Base/Platform/qvPlatformTime.h"

#include <atomic>

namespace qvPlatform {

std::uint64_t randomName() noexcept {
  std::uint64_t bits = 0;
  if (!randomBytes(&bits, sizeof bits)) return bits;
  static std::atomic<std::uint64_t> counter{0};
  constexpr std::uint64_t spread =
      0x9E3779B97F4A7C15; // 2^64 divided by the golden ratio, to mix low bits up.
  bits = static_cast<std::uint64_t>(nanosecondsNow()) ^ (++counter * spread);
  return (bits ^ (bits >> 29)) * spread;
}

} // namespace qvPlatform
