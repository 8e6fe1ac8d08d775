// RPoint and HPoint: positions with a weight.
#pragma once

#include "Base/Linear/qvLinearPoint.h"

namespace qvLinear {

/// A rational point: the true coordinates x, y, z, and a weight w.
class RPoint {
public:
  using Number = double;
  static constexpr int size = 4;

  /// Leaves the numbers as they are in memory.
  RPoint() = default;
  constexpr RPoint(double x, double y, double z, double w) noexcept : numbers_{x, y, z, w} {}
  /// From numbers in memory.
  explicit constexpr RPoint(detail::PointerTo<double> auto from) noexcept
      : RPoint(from[0], from[1], from[2], from[3]) {}
  /// With w = 1.
  constexpr RPoint(const Point& p) noexcept : RPoint(p[0], p[1], p[2], 1) {}
  /// Multiplies x, y, z by 1 / w and keeps w; infinities or not-a-number where w is 0.
  explicit constexpr RPoint(const HPoint& p) noexcept;

  constexpr void set(double x, double y, double z, double w) noexcept { *this = RPoint(x, y, z, w); }
  constexpr void set(detail::PointerTo<double> auto from) noexcept { *this = RPoint(from); }
  constexpr void get(double& x, double& y, double& z, double& w) const noexcept {
    x = numbers_[0];
    y = numbers_[1];
    z = numbers_[2];
    w = numbers_[3];
  }
  constexpr void get(std::same_as<double*> auto to) const noexcept { detail::copyOut(numbers_, to); }

  /// The numbers by place, unchecked.
  [[nodiscard]] constexpr double operator[](int place) const noexcept { return numbers_[place]; }
  /// @{ The address of x, for code that takes arrays; templates for the reason told in `Vector`.
  template <std::same_as<double> T>
  constexpr operator T*() noexcept {
    return numbers_;
  }
  template <std::same_as<double> T>
  constexpr operator const T*() const noexcept {
    return numbers_;
  }
  /// @}

  /// @{ Moves the position and keeps the weight.
  constexpr RPoint& operator+=(const Vector& v) noexcept { return moved(v[0], v[1], v[2]); }
  constexpr RPoint& operator-=(const Vector& v) noexcept { return moved(-v[0], -v[1], -v[2]); }
  friend constexpr RPoint operator+(RPoint p, const Vector& v) noexcept { return p += v; }
  friend constexpr RPoint operator-(RPoint p, const Vector& v) noexcept { return p -= v; }
  /// @}
  /// Exact.
  constexpr bool operator==(const RPoint&) const noexcept = default;

private:
  constexpr RPoint& moved(double dx, double dy, double dz) noexcept {
    numbers_[0] += dx;
    numbers_[1] += dy;
    numbers_[2] += dz;
    return *this;
  }

  double numbers_[4];
};

/// A homogeneous point: x, y, z are already multiplied by the weight w. Arithmetic is on all four numbers.
class HPoint {
public:
  using Number = double;
  static constexpr int size = 4;

  /// Leaves the numbers as they are in memory.
  HPoint() = default;
  constexpr HPoint(double x, double y, double z, double w) noexcept : numbers_{x, y, z, w} {}
  /// From numbers in memory.
  explicit constexpr HPoint(detail::PointerTo<double> auto from) noexcept
      : HPoint(from[0], from[1], from[2], from[3]) {}
  /// With w = 1.
  constexpr HPoint(const Point& p) noexcept : HPoint(p[0], p[1], p[2], 1) {}
  /// Multiplies x, y, z by w and keeps w.
  explicit constexpr HPoint(const RPoint& p) noexcept : HPoint(p[0] * p[3], p[1] * p[3], p[2] * p[3], p[3]) {}

  constexpr void set(double x, double y, double z, double w) noexcept { *this = HPoint(x, y, z, w); }
  constexpr void set(detail::PointerTo<double> auto from) noexcept { *this = HPoint(from); }
  constexpr void get(double& x, double& y, double& z, double& w) const noexcept {
    x = numbers_[0];
    y = numbers_[1];
    z = numbers_[2];
    w = numbers_[3];
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

  constexpr HPoint& operator+=(const HPoint& other) noexcept {
    detail::add(numbers_, other.numbers_);
    return *this;
  }
  constexpr HPoint& operator-=(const HPoint& other) noexcept {
    detail::subtract(numbers_, other.numbers_);
    return *this;
  }
  constexpr HPoint& operator*=(double factor) noexcept {
    detail::scale(numbers_, factor);
    return *this;
  }
  /// Multiplies by the reciprocal.
  constexpr HPoint& operator/=(double divisor) noexcept { return *this *= 1.0 / divisor; }
  /// Exact.
  constexpr bool operator==(const HPoint&) const noexcept = default;

  /// Whether the point lies in the view volume: -w <= x <= w, -w <= y <= w and -w <= z, and, if `checkFar`,
  /// also z <= w.
  [[nodiscard]] constexpr bool insideView(bool checkFar) const noexcept {
    const double w = numbers_[3];
    const auto inside = [w](double number) { return -w <= number && number <= w; };
    return inside(numbers_[0]) && inside(numbers_[1]) && numbers_[2] >= -w && (!checkFar || numbers_[2] <= w);
  }

  friend constexpr HPoint operator+(HPoint a, const HPoint& b) noexcept { return a += b; }
  friend constexpr HPoint operator-(HPoint a, const HPoint& b) noexcept { return a -= b; }
  friend constexpr HPoint operator*(HPoint p, double factor) noexcept { return p *= factor; }
  friend constexpr HPoint operator*(double factor, HPoint p) noexcept { return p *= factor; }
  friend constexpr HPoint operator/(HPoint p, double divisor) noexcept { return p /= divisor; }

private:
  double numbers_[4];
};

static_assert(sizeof(RPoint) == 32 && sizeof(HPoint) == 32);

constexpr RPoint::RPoint(const HPoint& p) noexcept : RPoint(Point(p)) { numbers_[3] = p[3]; }

constexpr Point::Point(const RPoint& p) noexcept : Point(p[0], p[1], p[2]) {}
constexpr Point::Point(const HPoint& p) noexcept {
  const double reciprocal = 1.0 / p[3];
  *this = Point(p[0] * reciprocal, p[1] * reciprocal, p[2] * reciprocal);
}

} // namespace qvLinear
