// What the library exports: constants and tolerances, which stand before any initialiser runs, and text
// forms.
#include "Base/Linear/qvLinearAffineMatrix2.h"
#include "Base/Linear/qvLinearNormal.h"
#include "Base/Linear/qvLinearPoint.h"
#include "Base/Linear/qvLinearProjMatrixFlt.h"
#include "Base/Linear/qvLinearTuple.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <iomanip>
#include <numbers>
#include <sstream>

using namespace qvLinear;

namespace {

// An initialiser of this unit, like any host's.
const struct Early {
  double tolerances[9] = {epsilonTol,       epsilon2Tol,       epsilonTolFlt, epsilon2TolFlt, degreeTol,
                          perpendicularTol, perpendicular2Tol, parallelTol,   parallel2Tol};
  Vector vectors[4] = {Vector::x, Vector::y, Vector::z, Vector::zero};
  VectorFlt narrow[4] = {VectorFlt::x, VectorFlt::y, VectorFlt::z, VectorFlt::zero};
  Vector2 flat[3] = {Vector2::x, Vector2::y, Vector2::zero};
  Vector2Flt flatNarrow[3] = {Vector2Flt::x, Vector2Flt::y, Vector2Flt::zero};
  Normal normals[3] = {Normal::x, Normal::y, Normal::z};
  Point origin = Point::origin;
  bool origins = Point2::origin == Point2(0, 0) && PointFlt::origin == PointFlt(0, 0, 0) &&
                 Point2Flt::origin == Point2Flt(0, 0);
  bool zeros =
      Tuple2::zero == Tuple2(0, 0) && Tuple3::zero == Tuple3(0, 0, 0) && Tuple4::zero == Tuple4(0, 0, 0, 0);
  bool identities = AffineMatrix::Identity == AffineMatrix(1.0) &&
                    AffineMatrix2::Identity == AffineMatrix2(1.0) &&
                    AffineMatrixFlt::Identity == AffineMatrixFlt(1.0F) &&
                    ProjMatrix::Identity == ProjMatrix(1.0) && ProjMatrixFlt::Identity == ProjMatrixFlt(1.0F);
} early;

TEST(LinearExports, TolerancesStandBeforeInitialisersRun) {
  const double degree = 1e-5 * std::numbers::pi / 180;
  const double expected[9] = {1e-12,
                              1e-24,
                              1e-6F,
                              1e-12F,
                              1e-5,
                              std::sin(degree),
                              std::sin(degree) * std::sin(degree),
                              std::cos(degree),
                              std::cos(degree) * std::cos(degree)};
  for (int i = 0; i < 9; ++i)
    EXPECT_NEAR(early.tolerances[i], expected[i], 2 * DBL_EPSILON * expected[i]) << i;
}

TEST(LinearExports, ConstantsStandBeforeInitialisersRun) {
  const auto expectAxes = [](const auto& constants, int count) {
    using T = std::remove_cvref_t<decltype(constants[0])>;
    for (int constant = 0; constant < count; ++constant)
      for (int i = 0; i < T::size; ++i) EXPECT_EQ(constants[constant][i], i == constant ? 1 : 0);
  };
  EXPECT_TRUE(early.identities);
  expectAxes(early.vectors, 4);
  expectAxes(early.narrow, 4);
  expectAxes(early.flat, 3);
  expectAxes(early.flatNarrow, 3);
  expectAxes(early.normals, 3);
  for (const Normal& n : early.normals) EXPECT_TRUE(n.isValid());
  EXPECT_EQ(early.origin, Point(0, 0, 0));
  EXPECT_TRUE(early.origins && early.zeros);
}

template <class T>
std::string text(const T& value) {
  std::ostringstream plain;
  plain << value;
  std::ostringstream styled;
  styled << std::showpos << std::fixed << std::setprecision(2) << value;
  return plain.str() + ' ' + styled.str();
}

TEST(LinearExports, TextFollowsTheStream) {
  EXPECT_EQ(text(Vector(1, -2.5, 1e20)),
            "Vector(1,-2.5,1e+20) Vector(+1.00,-2.50,+100000000000000000000.00)");
  EXPECT_EQ(text(VectorFlt(0.1F, 2, 3)), "VectorFlt(0.1,2,3) VectorFlt(+0.10,+2.00,+3.00)");
  EXPECT_EQ(text(Normal::y), "Normal(0,1,0) Normal(+0.00,+1.00,+0.00)");
  EXPECT_EQ(text(Point(1, 2, 3)), "Point(1,2,3) Point(+1.00,+2.00,+3.00)");
  EXPECT_EQ(text(PointFlt(1, 2, 3)), "PointFlt(1,2,3) PointFlt(+1.00,+2.00,+3.00)");
  EXPECT_EQ(text(Point2(1, 2)), "Point2(1,2) Point2(+1.00,+2.00)");
}

} // namespace
