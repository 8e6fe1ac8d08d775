// combine: weighted sums and averages.
#pragma once

#include "Base/Linear/qvLinearNormal.h"

namespace qvLinear {

namespace detail {

template <class T>
concept Combined =
    OneOf<T, Vector, Vector2, VectorFlt, Vector2Flt, Point, Point2, PointFlt, Point2Flt, HPoint>;

} // namespace detail

/// The midpoint: half of the sum.
template <detail::Combined T>
[[nodiscard]] constexpr T combine(const T& a, const T& b) noexcept {
  using Number = typename T::Number;
  return detail::build<T>([&](int i) { return (a[i] + b[i]) * Number(0.5); });
}

/// `wa * a + wb * b`, of narrow classes too calculated wide.
template <detail::Combined T>
[[nodiscard]] constexpr T combine(double wa, const T& a, double wb, const T& b) noexcept {
  return detail::build<T>([&](int i) { return wa * a[i] + wb * b[i]; });
}

/// The same of two vectors of any class, or normals. The sum is then a `Vector`, seldom of unit length.
[[nodiscard]] constexpr Vector combine(double wa, const Vector& a, double wb, const Vector& b) noexcept {
  return combine<Vector>(wa, a, wb, b);
}

/// The sum of `n` items, each times its weight. Nothing divides by the sum of the weights. Zero where `n` is
/// 0 or less.
template <detail::Combined T>
[[nodiscard]] constexpr T combine(int n, const typename T::Number* weights, const T* items) noexcept {
  T sum = detail::build<T>([](int) { return typename T::Number(0); });
  for (int item = 0; item < n; ++item)
    sum = detail::build<T>([&](int i) { return sum[i] + weights[item] * items[item][i]; });
  return sum;
}

/// The average of `n` items, at least one: their sum times 1 / `n`.
template <detail::Combined T>
[[nodiscard]] constexpr T combine(int n, const T* items) noexcept {
  T sum = items[0];
  for (int item = 1; item < n; ++item) sum = detail::build<T>([&](int i) { return sum[i] + items[item][i]; });
  const auto share = typename T::Number(1) / static_cast<typename T::Number>(n);
  return detail::build<T>([&](int i) { return sum[i] * share; });
}

} // namespace qvLinear
