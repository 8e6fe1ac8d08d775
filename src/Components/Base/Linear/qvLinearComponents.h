// Work on the numbers of a value, written out number by number. Private to qvLinear.
#pragma once

#include <cmath>
#include <concepts>
#include <type_traits>
#include <utility>

namespace qvLinear::detail {

template <class T>
concept Numeric = std::is_arithmetic_v<T>;

/// A true pointer. The classes convert to pointers, and without this one could be read as another, however
/// many numbers that has.
template <class P, class T>
concept PointerTo = std::is_pointer_v<P> && std::same_as<std::remove_cv_t<std::remove_pointer_t<P>>, T>;

template <class T, class... Listed>
concept OneOf = (std::same_as<T, Listed> || ...);

/// `action(0)` up to `action(count - 1)`, without a loop.
template <int count, class Action>
constexpr void forEach(Action action) noexcept {
  [&]<int... i>(std::integer_sequence<int, i...>) { (action(i), ...); }
  (std::make_integer_sequence<int, count>());
}

/// A value of class `T` whose number `i` is `number(i)`.
template <class T, class Function>
[[nodiscard]] constexpr T build(Function number) noexcept {
  return [&]<int... i>(std::integer_sequence<int, i...>) { return T(number(i)...); }
  (std::make_integer_sequence<int, T::size>());
}

/// Summed in the type of the numbers.
template <class V>
[[nodiscard]] constexpr typename V::Number dot(const V& a, const V& b) noexcept {
  return [&]<int... i>(std::integer_sequence<int, i...>) { return (... + (a[i] * b[i])); }
  (std::make_integer_sequence<int, V::size>());
}

/// Scales to length 1 where the squared length is strictly above the tolerance. Otherwise, also where a
/// number is not a number, all become 0 and the result is false.
template <class V>
[[nodiscard]] inline bool normalizeOrClear(V& v, typename V::Number squaredTolerance) noexcept {
  const double squared = v.length2();
  if (!(squared > squaredTolerance)) {
    v = build<V>([](int) { return 0; });
    return false;
  }
  const double factor = 1 / std::sqrt(squared);
  v = build<V>([&](int i) { return v[i] * factor; });
  return true;
}

template <class V>
[[nodiscard]] constexpr V cross(const V& a, const V& b) noexcept {
  return V(a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]);
}

/// At a right angle to `v` and of any length; zero for zero.
template <class V>
[[nodiscard]] constexpr V orthogonal(const V& v) noexcept {
  const bool mirrored = v[0] * v[1] > 0 && v[2] * v[1] > 0;
  return cross(V(mirrored ? -v[2] : v[2], v[0], v[1]), v);
}

} // namespace qvLinear::detail
