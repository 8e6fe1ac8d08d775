// A rigid or affine transform of space. Points are rows and stand on the left: `p * A * B` applies A first.
// With the rows m0, m1, m2 and the translation t, a point p goes to p.x * m0 + p.y * m1 + p.z * m2 + t, and a
// vector to the same without t: the fourth column, which is not stored, is (0, 0, 0, 1).
#pragma once

#include "Base/Linear/qvLinearForward.h"
#include "Base/Linear/qvLinearHPoint.h"
#include "Base/Linear/qvLinearPoint.h"
#include "Base/Linear/qvLinearSpaceMatrix.h"
#include "Base/Linear/qvLinearVector.h"
#include "Base/qvBase.h"

#include <cstddef>
#include <iosfwd>
#include <type_traits>

namespace qvLinear {

/// Twelve numbers: the three rows of the linear part, then the translation. The bases give `set`, `get`,
/// `[]`, a pointer, `identity`, `zero`, comparison, sums and products; `translate`, `scale`, the `rotate`
/// forms, `mirror`.
class AffineMatrix : public base::SpaceMatrix<AffineMatrix, 3> {
public:
  static QV_BASE_API const AffineMatrix Identity;

  AffineMatrix() = default;
  /// `value` on the diagonal of the linear part; all else, the translation too, is 0.
  explicit constexpr AffineMatrix(double value) noexcept : SpaceMatrix(diagonal(value)) {}
  /// All twelve, in storage order.
  explicit constexpr AffineMatrix(detail::PointerTo<double> auto numbers) noexcept
      : SpaceMatrix(All::at(numbers)) {}
  AffineMatrix(const AffineMatrixFlt& narrow) noexcept;
  /// The affine part of `matrix`, without a look at `isAffine`: its fourth column is left out.
  AffineMatrix(const Promise&, const ProjMatrix& matrix) noexcept;

  /// Row i of the linear part becomes a[i] times `b`, the translation 0.
  AffineMatrix& outerProduct(const Vector& a, const Vector& b) noexcept;
  /// The linear part becomes the skew-symmetric matrix with the rows (0, -z, y), (z, 0, -x), (-y, x, 0) of
  /// `v`, the translation 0.
  AffineMatrix& crossMatrix(const Vector& v) noexcept;

  /// Transposes the linear part. The translation is lost: it becomes 0.
  AffineMatrix& transpose() noexcept {
    m_ = detail::transposedAffine(m_);
    return *this;
  }
  /// Of the whole matrix with its fourth column, which is the same.
  [[nodiscard]] constexpr double det4x4() const noexcept { return det3x3(); }

  /// Makes the matrix its inverse, by Gauss-Jordan elimination with partial pivoting.
  /// @return false where a pivot is below `epsilonTol`; the matrix is unchanged then.
  QV_BASE_API bool invert() noexcept;
  /// The same by cofactors, for the well scaled: false, with the matrix unchanged, where the determinant is
  /// below `epsilonTol`. A scale by 1e-5 can be inverted by `invert` alone.
  bool invertFast() noexcept { return detail::invertAffineFast(m_.n); }
  /// The inverse as `invert` makes it; this matrix itself where that fails.
  [[nodiscard]] AffineMatrix inverse() const noexcept { return inverted(); }

  using SpaceMatrix::preMult;
  /// @{ Transforms `in` into `out`. Does nothing at all where both are the same object: use a separate `out`.
  void preMult(Point& out, const Point& in) const noexcept;
  void preMult(Vector& out, const Vector& in) const noexcept;
  /// @}
  /// The weight stays. `out` may be `in`, here and in the forms below.
  void preMult(HPoint& out, const HPoint& in) const noexcept;
  /// The direction goes as a vector and is normalised again.
  QV_BASE_API void preMult(Line& out, const Line& in) const noexcept;
  QV_BASE_API void preMult(ParamLine& out, const ParamLine& in) const noexcept;
  /// The normal goes by `normalMatrix` and is normalised again: it stays the direction of `cross(u, v)`,
  /// where u and v span the plane and go with it. Where the matrix has no inverse, the normal goes as a
  /// vector.
  QV_BASE_API void preMult(Plane& out, const Plane& in) const noexcept;
  QV_BASE_API void preMult(ParamPlane& out, const ParamPlane& in) const noexcept;
  /// The bounds of the eight transformed corners. An empty range stays empty.
  QV_BASE_API void preMult(Range3d& out, const Range3d& in) const noexcept;

  /// @{ Transforms `count` values at `in` into those at `out`. Unlike the single forms these work in place:
  /// `out` may be `in`, but may not overlap it otherwise.
  QV_BASE_API void preMult(Point* out, const Point* in, std::size_t count) const noexcept;
  QV_BASE_API void preMult(Vector* out, const Vector* in, std::size_t count) const noexcept;
  QV_BASE_API void preMult(HPoint* out, const HPoint* in, std::size_t count) const noexcept;
  /// @}

  /// @{ The translation as `origin`, and the three rows.
  void getFrame(Point& origin, Vector& x, Vector& y, Vector& z) const noexcept;
  void setFrame(const Point& origin, const Vector& x, const Vector& y, const Vector& z) noexcept;
  [[nodiscard]] Vector getTranslate() const noexcept { return Vector((*this)[3]); }
  /// @}

  /// What transforms directions: the transposed inverse. Where there is none, `ok` is false and the result is
  /// a copy of this matrix.
  [[nodiscard]] QV_BASE_API AffineMatrix vectorMatrix(bool& ok) const noexcept;
  /// What transforms surface normals: as `vectorMatrix`, and, where this matrix mirrors, times -1, so that
  /// the mirror does not turn them inwards.
  [[nodiscard]] QV_BASE_API AffineMatrix normalMatrix(bool& ok) const noexcept;
};

static_assert(sizeof(AffineMatrix) == 96 && std::is_trivially_copyable_v<AffineMatrix> &&
              std::is_standard_layout_v<AffineMatrix> &&
              std::is_trivially_default_constructible_v<AffineMatrix>);

/// @{ The transformed value, by `preMult`.
[[nodiscard]] inline Point operator*(const Point& p, const AffineMatrix& m) noexcept {
  Point out;
  m.preMult(out, p);
  return out;
}
[[nodiscard]] inline Vector operator*(const Vector& v, const AffineMatrix& m) noexcept {
  Vector out;
  m.preMult(out, v);
  return out;
}
[[nodiscard]] inline HPoint operator*(const HPoint& p, const AffineMatrix& m) noexcept {
  HPoint out;
  m.preMult(out, p);
  return out;
}
[[nodiscard]] QV_BASE_API Line operator*(const Line& line, const AffineMatrix& m) noexcept;
[[nodiscard]] QV_BASE_API ParamLine operator*(const ParamLine& line, const AffineMatrix& m) noexcept;
[[nodiscard]] QV_BASE_API Plane operator*(const Plane& plane, const AffineMatrix& m) noexcept;
[[nodiscard]] QV_BASE_API ParamPlane operator*(const ParamPlane& plane, const AffineMatrix& m) noexcept;
[[nodiscard]] QV_BASE_API Range3d operator*(const Range3d& range, const AffineMatrix& m) noexcept;
/// @}

/// "AffineMatrix(", the four rows, each on a line of its own with commas between its numbers, and ")"; the
/// numbers as the stream writes them.
QV_BASE_API std::ostream& operator<<(std::ostream& out, const AffineMatrix& m);

inline AffineMatrix& AffineMatrix::outerProduct(const Vector& a, const Vector& b) noexcept {
  m_ = All::made([&](int i) { return i < 9 ? a[i / 3] * b[i % 3] : 0.0; });
  return *this;
}

inline AffineMatrix& AffineMatrix::crossMatrix(const Vector& v) noexcept {
  m_ = All(0.0, -v[2], v[1], v[2], 0.0, -v[0], -v[1], v[0], 0.0, 0.0, 0.0, 0.0);
  return *this;
}

inline void AffineMatrix::preMult(Point& out, const Point& in) const noexcept {
  if (&out != &in) out = Point(detail::rowTimesAffine<3, double>(in, m_.n).n);
}

inline void AffineMatrix::preMult(Vector& out, const Vector& in) const noexcept {
  if (&out != &in) out = Vector(detail::rowTimes<3, double>(in, m_.n).n);
}

inline void AffineMatrix::preMult(HPoint& out, const HPoint& in) const noexcept {
  const Row moved = detail::homogeneousTimesAffine<double>(in, m_.n);
  out = HPoint(moved[0], moved[1], moved[2], in[3]);
}

inline void AffineMatrix::getFrame(Point& origin, Vector& x, Vector& y, Vector& z) const noexcept {
  x = Vector((*this)[0]);
  y = Vector((*this)[1]);
  z = Vector((*this)[2]);
  origin = Point((*this)[3]);
}

inline void AffineMatrix::setFrame(const Point& origin, const Vector& x, const Vector& y,
                                   const Vector& z) noexcept {
  x.get((*this)[0]);
  y.get((*this)[1]);
  z.get((*this)[2]);
  origin.get((*this)[3]);
}

} // namespace qvLinear
