// Hash values of texts, bytes and words, and the function object by which the hash containers find the hash
// of a key.
#pragma once

#include "Base/qvBase.h"

#include <cstdint>
#include <type_traits>

namespace qv {

/// Hash of `count` bytes; 0 when `count` is below 1. A hash stays the same for the life of a process and is
/// never to be stored in a file.
QV_BASE_API unsigned int hashfunction(const unsigned char* bytes, int count) noexcept;
/// The same hash, of the bytes from `first` up to `last`; 0 for an empty range.
QV_BASE_API unsigned int hashfunction(const char* first, const char* last) noexcept;
/// The same hash, of the `count * 2` bytes of the characters.
QV_BASE_API unsigned int hashfunction(const WChar* chars, int count) noexcept;
/// Hash of `count` words; 0 when `count` is below 1. Does not equal the hash of the words' bytes.
QV_BASE_API unsigned int hashfunction(const unsigned int* words, int count) noexcept;
/// Hash of a terminated string; 0 for an empty one and for null. Does not equal the hash of the counted
/// bytes.
QV_BASE_API unsigned int hashfunction(const char* string) noexcept;

/// The hash of a key in the hash containers: the value itself for whole numbers and enumerations, the address
/// for pointers, and otherwise what `hashfunction(key)` says, found in the namespace of the key's class.
template <class Key>
struct hash {
  [[nodiscard]] std::uint64_t operator()(const Key& key) const {
    if constexpr (std::is_pointer_v<Key>)
      return reinterpret_cast<std::uintptr_t>(key);
    else if constexpr (std::is_integral_v<Key> || std::is_enum_v<Key>)
      return static_cast<std::uint64_t>(key);
    else
      return hashfunction(key);
  }
};

/// The default equality of the hash containers: `a == b`.
template <class Key>
struct equal_to {
  [[nodiscard]] constexpr bool operator()(const Key& a, const Key& b) const { return a == b; }
};

} // namespace qv
