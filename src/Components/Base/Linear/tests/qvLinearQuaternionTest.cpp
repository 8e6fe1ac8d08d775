// Rotations as quaternions, and affine matrices taken apart.
#include "qvLinearMatrixCheck.h"

#include "Base/Linear/qvLinearDecompose.h"
#include "Base/Linear/qvLinearQuaternion.h"

#include <limits>
#include <numbers>

using namespace qvTest;

namespace {

constexpr double pi = std::numbers::pi;
constexpr double close = 8 * DBL_EPSILON;

Quaternion randomRotation(Random& random) {
  Quaternion q = randomValue<Quaternion>(random);
  q.normalize();
  return q;
}

/// How far the rotations are apart: a quaternion and its negative are the same.
double apart(const Quaternion& a, const Quaternion& b) {
  return std::min((a - b).length(), (a + b).length());
}

TEST(LinearQuaternion, FramesInAllBranches) {
  Random random(8206);
  int branches[4] = {};
  for (int round = 0; round < 4000; ++round) {
    Quaternion q = randomRotation(random), back;
    if (round < 4) q = Quaternion(round == 0, round == 1, round == 2, round == 3);
    Normal x, y, z;
    AffineMatrix m(7.0);
    q.getFrame(x, y, z);
    q.getMatrix(m);
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(m[0][i] - x[i] + m[1][i] - y[i] + m[2][i] - z[i], 0, close);
    EXPECT_TRUE(m.getTranslate() == Vector::zero);
    back.setFrame(x, y, z);
    EXPECT_LT(apart(q, back), close);
    const double trace = x[0] + y[1] + z[2];
    ++branches[trace > 0 ? 3 : x[0] >= y[1] && x[0] >= z[2] ? 0 : y[1] >= z[2] ? 1 : 2];

    double angle;
    Normal axis;
    ASSERT_TRUE(q.getAngleAxis(angle, axis) || round == 3);
    EXPECT_LT(apart(Quaternion(angle, axis), q), 1e-9);
    AffineMatrix turn(1.0);
    expectNear(turn.rotate(angle, axis), Reference(m), 1e-9, "the same turn as the matrix makes");
  }
  for (const int count : branches) EXPECT_GT(count, 100);
}

TEST(LinearQuaternion, AnglesAndAxesAtTheEnds) {
  double angle = 9;
  Normal axis;
  EXPECT_FALSE(Quaternion(0, 0, 0, 1).getAngleAxis(angle, axis));
  EXPECT_TRUE(angle == 0 && axis == Normal::x && axis.isValid());
  EXPECT_FALSE(Quaternion(0, 1e-6, 0, 1 - 0.5e-12).getAngleAxis(angle, axis));
  EXPECT_TRUE(Quaternion(0, 0, 0, -1).getAngleAxis(angle, axis));
  EXPECT_EQ(angle, 2 * pi);
  EXPECT_TRUE(Quaternion(0, 0, 0, 2).getAngleAxis(angle, axis)); // clamped
  EXPECT_EQ(angle, 0);
  EXPECT_TRUE(Quaternion(pi, Normal::y).getAngleAxis(angle, axis));
  EXPECT_NEAR(angle, pi, close);
  EXPECT_LT((axis - Normal::y).length(), close);
  Normal none;
  none.setInvalid();
  EXPECT_TRUE(equivalent(Quaternion(1, none), Quaternion(0, 0, 0, 1), close));
  Quaternion zero(0, 0, 0, 0);
  zero.normalize();
  for (int i = 0; i < 4; ++i) EXPECT_TRUE(std::isnan(zero[i]));
  EXPECT_TRUE(std::isinf((Quaternion(1, 2, 3, 4) / 0)[0]));
  EXPECT_TRUE(std::isnan(slerp(zero, zero, 0.5)[0]) && zero.getAngleAxis(angle, axis));
}

TEST(LinearQuaternion, SlerpGoesTheShorterWayAtAnEvenPace) {
  Random random(8207);
  for (int round = 0; round < 3000; ++round) {
    const Quaternion a = randomRotation(random);
    // From opposite and perpendicular ones to angles below the tolerance.
    const double small = std::pow(10.0, -random.between(0, 12));
    Quaternion b = round % 2 == 0 ? randomRotation(random) : a + small * randomRotation(random);
    b.normalize();
    if (random.oneIn(3)) b *= -1;
    const double product = detail::dot(a, b);
    const Quaternion from = product < 0 ? -a : a;
    const auto angleOf = [](const Quaternion& p, const Quaternion& q) {
      return 2 * std::asin((p - q).length() / 2);
    };
    // A small angle has lost digits in its cosine.
    const double angle = angleOf(from, b);
    const double tolerance = close + (std::fabs(product) > parallelTol ? 0 : 4 * DBL_EPSILON / angle);
    EXPECT_TRUE(equivalent(slerp(a, b, 0), from, close));
    EXPECT_TRUE(equivalent(slerp(a, b, 1), b, tolerance));
    const double t = std::fabs(number(random));
    const Quaternion middle = slerp(a, b, t);
    EXPECT_NEAR(middle.length(), 1, close);
    EXPECT_NEAR(angleOf(from, middle), t * angle, 2 * tolerance);
    EXPECT_NEAR(angleOf(middle, b), (1 - t) * angle, 2 * tolerance);
  }
  const Quaternion q(0.5, 0.5, 0.5, 0.5);
  EXPECT_TRUE(slerp(q, q, 0.3) == q && slerp(q, -q, 0.3) == -q);
}

struct Parts {
  explicit Parts(const AffineMatrix& m) : regular(atelierDecompose(m, translate, scale, rotate, shear)) {}

  /// Put together again as the contract tells.
  [[nodiscard]] AffineMatrix whole() const {
    AffineMatrix m(1.0), sheared(1.0);
    sheared[1][0] = shear[0];
    sheared[2][0] = shear[1];
    sheared[2][1] = shear[2];
    m.translate(translate.asVector());
    m.rotateZ(toRadians(rotate[2])).rotateY(toRadians(rotate[1])).rotateX(toRadians(rotate[0]));
    m.preMult(sheared);
    return m.scale(scale[0], scale[1], scale[2]);
  }

  Point translate;
  Vector scale, rotate, shear;
  bool regular;
};

TEST(LinearDecompose, PartsMakeTheWholeAgain) {
  Random random(8208);
  for (int round = 0; round < 4000; ++round) {
    const double size = std::pow(10.0, random.between(-3, 6));
    const AffineMatrix m = randomMatrix<AffineMatrix>(random, size);
    const Parts parts(m);
    if (std::fabs(m.det3x3()) < 1e-3 * size * size * size) continue;
    EXPECT_TRUE(parts.regular);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(parts.scale[i] < 0, m.det3x3() < 0);
    expectNear(parts.whole(), Reference(m), 1e-10 * size);
  }
}

TEST(LinearDecompose, LockedAnglesAndCollapsedAxes) {
  for (const double y : {-90.0, 90.0}) {
    for (const double x : {-120.0, 0.0, 30.0}) {
      AffineMatrix m(1.0);
      m.rotateZ(toRadians(25)).rotateY(toRadians(y)).rotateX(toRadians(x)).scale(2, 3, 4);
      const Parts parts(m);
      EXPECT_TRUE(parts.regular && parts.rotate[2] == 0);
      EXPECT_NEAR(parts.rotate[1], y, 1e-5);
      expectNear(parts.whole(), Reference(m), 1e-7);
    }
  }
  const Parts mirrored(AffineMatrix(-2.0));
  EXPECT_TRUE(mirrored.regular && mirrored.scale == Vector(-2, -2, -2));
  EXPECT_LT(mirrored.rotate.length(), 1e-12);
  AffineMatrix m(1.0);
  m.translate(1, 2, 3).rotateZ(0.5).scale(2, 0, 4);
  m[2][0] += 1;
  const Parts collapsed(m);
  EXPECT_FALSE(collapsed.regular);
  EXPECT_TRUE(collapsed.rotate == Vector::zero && collapsed.translate == Point(1, 2, 3));
  EXPECT_NEAR(collapsed.scale[0], 2, close);
  EXPECT_EQ(collapsed.scale[1], 0);
  EXPECT_NE(collapsed.shear[1], 0);
  EXPECT_TRUE(std::isnan(Parts(AffineMatrix(std::numeric_limits<double>::quiet_NaN())).scale[0]));
}

} // namespace
