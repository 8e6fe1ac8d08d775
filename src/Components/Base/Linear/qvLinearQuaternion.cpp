#include "Base/Linear/qvLinearQuaternion.h"

#include <algorithm>

namespace qvLinear {

void Quaternion::setAngleAxis(double angle, const Normal& axis) noexcept {
  const double sine = std::sin(angle / 2.0), cosine = std::cos(angle / 2.0);
  set(sine * axis[0], sine * axis[1], sine * axis[2], cosine);
  normalize();
}

bool Quaternion::getAngleAxis(double& angle, Normal& axis) const noexcept {
  const double w = numbers_[3];
  if (std::fabs(w - 1.0) < epsilonTol) {
    angle = 0.0;
    axis = Normal::x;
    return false;
  }
  const double half = std::acos(std::clamp(w, -1.0, 1.0));
  angle = 2.0 * half;
  axis = Vector(static_cast<const double*>(numbers_)) / std::sin(half);
  return true;
}

void Quaternion::setFrame(const Normal& x, const Normal& y, const Normal& z) noexcept {
  // Each branch divides by the largest of the four numbers, or by one that is not small.
  const double trace = x[0] + y[1] + z[2];
  if (trace > 0.0) {
    const double root = std::sqrt(trace + 1.0), half = 0.5 / root;
    set((y[2] - z[1]) * half, (z[0] - x[2]) * half, (x[1] - y[0]) * half, root * 0.5);
  } else if (x[0] >= y[1] && x[0] >= z[2]) {
    const double root = std::sqrt(x[0] - y[1] - z[2] + 1.0), half = 0.5 / root;
    set(root * 0.5, (x[1] + y[0]) * half, (z[0] + x[2]) * half, (y[2] - z[1]) * half);
  } else if (y[1] >= z[2]) {
    const double root = std::sqrt(y[1] - z[2] - x[0] + 1.0), half = 0.5 / root;
    set((x[1] + y[0]) * half, root * 0.5, (y[2] + z[1]) * half, (z[0] - x[2]) * half);
  } else {
    const double root = std::sqrt(z[2] - x[0] - y[1] + 1.0), half = 0.5 / root;
    set((z[0] + x[2]) * half, (y[2] + z[1]) * half, root * 0.5, (x[1] - y[0]) * half);
  }
}

void Quaternion::getFrame(Normal& x, Normal& y, Normal& z) const noexcept {
  AffineMatrix matrix;
  getMatrix(matrix);
  x.set(matrix[0]);
  y.set(matrix[1]);
  z.set(matrix[2]);
}

void Quaternion::getMatrix(AffineMatrix& matrix) const noexcept {
  const double x = numbers_[0], y = numbers_[1], z = numbers_[2], w = numbers_[3];
  const double numbers[12] = {
      1.0 - 2.0 * (y * y + z * z),
      2.0 * (x * y + w * z),
      2.0 * (x * z - w * y),
      2.0 * (x * y - w * z),
      1.0 - 2.0 * (x * x + z * z),
      2.0 * (y * z + w * x),
      2.0 * (x * z + w * y),
      2.0 * (y * z - w * x),
      1.0 - 2.0 * (x * x + y * y),
      0.0,
      0.0,
      0.0,
  };
  matrix.set(numbers);
}

Quaternion slerp(const Quaternion& a, const Quaternion& b, double t) noexcept {
  const double product = detail::dot(a, b);
  const Quaternion from = product < 0.0 ? -a : a;
  const double cosine = std::fabs(product);
  if (cosine > parallelTol) {
    Quaternion between = from + t * (b - from);
    between.normalize();
    return between;
  }
  const double angle = std::acos(std::min(cosine, 1.0)) * t;
  const Quaternion aside = b - cosine * from; // at a right angle to `from`
  return std::cos(angle) * from + (std::sin(angle) / aside.length()) * aside;
}

} // namespace qvLinear
