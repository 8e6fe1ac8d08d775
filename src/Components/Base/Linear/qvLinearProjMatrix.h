// A projective transform of space, such as a camera's. Points are rows and stand on the left: `p * A * B`
// applies A first.
#pragma once

#include "Base/Linear/qvLinearAffineMatrixFlt.h"
#include "Base/Linear/qvLinearNormal.h"
#include "Base/Linear/qvLinearTuple.h"

namespace qvLinear {

/// Sixteen numbers, four rows of four. The bases give `set`, `get`, `[]`, a pointer, `identity`, `zero`,
/// comparison, sums and products; `translate`, `scale`, the `rotate` forms, `mirror`.
class ProjMatrix : public base::SpaceMatrix<ProjMatrix, 4> {
public:
  static QV_BASE_API const ProjMatrix Identity;

  ProjMatrix() = default;
  /// `value` on the diagonal, all four; all else is 0.
  explicit constexpr ProjMatrix(double value) noexcept : SpaceMatrix(diagonal(value)) {}
  /// All sixteen, in storage order.
  explicit constexpr ProjMatrix(detail::PointerTo<double> auto numbers) noexcept
      : SpaceMatrix(All::at(numbers)) {}
  /// @{ With the fourth column (0, 0, 0, 1).
  ProjMatrix(const AffineMatrix& affine) noexcept
      : SpaceMatrix(detail::withFourthColumn<double, double>(affine)) {}
  explicit ProjMatrix(const AffineMatrixFlt& affine) noexcept
      : SpaceMatrix(detail::withFourthColumn<double, float>(affine)) {}
  /// @}
  ProjMatrix(const ProjMatrixFlt& narrow) noexcept;

  /// Transposes all of it.
  ProjMatrix& transpose() noexcept {
    m_ = detail::transposedProjective(m_);
    return *this;
  }
  [[nodiscard]] constexpr double det4x4() const noexcept { return detail::determinant4(m_.n); }

  /// Makes the matrix its inverse, by Gauss-Jordan elimination with partial pivoting.
  /// @return false where a pivot is below `epsilonTol`; the matrix is unchanged then.
  QV_BASE_API bool invert() noexcept;
  /// The same by cofactors, for the well scaled: false, with the matrix unchanged, where the determinant is
  /// below `epsilonTol`.
  bool invertFast() noexcept { return detail::invertProjectiveFast(m_.n); }
  /// The inverse as `invert` makes it; this matrix itself where that fails.
  [[nodiscard]] ProjMatrix inverse() const noexcept { return inverted(); }
  /// Whether the fourth column is (0, 0, 0, 1), each number to less than `epsilonTol`.
  [[nodiscard]] bool isAffine() const noexcept;

  using SpaceMatrix::preMult;
  /// @{ Transforms `in` into `out`, which may be `in`.
  void preMult(HPoint& out, const HPoint& in) const noexcept {
    out = HPoint(detail::rowTimes<4, double>(in, m_.n).n);
  }
  void preMult(Tuple4& out, const Tuple4& in) const noexcept {
    out = Tuple4(detail::rowTimes<4, double>(in, m_.n).n);
  }
  /// @}
  /// By the first three rows and columns. Does nothing at all where `out` and `in` are the same object.
  void preMult(Vector& out, const Vector& in) const noexcept;
  /// Transforms `count` points at `in` into those at `out`; in place too, but `out` may not overlap `in`
  /// otherwise.
  QV_BASE_API void preMult(HPoint* out, const HPoint* in, std::size_t count) const noexcept;
};

static_assert(sizeof(ProjMatrix) == 128 && std::is_trivially_copyable_v<ProjMatrix> &&
              std::is_standard_layout_v<ProjMatrix> && std::is_trivially_default_constructible_v<ProjMatrix>);

/// @{ The transformed value, by `preMult`. A `Point` has the weight 1 before it is transformed.
[[nodiscard]] inline HPoint operator*(const HPoint& p, const ProjMatrix& m) noexcept {
  HPoint out;
  m.preMult(out, p);
  return out;
}
[[nodiscard]] inline HPoint operator*(const Point& p, const ProjMatrix& m) noexcept { return HPoint(p) * m; }
[[nodiscard]] inline Tuple4 operator*(const Tuple4& t, const ProjMatrix& m) noexcept {
  Tuple4 out;
  m.preMult(out, t);
  return out;
}
[[nodiscard]] inline Vector operator*(const Vector& v, const ProjMatrix& m) noexcept {
  Vector out;
  m.preMult(out, v);
  return out;
}
/// @}

/// "ProjMatrix(", the four rows, each on a line of its own with commas between its numbers, and ")"; the
/// numbers as the stream writes them.
QV_BASE_API std::ostream& operator<<(std::ostream& out, const ProjMatrix& m);

inline AffineMatrix::AffineMatrix(const Promise&, const ProjMatrix& matrix) noexcept
    : SpaceMatrix(All::made([&](int i) { return matrix[i / 3][i % 3]; })) {}

inline AffineMatrixFlt::AffineMatrixFlt(const Promise& promise, const ProjMatrix& wide) noexcept
    : AffineMatrixFlt(AffineMatrix(promise, wide)) {}

inline AffineMatrixFlt& AffineMatrixFlt::operator=(const ProjMatrix& wide) noexcept {
  return *this = AffineMatrixFlt(Promise(), wide);
}

inline bool ProjMatrix::isAffine() const noexcept {
  const auto isZero = [](double number) { return std::fabs(number) < epsilonTol; };
  return isZero(m_[3]) && isZero(m_[7]) && isZero(m_[11]) && isZero(m_[15] - 1.0);
}

inline void ProjMatrix::preMult(Vector& out, const Vector& in) const noexcept {
  if (&out != &in) out = Vector(detail::weighted<3, 4>(detail::Numbers<double, 3>::at<double>(in), m_.n).n);
}

} // namespace qvLinear
