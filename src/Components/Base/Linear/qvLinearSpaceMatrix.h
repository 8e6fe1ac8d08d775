// SpaceMatrix: what the wide matrices of space have in common besides `Matrix`: what builds a transform.
#pragma once

#include "Base/Linear/qvLinearMatrix.h"
#include "Base/Linear/qvLinearPlane.h"
#include "Base/qvBase.h"

namespace qvLinear {

namespace detail {

/// @{ Three rows of three, for points that are rows.
using Linear3 = Numbers<double, 9>;
[[nodiscard]] QV_BASE_API Linear3 rotationAbout(double angle, const Normal& axis) noexcept;
[[nodiscard]] QV_BASE_API Linear3 rotationBetween(const Normal& from, const Normal& to) noexcept;
/// By the plane through the origin with this normal.
[[nodiscard]] QV_BASE_API Linear3 reflection(const Normal& normal) noexcept;
/// @}

} // namespace detail

namespace base {

/// The base of class `Self`, whose first three rows transform directions and whose fourth is the translation.
/// Angles are in radians. What is built stands in front of what the matrix holds, so that it acts on a point
/// first.
template <class Self, int width>
class SpaceMatrix : public Matrix<Self, double, 4, width> {
public:
  Self& translate(double x, double y, double z) noexcept {
    const Row by = detail::weighted<width>(detail::Numbers<double, 3>(x, y, z), this->m_.n);
    (row(3) + by).storeAt((*this)[3]);
    return this->self();
  }
  Self& translate(const Vector& by) noexcept { return translate(by[0], by[1], by[2]); }
  Self& scale(double x, double y, double z) noexcept { return setRows(x * row(0), y * row(1), z * row(2)); }
  Self& scale(double factor) noexcept { return scale(factor, factor, factor); }
  /// @{ About an axis of the coordinates; seen from its tip, a positive angle turns counter-clockwise.
  Self& rotateX(double angle) noexcept { return turn(1, 2, angle); }
  Self& rotateY(double angle) noexcept { return turn(2, 0, angle); }
  Self& rotateZ(double angle) noexcept { return turn(0, 1, angle); }
  /// @}
  /// About `axis` through the origin. One that is not valid turns nothing.
  Self& rotate(double angle, const Normal& axis) noexcept {
    return applyFirst(detail::rotationAbout(angle, axis));
  }
  /// About `axis`.
  Self& rotate(double angle, const Line& axis) noexcept {
    return applyFirst(detail::rotationAbout(angle, axis.direction()), axis.origin());
  }
  /// By the smallest angle that takes `from` to `to`; where they are opposite, by half a turn about some axis
  /// at a right angle to them. Not valid ones turn nothing. Method: Moeller and Hughes, "Efficiently Building
  /// a Matrix to Rotate One Vector to Another", 1999.
  Self& rotate(const Normal& from, const Normal& to) noexcept {
    return applyFirst(detail::rotationBetween(from, to));
  }
  /// By reflection in `plane`; nothing where its normal is not valid.
  Self& mirror(const Plane& plane) noexcept {
    return applyFirst(detail::reflection(plane.normal()), plane.origin());
  }

  /// Of the first three rows and columns.
  [[nodiscard]] constexpr double det3x3() const noexcept { return detail::determinant3<width>(this->m_.n); }
  /// Whether the determinant of the whole is not below `epsilonTol`: what `invertFast` asks.
  [[nodiscard]] bool isInvertible() const noexcept {
    return detail::isUsableDeterminant(static_cast<const Self&>(*this).det4x4());
  }

protected:
  using Matrix<Self, double, 4, width>::Matrix;
  using typename Matrix<Self, double, 4, width>::Row;
  using Matrix<Self, double, 4, width>::row;
  using Matrix<Self, double, 4, width>::turn;

private:
  Self& setRows(const Row& x, const Row& y, const Row& z) noexcept {
    x.storeAt((*this)[0]);
    y.storeAt((*this)[1]);
    z.storeAt((*this)[2]);
    return this->self();
  }
  Self& applyFirst(const detail::Linear3& first) noexcept {
    const auto transformed = [&](int place) {
      return detail::weighted<width>(detail::Numbers<double, 3>::at(first.n + 3 * place), this->m_.n);
    };
    return setRows(transformed(0), transformed(1), transformed(2));
  }
  /// With `center` in the place of the origin.
  Self& applyFirst(const detail::Linear3& first, const Point& center) noexcept {
    const auto still = detail::Numbers<double, 3>::template at<double>(center);
    const auto offset = still - detail::weighted<3>(still, first.n);
    translate(offset[0], offset[1], offset[2]);
    return applyFirst(first);
  }
};

} // namespace base

} // namespace qvLinear
