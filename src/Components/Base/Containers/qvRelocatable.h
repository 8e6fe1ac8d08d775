// The trait that says which types may be moved by copying their bytes, and the limits of a container's
// memory.
#pragma once

#include <cstddef>
#include <type_traits>

namespace qv {

/// True if an object of type `T` may be moved to another address by copying its bytes and forgetting the old
/// place, with neither a constructor nor a destructor called. That holds for every trivially copyable type. A
/// class that owns memory but holds no pointer into itself says so after its definition:
/// `template <> inline constexpr bool qv::isRelocatable<MyClass> = true;`
/// Never say it of a class that stores its own address or is registered somewhere by address.
template <class T>
inline constexpr bool isRelocatable = std::is_trivially_copyable_v<T>;

namespace detail {

/// `size` raised to the next multiple of `alignment`, a power of two.
constexpr std::size_t alignedUp(std::size_t size, std::size_t alignment) {
  return (size + alignment - 1) & ~(alignment - 1);
}

/// True if `T` can live in memory from the C heap.
template <class T>
inline constexpr bool hasHeapAlignment = alignof(T) <= alignof(std::max_align_t);

/// True of the types for which the cores have paths of their own, without a call per element.
template <class T>
inline constexpr bool isObjectPointer = std::is_pointer_v<T> && !std::is_function_v<std::remove_pointer_t<T>>;

/// The address of an object as the cores take it.
template <class T>
void* untyped(T* object) noexcept {
  return const_cast<void*>(static_cast<const volatile void*>(object));
}

} // namespace detail

} // namespace qv
