// An identifier that nobody else has.
#pragma once

#include "Base/String/qvStringCString.h"
#include "Base/qvBase.h"

#include <array>
#include <cstdint>

namespace qvOS {

/// 128 bits after RFC 9562, for names; they are no secret. Compared byte by byte.
class Uuid {
public:
  /// The nil identifier, all zeros.
  Uuid() noexcept = default;
  /// A new one of version 4, made of 122 random bits: no other run, process or machine makes the same. Safe
  /// from any thread.
  [[nodiscard]] QV_BASE_API static Uuid generate() noexcept;

  /// The sixteen bytes in the order in which the text has them.
  [[nodiscard]] const std::array<std::uint8_t, 16>& bytes() const noexcept { return bytes_; }
  /// 36 characters, as in "7e0f5a31-9b1c-4d5e-8f02-c6b3a9d47215".
  [[nodiscard]] QV_BASE_API qvString::CString asString() const;

  friend bool operator==(const Uuid&, const Uuid&) = default;
  friend bool operator<(const Uuid& a, const Uuid& b) noexcept { return a.bytes_ < b.bytes_; }

private:
  std::array<std::uint8_t, 16> bytes_{};
};

} // namespace qvOS
