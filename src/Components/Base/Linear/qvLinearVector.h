// Vector, Vector2, VectorFlt, Vector2Flt: directions and offsets.
#pragma once

#include "Base/Linear/qvLinearCoordinates.h"
#include "Base/Linear/qvLinearTolerance.h"
#include "Base/qvBase.h"

#include <iosfwd>

namespace qvLinear {

/// A direction or an offset in space, of any length. The base gives `set`, `get`, `[]`, pointers, comparison,
/// sums and products.
class Vector : public base::Arithmetic<Vector, double, 3> {
public:
  QV_BASE_API static const Vector x;
  QV_BASE_API static const Vector y;
  QV_BASE_API static const Vector z;
  QV_BASE_API static const Vector zero;

  Vector() = default;
  constexpr Vector(double dx, double dy, double dz) noexcept : Arithmetic(dx, dy, dz) {}
  /// From numbers in memory.
  constexpr Vector(detail::PointerTo<double> auto from) noexcept : Vector(from[0], from[1], from[2]) {}
  /// With z = 0.
  constexpr Vector(const Vector2& v) noexcept;
  constexpr Vector(const VectorFlt& v) noexcept;
  constexpr Vector(const Normal& n) noexcept;

  [[nodiscard]] double length() const noexcept { return std::sqrt(length2()); }
  /// The square of the length.
  [[nodiscard]] constexpr double length2() const noexcept { return detail::dot(*this, *this); }
  /// Scales to length 1. Where the squared length is not strictly above `epsilon2Tol`, the vector becomes
  /// zero and the result is false.
  bool normalize() noexcept { return detail::normalizeOrClear(*this, epsilon2Tol); }
  /// The unit direction, invalid where this is too short; see `Normal`.
  [[nodiscard]] Normal normalized() const noexcept;
  constexpr Vector& reverse() noexcept { return *this *= -1; }
  /// A vector at a right angle to this one, of any length; zero for zero.
  [[nodiscard]] constexpr Vector orthogonalVector() const noexcept { return detail::orthogonal(*this); }
  [[nodiscard]] constexpr Point asPoint() const noexcept;

  /// "Vector(x,y,z)", the numbers as the stream writes them.
  friend QV_BASE_API std::ostream& operator<<(std::ostream& out, const Vector& v);
};

/// A direction or an offset in the plane. As `Vector`, but for what is told here.
class Vector2 : public base::Arithmetic<Vector2, double, 2> {
public:
  QV_BASE_API static const Vector2 x;
  QV_BASE_API static const Vector2 y;
  QV_BASE_API static const Vector2 zero;

  Vector2() = default;
  constexpr Vector2(double dx, double dy) noexcept : Arithmetic(dx, dy) {}
  constexpr Vector2(detail::PointerTo<double> auto from) noexcept : Vector2(from[0], from[1]) {}
  constexpr Vector2(const Vector2Flt& v) noexcept;

  [[nodiscard]] double length() const noexcept { return std::sqrt(length2()); }
  [[nodiscard]] constexpr double length2() const noexcept { return detail::dot(*this, *this); }
  /// Scales to length 1. Unlike in the other classes the length and not its square is tested, and a vector
  /// shorter than `epsilonTol` stays as it was and gives false: callers rest on both.
  bool normalize() noexcept {
    const double before = length();
    if (std::fabs(before) < epsilonTol) return false;
    *this /= before;
    return true;
  }
  /// In space, with z = 0.
  [[nodiscard]] Normal normalized() const noexcept;
  constexpr Vector2& reverse() noexcept { return *this *= -1; }
  /// This one turned left by a right angle.
  [[nodiscard]] constexpr Vector2 orthogonalVector() const noexcept { return {-numbers_[1], numbers_[0]}; }
  [[nodiscard]] constexpr Point2 asPoint2() const noexcept;
  /// @{ With z = 0.
  [[nodiscard]] constexpr Point asPoint() const noexcept;
  [[nodiscard]] constexpr Vector asVector() const noexcept;
  /// @}
};

/// `Vector` in narrow numbers. Its products, sums and scalars are narrow too.
class VectorFlt : public base::Arithmetic<VectorFlt, float, 3> {
public:
  QV_BASE_API static const VectorFlt x;
  QV_BASE_API static const VectorFlt y;
  QV_BASE_API static const VectorFlt z;
  QV_BASE_API static const VectorFlt zero;

  VectorFlt() = default;
  /// Numbers of any type, also whole ones and a mixture; they are narrowed.
  constexpr VectorFlt(detail::Numeric auto dx, detail::Numeric auto dy, detail::Numeric auto dz) noexcept
      : Arithmetic(dx, dy, dz) {}
  constexpr VectorFlt(detail::PointerTo<float> auto from) noexcept : VectorFlt(from[0], from[1], from[2]) {}
  constexpr VectorFlt(const Vector2Flt& v) noexcept;
  explicit constexpr VectorFlt(const Vector& v) noexcept;

  /// The root, taken wide, of the narrow sum.
  [[nodiscard]] double length() const noexcept { return std::sqrt(double{length2()}); }
  [[nodiscard]] constexpr float length2() const noexcept { return detail::dot(*this, *this); }
  /// As for `Vector`, with `epsilon2TolFlt`.
  bool normalize() noexcept { return detail::normalizeOrClear(*this, epsilon2TolFlt); }
  [[nodiscard]] Normal normalized() const noexcept;
  constexpr VectorFlt& reverse() noexcept { return *this *= -1; }
  [[nodiscard]] constexpr VectorFlt orthogonalVector() const noexcept { return detail::orthogonal(*this); }
  [[nodiscard]] constexpr PointFlt asPointFlt() const noexcept;

  /// "VectorFlt(x,y,z)", the numbers as the stream writes them.
  friend QV_BASE_API std::ostream& operator<<(std::ostream& out, const VectorFlt& v);
};

/// `Vector2` in narrow numbers.
class Vector2Flt : public base::Arithmetic<Vector2Flt, float, 2> {
public:
  QV_BASE_API static const Vector2Flt x;
  QV_BASE_API static const Vector2Flt y;
  QV_BASE_API static const Vector2Flt zero;

  Vector2Flt() = default;
  constexpr Vector2Flt(detail::Numeric auto dx, detail::Numeric auto dy) noexcept : Arithmetic(dx, dy) {}
  constexpr Vector2Flt(detail::PointerTo<float> auto from) noexcept : Vector2Flt(from[0], from[1]) {}
  explicit constexpr Vector2Flt(const Vector2& v) noexcept;

  [[nodiscard]] double length() const noexcept { return std::sqrt(double{length2()}); }
  [[nodiscard]] constexpr float length2() const noexcept { return detail::dot(*this, *this); }
  /// As for `VectorFlt`, and not as for `Vector2`.
  bool normalize() noexcept { return detail::normalizeOrClear(*this, epsilon2TolFlt); }
  [[nodiscard]] Normal normalized() const noexcept;
  constexpr Vector2Flt& reverse() noexcept { return *this *= -1; }
  [[nodiscard]] constexpr Vector2Flt orthogonalVector() const noexcept { return {-numbers_[1], numbers_[0]}; }
  [[nodiscard]] constexpr Point2Flt asPoint2Flt() const noexcept;
  [[nodiscard]] constexpr PointFlt asPointFlt() const noexcept;
  [[nodiscard]] constexpr VectorFlt asVectorFlt() const noexcept;
};

static_assert(sizeof(Vector) == 24 && sizeof(Vector2) == 16 && sizeof(VectorFlt) == 12 &&
              sizeof(Vector2Flt) == 8);

constexpr Vector::Vector(const Vector2& v) noexcept : Vector(v[0], v[1], 0) {}
constexpr Vector::Vector(const VectorFlt& v) noexcept : Vector(v[0], v[1], v[2]) {}
constexpr Vector2::Vector2(const Vector2Flt& v) noexcept : Vector2(v[0], v[1]) {}
constexpr VectorFlt::VectorFlt(const Vector2Flt& v) noexcept : VectorFlt(v[0], v[1], 0) {}
constexpr VectorFlt::VectorFlt(const Vector& v) noexcept : VectorFlt(v[0], v[1], v[2]) {}
constexpr Vector2Flt::Vector2Flt(const Vector2& v) noexcept : Vector2Flt(v[0], v[1]) {}
constexpr Vector Vector2::asVector() const noexcept { return *this; }
constexpr VectorFlt Vector2Flt::asVectorFlt() const noexcept { return *this; }

/// The scalar product; of narrow vectors it is narrow. A `Normal` counts as a `Vector`.
/// @{
[[nodiscard]] constexpr double dot(const Vector& a, const Vector& b) noexcept { return detail::dot(a, b); }
[[nodiscard]] constexpr double dot(const Vector2& a, const Vector2& b) noexcept { return detail::dot(a, b); }
[[nodiscard]] constexpr float dot(const VectorFlt& a, const VectorFlt& b) noexcept {
  return detail::dot(a, b);
}
[[nodiscard]] constexpr float dot(const Vector2Flt& a, const Vector2Flt& b) noexcept {
  return detail::dot(a, b);
}
/// @}

/// The vector product. A `Normal` counts as a `Vector` on either side, and the product of two is not
/// normalised again.
/// @{
[[nodiscard]] constexpr Vector cross(const Vector& a, const Vector& b) noexcept {
  return detail::cross(a, b);
}
[[nodiscard]] constexpr VectorFlt cross(const VectorFlt& a, const VectorFlt& b) noexcept {
  return detail::cross(a, b);
}
/// @}

} // namespace qvLinear
