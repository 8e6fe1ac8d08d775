// `ProjMatrix` in narrow numbers, for what is drawn.
#pragma once

#include "Base/Linear/qvLinearProjMatrix.h"

namespace qvLinear {

/// As `ProjMatrix`, with the part of its operations that narrow data need.
class ProjMatrixFlt {
public:
  static QV_BASE_API const ProjMatrixFlt Identity;

  ProjMatrixFlt() = default;
  explicit constexpr ProjMatrixFlt(float value) noexcept : m_(detail::diagonal<4, 16>(value)) {}
  explicit constexpr ProjMatrixFlt(detail::PointerTo<float> auto numbers) noexcept : m_(All::at(numbers)) {}
  /// @{ Narrows the wide ones.
  explicit ProjMatrixFlt(const ProjMatrix& wide) noexcept : m_(All::at<double>(wide)) {}
  explicit ProjMatrixFlt(const AffineMatrix& wide) noexcept
      : m_(detail::withFourthColumn<float, double>(wide)) {}
  ProjMatrixFlt(const AffineMatrixFlt& affine) noexcept
      : m_(detail::withFourthColumn<float, float>(affine)) {}
  ProjMatrixFlt& operator=(const ProjMatrix& wide) noexcept { return *this = ProjMatrixFlt(wide); }
  ProjMatrixFlt& operator=(const AffineMatrix& wide) noexcept { return *this = ProjMatrixFlt(wide); }
  ProjMatrixFlt& operator=(const AffineMatrixFlt& affine) noexcept { return *this = ProjMatrixFlt(affine); }
  /// @}

  void set(detail::PointerTo<float> auto numbers) noexcept { m_ = All::at(numbers); }
  void get(std::same_as<float*> auto numbers) const noexcept { m_.storeAt(numbers); }
  template <std::same_as<float> T>
  operator const T*() const noexcept {
    return m_.n;
  }
  [[nodiscard]] float* operator[](int row) noexcept { return m_.n + 4 * row; }
  [[nodiscard]] const float* operator[](int row) const noexcept { return m_.n + 4 * row; }

  ProjMatrixFlt& identity() noexcept { return *this = ProjMatrixFlt(1.0F); }
  ProjMatrixFlt& zero() noexcept { return *this = ProjMatrixFlt(0.0F); }
  ProjMatrixFlt& transpose() noexcept {
    m_ = detail::transposedProjective(m_);
    return *this;
  }
  /// Of the first three rows and columns.
  [[nodiscard]] constexpr float det3x3() const noexcept { return detail::determinant3<4>(m_.n); }
  [[nodiscard]] constexpr float det4x4() const noexcept { return detail::Minors<float>(m_.n).determinant(); }

  /// out = m * this; any of them may be the same.
  void preMult(ProjMatrixFlt& out, const ProjMatrixFlt& m) const noexcept {
    detail::multiplyProjective(out.m_.n, m.m_.n, m_.n);
  }
  /// this = m * this.
  void preMult(const ProjMatrixFlt& m) noexcept { preMult(*this, m); }

  /// this = this * m.
  ProjMatrixFlt& operator*=(const ProjMatrixFlt& m) noexcept {
    detail::multiplyProjective(m_.n, m_.n, m.m_.n);
    return *this;
  }
  [[nodiscard]] friend bool operator==(const ProjMatrixFlt& a, const ProjMatrixFlt& b) noexcept {
    return a.m_ == b.m_;
  }

private:
  using All = detail::Numbers<float, 16>;

  All m_;
};

static_assert(sizeof(ProjMatrixFlt) == 64 && std::is_trivially_copyable_v<ProjMatrixFlt> &&
              std::is_standard_layout_v<ProjMatrixFlt> &&
              std::is_trivially_default_constructible_v<ProjMatrixFlt>);

[[nodiscard]] inline bool equivalent(const ProjMatrixFlt& a, const ProjMatrixFlt& b, double tolerance) noexcept {
  return detail::allWithin<16, float>(a, b, tolerance);
}

inline ProjMatrix::ProjMatrix(const ProjMatrixFlt& narrow) noexcept : m_(All::at<float>(narrow)) {}

[[nodiscard]] inline ProjMatrixFlt operator*(const ProjMatrixFlt& a, const ProjMatrixFlt& b) noexcept {
  ProjMatrixFlt product;
  b.preMult(product, a);
  return product;
}

/// As that of `ProjMatrix`, with its own name.
QV_BASE_API std::ostream& operator<<(std::ostream& out, const ProjMatrixFlt& m);

} // namespace qvLinear
