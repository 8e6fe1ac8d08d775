// A rigid or affine transform of the plane.
#pragma once

#include "Base/Linear/qvLinearMatrix.h"
#include "Base/Linear/qvLinearPoint.h"
#include "Base/qvBase.h"

#include <type_traits>

namespace qvLinear {

/// As `AffineMatrix`, a dimension lower: six numbers, the two rows of the linear part and then the
/// translation.
class AffineMatrix2 : public base::Matrix<AffineMatrix2, double, 3, 2> {
public:
  static QV_BASE_API const AffineMatrix2 Identity;

  AffineMatrix2() = default;
  explicit constexpr AffineMatrix2(double value) noexcept : Matrix(diagonal(value)) {}
  explicit constexpr AffineMatrix2(detail::PointerTo<double> auto numbers) noexcept
      : Matrix(All::at(numbers)) {}

  /// @{ Put in front, so that they act on a point first.
  AffineMatrix2& translate(double x, double y) noexcept;
  AffineMatrix2& translate(const Vector2& by) noexcept { return translate(by[0], by[1]); }
  AffineMatrix2& scale(double x, double y) noexcept;
  AffineMatrix2& scale(double factor) noexcept { return scale(factor, factor); }
  /// Counter-clockwise, in radians, about the origin.
  AffineMatrix2& rotate(double angle) noexcept { return turn(0, 1, angle); }
  /// @}

  /// The translation is lost: it becomes 0.
  AffineMatrix2& transpose() noexcept {
    m_ = All(m_[0], m_[2], m_[1], m_[3], 0.0, 0.0);
    return *this;
  }
  /// Of the linear part.
  [[nodiscard]] constexpr double det2x2() const noexcept { return m_[0] * m_[3] - m_[1] * m_[2]; }

  /// By elimination with partial pivoting.
  /// @return false where a pivot is below `epsilonTol`; the matrix is unchanged then.
  QV_BASE_API bool invert() noexcept;
  /// The inverse as `invert` makes it; this matrix itself where that fails.
  [[nodiscard]] AffineMatrix2 inverse() const noexcept { return inverted(); }
  /// Whether the determinant is not below `epsilonTol`.
  [[nodiscard]] bool isInvertible() const noexcept { return detail::isUsableDeterminant(det2x2()); }

  using Matrix::preMult;
  /// @{ Does nothing at all where `out` and `in` are the same object.
  void preMult(Point2& out, const Point2& in) const noexcept {
    if (&out != &in) out = Point2(detail::rowTimesAffine<2, double>(in, m_.n).n);
  }
  void preMult(Vector2& out, const Vector2& in) const noexcept {
    if (&out != &in) out = Vector2(detail::rowTimes<2, double>(in, m_.n).n);
  }
  /// @}

  /// @{ The translation as `origin`, and the two rows.
  void getFrame(Point2& origin, Vector2& x, Vector2& y) const noexcept {
    x = Vector2((*this)[0]);
    y = Vector2((*this)[1]);
    origin = Point2((*this)[2]);
  }
  void setFrame(const Point2& origin, const Vector2& x, const Vector2& y) noexcept {
    x.get((*this)[0]);
    y.get((*this)[1]);
    origin.get((*this)[2]);
  }
  [[nodiscard]] Vector2 getTranslate() const noexcept { return Vector2((*this)[2]); }
  /// @}
};

static_assert(sizeof(AffineMatrix2) == 48 && std::is_trivially_copyable_v<AffineMatrix2> &&
              std::is_standard_layout_v<AffineMatrix2> &&
              std::is_trivially_default_constructible_v<AffineMatrix2>);

[[nodiscard]] inline Point2 operator*(const Point2& p, const AffineMatrix2& m) noexcept {
  Point2 out;
  m.preMult(out, p);
  return out;
}
[[nodiscard]] inline Vector2 operator*(const Vector2& v, const AffineMatrix2& m) noexcept {
  Vector2 out;
  m.preMult(out, v);
  return out;
}

inline AffineMatrix2& AffineMatrix2::translate(double x, double y) noexcept {
  (row(2) + detail::weighted<2>(Row(x, y), m_.n)).storeAt((*this)[2]);
  return *this;
}

inline AffineMatrix2& AffineMatrix2::scale(double x, double y) noexcept {
  (x * row(0)).storeAt((*this)[0]);
  (y * row(1)).storeAt((*this)[1]);
  return *this;
}

} // namespace qvLinear
