// The rotations and the reflection that the matrices of space are built from.
#include "Base/Linear/qvLinearSpaceMatrix.h"

namespace qvLinear::detail {

namespace {

/// A rotation with the axis `v` / |v|. Written with differences from 1 on the diagonal, so that an axis of
/// zero gives the identity.
Linear3 rotation(const Vector& v, double sine, double versine) noexcept {
  const double x = v[0], y = v[1], z = v[2];
  return {1.0 - versine * (y * y + z * z), versine * x * y + sine * z,      versine * x * z - sine * y,
          versine * x * y - sine * z,      1.0 - versine * (x * x + z * z), versine * y * z + sine * x,
          versine * x * z + sine * y,      versine * y * z - sine * x,      1.0 - versine * (x * x + y * y)};
}

/// The axis to which `n` is the least parallel.
Vector leastAxis(const Normal& n) noexcept {
  const double x = std::fabs(n[0]), y = std::fabs(n[1]), z = std::fabs(n[2]);
  if (x < y && x < z) return Vector(1.0, 0.0, 0.0);
  return y < z ? Vector(0.0, 1.0, 0.0) : Vector(0.0, 0.0, 1.0);
}

/// Of nearly opposite directions, through two reflections: `from` to an axis, and that to `to`. The angle
/// between the mirrors stays far from 0, where the cross product of the two directions says no more.
Linear3 rotationBetweenOpposite(const Normal& from, const Normal& to) noexcept {
  const Vector axis = leastAxis(from);
  const Linear3 first = reflection(Normal(axis - from)), second = reflection(Normal(axis - to));
  Linear3 both;
  forEach<3>([&](int row) { rowTimes<3>(first.n + 3 * row, second.n).storeAt(both.n + 3 * row); });
  return both;
}

} // namespace

Linear3 rotationAbout(double angle, const Normal& axis) noexcept {
  return rotation(axis, std::sin(angle), 1.0 - std::cos(angle));
}

Linear3 rotationBetween(const Normal& from, const Normal& to) noexcept {
  const double cosine = dot(from, to);
  if (cosine < -0.9) return rotationBetweenOpposite(from, to);
  // The cross product is the axis times the sine, and 1 / (1 + cosine) the versine over the square of the
  // sine.
  return rotation(qvLinear::cross(from, to), 1.0, 1.0 / (1.0 + cosine));
}

Linear3 reflection(const Normal& normal) noexcept {
  return Linear3::made(
      [&](int i) { return (i / 3 == i % 3 ? 1.0 : 0.0) - 2.0 * normal[i / 3] * normal[i % 3]; });
}

} // namespace qvLinear::detail
