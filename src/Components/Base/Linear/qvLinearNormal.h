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
  Normal(double dx, double dy, double dz) noexcept : Normal(Vector(dx, dy, dz)) {}
  /// From numbers in memory.
  Normal(detail::PointerTo<double> auto from) noexcept : Normal(Vector(from)) {}
  /// Also by assignment: `normal = vector` normalises.
  Normal(const Vector& v) noexcept : direction_(v), valid_(direction_.normalize()) {}
  /// @{ Valid, with the numbers as they are.
  constexpr Normal(Promise promise, double dx, double dy, double dz) noexcept
      : Normal(promise, Vector(dx, dy, dz)) {}
  constexpr Normal(Promise promise, detail::PointerTo<double> auto from) noexcept
      : Normal(promise, Vector(from)) {}
  constexpr Normal(Promise, const Vector& v) noexcept : direction_(v), valid_(true) {}
  /// @}

  /// Sets what a constructor with the same arguments makes; so with a promise the numbers stay as they are.
  template <class... Arguments>
  requires(sizeof...(Arguments) > 0 &&
           std::constructible_from<
               Normal, const Arguments&...>) constexpr void set(const Arguments&... arguments) noexcept {
    *this = Normal(arguments...);
  }
  constexpr void get(double& dx, double& dy, double& dz) const noexcept { direction_.get(dx, dy, dz); }
  constexpr void get(std::same_as<double*> auto to) const noexcept { direction_.get(to); }

  [[nodiscard]] constexpr bool isValid() const noexcept { return valid_; }
  /// All numbers become 0.
  constexpr void setInvalid() noexcept {
    direction_.set(0, 0, 0);
    valid_ = false;
  }

  /// A number by its place, unchecked.
  [[nodiscard]] constexpr double operator[](int place) const noexcept { return direction_[place]; }
  /// The address of x, to read. A template as in `Coordinates`.
  template <std::same_as<double> P>
  constexpr operator const P*() const noexcept {
    return direction_;
  }

  /// @{ 1, or 0 where invalid, unless a promise was not kept.
  [[nodiscard]] double length() const noexcept { return direction_.length(); }
  [[nodiscard]] constexpr double length2() const noexcept { return direction_.length2(); }
  /// @}
  /// An invalid one stays invalid.
  constexpr Normal& reverse() noexcept {
    direction_.reverse();
    return *this;
  }
  /// A vector at a right angle to this one, of any length.
  [[nodiscard]] constexpr Vector orthogonalVector() const noexcept { return direction_.orthogonalVector(); }

  /// @{ Of two normals and nothing that only converts to one: beside a `Vector` a normal is taken for a
  /// vector. The comparison is exact and of the numbers alone, so that all invalid normals are equal.
  template <std::same_as<Normal> N>
  friend constexpr bool operator==(const N& a, const N& b) noexcept {
    return a.direction_ == b.direction_;
  }
  template <std::same_as<Normal> N>
  friend constexpr Vector operator+(const N& a, const N& b) noexcept {
    return a.direction_ + b.direction_;
  }
  template <std::same_as<Normal> N>
  friend constexpr Vector operator-(const N& a, const N& b) noexcept {
    return a.direction_ - b.direction_;
  }
  /// @}
  friend constexpr Normal operator-(Normal n) noexcept { return n.reverse(); }
  friend constexpr Vector operator*(const Normal& n, double factor) noexcept { return Vector(n) * factor; }
  friend constexpr Vector operator*(double factor, const Normal& n) noexcept { return Vector(n) * factor; }
  friend constexpr Vector operator/(const Normal& n, double divisor) noexcept { return Vector(n) / divisor; }
  /// "Normal(x,y,z)", the numbers as the stream writes them.
  friend QV_BASE_API std::ostream& operator<<(std::ostream& out, const Normal& n);

private:
  Vector direction_;
  bool valid_;
};

static_assert(sizeof(Normal) == 32);

constexpr Vector::Vector(const Normal& n) noexcept : Vector(n[0], n[1], n[2]) {}
inline Normal Vector::normalized() const noexcept { return Normal(*this); }
inline Normal Vector2::normalized() const noexcept { return Normal(*this); }
inline Normal VectorFlt::normalized() const noexcept { return Normal(*this); }
inline Normal Vector2Flt::normalized() const noexcept { return Vector2(*this).normalized(); }

} // namespace qvLinear
