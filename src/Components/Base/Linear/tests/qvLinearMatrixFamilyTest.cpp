// The table of operations of the matrices, class by operation: which there are, which there are not.
#include "Base/Linear/qvLinearDecompose.h"
#include "Base/Linear/qvLinearPlane.h"
#include "Base/Linear/qvLinearQuaternion.h"
#include "Base/Linear/qvLinearRange3d.h"
#include "qvLinearMatrixCheck.h"

#include <ostream>

using namespace qvTest;

namespace {

// Expects which matrices T have an expression. Signs stand for AffineMatrix, AffineMatrixFlt, AffineMatrix2,
// ProjMatrix and ProjMatrixFlt.
#define EXPECT_MATRICES(...)                                                                                 \
  EXPECT_SIGNS(Matrices,                                                                                     \
               (T a, const T b, const T c, typename T::Number* p, const typename T::Number* q, double d,     \
                bool ok, Point point, Vector v, Normal n, std::ostream& out),                                \
               __VA_ARGS__)

// The same of an element that stands on the left of a matrix.
#define EXPECT_TRANSFORMED(Element, expected)                                                                \
  EXPECT_MATRICES(                                                                                           \
      expected, requires requires(Element to, const Element from) {                                          \
        { from* b } -> std::same_as<Element>;                                                                \
        b.preMult(to, from);                                                                                 \
      })

TEST(LinearMatrixFamily, OperationsByClass) {
  EXPECT_MATRICES("+++++", requires std::is_trivially_default_constructible_v<T>);
  EXPECT_MATRICES("+++++", requires std::is_trivially_copyable_v<T>);
  EXPECT_MATRICES("+++++", requires std::is_standard_layout_v<T>);
  EXPECT_MATRICES("+++++", requires sizeof(T) == T::size * sizeof(typename T::Number));
  EXPECT_MATRICES("+++++", { T::Identity } -> std::same_as<const T&>);
  EXPECT_MATRICES("+++++", T(1); T(1.0F); T(q); a.set(q); b.get(p); p = a[1]; q = b[1]; q = b);
  EXPECT_MATRICES(".....", T(v)); // no pointer to fewer numbers is taken
  EXPECT_MATRICES(".....", a = 1.0);
  EXPECT_MATRICES("++.++", T(AffineMatrix()); T(AffineMatrixFlt()); a = AffineMatrix(); T(T(b)));
  EXPECT_MATRICES("...++", T(ProjMatrix()); T(ProjMatrixFlt()));
  EXPECT_MATRICES("++...", T(Promise(), ProjMatrix()));
  EXPECT_MATRICES(".+.++", a = ProjMatrix());
  EXPECT_MATRICES("+++++", { a.identity() } -> std::same_as<T&>);
  EXPECT_MATRICES("+++++", { a.zero() } -> std::same_as<T&>);
  EXPECT_MATRICES("+++++", { b* c } -> std::same_as<T>);
  EXPECT_MATRICES("+++++", b + c; b - c; 2.0 * b; b * 2.0; 2 * b; b == c; b != c; equivalent(b, c, d));
  EXPECT_MATRICES("+++++", a *= b; a += b; a -= b; a *= 2; b.preMult(a, c); a.preMult(b); a.transpose());
  EXPECT_MATRICES("+....", a.outerProduct(v, v); a.crossMatrix(v));
  EXPECT_MATRICES("+..+.", a.translate(d, d, d); a.translate(v); a.scale(d, d, d));
  EXPECT_MATRICES("..+..", a.translate(d, d); a.translate(Vector2(1, 2)); a.scale(d, d); a.rotate(d);
                  b.det2x2());
  EXPECT_MATRICES("+.++.", a.scale(d); a.invert(); b.inverse(); b.isInvertible());
  EXPECT_MATRICES("+..+.", a.rotateX(d).rotateY(d).rotateZ(d); a.rotate(d, n); a.rotate(d, Line()));
  EXPECT_MATRICES("+..+.", a.rotate(n, n); a.mirror(Plane()); a.invertFast());
  EXPECT_MATRICES("++.++", b.det3x3());
  EXPECT_MATRICES("+..++", b.det4x4());
  EXPECT_MATRICES("...+.", b.isAffine());
  EXPECT_MATRICES("+....", b.getFrame(point, v, v, v); a.setFrame(point, v, v, v); v = b.getTranslate());
  EXPECT_MATRICES("+....", b.vectorMatrix(ok); b.normalMatrix(ok));
  EXPECT_MATRICES("+..++", out << b);
  EXPECT_TRANSFORMED(Point, "+....");
  EXPECT_TRANSFORMED(Vector, "+..+.");
  EXPECT_TRANSFORMED(HPoint, "+..+.");
  EXPECT_TRANSFORMED(Tuple4, "...+.");
  EXPECT_TRANSFORMED(Line, "+....");
  EXPECT_TRANSFORMED(ParamLine, "+....");
  EXPECT_TRANSFORMED(Plane, "+....");
  EXPECT_TRANSFORMED(ParamPlane, "+....");
  EXPECT_TRANSFORMED(Range3d, "+....");
  EXPECT_TRANSFORMED(PointFlt, ".+...");
  EXPECT_TRANSFORMED(VectorFlt, ".+...");
  EXPECT_TRANSFORMED(Point2, "..+..");
  EXPECT_TRANSFORMED(Vector2, "..+..");
  EXPECT_MATRICES("...++", { point* b } -> std::same_as<HPoint>);
}

TEST(LinearMatrixFamily, OperationsOfQuaternions) {
  EXPECT_SIGNS(
      ClassList<Quaternion>, (T a, const T b, double d, double* p, const double* q, Normal n, AffineMatrix m),
      "+", requires std::is_trivially_default_constructible_v<T> && std::is_trivially_copyable_v<T>;
      T(d, n); T(q); T(d, d, d, d); a.setAngleAxis(d, n); a.getAngleAxis(d, n); a.setFrame(n, n, n);
      b.getFrame(n, n, n); b.getMatrix(m); a.normalize(); a *= d; a /= d; b / d; b == a; b != a;
      equivalent(a, b, d); b.get(p); q = b; { slerp(a, b, d) } -> std::same_as<T>);
}

} // namespace
