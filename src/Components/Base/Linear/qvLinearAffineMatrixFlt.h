// `AffineMatrix` in narrow numbers, for what is drawn.
#pragma once

#include "Base/Linear/qvLinearAffineMatrix.h"

namespace qvLinear {

/// As `AffineMatrix`, with the part of its operations that narrow data need.
class AffineMatrixFlt {
public:
  static QV_BASE_API const AffineMatrixFlt Identity;

  AffineMatrixFlt() = default;
  explicit constexpr AffineMatrixFlt(float value) noexcept : m_(detail::diagonal<3, 12>(value)) {}
  explicit constexpr AffineMatrixFlt(detail::PointerTo<float> auto numbers) noexcept : m_(All::at(numbers)) {}
  /// @{ Narrows.
  explicit AffineMatrixFlt(const AffineMatrix& wide) noexcept : m_(All::at<double>(wide)) {}
  AffineMatrixFlt& operator=(const AffineMatrix& wide) noexcept { return *this = AffineMatrixFlt(wide); }
  /// @}
  /// @{ Narrows the affine part of `wide`, without a look at `isAffine`.
  inline AffineMatrixFlt(Promise promise, const ProjMatrix& wide) noexcept;
  inline AffineMatrixFlt& operator=(const ProjMatrix& wide) noexcept;
  /// @}

  void set(detail::PointerTo<float> auto numbers) noexcept { m_ = All::at(numbers); }
  void get(std::same_as<float*> auto numbers) const noexcept { m_.storeAt(numbers); }
  template <std::same_as<float> T>
  operator const T*() const noexcept {
    return m_.n;
  }
  [[nodiscard]] float* operator[](int row) noexcept { return m_.n + 3 * row; }
  [[nodiscard]] const float* operator[](int row) const noexcept { return m_.n + 3 * row; }

  AffineMatrixFlt& identity() noexcept { return *this = AffineMatrixFlt(1.0F); }
  AffineMatrixFlt& zero() noexcept { return *this = AffineMatrixFlt(0.0F); }
  /// The translation is lost: it becomes 0.
  AffineMatrixFlt& transpose() noexcept {
    m_ = detail::transposedAffine(m_);
    return *this;
  }
  [[nodiscard]] constexpr float det3x3() const noexcept { return detail::determinant3<3>(m_.n); }

  /// out = m * this; any of them may be the same.
  void preMult(AffineMatrixFlt& out, const AffineMatrixFlt& m) const noexcept {
    detail::multiplyAffine<3>(out.m_.n, m.m_.n, m_.n);
  }
  /// this = m * this.
  void preMult(const AffineMatrixFlt& m) noexcept { preMult(*this, m); }
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

  /// this = this * m.
  AffineMatrixFlt& operator*=(const AffineMatrixFlt& m) noexcept {
    detail::multiplyAffine<3>(m_.n, m_.n, m.m_.n);
    return *this;
  }
  [[nodiscard]] friend bool operator==(const AffineMatrixFlt& a, const AffineMatrixFlt& b) noexcept {
    return a.m_ == b.m_;
  }

private:
  using All = detail::Numbers<float, 12>;

  All m_;
};

static_assert(sizeof(AffineMatrixFlt) == 48 && std::is_trivially_copyable_v<AffineMatrixFlt> &&
              std::is_standard_layout_v<AffineMatrixFlt> &&
              std::is_trivially_default_constructible_v<AffineMatrixFlt>);

[[nodiscard]] inline bool equivalent(const AffineMatrixFlt& a, const AffineMatrixFlt& b, double tolerance) noexcept {
  return detail::allWithin<12, float>(a, b, tolerance);
}

inline AffineMatrix::AffineMatrix(const AffineMatrixFlt& narrow) noexcept : m_(All::at<float>(narrow)) {}

[[nodiscard]] inline AffineMatrixFlt operator*(const AffineMatrixFlt& a, const AffineMatrixFlt& b) noexcept {
  AffineMatrixFlt product;
  b.preMult(product, a);
  return product;
}
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
