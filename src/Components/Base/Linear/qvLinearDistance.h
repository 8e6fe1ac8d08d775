// How far values lie apart: distance, and equality within a tolerance.
#pragma once

#include "Base/Linear/qvLinearPoint.h"

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

/// @{ Of two different classes that convert to a `Point`.
[[nodiscard]] constexpr double distance2(const Point& a, const Point& b) noexcept {
  return distance2<Point>(a, b);
}
[[nodiscard]] inline double distance(const Point& a, const Point& b) noexcept {
  return distance<Point>(a, b);
}
/// @}

/// Whether every number differs by strictly less than the tolerance. Narrow numbers are subtracted wide.
/// Normals are compared by their numbers alone.
/// @{
template <detail::Comparable T>
[[nodiscard]] inline bool equivalent(const T& a, const T& b, double tolerance) noexcept {
  bool same = true;
  detail::forEach<T::size>([&](int i) { same &= std::fabs(double{a[i]} - double{b[i]}) < tolerance; });
  return same;
}
/// Of two different classes that convert to a `Vector`, or to a `Point`.
[[nodiscard]] inline bool equivalent(const Vector& a, const Vector& b, double tolerance) noexcept {
  return equivalent<Vector>(a, b, tolerance);
}
[[nodiscard]] inline bool equivalent(const Point& a, const Point& b, double tolerance) noexcept {
  return equivalent<Point>(a, b, tolerance);
}
/// @}

} // namespace qvLinear
