// How far values lie apart: distance, and equality within a tolerance.
#pragma once

#include "Base/Linear/qvLinearComponents.h"
#include "Base/Linear/qvLinearForward.h"

namespace qvLinear {

namespace detail {

template <class T>
concept Distant = OneOf<T, Point, Point2, PointFlt, Point2Flt, Tuple2, Tuple3>;

template <class T>
concept Comparable = OneOf<T, Vector, Vector2, VectorFlt, Vector2Flt, Normal, Point, Point2, PointFlt,
                           Point2Flt, RPoint, HPoint, Quaternion>;

} // namespace detail

/// The square of the distance; of narrow points a narrow sum.
template <detail::Distant T>
[[nodiscard]] constexpr typename T::Number distance2(const T& a, const T& b) noexcept {
  const auto difference = a - b;
  return detail::dot(difference, difference);
}

/// The Euclidean distance: the root of that sum, taken wide.
template <detail::Distant T>
[[nodiscard]] inline double distance(const T& a, const T& b) noexcept {
  return std::sqrt(static_cast<double>(distance2(a, b)));
}

/// Whether every number differs by strictly less than the tolerance. Narrow numbers are subtracted wide.
/// Normals are compared by their numbers alone.
template <detail::Comparable T>
[[nodiscard]] inline bool equivalent(const T& a, const T& b, double tolerance) noexcept {
  bool same = true;
  detail::forEach<T::size>([&](int i) { same &= std::fabs(double{a[i]} - double{b[i]}) < tolerance; });
  return same;
}

} // namespace qvLinear
