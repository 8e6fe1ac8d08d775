// A rotation as a quaternion.
#pragma once

#include "Base/Linear/qvLinearAffineMatrix.h"
#include "Base/Linear/qvLinearNormal.h"

namespace qvLinear {

/// x, y, z and, last, the scalar part w. All operations but the arithmetic expect unit length. Angles are in
/// radians; a positive one turns counter-clockwise, seen from the tip of the axis.
class Quaternion {
public:
  using Number = double;
  static constexpr int size = 4;

  /// Leaves the numbers as they are.
  Quaternion() = default;
  constexpr Quaternion(double x, double y, double z, double w) noexcept : q_{{x, y, z, w}} {}
  /// From numbers in memory.
  explicit constexpr Quaternion(detail::PointerTo<double> auto from) noexcept : q_(All::at(from)) {}
  /// The rotation by `angle` about `axis`, normalised; none where the axis is not valid.
  Quaternion(double angle, const Normal& axis) noexcept { setAngleAxis(angle, axis); }

  constexpr void set(double x, double y, double z, double w) noexcept { *this = Quaternion(x, y, z, w); }
  constexpr void set(detail::PointerTo<double> auto from) noexcept { *this = Quaternion(from); }
  constexpr void get(double& x, double& y, double& z, double& w) const noexcept {
    x = q_.n[0];
    y = q_.n[1];
    z = q_.n[2];
    w = q_.n[3];
  }
  constexpr void get(std::same_as<double*> auto to) const noexcept { q_.storeAt(to); }
  /// The numbers by place, unchecked.
  [[nodiscard]] constexpr double operator[](int place) const noexcept { return q_.n[place]; }
  /// @{ The address of x, for code that takes arrays.
  template <std::same_as<double> T>
  constexpr operator T*() noexcept {
    return q_.n;
  }
  template <std::same_as<double> T>
  constexpr operator const T*() const noexcept {
    return q_.n;
  }
  /// @}

  QV_BASE_API void setAngleAxis(double angle, const Normal& axis) noexcept;
  /// @return false, with the angle 0 and the axis x, where w is within `epsilonTol` of 1.
  QV_BASE_API bool getAngleAxis(double& angle, Normal& axis) const noexcept;

  /// @{ From and to the frame to which the rotation takes the axes of the coordinates: right-handed, of
  /// perpendicular directions. Method: Shoemake, "Animating Rotation with Quaternion Curves", 1985.
  QV_BASE_API void setFrame(const Normal& x, const Normal& y, const Normal& z) noexcept;
  QV_BASE_API void getFrame(Normal& x, Normal& y, Normal& z) const noexcept;
  /// With the translation 0.
  QV_BASE_API void getMatrix(AffineMatrix& matrix) const noexcept;
  /// @}

  /// The root of the sum of the squares of all four numbers.
  [[nodiscard]] double length() const noexcept { return detail::length(q_.n); }
  /// Divides by the length. Zero is not guarded against: it becomes not-a-number.
  void normalize() noexcept { *this /= length(); }

  /// @{ Number by number.
  constexpr Quaternion& operator*=(double factor) noexcept {
    q_ = factor * q_;
    return *this;
  }
  /// Multiplies by the reciprocal: one division, and 0 gives infinities.
  constexpr Quaternion& operator/=(double divisor) noexcept { return *this *= 1.0 / divisor; }
  /// @}
  [[nodiscard]] friend constexpr Quaternion operator/(Quaternion q, double divisor) noexcept {
    return q /= divisor;
  }
  /// Exact. A quaternion and its negative are the same rotation and not equal.
  [[nodiscard]] friend bool operator==(const Quaternion& a, const Quaternion& b) noexcept {
    return a.q_ == b.q_;
  }

private:
  using All = detail::Numbers<double, 4>;

  All q_;
};

static_assert(sizeof(Quaternion) == 32 && std::is_trivially_copyable_v<Quaternion> &&
              std::is_standard_layout_v<Quaternion> && std::is_trivially_default_constructible_v<Quaternion>);

/// Whether all four numbers differ by strictly less than `tolerance`.
[[nodiscard]] inline bool equivalent(const Quaternion& a, const Quaternion& b, double tolerance) noexcept {
  return detail::allWithin<4, double>(a, b, tolerance);
}

/// From `a` at t = 0 to `b` at t = 1, the shorter way and at an even pace. Where the dot product of the two is below
/// 0, that way begins at -a, which is the same rotation as `a`.
[[nodiscard]] QV_BASE_API Quaternion slerp(const Quaternion& a, const Quaternion& b, double t) noexcept;

} // namespace qvLinear
