// Vector, Vector2, VectorFlt, Vector2Flt: directions and offsets.
#pragma once

#include "Base/Linear/qvLinearComponents.h"
#include "Base/Linear/qvLinearForward.h"
#include "Base/Linear/qvLinearTolerance.h"

#include <iosfwd>

namespace qvLinear {

/// A direction or an offset in space, of any length.
class Vector {
public:
  using Number = double;
  static constexpr int size = 3;

  QV_BASE_API static const Vector x;
  QV_BASE_API static const Vector y;
  QV_BASE_API static const Vector z;
  QV_BASE_API static const Vector zero;

  /// Leaves the numbers as they are in memory.
  Vector() = default;
  constexpr Vector(double dx, double dy, double dz) noexcept : numbers_{dx, dy, dz} {}
  /// From numbers in memory.
  explicit constexpr Vector(detail::PointerTo<double> auto from) noexcept
      : numbers_{from[0], from[1], from[2]} {}
  /// With z = 0.
  constexpr Vector(const Vector2& v) noexcept;
  constexpr Vector(const VectorFlt& v) noexcept;
  constexpr Vector(const Normal& n) noexcept;

  constexpr void set(double dx, double dy, double dz) noexcept { *this = Vector(dx, dy, dz); }
  constexpr void set(detail::PointerTo<double> auto from) noexcept { *this = Vector(from); }
  constexpr void set(const Vector2& v) noexcept;
  constexpr void get(double& dx, double& dy, double& dz) const noexcept {
    dx = numbers_[0];
    dy = numbers_[1];
    dz = numbers_[2];
  }
  constexpr void get(std::same_as<double*> auto to) const noexcept { detail::copyOut(numbers_, to); }

  /// The numbers by place, unchecked.
  [[nodiscard]] constexpr double operator[](int place) const noexcept { return numbers_[place]; }
  /// @{ The address of x, for code that takes arrays. Templates, so that an object is only ever a pointer:
  /// addresses are not compared, subtracted or tested by mistake.
  template <std::same_as<double> T>
  constexpr operator T*() noexcept {
    return numbers_;
  }
  template <std::same_as<double> T>
  constexpr operator const T*() const noexcept {
    return numbers_;
  }
  /// @}

  constexpr Vector& operator+=(const Vector& other) noexcept {
    detail::add(numbers_, other.numbers_);
    return *this;
  }
  constexpr Vector& operator-=(const Vector& other) noexcept {
    detail::subtract(numbers_, other.numbers_);
    return *this;
  }
  constexpr Vector& operator*=(double factor) noexcept {
    detail::scale(numbers_, factor);
    return *this;
  }
  /// Multiplies by the reciprocal: one division, the last bit may differ from a true one, and 0 gives
  /// infinities.
  constexpr Vector& operator/=(double divisor) noexcept { return *this *= 1.0 / divisor; }
  /// Exact.
  constexpr bool operator==(const Vector&) const noexcept = default;

  [[nodiscard]] double length() const noexcept { return detail::length(numbers_); }
  /// The square of the length.
  [[nodiscard]] constexpr double length2() const noexcept { return detail::sumOfSquares(numbers_); }
  /// Scales to length 1. Where the squared length is not strictly above `epsilon2Tol`, the vector becomes
  /// zero and the result is false.
  bool normalize() noexcept { return detail::normalizeOrClear(numbers_, epsilon2Tol); }
  /// The unit direction, invalid where this is too short; see `Normal`.
  [[nodiscard]] Normal normalized() const noexcept;
  constexpr Vector& reverse() noexcept { return *this *= -1; }
  /// A vector at a right angle to this one, of any length; zero for zero.
  [[nodiscard]] constexpr Vector orthogonalVector() const noexcept { return detail::orthogonal(*this); }
  [[nodiscard]] constexpr Point asPoint() const noexcept;

  friend constexpr Vector operator+(Vector a, const Vector& b) noexcept { return a += b; }
  friend constexpr Vector operator-(Vector a, const Vector& b) noexcept { return a -= b; }
  friend constexpr Vector operator-(Vector v) noexcept { return v.reverse(); }
  friend constexpr Vector operator*(Vector v, double factor) noexcept { return v *= factor; }
  friend constexpr Vector operator*(double factor, Vector v) noexcept { return v *= factor; }
  friend constexpr Vector operator/(Vector v, double divisor) noexcept { return v /= divisor; }
  /// "Vector(x,y,z)", the numbers as the stream writes them.
  friend QV_BASE_API std::ostream& operator<<(std::ostream& out, const Vector& v);

private:
  double numbers_[3];
};

/// A direction or an offset in the plane. As `Vector`, but for what is told here.
class Vector2 {
public:
  using Number = double;
  static constexpr int size = 2;

  QV_BASE_API static const Vector2 x;
  QV_BASE_API static const Vector2 y;
  QV_BASE_API static const Vector2 zero;

  Vector2() = default;
  constexpr Vector2(double dx, double dy) noexcept : numbers_{dx, dy} {}
  explicit constexpr Vector2(detail::PointerTo<double> auto from) noexcept : numbers_{from[0], from[1]} {}
  constexpr Vector2(const Vector2Flt& v) noexcept;

  constexpr void set(double dx, double dy) noexcept { *this = Vector2(dx, dy); }
  constexpr void set(detail::PointerTo<double> auto from) noexcept { *this = Vector2(from); }
  constexpr void get(double& dx, double& dy) const noexcept {
    dx = numbers_[0];
    dy = numbers_[1];
  }
  constexpr void get(std::same_as<double*> auto to) const noexcept { detail::copyOut(numbers_, to); }

  [[nodiscard]] constexpr double operator[](int place) const noexcept { return numbers_[place]; }
  template <std::same_as<double> T>
  constexpr operator T*() noexcept {
    return numbers_;
  }
  template <std::same_as<double> T>
  constexpr operator const T*() const noexcept {
    return numbers_;
  }

  constexpr Vector2& operator+=(const Vector2& other) noexcept {
    detail::add(numbers_, other.numbers_);
    return *this;
  }
  constexpr Vector2& operator-=(const Vector2& other) noexcept {
    detail::subtract(numbers_, other.numbers_);
    return *this;
  }
  constexpr Vector2& operator*=(double factor) noexcept {
    detail::scale(numbers_, factor);
    return *this;
  }
  constexpr Vector2& operator/=(double divisor) noexcept { return *this *= 1.0 / divisor; }
  constexpr bool operator==(const Vector2&) const noexcept = default;

  [[nodiscard]] double length() const noexcept { return detail::length(numbers_); }
  [[nodiscard]] constexpr double length2() const noexcept { return detail::sumOfSquares(numbers_); }
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
  [[nodiscard]] constexpr Vector2 orthogonalVector() const noexcept {
    return Vector2(-numbers_[1], numbers_[0]);
  }
  [[nodiscard]] constexpr Point2 asPoint2() const noexcept;
  /// @{ With z = 0.
  [[nodiscard]] constexpr Point asPoint() const noexcept;
  [[nodiscard]] constexpr Vector asVector() const noexcept;
  /// @}

  friend constexpr Vector2 operator+(Vector2 a, const Vector2& b) noexcept { return a += b; }
  friend constexpr Vector2 operator-(Vector2 a, const Vector2& b) noexcept { return a -= b; }
  friend constexpr Vector2 operator-(Vector2 v) noexcept { return v.reverse(); }
  friend constexpr Vector2 operator*(Vector2 v, double factor) noexcept { return v *= factor; }
  friend constexpr Vector2 operator*(double factor, Vector2 v) noexcept { return v *= factor; }
  friend constexpr Vector2 operator/(Vector2 v, double divisor) noexcept { return v /= divisor; }

private:
  double numbers_[2];
};

/// `Vector` in narrow numbers. Its products, sums and scalars are narrow too.
class VectorFlt {
public:
  using Number = float;
  static constexpr int size = 3;

  QV_BASE_API static const VectorFlt x;
  QV_BASE_API static const VectorFlt y;
  QV_BASE_API static const VectorFlt z;
  QV_BASE_API static const VectorFlt zero;

  VectorFlt() = default;
  /// Numbers of any type, also whole ones and a mixture; they are narrowed.
  constexpr VectorFlt(detail::Number auto dx, detail::Number auto dy, detail::Number auto dz) noexcept
      : numbers_{static_cast<float>(dx), static_cast<float>(dy), static_cast<float>(dz)} {}
  explicit constexpr VectorFlt(detail::PointerTo<float> auto from) noexcept
      : numbers_{from[0], from[1], from[2]} {}
  constexpr VectorFlt(const Vector2Flt& v) noexcept;
  explicit constexpr VectorFlt(const Vector& v) noexcept;

  constexpr void set(detail::Number auto dx, detail::Number auto dy, detail::Number auto dz) noexcept {
    *this = VectorFlt(dx, dy, dz);
  }
  constexpr void set(detail::PointerTo<float> auto from) noexcept { *this = VectorFlt(from); }
  constexpr void set(const Vector2Flt& v) noexcept;
  constexpr void get(float& dx, float& dy, float& dz) const noexcept {
    dx = numbers_[0];
    dy = numbers_[1];
    dz = numbers_[2];
  }
  constexpr void get(std::same_as<float*> auto to) const noexcept { detail::copyOut(numbers_, to); }

  [[nodiscard]] constexpr float operator[](int place) const noexcept { return numbers_[place]; }
  template <std::same_as<float> T>
  constexpr operator T*() noexcept {
    return numbers_;
  }
  template <std::same_as<float> T>
  constexpr operator const T*() const noexcept {
    return numbers_;
  }

  constexpr VectorFlt& operator+=(const VectorFlt& other) noexcept {
    detail::add(numbers_, other.numbers_);
    return *this;
  }
  constexpr VectorFlt& operator-=(const VectorFlt& other) noexcept {
    detail::subtract(numbers_, other.numbers_);
    return *this;
  }
  constexpr VectorFlt& operator*=(float factor) noexcept {
    detail::scale(numbers_, factor);
    return *this;
  }
  constexpr VectorFlt& operator/=(float divisor) noexcept { return *this *= 1.0F / divisor; }
  constexpr bool operator==(const VectorFlt&) const noexcept = default;

  /// The root, taken wide, of the narrow sum.
  [[nodiscard]] double length() const noexcept { return detail::length(numbers_); }
  [[nodiscard]] constexpr float length2() const noexcept { return detail::sumOfSquares(numbers_); }
  /// As for `Vector`, with `epsilon2TolFlt`.
  bool normalize() noexcept { return detail::normalizeOrClear(numbers_, epsilon2TolFlt); }
  [[nodiscard]] Normal normalized() const noexcept;
  constexpr VectorFlt& reverse() noexcept { return *this *= -1; }
  [[nodiscard]] constexpr VectorFlt orthogonalVector() const noexcept { return detail::orthogonal(*this); }
  [[nodiscard]] constexpr PointFlt asPointFlt() const noexcept;

  friend constexpr VectorFlt operator+(VectorFlt a, const VectorFlt& b) noexcept { return a += b; }
  friend constexpr VectorFlt operator-(VectorFlt a, const VectorFlt& b) noexcept { return a -= b; }
  friend constexpr VectorFlt operator-(VectorFlt v) noexcept { return v.reverse(); }
  friend constexpr VectorFlt operator*(VectorFlt v, float factor) noexcept { return v *= factor; }
  friend constexpr VectorFlt operator*(float factor, VectorFlt v) noexcept { return v *= factor; }
  friend constexpr VectorFlt operator/(VectorFlt v, float divisor) noexcept { return v /= divisor; }
  friend QV_BASE_API std::ostream& operator<<(std::ostream& out, const VectorFlt& v);

private:
  float numbers_[3];
};

/// `Vector2` in narrow numbers.
class Vector2Flt {
public:
  using Number = float;
  static constexpr int size = 2;

  QV_BASE_API static const Vector2Flt x;
  QV_BASE_API static const Vector2Flt y;
  QV_BASE_API static const Vector2Flt zero;

  Vector2Flt() = default;
  constexpr Vector2Flt(detail::Number auto dx, detail::Number auto dy) noexcept
      : numbers_{static_cast<float>(dx), static_cast<float>(dy)} {}
  explicit constexpr Vector2Flt(detail::PointerTo<float> auto from) noexcept : numbers_{from[0], from[1]} {}
  explicit constexpr Vector2Flt(const Vector2& v) noexcept;

  constexpr void set(detail::Number auto dx, detail::Number auto dy) noexcept { *this = Vector2Flt(dx, dy); }
  constexpr void set(detail::PointerTo<float> auto from) noexcept { *this = Vector2Flt(from); }
  constexpr void get(float& dx, float& dy) const noexcept {
    dx = numbers_[0];
    dy = numbers_[1];
  }
  constexpr void get(std::same_as<float*> auto to) const noexcept { detail::copyOut(numbers_, to); }

  [[nodiscard]] constexpr float operator[](int place) const noexcept { return numbers_[place]; }
  template <std::same_as<float> T>
  constexpr operator T*() noexcept {
    return numbers_;
  }
  template <std::same_as<float> T>
  constexpr operator const T*() const noexcept {
    return numbers_;
  }

  constexpr Vector2Flt& operator+=(const Vector2Flt& other) noexcept {
    detail::add(numbers_, other.numbers_);
    return *this;
  }
  constexpr Vector2Flt& operator-=(const Vector2Flt& other) noexcept {
    detail::subtract(numbers_, other.numbers_);
    return *this;
  }
  constexpr Vector2Flt& operator*=(float factor) noexcept {
    detail::scale(numbers_, factor);
    return *this;
  }
  constexpr Vector2Flt& operator/=(float divisor) noexcept { return *this *= 1.0F / divisor; }
  constexpr bool operator==(const Vector2Flt&) const noexcept = default;

  [[nodiscard]] double length() const noexcept { return detail::length(numbers_); }
  [[nodiscard]] constexpr float length2() const noexcept { return detail::sumOfSquares(numbers_); }
  /// As for `VectorFlt`, and not as for `Vector2`.
  bool normalize() noexcept { return detail::normalizeOrClear(numbers_, epsilon2TolFlt); }
  [[nodiscard]] Normal normalized() const noexcept;
  constexpr Vector2Flt& reverse() noexcept { return *this *= -1; }
  [[nodiscard]] constexpr Vector2Flt orthogonalVector() const noexcept {
    return Vector2Flt(-numbers_[1], numbers_[0]);
  }
  [[nodiscard]] constexpr Point2Flt asPoint2Flt() const noexcept;
  [[nodiscard]] constexpr PointFlt asPointFlt() const noexcept;
  [[nodiscard]] constexpr VectorFlt asVectorFlt() const noexcept;

  friend constexpr Vector2Flt operator+(Vector2Flt a, const Vector2Flt& b) noexcept { return a += b; }
  friend constexpr Vector2Flt operator-(Vector2Flt a, const Vector2Flt& b) noexcept { return a -= b; }
  friend constexpr Vector2Flt operator-(Vector2Flt v) noexcept { return v.reverse(); }
  friend constexpr Vector2Flt operator*(Vector2Flt v, float factor) noexcept { return v *= factor; }
  friend constexpr Vector2Flt operator*(float factor, Vector2Flt v) noexcept { return v *= factor; }
  friend constexpr Vector2Flt operator/(Vector2Flt v, float divisor) noexcept { return v /= divisor; }

private:
  float numbers_[2];
};

static_assert(sizeof(Vector) == 24 && sizeof(Vector2) == 16 && sizeof(VectorFlt) == 12 &&
              sizeof(Vector2Flt) == 8);

constexpr Vector::Vector(const Vector2& v) noexcept : Vector(v[0], v[1], 0) {}
constexpr Vector::Vector(const VectorFlt& v) noexcept : Vector(v[0], v[1], v[2]) {}
constexpr Vector2::Vector2(const Vector2Flt& v) noexcept : Vector2(v[0], v[1]) {}
constexpr VectorFlt::VectorFlt(const Vector2Flt& v) noexcept : VectorFlt(v[0], v[1], 0) {}
constexpr VectorFlt::VectorFlt(const Vector& v) noexcept : VectorFlt(v[0], v[1], v[2]) {}
constexpr Vector2Flt::Vector2Flt(const Vector2& v) noexcept : Vector2Flt(v[0], v[1]) {}
constexpr void Vector::set(const Vector2& v) noexcept { *this = v; }
constexpr void VectorFlt::set(const Vector2Flt& v) noexcept { *this = v; }
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
