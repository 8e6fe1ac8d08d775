#include "Base/OS/qvOSUuid.h"

#include "Base/Platform/qvPlatformRandom.h"

#include <cstddef>
#include <cstring>

namespace qvOS {

Uuid Uuid::generate() noexcept {
  const std::uint64_t random[2] = {qvPlatform::randomName(), qvPlatform::randomName()};
  Uuid made;
  static_assert(sizeof random == sizeof made.bytes_);
  std::memcpy(made.bytes_.data(), random, sizeof random);
  made.bytes_[6] = static_cast<std::uint8_t>((made.bytes_[6] & 0x0F) | 0x40); // version 4
  made.bytes_[8] = static_cast<std::uint8_t>((made.bytes_[8] & 0x3F) | 0x80); // the RFC's variant
  return made;
}

qvString::CString Uuid::asString() const {
  constexpr char digits[] = "0123456789abcdef";
  qvString::CString text;
  for (std::size_t i = 0; i < bytes_.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text.append('-');
    text.append(digits[bytes_[i] >> 4]).append(digits[bytes_[i] & 15]);
  }
  return text;
}

} // namespace qvOS
