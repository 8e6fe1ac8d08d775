// What both directions of the UTF-8 routine share: characters as lanes of a 64-bit number, whatever the byte
// order. Private to it.
//
// Text for people comes in runs: of ASCII, and of letters of one length. So both directions take several
// characters of one kind in a step, as such lanes or in loops of fixed length that compilers turn into vector
// code; what is rare, and all that is ill-formed, goes one by one.
#pragma once

#include "Base/Platform/qvPlatformSurrogate.h"
#include "Base/qvBase.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qvPlatform::text {

using Byte = unsigned char;
using Word = std::uint64_t;

inline constexpr std::uint32_t kReplacement = 0xFFFD;

/// What becomes of that which is ill-formed: U+FFFD, or something from which the bytes can be had back.
enum class Bad { Replace, Escape };

constexpr Word eachByte(Word value) noexcept { return value * 0x0101010101010101u; }
constexpr Word eachUnit(Word value) noexcept { return value * 0x0001000100010001u; }

/// Eight bytes as a number, the first one lowest.
inline Word loadBytes(const void* p) noexcept {
  Word word;
  std::memcpy(&word, p, sizeof word);
  if constexpr (std::endian::native == std::endian::big) {
    word = word << 32 | word >> 32;
    word = (word & 0x0000FFFF0000FFFFu) << 16 | (word >> 16 & 0x0000FFFF0000FFFFu);
    word = (word & eachUnit(0xFF)) << 8 | (word >> 8 & eachUnit(0xFF));
  }
  return word;
}

inline void storeBytes(void* p, Word word) noexcept {
  const Word ordered = loadBytes(&word);
  std::memcpy(p, &ordered, sizeof ordered);
}

/// Four units as a number, the first one lowest.
inline Word loadUnits(const void* p) noexcept {
  Word word;
  std::memcpy(&word, p, sizeof word);
  if constexpr (std::endian::native == std::endian::big) {
    word = word << 32 | word >> 32;
    word = (word & 0x0000FFFF0000FFFFu) << 16 | (word >> 16 & 0x0000FFFF0000FFFFu);
  }
  return word;
}

inline void storeUnits(void* p, Word word) noexcept {
  const Word ordered = loadUnits(&word);
  std::memcpy(p, &ordered, sizeof ordered);
}

template <std::size_t N>
inline void widen(const Byte* from, qv::WChar* to) noexcept {
  qv::WChar units[N];
  for (std::size_t i = 0; i < N; ++i) units[i] = from[i];
  std::memcpy(to, units, sizeof units);
}

template <std::size_t N>
inline void narrow(const qv::WChar* from, char* to) noexcept {
  Byte bytes[N];
  for (std::size_t i = 0; i < N; ++i) bytes[i] = static_cast<Byte>(from[i]);
  std::memcpy(to, bytes, N);
}

constexpr bool isTrail(std::uint32_t b) noexcept { return (b & 0xC0) == 0x80; }

} // namespace qvPlatform::text
