// What is asked of directions: angles, parallel and perpendicular, the axis that dominates.
#pragma once

#include "Base/Linear/qvLinearNormal.h"

#include <algorithm>
#include <numbers>

namespace qvLinear {

/// The angle from 0 to pi, in radians, of two directions, whether or not they are valid. An invalid one
/// counts as perpendicular to all.
[[nodiscard]] inline double angle(const Normal& a, const Normal& b) noexcept {
  return std::acos(std::clamp(dot(a, b), -1.0, 1.0));
}

/// The same into `out`, and true, where both are valid; otherwise pi / 2, and false.
inline bool angle(const Normal& a, const Normal& b, double& out) noexcept {
  const bool valid = a.isValid() && b.isValid();
  out = valid ? angle(a, b) : std::numbers::pi / 2;
  return valid;
}

/// The arc tangent of `dot(axis, b)` over `dot(axis, a)`, in the quadrant that their signs tell: from -pi to
/// pi, in radians, or from 0 to 2 pi if `positive`. 0 where the axis is invalid.
[[nodiscard]] inline double unitCircleRotation(const Normal& axis, const Vector& a, const Vector& b,
                                               bool positive) noexcept {
  if (!axis.isValid()) return 0;
  const double rotation = std::atan2(dot(axis, b), dot(axis, a));
  return positive && rotation < 0 ? rotation + 2 * std::numbers::pi : rotation;
}

/// Whether the cosine of their angle is at least the tolerance, whichever way they point: pass one near 1,
/// such as `parallelTol`. False where one is invalid.
[[nodiscard]] inline bool isParallel(const Normal& a, const Normal& b, double tolerance) noexcept {
  return a.isValid() && b.isValid() && std::fabs(dot(a, b)) >= tolerance;
}

/// Whether the cosine of their angle is at most the tolerance, whichever way they point: pass one near 0,
/// such as `perpendicularTol`. False where one is invalid.
[[nodiscard]] inline bool isPerpendicular(const Normal& a, const Normal& b, double tolerance) noexcept {
  return a.isValid() && b.isValid() && std::fabs(dot(a, b)) <= tolerance;
}

/// The place of the number with the largest absolute value. Of equals, y goes before z and z before x.
[[nodiscard]] inline int dominantDimension(const Vector& v) noexcept {
  const double x = std::fabs(v[0]);
  const double y = std::fabs(v[1]);
  const double z = std::fabs(v[2]);
  if (x > y) return x > z ? 0 : 2;
  return z > y ? 2 : 1;
}

/// The axis nearest to `v`, with its sign: exactly 1 or -1 at the dominant dimension. Invalid where that
/// number alone is too short for a `Normal`.
[[nodiscard]] inline Normal dominantAxisSigned(const Vector& v) noexcept {
  const int place = dominantDimension(v);
  const double sign = std::copysign(1.0, v[place]);
  if (v[place] * v[place] > epsilon2Tol)
    return Normal(Promise(), place == 0 ? sign : 0, place == 1 ? sign : 0, place == 2 ? sign : 0);
  return Normal(0, 0, 0);
}

} // namespace qvLinear
