// Rotations and reflections, put in front of a matrix whose rows have `Width` numbers: three or four.
#pragma once

#include "Base/Linear/qvLinearForward.h"
#include "Base/Linear/qvLinearMatrixKernel.h"

namespace qvLinear::detail {

using Linear3 = Numbers<double, 9>; // three rows of three

[[nodiscard]] Linear3 rotationAbout(double angle, const Normal& axis) noexcept;
[[nodiscard]] Linear3 rotationBetween(const Normal& from, const Normal& to) noexcept;
/// By the plane through the origin with this normal.
[[nodiscard]] Linear3 reflection(const Normal& normal) noexcept;

template <int Width>
void applyFirst(double* matrix, const Linear3& first) noexcept {
  using Weights = Numbers<double, 3>;
  const auto x = weighted<Width>(Weights::at(first.n), matrix);
  const auto y = weighted<Width>(Weights::at(first.n + 3), matrix);
  const auto z = weighted<Width>(Weights::at(first.n + 6), matrix);
  x.storeAt(matrix);
  y.storeAt(matrix + Width);
  z.storeAt(matrix + 2 * Width);
}

/// `first` with the point `center` in the place of the origin.
template <int Width>
void applyFirstAbout(const double* center, double* matrix, const Linear3& first) noexcept {
  translateFirst<Width>(matrix, center[0], center[1], center[2]);
  applyFirst<Width>(matrix, first);
  translateFirst<Width>(matrix, -center[0], -center[1], -center[2]);
}

/// Turns the axis of row `from` towards that of row `to`.
template <int Width>
void turnFirst(double* matrix, int from, int to, double angle) noexcept {
  using Row = Numbers<double, Width>;
  const double sine = std::sin(angle), cosine = std::cos(angle);
  const Row a = Row::at(matrix + from * Width), b = Row::at(matrix + to * Width);
  (cosine * a + sine * b).storeAt(matrix + from * Width);
  (cosine * b - sine * a).storeAt(matrix + to * Width);
}

} // namespace qvLinear::detail
