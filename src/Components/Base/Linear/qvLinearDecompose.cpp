#include "Base/Linear/qvLinearDecompose.h"

#include "Base/Linear/qvLinearScalar.h"

#include <algorithm>
#include <cmath>

namespace qvLinear {

namespace {

constexpr double tolerance = 1e-9; // not `epsilonTol`: what is edited by hand is not that precise

bool isSmall(double number) noexcept { return std::fabs(number) < tolerance; }

double clamped(double ratio) noexcept { return std::clamp(ratio, -1.0, 1.0); }

/// The length of `row`, which becomes a unit vector unless it is too short.
double takeLength(Vector& row) noexcept {
  const double length = row.length();
  if (!isSmall(length)) row /= length;
  return length;
}

double degreesOf(double sine, double cosine) noexcept {
  const double s = clamped(sine), c = clamped(cosine);
  return isSmall(s) && isSmall(c) ? 0.0 : toDegrees(std::atan2(s, c));
}

/// The angles, in degrees, about x, y and z, of which `m` is the rotation in this order.
Vector anglesOf(const AffineMatrix& m) noexcept {
  const double sine = clamped(-m[0][2]);
  const double cosine = std::sqrt(1.0 - sine * sine);
  const double y = toDegrees(std::asin(sine));
  if (isSmall(cosine) || isSmall(std::fabs(sine) - 1.0)) return {degreesOf(m[1][0] / sine, m[1][1]), y, 0.0};
  return {degreesOf(m[1][2] / cosine, m[2][2] / cosine), y, degreesOf(m[0][1] / cosine, m[0][0] / cosine)};
}

} // namespace

bool atelierDecompose(const AffineMatrix& matrix, Point& translate, Vector& scale, Vector& rotate,
                      Vector& shear) noexcept {
  Vector x, y, z;
  matrix.getFrame(translate, x, y, z);

  const double scaleX = takeLength(x);
  double shearX = dot(y, x);
  y -= shearX * x;
  const double scaleY = takeLength(y);
  if (!isSmall(scaleY)) shearX /= scaleY;
  double shearY = dot(z, x), shearZ = dot(z, y);
  z -= shearY * x + shearZ * y;
  const double scaleZ = takeLength(z);
  if (!isSmall(scaleZ)) {
    shearY /= scaleZ;
    shearZ /= scaleZ;
  }
  scale.set(scaleX, scaleY, scaleZ);
  shear.set(shearX, shearY, shearZ);

  AffineMatrix rotation;
  rotation.setFrame(Point::origin, x, y, z);
  const double determinant = rotation.det3x3();
  if (determinant > -1.000001 && determinant < -0.999999) {
    scale *= -1.0;
    rotation *= -1.0;
  }
  const bool regular = !isSmall(determinant);
  rotate = regular ? anglesOf(rotation) : Vector::zero;
  return regular;
}

} // namespace qvLinear
