#include "qvLinearFamily.h"

using namespace qvTest;

namespace {

constexpr double pi = std::numbers::pi;
const Normal invalid(0, 0, 0);

TEST(LinearDirection, Angles) {
  EXPECT_EQ(angle(Normal::x, Normal::y), std::acos(0.0));
  EXPECT_EQ(angle(Normal::x, -Normal::x), std::acos(-1.0));
  EXPECT_EQ(angle(Normal(Promise(), 2, 0, 0), Normal::x), 0); // clamped
  EXPECT_NEAR(angle(Normal(1, 1, 0), Normal::x), pi / 4, 1e-15);
  EXPECT_EQ(angle(invalid, invalid), std::acos(0.0));
  double out = 7;
  EXPECT_FALSE(angle(invalid, Normal::x, out));
  EXPECT_EQ(out, pi / 2);
  EXPECT_TRUE(angle(Normal::z, Normal::z, out));
  EXPECT_EQ(out, 0);

  EXPECT_NEAR(unitCircleRotation(Normal::x, Vector(1, 5, 0), Vector(1, 0, 9), false), pi / 4, 1e-15);
  EXPECT_NEAR(unitCircleRotation(Normal::x, Vector::y, -Vector::x, false), -pi / 2, 1e-15);
  EXPECT_NEAR(unitCircleRotation(Normal::x, Vector::y, -Vector::x, true), 3 * pi / 2, 1e-15);
  EXPECT_EQ(unitCircleRotation(invalid, -Vector::x, -Vector::x, true), 0);

  const double below = toRadians(degreeTol) * 0.9;
  const double above = toRadians(degreeTol) * 1.1;
  const auto turned = [](double by, const Vector& from, const Vector& to) {
    return combine(std::cos(by), from, std::sin(by), to); // a vector, which turns into a normal by itself
  };
  for (const double sign : {1., -1.}) {
    const Normal x(sign, 0, 0);
    EXPECT_TRUE(isParallel(x, turned(below, Vector::x, Vector::y), parallelTol));
    EXPECT_FALSE(isParallel(x, turned(above, Vector::x, Vector::y), parallelTol));
    EXPECT_TRUE(isPerpendicular(x, turned(below, Vector::y, Vector::x), perpendicularTol));
    EXPECT_FALSE(isPerpendicular(x, turned(above, Vector::y, Vector::x), perpendicularTol));
  }
  EXPECT_TRUE(isParallel(Normal::x, Normal::x, 1) && isPerpendicular(Normal::x, Normal::y, 0)); // inclusive
  for (const Normal& n : {invalid, Normal::x})
    EXPECT_FALSE(isParallel(n, invalid, -1) || isParallel(invalid, n, -1) || isPerpendicular(n, invalid, 1) ||
                 isPerpendicular(invalid, n, 1));
}

TEST(LinearDirection, DominantAxis) {
  const struct {
    Vector v;
    int dimension;
    Normal axis;
  } rows[] = {
      {{3, 1, 2}, 0, Normal::x},    {{-3, 1, 2}, 0, -Normal::x},   {{1, -49, 2}, 1, -Normal::y},
      {{1, 2, -49}, 2, -Normal::z}, {{1, 1, 1}, 1, Normal::y},     {{1, 0, 1}, 2, Normal::z},
      {{1, 1, 0}, 1, Normal::y},    {{0, 1, -1}, 1, Normal::y},    {{1e-13, 0, 0}, 0, invalid},
      {{0, 0, 0}, 1, invalid},      {{1e200, 0, 0}, 0, Normal::x},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(dominantDimension(row.v), row.dimension) << row.v;
    EXPECT_EQ(dominantAxisSigned(row.v), row.axis) << row.v;
    EXPECT_EQ(dominantAxisSigned(row.v).isValid(), row.axis != invalid) << row.v;
  }
}

TEST(LinearDirection, UnitsExtremesAndTheView) {
  EXPECT_NEAR(toRadians(180), pi, 1e-15);
  EXPECT_NEAR(toDegrees(pi / 2), 90, 1e-13);
  double n[] = {1, 2, 3, 4};
  do {
    EXPECT_EQ(qvLinear::max(n[0], n[1], n[2], n[3]), 4);
    EXPECT_EQ(qvLinear::min(n[0], n[1], n[2], n[3]), 1);
    EXPECT_EQ(qvLinear::max(n[0], n[1], n[2]), n[3] == 4 ? 3 : 4);
    EXPECT_EQ(qvLinear::min(n[0], n[1], n[2]), n[3] == 1 ? 2 : 1);
  } while (std::next_permutation(n, n + 4));

  for (int axis = 0; axis < 3; ++axis) {
    for (const double at : {-2.5, -2.0, 0.0, 2.0, 2.5}) {
      HPoint p(0, 0, 0, 2);
      static_cast<double*>(p)[axis] = at;
      const bool inside = std::fabs(at) <= 2;
      EXPECT_EQ(p.insideView(true), inside) << axis << ' ' << at;
      EXPECT_EQ(p.insideView(false), inside || (axis == 2 && at > 0)) << axis << ' ' << at;
    }
  }
  EXPECT_FALSE(HPoint(0, 0, 0, -1).insideView(false));
}

} // namespace
