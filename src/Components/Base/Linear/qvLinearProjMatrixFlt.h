// `ProjMatrix` in narrow numbers, for what is drawn.
#pragma once

#include "Base/Linear/qvLinearProjMatrix.h"

namespace qvLinear {

/// As `ProjMatrix`, with the part of its operations that narrow data need.
class ProjMatrixFlt : public base::Matrix<ProjMatrixFlt, float, 4, 4> {
public:
  static QV_BASE_API const ProjMatrixFlt Identity;

  ProjMatrixFlt() = default;
  explicit constexpr ProjMatrixFlt(float value) noexcept : Matrix(diagonal(value)) {}
  explicit constexpr ProjMatrixFlt(detail::PointerTo<float> auto numbers) noexcept
      : Matrix(All::at(numbers)) {}
  /// @{ Narrows the wide ones.
  explicit ProjMatrixFlt(const ProjMatrix& wide) noexcept : Matrix(All::at<double>(wide)) {}
  explicit ProjMatrixFlt(const AffineMatrix& wide) noexcept
      : Matrix(detail::withFourthColumn<float, double>(wide)) {}
  ProjMatrixFlt(const AffineMatrixFlt& affine) noexcept
      : Matrix(detail::withFourthColumn<float, float>(affine)) {}
  ProjMatrixFlt& operator=(const ProjMatrix& wide) noexcept { return *this = ProjMatrixFlt(wide); }
  ProjMatrixFlt& operator=(const AffineMatrix& wide) noexcept { return *this = ProjMatrixFlt(wide); }
  ProjMatrixFlt& operator=(const AffineMatrixFlt& affine) noexcept { return *this = ProjMatrixFlt(affine); }
  /// @}

  ProjMatrixFlt& transpose() noexcept {
    m_ = detail::transposedProjective(m_);
    return *this;
  }
  /// Of the first three rows and columns.
  [[nodiscard]] constexpr float det3x3() const noexcept { return detail::determinant3<4>(m_.n); }
  [[nodiscard]] constexpr float det4x4() const noexcept { return detail::determinant4(m_.n); }
};

static_assert(sizeof(ProjMatrixFlt) == 64 && std::is_trivially_copyable_v<ProjMatrixFlt> &&
              std::is_standard_layout_v<ProjMatrixFlt> &&
              std::is_trivially_default_constructible_v<ProjMatrixFlt>);

inline ProjMatrix::ProjMatrix(const ProjMatrixFlt& narrow) noexcept : SpaceMatrix(All::at<float>(narrow)) {}

/// As that of `ProjMatrix`, with its own name.
QV_BASE_API std::ostream& operator<<(std::ostream& out, const ProjMatrixFlt& m);

} // namespace qvLinear
