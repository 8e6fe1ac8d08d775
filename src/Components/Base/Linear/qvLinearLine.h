// Line and ParamLine: straight lines in space, with a unit direction or with a speed.
#pragma once

#include "Base/Linear/qvLinearDistance.h"
#include "Base/Linear/qvLinearNormal.h"
#include "Base/Linear/qvLinearPoint.h"

namespace qvLinear {

/// A line through `origin` along a vector of any length. A point of it has a parameter: how many times the
/// direction it lies from the origin. Where the direction is zero, the line is its origin, at parameter 0.
class ParamLine {
public:
  /// Leaves the fields as they are in memory.
  ParamLine() = default;
  constexpr ParamLine(const Point& origin, const Vector& direction) noexcept
      : origin_(origin), direction_(direction) {}
  /// The first point is the origin, the second has parameter 1.
  constexpr ParamLine(const Point& first, const Point& second) noexcept : ParamLine(first, second - first) {}
  /// Parameters are then distances.
  constexpr ParamLine(const Line& line) noexcept;

  [[nodiscard]] constexpr const Point& origin() const noexcept { return origin_; }
  [[nodiscard]] constexpr const Vector& direction() const noexcept { return direction_; }
  /// Exact, of origin and direction: the same line may have many.
  constexpr bool operator==(const ParamLine&) const noexcept = default;

  /// The point at a parameter.
  [[nodiscard]] constexpr Point evaluate(double parameter) const noexcept {
    return origin_ + parameter * direction_;
  }
  /// The parameter of the point of the line that is nearest to `p`.
  [[nodiscard]] constexpr double parameter(const Point& p) const noexcept {
    const double squared = direction_.length2();
    return squared > 0 ? dot(p - origin_, direction_) / squared : 0;
  }
  /// The point of the line that is nearest to `p`.
  [[nodiscard]] constexpr Point project(const Point& p) const noexcept { return evaluate(parameter(p)); }
  [[nodiscard]] double distanceTo(const Point& p) const noexcept { return distance(p, project(p)); }

private:
  Point origin_;
  Vector direction_;
};

/// A line through `origin` along a unit direction. The parameter of a point is its distance from the origin,
/// with a sign. Where the direction is invalid, the line is its origin.
class Line {
public:
  /// Leaves the fields as they are in memory.
  Line() = default;
  constexpr Line(const Point& origin, const Normal& direction) noexcept
      : origin_(origin), direction_(direction) {}
  /// From the first point towards the second.
  Line(const Point& first, const Point& second) noexcept : Line(first, Normal(second - first)) {}
  /// The same origin and line; parameters become distances.
  explicit Line(const ParamLine& line) noexcept : Line(line.origin(), Normal(line.direction())) {}

  [[nodiscard]] constexpr const Point& origin() const noexcept { return origin_; }
  [[nodiscard]] constexpr const Normal& direction() const noexcept { return direction_; }
  [[nodiscard]] constexpr bool isValid() const noexcept { return direction_.isValid(); }
  /// Exact, of origin and direction: the same line may have many.
  constexpr bool operator==(const Line&) const noexcept = default;

  /// The point at a distance from the origin.
  [[nodiscard]] constexpr Point evaluate(double parameter) const noexcept {
    return origin_ + parameter * direction_;
  }
  /// The parameter of the point of the line that is nearest to `p`.
  [[nodiscard]] constexpr double parameter(const Point& p) const noexcept {
    return dot(p - origin_, direction_);
  }
  /// The point of the line that is nearest to `p`.
  [[nodiscard]] constexpr Point project(const Point& p) const noexcept { return evaluate(parameter(p)); }
  [[nodiscard]] double distanceTo(const Point& p) const noexcept { return distance(p, project(p)); }

private:
  Point origin_;
  Normal direction_;
};

static_assert(sizeof(ParamLine) == 48 && sizeof(Line) == 56);

constexpr ParamLine::ParamLine(const Line& line) noexcept : ParamLine(line.origin(), line.direction()) {}

} // namespace qvLinear
