// A camera looks at a box that was placed, turned and stretched: frames, a projection, bounds, and an affine
// matrix taken apart again.
#include "Base/Linear/qvLinearDecompose.h"
#include "Base/Linear/qvLinearNormal.h"
#include "Base/Linear/qvLinearProjMatrix.h"
#include "Base/Linear/qvLinearRange3d.h"
#include "Base/Linear/qvLinearScalar.h"

#include <cmath>
#include <iomanip>
#include <iostream>

using namespace qvLinear;

namespace {

/// The view of somebody at `eye` who looks at `target`: what is in front has a negative z.
AffineMatrix lookAt(const Point& eye, const Point& target) {
  const Normal back(eye - target), right(cross(Vector::z, back));
  AffineMatrix camera;
  camera.setFrame(eye, right, cross(back, right), back);
  return camera.inverse();
}

/// A perspective with this vertical angle, which takes what lies from `near` to `far` into the view volume.
ProjMatrix perspective(double angle, double aspect, double near, double far) {
  const double height = 1 / std::tan(angle / 2);
  ProjMatrix m(0.0);
  m[0][0] = height / aspect;
  m[1][1] = height;
  m[2][2] = (far + near) / (near - far);
  m[2][3] = -1;
  m[3][2] = 2 * far * near / (near - far);
  return m;
}

} // namespace

int main() {
  // What is built last acts on a point first: the box is stretched, then turned, then moved.
  AffineMatrix placement(1.0);
  placement.translate(0, 0, 1).rotateZ(toRadians(30)).scale(2, 1, 0.5);
  const Range3d box(Point(-1, -1, -1), Point(1, 1, 1));
  const ProjMatrix view =
      lookAt(Point(6, -4, 3), Point(0, 0, 1)) * perspective(toRadians(45), 4.0 / 3, 1, 100);

  std::cout << std::fixed << std::setprecision(3);
  bool allVisible = true;
  for (int i = 0; i < 8; ++i) {
    const Point placed = box.corner(i) * placement;
    const HPoint seen = placed * view;
    allVisible = allVisible && seen.insideView(true);
    std::cout << placed << " is seen at " << Point(seen) << '\n';
  }
  const Range3d bounds = box * placement;
  std::cout << "bounds " << bounds.low() << " to " << bounds.high() << '\n' << placement << '\n';

  Point translate;
  Vector scale, rotate, shear;
  const bool regular = atelierDecompose(placement, translate, scale, rotate, shear);
  std::cout << "moved to " << translate << ", scaled by " << scale << ", turned by " << rotate
            << " degrees, sheared by " << shear << '\n';
  return allVisible && regular ? 0 : 1;
}
