// Normal: a unit direction, or none.
#pragma once

#include "Base/Linear/qvLinearVector.h"

namespace qvLinear {

/// Says that the caller answers for what it passes: the numbers are of unit length, or the matrix is
/// orthonormal. Nothing is then checked.
struct Promise {};

/// A direction of length 1, or an invalid one, whose numbers are 0. Whatever sets the numbers normalises
/// them, by this rule: where the squared length is strictly above `epsilon2Tol`, they are scaled to length 1;
/// otherwise, also where one is not a number, the normal is invalid.
///
/// Nothing writes single numbers, and arithmetic gives a `Vector`, so that a normal stays of unit length.
class Normal {
public:
  using Number = double;
  static constexpr int size = 3;

  QV_BASE_API static const Normal x;
  QV_BASE_API static const Normal y;
  QV_BASE_API static const Normal z;

  /// Leaves the numbers, and whether they are valid, as they are in memory.
  Normal() = default;
  Normal(double dx, double dy, double dz) noexcept : Normal(Promise(), dx, dy, dz) { normalize(); }
  /// From numbers in memory.
  explicit Normal(detail::PointerTo<double> auto from) noexcept : Normal(from[0], from[1], from[2]) {}
  explicit Normal(const Vector& v) noexcept : Normal(v[0], v[1], v[2]) {}
  Normal& operator=(const Vector& v) noexcept { return *this = Normal(v); }
  /// @{ Valid, with the numbers as they are.
  constexpr Normal(Promise, double dx, double dy, double dz) noexcept : numbers_{dx, dy, dz}, valid_(true) {}
  constexpr Normal(Promise promise, detail::PointerTo<double> auto from) noexcept
      : Normal(promise, from[0], from[1], from[2]) {}
  constexpr Normal(Promise promise, const Vector& v) noexcept : Normal(promise, v[0], v[1], v[2]) {}
  /// @}

  void set(double dx, double dy, double dz) noexcept { *this = Normal(dx, dy, dz); }
  void set(detail::PointerTo<double> auto from) noexcept { *this = Normal(from); }
  void set(const Vector& v) noexcept { *this = v; }
  /// @{ Valid, with the numbers as they are.
  constexpr void set(Promise promise, double dx, double dy, double dz) noexcept {
    *this = Normal(promise, dx, dy, dz);
  }
  constexpr void set(Promise promise, detail::PointerTo<double> auto from) noexcept {
    *this = Normal(promise, from);
  }
  constexpr void set(Promise promise, const Vector& v) noexcept { *this = Normal(promise, v); }
  /// @}
  constexpr void get(double& dx, double& dy, double& dz) const noexcept {
    dx = numbers_[0];
    dy = numbers_[1];
    dz = numbers_[2];
  }
  constexpr void get(std::same_as<double*> auto to) const noexcept { detail::copyOut(numbers_, to); }

  [[nodiscard]] constexpr bool isValid() const noexcept { return valid_; }
  /// All numbers become 0.
  constexpr void setInvalid() noexcept {
    *this = Normal(Promise(), 0, 0, 0);
    valid_ = false;
  }

  /// The numbers by place, unchecked.
  [[nodiscard]] constexpr double operator[](int place) const noexcept { return numbers_[place]; }
  /// The address of x, to read; a template for the reason told in `Vector`.
  template <std::same_as<double> T>
  constexpr operator const T*() const noexcept {
    return numbers_;
  }

  /// Exact, and of the numbers alone: all invalid normals are equal.
  constexpr bool operator==(const Normal& other) const noexcept {
    return numbers_[0] == other.numbers_[0] && numbers_[1] == other.numbers_[1] &&
           numbers_[2] == other.numbers_[2];
  }

  /// @{ 1, or 0 where invalid, unless a promise was not kept.
  [[nodiscard]] double length() const noexcept { return detail::length(numbers_); }
  [[nodiscard]] constexpr double length2() const noexcept { return detail::sumOfSquares(numbers_); }
  /// @}
  /// An invalid one stays invalid.
  constexpr Normal& reverse() noexcept {
    detail::scale(numbers_, -1);
    return *this;
  }
  /// A vector at a right angle to this one, of any length.
  [[nodiscard]] constexpr Vector orthogonalVector() const noexcept {
    return Vector(*this).orthogonalVector();
  }

  friend constexpr Vector operator+(const Normal& a, const Normal& b) noexcept { return Vector(a) + b; }
  friend constexpr Vector operator-(const Normal& a, const Normal& b) noexcept { return Vector(a) - b; }
  friend constexpr Normal operator-(Normal n) noexcept { return n.reverse(); }
  friend constexpr Vector operator*(const Normal& n, double factor) noexcept { return Vector(n) * factor; }
  friend constexpr Vector operator*(double factor, const Normal& n) noexcept { return Vector(n) * factor; }
  friend constexpr Vector operator/(const Normal& n, double divisor) noexcept { return Vector(n) / divisor; }
  /// "Normal(x,y,z)", the numbers as the stream writes them.
  friend QV_BASE_API std::ostream& operator<<(std::ostream& out, const Normal& n);

private:
  void normalize() noexcept { valid_ = detail::normalizeOrClear(numbers_, epsilon2Tol); }

  double numbers_[3];
  bool valid_;
};

static_assert(sizeof(Normal) == 32);

constexpr Vector::Vector(const Normal& n) noexcept : Vector(n[0], n[1], n[2]) {}
inline Normal Vector::normalized() const noexcept { return Normal(*this); }
inline Normal Vector2::normalized() const noexcept { return Normal(*this); }
inline Normal VectorFlt::normalized() const noexcept { return Normal(*this); }
inline Normal Vector2Flt::normalized() const noexcept { return Vector2(*this).normalized(); }

} // namespace qvLinear
