// What the ordered and the hash containers have in common: how their elements are made of a key and a value,
// and the functions by which the untyped cores handle both.
#pragma once

#include "Base/Containers/qvPair.h"
#include "Base/Containers/qvRelocatable.h"

#include <cstddef>
#include <memory>
#include <type_traits>

namespace qv::detail {

/// The element of a container of keys and values; of keys alone, where `Mapped` is void.
template <class Key, class Mapped>
struct KeyedElement {
  using Type = pair<const Key, Mapped>;
  using Value = Mapped;
  static constexpr std::size_t valueOffset = alignedUp(sizeof(Key), alignof(Mapped));
  static const Key& key(const Type& element) noexcept { return element.first; }
  static const void* value(const Type& element) noexcept { return std::addressof(element.second); }
};

template <class Key>
struct KeyedElement<Key, void> {
  using Type = const Key;
  using Value = char;
  static constexpr std::size_t valueOffset = 0;
  static const Key& key(const Key& element) noexcept { return element; }
  static const void* value(const Key&) noexcept { return nullptr; }
};

/// The functions by which a core handles a type's keys and values.
template <class T>
struct ElementFunctions {
  static const T& cast(const void* object) noexcept { return *static_cast<const T*>(object); }
  static void copy(void* dst, const void* src) { std::construct_at(static_cast<T*>(dst), cast(src)); }
  static void construct(void* dst) { std::construct_at(static_cast<T*>(dst)); }
  static void destruct(void* object) { std::destroy_at(static_cast<T*>(object)); }
};

/// Fills in what the records of trees and of hash tables have in common.
template <class Key, class Mapped, class Record>
constexpr void setElementFunctions(Record& record) {
  static_assert(std::is_copy_constructible_v<Key>, "the associative containers copy their keys");
  record.copyKey = &ElementFunctions<Key>::copy;
  if constexpr (!std::is_trivially_destructible_v<Key>) record.destructKey = &ElementFunctions<Key>::destruct;
  if constexpr (!std::is_void_v<Mapped>) {
    if constexpr (std::is_copy_constructible_v<Mapped>) record.copyValue = &ElementFunctions<Mapped>::copy;
    if constexpr (std::is_default_constructible_v<Mapped>)
      record.constructValue = &ElementFunctions<Mapped>::construct;
    if constexpr (!std::is_trivially_destructible_v<Mapped>)
      record.destructValue = &ElementFunctions<Mapped>::destruct;
  }
}

/// True where an element can be copied: keys always can.
template <class Mapped>
inline constexpr bool isCopyable = std::is_void_v<Mapped> || std::is_copy_constructible_v<Mapped>;

/// A value that is better moved into a default-constructed place than copied.
template <class Mapped>
inline constexpr bool isWorthMoving =
    !std::is_void_v<Mapped> && !std::is_trivially_copyable_v<Mapped> &&
    std::is_default_constructible_v<Mapped> && std::is_move_assignable_v<Mapped>;

} // namespace qv::detail
