// RPoint and HPoint: positions with a weight.
#pragma once

#include "Base/Linear/qvLinearPoint.h"

namespace qvLinear {

/// A rational point: the true coordinates x, y, z, and a weight w. As `Point`, but for what is told here.
class RPoint : public base::Coordinates<RPoint, double, 4> {
public:
  RPoint() = default;
  constexpr RPoint(double x, double y, double z, double w) noexcept : Coordinates(x, y, z, w) {}
  /// From numbers in memory.
  constexpr RPoint(detail::PointerTo<double> auto from) noexcept
      : RPoint(from[0], from[1], from[2], from[3]) {}
  /// With w = 1.
  constexpr RPoint(const Point& p) noexcept : RPoint(p, 1) {}
  /// Multiplies x, y, z by 1 / w and keeps w; infinities or not-a-number where w is 0.
  constexpr RPoint(const HPoint& p) noexcept;

  /// @{ Moves the position and keeps the weight.
  constexpr RPoint& operator+=(const Vector& v) noexcept {
    return *this = RPoint(Point(*this) + v, numbers_[3]);
  }
  constexpr RPoint& operator-=(const Vector& v) noexcept {
    return *this = RPoint(Point(*this) - v, numbers_[3]);
  }
  friend constexpr RPoint operator+(RPoint p, const Vector& v) noexcept { return p += v; }
  friend constexpr RPoint operator-(RPoint p, const Vector& v) noexcept { return p -= v; }
  /// @}

private:
  constexpr RPoint(const Point& p, double w) noexcept : RPoint(p[0], p[1], p[2], w) {}
};

/// A homogeneous point: x, y, z are already multiplied by the weight w. Arithmetic is on all four numbers.
class HPoint : public base::Arithmetic<HPoint, double, 4> {
public:
  HPoint() = default;
  constexpr HPoint(double x, double y, double z, double w) noexcept : Arithmetic(x, y, z, w) {}
  /// From numbers in memory.
  constexpr HPoint(detail::PointerTo<double> auto from) noexcept
      : HPoint(from[0], from[1], from[2], from[3]) {}
  /// With w = 1.
  constexpr HPoint(const Point& p) noexcept : HPoint(p[0], p[1], p[2], 1) {}
  /// Multiplies x, y, z by w and keeps w.
  constexpr HPoint(const RPoint& p) noexcept : HPoint(p[0] * p[3], p[1] * p[3], p[2] * p[3], p[3]) {}

  /// Whether the point lies in the view volume: -w <= x <= w, -w <= y <= w and -w <= z, and, if `checkFar`,
  /// also z <= w.
  [[nodiscard]] constexpr bool insideView(bool checkFar) const noexcept {
    const double w = numbers_[3];
    const auto inside = [w](double number) { return -w <= number && number <= w; };
    return inside(numbers_[0]) && inside(numbers_[1]) && numbers_[2] >= -w && (!checkFar || numbers_[2] <= w);
  }
};

static_assert(sizeof(RPoint) == 32 && sizeof(HPoint) == 32);

constexpr Point::Point(const RPoint& p) noexcept : Point(p[0], p[1], p[2]) {}
constexpr Point::Point(const HPoint& p) noexcept : Point((Vector(p[0], p[1], p[2]) / p[3]).asPoint()) {}
constexpr RPoint::RPoint(const HPoint& p) noexcept : RPoint(Point(p), p[3]) {}

} // namespace qvLinear
