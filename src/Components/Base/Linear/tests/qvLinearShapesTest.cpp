// Lines, planes and boxes: what must hold of any of them.
#include "Base/Linear/qvLinearPlane.h"
#include "Base/Linear/qvLinearRange3d.h"
#include "testing/qvTestSeed.h"

#include <gtest/gtest.h>

#include <vector>

using namespace qvLinear;

namespace {

class LinearShapes : public testing::Test {
protected:
  /// Quarters from -25 to 25.
  double number() { return random_.between(-100, 100) / 4.0; }
  Point point() { return Point(number(), number(), number()); }
  /// Long enough to have a direction.
  Vector vector() {
    const Vector v(number(), number(), number());
    return v.length2() > 0 ? v : vector();
  }

  qvTest::Random random_{20240607};
};

constexpr double tolerance = 1e-9;

TEST_F(LinearShapes, NearestPointsOfLines) {
  for (int i = 0; i < 500; ++i) {
    const ParamLine line(point(), vector());
    const Line unit(line);
    const Point p = point();
    const Point foot = line.project(p);
    EXPECT_NEAR(dot(p - foot, line.direction()), 0, tolerance);
    EXPECT_NEAR(line.distanceTo(foot), 0, tolerance);
    EXPECT_NEAR(unit.distanceTo(p), line.distanceTo(p), tolerance);
    EXPECT_NEAR(distance(unit.project(p), foot), 0, tolerance);
    const double parameter = number();
    EXPECT_NEAR(line.parameter(line.evaluate(parameter)), parameter, tolerance);
    EXPECT_NEAR(distance(unit.origin(), unit.evaluate(parameter)), std::fabs(parameter), tolerance);
  }
  const ParamLine spot(Point(1, 2, 3), Vector::zero);
  EXPECT_EQ(spot.project(Point(4, 6, 3)), spot.origin());
  EXPECT_EQ(Line(spot).distanceTo(Point(4, 6, 3)), 5);
  EXPECT_FALSE(Line(spot).isValid());
  EXPECT_EQ(ParamLine(Point(1, 1, 1), Point(2, 3, 4)).evaluate(1), Point(2, 3, 4));
  EXPECT_EQ(Line(Point(1, 1, 1), Point(1, 1, 4)).evaluate(1), Point(1, 1, 2));
}

TEST_F(LinearShapes, Planes) {
  for (int i = 0; i < 500; ++i) {
    const ParamPlane spanned(point(), vector(), vector());
    const Plane plane(spanned);
    double s = 7, t = 7;
    if (!plane.isValid()) { // u and v are parallel
      EXPECT_FALSE(spanned.parameters(point(), s, t));
      EXPECT_EQ(s, 7);
      continue;
    }
    const double u = number(), v = number(), height = number() + 0.125;
    const Point p = spanned.evaluate(u, v) + height * plane.normal();
    EXPECT_NEAR(plane.signedDistance(p), height, tolerance);
    EXPECT_EQ(plane.side(p), height > 0 ? 1 : -1) << height;
    EXPECT_NEAR(distance(plane.project(p), spanned.evaluate(u, v)), 0, tolerance);
    EXPECT_TRUE(spanned.parameters(p, s, t));
    EXPECT_NEAR(s, u, 1e-4);
    EXPECT_NEAR(t, v, 1e-4);

    const ParamLine line(p, vector());
    double parameter = 7;
    if (std::fabs(dot(line.direction(), plane.normal())) > 1e-4) {
      EXPECT_TRUE(plane.intersect(line, parameter));
      EXPECT_NEAR(plane.signedDistance(line.evaluate(parameter)), 0, 1e-6);
    }
    EXPECT_FALSE(plane.intersect(ParamLine(p, spanned.u()), parameter));
  }
  const Plane floor(Point(0, 0, 1), Point(1, 0, 1), Point(0, 1, 1));
  double parameter = 7;
  EXPECT_EQ(floor.normal(), Normal::z);
  EXPECT_TRUE(floor.intersect(Line(Point(5, 5, 5), -Normal::z), parameter));
  EXPECT_EQ(parameter, 4);
  const Plane none(Point::origin, Normal(0, 0, 0));
  EXPECT_FALSE(none.intersect(Line(Point::origin, Normal::x), parameter));
  EXPECT_EQ(none.side(Point(1, 2, 3)), 0);
  EXPECT_EQ(parameter, 4);
}

TEST_F(LinearShapes, RangesBoundWhatTheyHold) {
  for (int i = 0; i < 300; ++i) {
    std::vector<Point> points;
    const int count = random_.between(1, 6);
    for (int n = 0; n < count; ++n) points.push_back(point());
    const Range3d bounds(count, points.data());
    for (const Point& p : points) EXPECT_TRUE(bounds.contains(p));
    for (int axis = 0; axis < 3; ++axis) { // no smaller box does
      double low = points[0][axis], high = low;
      for (const Point& p : points) low = std::min(low, p[axis]), high = std::max(high, p[axis]);
      EXPECT_TRUE(bounds.low()[axis] == low && bounds.high()[axis] == high);
    }
    Point corners[8];
    for (int corner = 0; corner < 8; ++corner) corners[corner] = bounds.corner(corner);
    EXPECT_EQ(Range3d(8, corners), bounds);
    EXPECT_EQ(bounds.center() + bounds.diagonal() / 2, bounds.high());

    const Range3d other(2, std::vector<Point>{point(), point()}.data());
    Range3d both = bounds;
    both.extend(other);
    EXPECT_TRUE(both.contains(bounds) && both.contains(other));
    bool apart = false;
    for (int axis = 0; axis < 3; ++axis)
      apart |= bounds.high()[axis] < other.low()[axis] || other.high()[axis] < bounds.low()[axis];
    EXPECT_TRUE(bounds.intersects(other) != apart && other.intersects(bounds) != apart);
  }

  Range3d empty;
  empty.setEmpty();
  const Range3d backwards(Point(1, 0, 0), Point(0, 5, 5));
  const Range3d unit(Point::origin, Point(1, 1, 1));
  EXPECT_TRUE(empty.isEmpty() && backwards.isEmpty() && empty == backwards && Range3d(0, nullptr) == empty);
  EXPECT_FALSE(unit.isEmpty() || unit == empty || empty == unit);
  EXPECT_TRUE(unit.contains(backwards) && empty.contains(empty));
  EXPECT_FALSE(empty.contains(unit) || unit.intersects(backwards) || backwards.intersects(unit));
  Range3d grown = backwards;
  grown.extend(Point(2, 2, 2));
  EXPECT_EQ(grown, Range3d(Point(2, 2, 2), Point(2, 2, 2)));
  grown.extend(backwards);
  grown.extend(Point(3, std::nan(""), 1));
  EXPECT_EQ(grown, Range3d(Point(2, 2, 1), Point(3, 2, 2)));
  EXPECT_FALSE(grown.contains(Point(2.5, std::nan(""), 1.5)));
}

} // namespace
