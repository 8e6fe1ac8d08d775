// Plane and ParamPlane: planes in space, with a unit normal or with two vectors that span them.
#pragma once

#include "Base/Linear/qvLinearLine.h"

namespace qvLinear {

/// A plane through `origin` that is spanned by `u` and `v`, of any length and angle. A point of it has two
/// parameters: how many times each vector it lies from the origin.
class ParamPlane {
public:
  /// Leaves the fields as they are in memory.
  ParamPlane() = default;
  constexpr ParamPlane(const Point& origin, const Vector& u, const Vector& v) noexcept
      : origin_(origin), u_(u), v_(v) {}

  [[nodiscard]] constexpr const Point& origin() const noexcept { return origin_; }
  [[nodiscard]] constexpr const Vector& u() const noexcept { return u_; }
  [[nodiscard]] constexpr const Vector& v() const noexcept { return v_; }
  /// Exact, of origin, `u` and `v`: the same plane may have many.
  constexpr bool operator==(const ParamPlane&) const noexcept = default;

  /// The direction of `cross(u, v)`; invalid where that is too short.
  [[nodiscard]] Normal normal() const noexcept { return Normal(cross(u_, v_)); }
  /// The point at two parameters.
  [[nodiscard]] constexpr Point evaluate(double s, double t) const noexcept {
    return origin_ + (s * u_ + t * v_);
  }
  /// The parameters of the point of the plane that is nearest to `p`. False, with both as they were, where
  /// the squared sine of the angle of `u` and `v` is at most `perpendicular2Tol`, or one is zero.
  bool parameters(const Point& p, double& s, double& t) const noexcept {
    const double uu = u_.length2();
    const double vv = v_.length2();
    const double uv = dot(u_, v_);
    const double determinant = cross(u_, v_).length2();
    if (!(determinant > perpendicular2Tol * uu * vv)) return false;
    const Vector w = p - origin_;
    const double wu = dot(w, u_);
    const double wv = dot(w, v_);
    s = (wu * vv - wv * uv) / determinant;
    t = (wv * uu - wu * uv) / determinant;
    return true;
  }

private:
  Point origin_;
  Vector u_;
  Vector v_;
};

/// A plane through `origin` at a right angle to a unit normal. Where the normal is invalid, every distance
/// from the plane is 0 and nothing crosses it.
class Plane {
public:
  /// Leaves the fields as they are in memory.
  Plane() = default;
  constexpr Plane(const Point& origin, const Normal& normal) noexcept : origin_(origin), normal_(normal) {}
  /// Through three points, which turn left when seen from where the normal points to. The first is the
  /// origin.
  Plane(const Point& a, const Point& b, const Point& c) noexcept : Plane(ParamPlane(a, b - a, c - a)) {}
  explicit Plane(const ParamPlane& plane) noexcept : Plane(plane.origin(), plane.normal()) {}

  [[nodiscard]] constexpr const Point& origin() const noexcept { return origin_; }
  [[nodiscard]] constexpr const Normal& normal() const noexcept { return normal_; }
  [[nodiscard]] constexpr bool isValid() const noexcept { return normal_.isValid(); }
  /// Exact, of origin and normal: the same plane may have many.
  constexpr bool operator==(const Plane&) const noexcept = default;

  /// The distance of `p`: above 0 where the normal points to, below 0 on the other side.
  [[nodiscard]] constexpr double signedDistance(const Point& p) const noexcept {
    return dot(p - origin_, normal_);
  }
  /// 1 or -1 by the sign of that distance; 0 where its absolute value is below `epsilonTol`.
  [[nodiscard]] int side(const Point& p) const noexcept {
    const double signedValue = signedDistance(p);
    return int(signedValue >= epsilonTol) - int(signedValue <= -epsilonTol);
  }
  /// The point of the plane that is nearest to `p`.
  [[nodiscard]] constexpr Point project(const Point& p) const noexcept {
    return p - signedDistance(p) * normal_;
  }
  /// Where a line crosses the plane, as the parameter of the line; of a `Line` that is a distance. False,
  /// with `parameter` as it was, where the sine of their angle is at most `perpendicularTol`, or one is
  /// invalid.
  bool intersect(const ParamLine& line, double& parameter) const noexcept {
    const double slope = dot(line.direction(), normal_);
    if (!(std::fabs(slope) > perpendicularTol * line.direction().length())) return false;
    parameter = -signedDistance(line.origin()) / slope;
    return true;
  }

private:
  Point origin_;
  Normal normal_;
};

static_assert(sizeof(ParamPlane) == 72 && sizeof(Plane) == 56);

} // namespace qvLinear
