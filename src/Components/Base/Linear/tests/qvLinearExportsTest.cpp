// What the library exports: constants, tolerances and text forms.
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

/// Expects the axes in turn, and zero after the last.
template <class T>
void expectAxes(std::initializer_list<T> constants) {
  int axis = 0;
  for (const T& constant : constants) {
    for (int i = 0; i < T::size; ++i) EXPECT_EQ(constant[i], i == axis ? 1 : 0);
    ++axis;
  }
}

TEST(LinearExports, TolerancesAndConstants) {
  const double sine = std::sin(1e-5 * std::numbers::pi / 180);
  const double cosine = std::cos(1e-5 * std::numbers::pi / 180);
  const struct {
    double value, expected;
  } rows[] = {{epsilonTol, 1e-12},
              {epsilon2Tol, 1e-24},
              {epsilonTolFlt, 1e-6F},
              {epsilon2TolFlt, 1e-12F},
              {degreeTol, 1e-5},
              {perpendicularTol, sine},
              {perpendicular2Tol, sine * sine},
              {parallelTol, cosine},
              {parallel2Tol, cosine * cosine}};
  for (const auto& row : rows)
    EXPECT_NEAR(row.value, row.expected, 2 * DBL_EPSILON * row.expected) << row.expected;

  expectAxes({Vector::x, Vector::y, Vector::z, Vector::zero});
  expectAxes({VectorFlt::x, VectorFlt::y, VectorFlt::z, VectorFlt::zero});
  expectAxes({Vector2::x, Vector2::y, Vector2::zero});
  expectAxes({Vector2Flt::x, Vector2Flt::y, Vector2Flt::zero});
  expectAxes({Normal::x, Normal::y, Normal::z});
  EXPECT_TRUE(Normal::x.isValid() && Normal::y.isValid() && Normal::z.isValid());
  EXPECT_TRUE(Point::origin == Point(0, 0, 0) && Point2::origin == Point2(0, 0) &&
              PointFlt::origin == PointFlt(0, 0, 0) && Point2Flt::origin == Point2Flt(0, 0));
  EXPECT_TRUE(Tuple2::zero == Tuple2(0, 0) && Tuple3::zero == Tuple3(0, 0, 0) &&
              Tuple4::zero == Tuple4(0, 0, 0, 0));
  EXPECT_TRUE(AffineMatrix::Identity == AffineMatrix(1.0) && AffineMatrix2::Identity == AffineMatrix2(1.0) &&
              AffineMatrixFlt::Identity == AffineMatrixFlt(1.0F) && ProjMatrix::Identity == ProjMatrix(1.0) &&
              ProjMatrixFlt::Identity == ProjMatrixFlt(1.0F));
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
