// A rotation as a quaternion.
#pragma once

#include "Base/Linear/qvLinearAffineMatrix.h"
#include "Base/Linear/qvLinearDistance.h"
#include "Base/Linear/qvLinearNormal.h"

namespace qvLinear {

/// x, y, z and, last, the scalar part w. All operations but the arithmetic expect unit length. Angles are in
/// radians; a positive one turns counter-clockwise, seen from the tip of the axis. The base gives `set`,
/// `get`, `[]`, pointers, comparison, sums and products, number by number. A quaternion and its negative are
/// the same rotation and not equal.
class Quaternion : public base::Arithmetic<Quaternion, double, 4> {
public:
  Quaternion() = default;
  constexpr Quaternion(double x, double y, double z, double w) noexcept : Arithmetic(x, y, z, w) {}
  /// From numbers in memory.
  explicit constexpr Quaternion(detail::PointerTo<double> auto from) noexcept
      : Quaternion(from[0], from[1], from[2], from[3]) {}
  Quaternion(double angle, const Normal& axis) noexcept { setAngleAxis(angle, axis); }

  /// The rotation by `angle` about `axis`, normalised; none where the axis is not valid.
  QV_BASE_API void setAngleAxis(double angle, const Normal& axis) noexcept;
  /// @return false, with the angle 0 and the axis x, where w is within `epsilonTol` of 1.
  QV_BASE_API bool getAngleAxis(double& angle, Normal& axis) const noexcept;

  /// @{ From and to the frame to which the rotation takes the axes of the coordinates: right-handed, its
  /// directions at right angles. Method: Shoemake, "Animating Rotation with Quaternion Curves", 1985.
  QV_BASE_API void setFrame(const Normal& x, const Normal& y, const Normal& z) noexcept;
  QV_BASE_API void getFrame(Normal& x, Normal& y, Normal& z) const noexcept;
  /// With the translation 0.
  QV_BASE_API void getMatrix(AffineMatrix& matrix) const noexcept;
  /// @}

  /// The root of the sum of the squares of all four numbers.
  [[nodiscard]] double length() const noexcept { return std::sqrt(detail::dot(*this, *this)); }
  /// Divides by the length. Zero is not guarded against: it becomes not-a-number.
  void normalize() noexcept { *this /= length(); }
};

static_assert(sizeof(Quaternion) == 32 && std::is_trivially_copyable_v<Quaternion> &&
              std::is_standard_layout_v<Quaternion> && std::is_trivially_default_constructible_v<Quaternion>);

/// From `a` at t = 0 to `b` at t = 1, the shorter way and at an even pace. Where the dot product of the two
/// is below 0, that way begins at -a, which is the same rotation as `a`. Where it is, without its sign, above
/// `parallelTol`, the way is straight.
[[nodiscard]] QV_BASE_API Quaternion slerp(const Quaternion& a, const Quaternion& b, double t) noexcept;

} // namespace qvLinear
