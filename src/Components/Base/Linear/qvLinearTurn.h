// Rotations and reflections, put in front of a matrix whose rows have `width` numbers: three or four.
#pragma once

#include "Base/Linear/qvLinearMatrixKernel.h"
#include "Base/Linear/qvLinearPoint.h"

namespace qvLinear::detail {

using Linear3 = Numbers<double, 9>; // three rows of three

[[nodiscard]] Linear3 rotationAbout(double angle, const Normal& axis) noexcept;
[[nodiscard]] Linear3 rotationBetween(const Normal& from, const Normal& to) noexcept;
/// By the plane through the origin with this normal.
[[nodiscard]] Linear3 reflection(const Normal& normal) noexcept;

template <int width>
void applyFirst(double* matrix, const Linear3& first) noexcept {
  using Weights = Numbers<double, 3>;
  const auto x = weighted<width>(Weights::at(first.n), matrix);
  const auto y = weighted<width>(Weights::at(first.n + 3), matrix);
  const auto z = weighted<width>(Weights::at(first.n + 6), matrix);
  x.storeAt(matrix);
  y.storeAt(matrix + width);
  z.storeAt(matrix + 2 * width);
}

/// `first` with `center` in the place of the origin.
template <int width>
void applyFirstAbout(const Point& center, double* matrix, const Linear3& first) noexcept {
  const auto still = Numbers<double, 3>::at<double>(center);
  const auto offset = still - weighted<3>(still, first.n);
  translateFirst<width>(matrix, offset[0], offset[1], offset[2]);
  applyFirst<width>(matrix, first);
}

/// Turns the axis of row `from` towards that of row `to`.
template <int width>
void turnFirst(double* matrix, int from, int to, double angle) noexcept {
  using Row = Numbers<double, width>;
  const double sine = std::sin(angle), cosine = std::cos(angle);
  const Row a = Row::at(matrix + from * width), b = Row::at(matrix + to * width);
  (cosine * a + sine * b).storeAt(matrix + from * width);
  (cosine * b - sine * a).storeAt(matrix + to * width);
}

} // namespace qvLinear::detail
