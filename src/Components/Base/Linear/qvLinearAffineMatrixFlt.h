// `AffineMatrix` in narrow numbers, for what is drawn.
#pragma once

#include "Base/Linear/qvLinearAffineMatrix.h"

namespace qvLinear {

/// As `AffineMatrix`, with the part of its operations that narrow data need.
class AffineMatrixFlt : public base::Matrix<AffineMatrixFlt, float, 4, 3> {
public:
  static QV_BASE_API const AffineMatrixFlt Identity;

  AffineMatrixFlt() = default;
  explicit constexpr AffineMatrixFlt(float value) noexcept : Matrix(diagonal(value)) {}
  explicit constexpr AffineMatrixFlt(detail::PointerTo<float> auto numbers) noexcept
      : Matrix(All::at(numbers)) {}
  /// @{ Narrows.
  explicit AffineMatrixFlt(const AffineMatrix& wide) noexcept : Matrix(All::at<double>(wide)) {}
  AffineMatrixFlt& operator=(const AffineMatrix& wide) noexcept { return *this = AffineMatrixFlt(wide); }
  /// @}
  /// @{ Narrows the affine part of `wide`, without a look at `isAffine`.
  AffineMatrixFlt(const Promise& promise, const ProjMatrix& wide) noexcept;
  AffineMatrixFlt& operator=(const ProjMatrix& wide) noexcept;
  /// @}

  /// The translation is lost: it becomes 0.
  AffineMatrixFlt& transpose() noexcept {
    m_ = detail::transposedAffine(m_);
    return *this;
  }
  [[nodiscard]] constexpr float det3x3() const noexcept { return detail::determinant3<3>(m_.n); }

  using Matrix::preMult;
  /// @{ Does nothing at all where `out` and `in` are the same object.
  void preMult(PointFlt& out, const PointFlt& in) const noexcept {
    if (&out != &in) out = PointFlt(detail::rowTimesAffine<3, float>(in, m_.n).n);
  }
  void preMult(VectorFlt& out, const VectorFlt& in) const noexcept {
    if (&out != &in) out = VectorFlt(detail::rowTimes<3, float>(in, m_.n).n);
  }
  /// @}
  /// @{ `count` values; in place too, but `out` may not overlap `in` otherwise.
  QV_BASE_API void preMult(PointFlt* out, const PointFlt* in, std::size_t count) const noexcept;
  QV_BASE_API void preMult(VectorFlt* out, const VectorFlt* in, std::size_t count) const noexcept;
  /// @}
};

static_assert(sizeof(AffineMatrixFlt) == 48 && std::is_trivially_copyable_v<AffineMatrixFlt> &&
              std::is_standard_layout_v<AffineMatrixFlt> &&
              std::is_trivially_default_constructible_v<AffineMatrixFlt>);

inline AffineMatrix::AffineMatrix(const AffineMatrixFlt& narrow) noexcept
    : SpaceMatrix(All::at<float>(narrow)) {}

[[nodiscard]] inline PointFlt operator*(const PointFlt& p, const AffineMatrixFlt& m) noexcept {
  PointFlt out;
  m.preMult(out, p);
  return out;
}
[[nodiscard]] inline VectorFlt operator*(const VectorFlt& v, const AffineMatrixFlt& m) noexcept {
  VectorFlt out;
  m.preMult(out, v);
  return out;
}

} // namespace qvLinear
