// What the classes of qvLinear share: work on their numbers, written out number by number. Private to
// qvLinear.
#pragma once

#include <cmath>
#include <concepts>
#include <cstddef>
#include <type_traits>
#include <utility>

namespace qvLinear::detail {

template <class T>
concept Number = std::is_arithmetic_v<T>;

/// A true pointer. The classes convert to pointers, and without this one could be read as another, however
/// many numbers that has.
template <class P, class T>
concept PointerTo = std::is_pointer_v<P> && std::same_as<std::remove_cv_t<std::remove_pointer_t<P>>, T>;

template <class T, class... Listed>
concept OneOf = (std::same_as<T, Listed> || ...);

/// `action(0)` up to `action(count - 1)`, without a loop.
template <std::size_t count, class Action>
constexpr void forEach(Action action) noexcept {
  [&]<std::size_t... i>(std::index_sequence<i...>) { (action(i), ...); }
  (std::make_index_sequence<count>());
}

/// A value of class `T` whose number `i` is `number(i)`.
template <class T, class Function>
[[nodiscard]] constexpr T build(Function number) noexcept {
  return [&]<int... i>(std::integer_sequence<int, i...>) { return T(number(i)...); }
  (std::make_integer_sequence<int, T::size>());
}

template <class T, std::size_t n>
constexpr void copyOut(const T (&from)[n], T* to) noexcept {
  forEach<n>([&](std::size_t i) { to[i] = from[i]; });
}

template <class T, std::size_t n>
constexpr void add(T (&to)[n], const T (&other)[n]) noexcept {
  forEach<n>([&](std::size_t i) { to[i] += other[i]; });
}

template <class T, std::size_t n>
constexpr void subtract(T (&from)[n], const T (&other)[n]) noexcept {
  forEach<n>([&](std::size_t i) { from[i] -= other[i]; });
}

template <class T, std::size_t n>
constexpr void multiply(T (&numbers)[n], const T (&other)[n]) noexcept {
  forEach<n>([&](std::size_t i) { numbers[i] *= other[i]; });
}

template <class T, std::size_t n>
constexpr void divide(T (&numbers)[n], const T (&other)[n]) noexcept {
  forEach<n>([&](std::size_t i) { numbers[i] /= other[i]; });
}

/// The factor may be wider than the numbers: each product is then rounded once.
template <class T, std::size_t n, class Factor>
constexpr void scale(T (&numbers)[n], Factor factor) noexcept {
  forEach<n>([&](std::size_t i) { numbers[i] = static_cast<T>(numbers[i] * factor); });
}

/// Summed in the type of the numbers.
template <class T, std::size_t n>
[[nodiscard]] constexpr T sumOfSquares(const T (&numbers)[n]) noexcept {
  return [&]<std::size_t... i>(std::index_sequence<i...>) { return (... + (numbers[i] * numbers[i])); }
  (std::make_index_sequence<n>());
}

template <class T, std::size_t n>
[[nodiscard]] inline double length(const T (&numbers)[n]) noexcept {
  return std::sqrt(static_cast<double>(sumOfSquares(numbers)));
}

/// Scales to length 1 where the squared length is strictly above the tolerance. Otherwise, also where a
/// number is not a number, all become 0 and the result is false.
template <class T, std::size_t n>
[[nodiscard]] inline bool normalizeOrClear(T (&numbers)[n], T squaredTolerance) noexcept {
  const T squared = sumOfSquares(numbers);
  if (!(squared > squaredTolerance)) {
    forEach<n>([&](std::size_t i) { numbers[i] = 0; });
    return false;
  }
  scale(numbers, 1.0 / std::sqrt(static_cast<double>(squared)));
  return true;
}

/// Summed in the type of the numbers.
template <class V>
[[nodiscard]] constexpr typename V::Number dot(const V& a, const V& b) noexcept {
  return [&]<int... i>(std::integer_sequence<int, i...>) { return (... + (a[i] * b[i])); }
  (std::make_integer_sequence<int, V::size>());
}

template <class V>
[[nodiscard]] constexpr V cross(const V& a, const V& b) noexcept {
  return V(a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]);
}

/// Perpendicular to `v` and of any length; zero for zero.
template <class V>
[[nodiscard]] constexpr V orthogonal(const V& v) noexcept {
  const bool mirrored = v[0] * v[1] > 0 && v[2] * v[1] > 0;
  return cross(V(mirrored ? -v[2] : v[2], v[0], v[1]), v);
}

} // namespace qvLinear::detail
