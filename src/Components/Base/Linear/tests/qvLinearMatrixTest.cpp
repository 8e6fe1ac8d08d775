// What the operations of matrices mean, beside a reference, and their odd cases.
#include "qvLinearMatrixCheck.h"

#include "Base/Linear/qvLinearPlane.h"
#include "Base/Linear/qvLinearRange3d.h"

#include <iomanip>
#include <limits>
#include <numbers>
#include <sstream>
#include <vector>

using namespace qvTest;

namespace {

constexpr double pi = std::numbers::pi;
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

using Inverted = ClassList<AffineMatrix, AffineMatrix2, ProjMatrix>;
using Built = ClassList<AffineMatrix, ProjMatrix>;

TEST(LinearMatrix, ProductsAndSumsAreThoseOfTheReference) {
  Random random(8201);
  Matrices::each([&]<class M>(M*) {
    const double tolerance = 16 * epsilonOf<M>;
    for (int round = 0; round < 500; ++round) {
      const M a = randomMatrix<M>(random), b = randomMatrix<M>(random);
      const Reference product = Reference(a) * Reference(b);
      M out, left = a, right = b;
      b.preMult(out, a);
      left *= b;
      right.preMult(a);
      for (const M& m : {a * b, out, left, right}) expectNear(m, product, tolerance);
      left = a;
      left.preMult(left, left);
      expectNear(left, Reference(a) * Reference(a), tolerance, "itself");
      left = a;
      left += b;
      left -= a * 2;
      EXPECT_TRUE(equivalent(left, b - a, tolerance));
      left = a;
      EXPECT_TRUE((left *= 3) == 3 * a && left == a * 3);
    }
  });
}

TEST(LinearMatrix, EveryNumberCounts) {
  Matrices::each([]<class M>(M*) {
    using Number = typename M::Number;
    Number numbers[M::size], read[M::size];
    for (int i = 0; i < M::size; ++i) numbers[i] = static_cast<Number>(i + 1);
    const M m(numbers);
    m.get(read);
    for (int i = 0; i < M::size; ++i) {
      EXPECT_EQ(read[i], i + 1);
      EXPECT_EQ(m[i / widthOf<M>][i % widthOf<M>], i + 1);
      M other = m;
      other[0][i] += Number{0.5};
      EXPECT_TRUE(other != m && !equivalent(m, other, 0.5) && equivalent(m, other, 0.75)) << i;
    }
    M transposed = m;
    transposed.transpose();
    for (int i = 0; i < widthOf<M>; ++i)
      for (int k = 0; k < widthOf<M>; ++k) EXPECT_EQ(transposed[i][k], m[k][i]);
    if (M::size != 16) {
      EXPECT_EQ(transposed[widthOf<M>][0], 0) << "a translation is lost";
    }
    M set = m;
    EXPECT_TRUE(set.identity() == M::Identity && M::Identity == M(Number{1}));
    EXPECT_TRUE(set.zero() == M(Number{0}));
    expectNear(M(Number{3}) * m, Reference(M(Number{3})) * Reference(m), 0);
  });
  const double numbers[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
  const ProjMatrix whole(numbers);
  const AffineMatrix affine(Promise(), whole);
  EXPECT_EQ(affine[3][2], 15);
  EXPECT_FALSE(whole.isAffine());
  EXPECT_TRUE(ProjMatrix(affine).isAffine() && AffineMatrix(Promise(), affine) == affine);
  AffineMatrixFlt narrow;
  narrow = whole;
  ProjMatrixFlt narrowWhole;
  narrowWhole = affine;
  EXPECT_TRUE(AffineMatrix(narrow) == affine && ProjMatrix(narrowWhole) == ProjMatrix(narrow));
  EXPECT_TRUE((narrowWhole = whole) == ProjMatrixFlt(whole) && (narrow = affine) == AffineMatrixFlt(affine));
  for (const int place : {3, 7, 11, 15}) {
    for (const double difference : {0.5e-12, 2e-12, -2e-12}) {
      ProjMatrix almost(1.0);
      almost[0][place] += difference;
      EXPECT_EQ(almost.isAffine(), difference == 0.5e-12) << place;
    }
  }
}

template <class V, class M>
void expectTransforms(Random& random, long double weight, bool inPlace) {
  for (int round = 0; round < 500; ++round) {
    const M m = randomMatrix<M>(random);
    const V in = randomValue<V>(random);
    V out, same = in;
    m.preMult(out, in);
    expectTransformed(out, in, m, weight);
    EXPECT_TRUE(in * m == out);
    m.preMult(same, same);
    EXPECT_TRUE(same == (inPlace ? out : in)) << "both the same object";
  }
  if constexpr (requires(V * values, M m) { m.preMult(values, values, 1); }) {
    const M m = randomMatrix<M>(random);
    for (std::size_t count = 0; count < 9; ++count) {
      std::vector<V> in(count + 1), out(count + 1, V(randomValue<V>(random)));
      for (V& v : in) v = randomValue<V>(random);
      in[count / 2] = detail::build<V>(
          [](int i) { return static_cast<typename V::Number>(i == 0 ? infinity : notANumber); });
      const V untouched = out[count];
      m.preMult(out.data(), in.data(), count);
      for (std::size_t i = 0; i < count; ++i) {
        if (i == count / 2) {
          EXPECT_TRUE(std::isnan(out[i][0]));
        } else {
          expectTransformed(out[i], in[i], m, weight);
        }
      }
      EXPECT_TRUE(out[count] == untouched);
      m.preMult(in.data(), in.data(), count);
      for (std::size_t i = 0; i < count; ++i) EXPECT_TRUE(i == count / 2 || in[i] == out[i]) << i;
    }
  }
}

TEST(LinearMatrix, ValuesAreTransformedOneByOneAndMany) {
  Random random(8202);
  expectTransforms<Point, AffineMatrix>(random, 1, false);
  expectTransforms<Vector, AffineMatrix>(random, 0, false);
  expectTransforms<HPoint, AffineMatrix>(random, 0, true);
  expectTransforms<PointFlt, AffineMatrixFlt>(random, 1, false);
  expectTransforms<VectorFlt, AffineMatrixFlt>(random, 0, false);
  expectTransforms<Point2, AffineMatrix2>(random, 1, false);
  expectTransforms<Vector2, AffineMatrix2>(random, 0, false);
  expectTransforms<HPoint, ProjMatrix>(random, 0, true);
  expectTransforms<Tuple4, ProjMatrix>(random, 0, true);
  expectTransforms<Vector, ProjMatrix>(random, 0, false);
  const ProjMatrix m = randomMatrix<ProjMatrix>(random);
  EXPECT_TRUE(Point(1, 2, 3) * m == HPoint(1, 2, 3, 1) * m);
}

TEST(LinearMatrix, InversesOfWellAndBadlyScaledMatrices) {
  Random random(8203);
  Inverted::each([&]<class M>(M*) {
    const int linear = widthOf<M>;
    int rejected = 0;
    for (int round = 0; round < 3000; ++round) {
      const double scale = std::pow(10.0, random.between(-5, 9));
      M m = randomMatrix<M>(random, scale);
      if (random.oneIn(8)) std::swap(m[0][0], m[1][0]), m[0][0] = 0; // a row has to be swapped in
      M inverse = m;
      if (!inverse.invert()) {
        EXPECT_TRUE(inverse == m && ++rejected < 300);
        continue;
      }
      EXPECT_TRUE(m.inverse() == inverse);
      const long double condition = Reference(m).norm() * Reference(inverse).norm();
      const long double tolerance = 4 * DBL_EPSILON * condition;
      expectNear(inverse * m, Reference(M(1.0)), tolerance, "inverse * m");
      const long double determinant = Reference(m).determinant(linear);
      const long double size = std::pow(Reference(m).norm(), linear);
      if constexpr (requires { m.det2x2(); }) {
        EXPECT_NEAR(m.det2x2(), determinant, 8 * DBL_EPSILON * size);
      }
      if constexpr (requires { m.det4x4(); }) {
        EXPECT_NEAR(m.det4x4(), determinant, 8 * DBL_EPSILON * size);
        EXPECT_NEAR(m.det3x3(), Reference(m).determinant(3),
                    8 * DBL_EPSILON * std::pow(Reference(m).norm(), 3));
        M fast = m;
        EXPECT_EQ(fast.invertFast(), m.isInvertible());
        if (m.isInvertible()) {
          expectNear(fast, Reference(inverse), tolerance * Reference(inverse).norm(), "invertFast");
        } else {
          EXPECT_TRUE(fast == m);
        }
        const M other = randomMatrix<M>(random);
        EXPECT_NEAR((m * other).det4x4(), m.det4x4() * other.det4x4(), 64 * DBL_EPSILON * size * 256);
      }
    }
    M singular = randomMatrix<M>(random), tiny(1e-5);
    for (int i = 0; i < linear; ++i) singular[1][i] = singular[0][i];
    const M before = singular;
    EXPECT_FALSE(singular.invert() || singular.isInvertible());
    EXPECT_TRUE(singular == before && singular.inverse() == before);
    EXPECT_TRUE(linear == 2 || !tiny.isInvertible());
    if constexpr (requires { tiny.invertFast(); }) {
      EXPECT_FALSE(tiny.invertFast() || singular.invertFast());
    }
    EXPECT_TRUE(singular == before && tiny == M(1e-5) && tiny.invert());
    EXPECT_NEAR(tiny[0][0], 1e5, 1e-9);
    M edge(1.0);
    edge[linear - 1][linear - 1] = epsilonTol;
    EXPECT_TRUE(edge.isInvertible() && M(edge).invert()) << "not below it";
    epsilonTol *= 2;
    EXPECT_FALSE(edge.isInvertible() || edge.invert()) << "read at the call";
    epsilonTol /= 2;
    M bad(notANumber);
    bad.invert();
    EXPECT_TRUE(std::isnan(bad[0][0]));
  });
}

TEST(LinearMatrix, WhatIsBuiltStandsInFront) {
  Random random(8204);
  Built::each([&]<class M>(M*) {
    for (int round = 0; round < 200; ++round) {
      const double angle = 4 * number(random);
      const Vector by = randomValue<Vector>(random);
      const Point origin = randomValue<Point>(random);
      const Normal axis(randomValue<Vector>(random)), to(randomValue<Vector>(random));
      const M m = randomMatrix<M>(random);
      const auto expect = [&](auto build, auto whereTo) {
        M built = m, alone(1.0);
        build(built);
        build(alone);
        expectNear(built, Reference(alone) * Reference(m), 64 * DBL_EPSILON, "in front");
        const Point p = randomValue<Point>(random);
        const Point moved(p * alone);
        EXPECT_LT(distance(moved, whereTo(p)), 32 * DBL_EPSILON);
      };
      const auto turned = [&](const Vector& v) { // Rodrigues
        return std::cos(angle) * v + std::sin(angle) * cross(axis, v) +
               (1 - std::cos(angle)) * dot(axis, v) * axis;
      };
      const double s = std::sin(angle), c = std::cos(angle);
      expect([&](M& x) { x.translate(by); }, [&](Point p) { return p + by; });
      expect([&](M& x) { x.scale(by[0], by[1], by[2]); },
             [&](Point p) { return Point(by[0] * p[0], by[1] * p[1], by[2] * p[2]); });
      expect([&](M& x) { x.scale(angle); }, [&](Point p) { return (angle * p.asVector()).asPoint(); });
      expect([&](M& x) { x.rotateX(angle); },
             [&](Point p) { return Point(p[0], c * p[1] - s * p[2], c * p[2] + s * p[1]); });
      expect([&](M& x) { x.rotateY(angle); },
             [&](Point p) { return Point(c * p[0] + s * p[2], p[1], c * p[2] - s * p[0]); });
      expect([&](M& x) { x.rotateZ(angle); },
             [&](Point p) { return Point(c * p[0] - s * p[1], c * p[1] + s * p[0], p[2]); });
      expect([&](M& x) { x.rotate(angle, axis); }, [&](Point p) { return turned(p.asVector()).asPoint(); });
      expect([&](M& x) { x.rotate(angle, Line(origin, axis)); },
             [&](Point p) { return origin + turned(p - origin); });
      expect([&](M& x) { x.mirror(Plane(origin, axis)); },
             [&](Point p) { return p - 2 * dot(p - origin, axis) * axis; });

      // Nearly or wholly equal and opposite directions too.
      const double small = std::pow(10.0, -random.between(0, 17));
      for (const Normal& end : {to, axis, -axis, Normal(axis + small * by), Normal(small * by - axis)}) {
        M turn(1.0);
        turn.rotate(axis, end);
        EXPECT_LT((axis * turn - end).length(), 32 * DBL_EPSILON);
        M back = turn;
        back.transpose();
        expectNear(back * turn, Reference(M(1.0)), 64 * DBL_EPSILON, "orthonormal");
        EXPECT_NEAR(turn.det3x3(), 1, 64 * DBL_EPSILON);
      }
    }
    Normal none;
    none.setInvalid();
    M m(1.0);
    EXPECT_TRUE(m.rotate(1, none).rotate(1, Line(Point(1, 2, 3), none)).rotate(none, Normal::x) ==
                M::Identity);
    EXPECT_TRUE(m.mirror(Plane(Point(1, 2, 3), none)).rotate(Normal::y, Normal::y) == M::Identity);
  });
  AffineMatrix2 flat(1.0);
  flat.translate(Vector2(3, 4)).rotate(pi / 2).scale(2, 5);
  EXPECT_LT(distance(Point2(1, 1) * flat, Point2(3 - 5, 4 + 2)), 1e-14);
  Point2 origin;
  Vector2 x, y;
  flat.getFrame(origin, x, y);
  AffineMatrix2 same(0.0);
  same.setFrame(origin, x, y);
  EXPECT_TRUE(same == flat && same.getTranslate() == Vector2(3, 4));
}

TEST(LinearMatrix, FramesAndProducts) {
  const double numbers[12] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  const AffineMatrix m(numbers);
  Point origin;
  Vector x, y, z;
  m.getFrame(origin, x, y, z);
  EXPECT_TRUE(origin == Point(10, 11, 12) && x == Vector(1, 2, 3) && y == Vector(4, 5, 6) &&
              z == Vector(7, 8, 9));
  AffineMatrix other(5.0);
  other.setFrame(origin, x, y, z);
  EXPECT_TRUE(other == m && m.getTranslate() == Vector(10, 11, 12));
  const Vector v(2, -3, 5), w(0.5, 7, -1), u(1, -2, 4);
  EXPECT_TRUE(u * other.outerProduct(v, w) == dot(u, v) * w && other.getTranslate() == Vector::zero);
  EXPECT_TRUE(u * other.crossMatrix(v) == cross(u, v));
  EXPECT_TRUE(other[0][1] == -5 && other[0][2] == -3 && other.getTranslate() == Vector::zero);
}

TEST(LinearMatrix, DirectionsAndNormalsOfMirroredAndShearedFrames) {
  Random random(8205);
  for (int round = 0; round < 1000; ++round) {
    const AffineMatrix m = randomMatrix<AffineMatrix>(random);
    if (std::fabs(m.det3x3()) < 0.01) continue;
    bool ok = false;
    const AffineMatrix forVectors = m.vectorMatrix(ok);
    ASSERT_TRUE(ok);
    const Vector u = randomValue<Vector>(random), v = randomValue<Vector>(random);
    EXPECT_NEAR(dot(u * m, v * forVectors), dot(u, v), 1e-11);
    const AffineMatrix forNormals = m.normalMatrix(ok);
    EXPECT_TRUE(ok && forNormals == (m.det3x3() < 0 ? -1 : 1) * forVectors);
    // A normal stays that of the surface which goes with it, on the side where the vectors turn left.
    const Point p = randomValue<Point>(random);
    const ParamPlane surface = ParamPlane(p, u, v) * m;
    EXPECT_TRUE(surface == ParamPlane(p * m, u * m, v * m));
    if (cross(u, v).length() < 0.1) continue;
    const Plane plane = Plane(ParamPlane(p, u, v)) * m;
    EXPECT_TRUE(plane.origin() == p * m);
    EXPECT_LT((plane.normal() - surface.normal()).length(), 1e-10);
    const Line line = Line(p, Normal(u)) * m;
    EXPECT_LT((line.direction() - Normal(u * m)).length(), 1e-14);
    EXPECT_TRUE(line.origin() == p * m && ParamLine(p, u) * m == ParamLine(p * m, u * m));

    Range3d range(Point(0, 0, 0), p);
    Point corners[8];
    range.extend(p + Vector(1, 1, 1));
    for (int i = 0; i < 8; ++i) corners[i] = range.corner(i) * m;
    const Range3d bounds(8, corners), moved = range * m;
    EXPECT_LT(distance(bounds.low(), moved.low()) + distance(bounds.high(), moved.high()), 1e-14);
  }
  const double flat[12] = {1, 2, 3, 2, 4, 6, 0, 0, 1, 7, 8, 9};
  bool ok = true;
  EXPECT_TRUE(AffineMatrix(flat).vectorMatrix(ok) == AffineMatrix(flat) && !ok);
  ok = true;
  EXPECT_TRUE(AffineMatrix(flat).normalMatrix(ok) == AffineMatrix(flat) && !ok);
  Range3d empty;
  empty.setEmpty();
  EXPECT_TRUE((empty * AffineMatrix(-3.0)).isEmpty());
  const Range3d half(Point(0, -infinity, 1), Point(infinity, infinity, 2));
  EXPECT_TRUE(half * AffineMatrix(-1.0) == Range3d(Point(-infinity, -infinity, -2), Point(0, infinity, -1)));
}

TEST(LinearMatrix, TextFollowsTheStream) {
  const auto text = [](const auto& m) {
    std::ostringstream out;
    out << std::setprecision(3) << std::showpos << m;
    return out.str();
  };
  AffineMatrix affine(1.0 / 3);
  affine[3][1] = 1234567;
  EXPECT_EQ(text(affine), "AffineMatrix(\n+0.333,+0,+0\n+0,+0.333,+0\n+0,+0,+0.333\n+0,+1.23e+06,+0\n)");
  EXPECT_EQ(text(ProjMatrix(2.0)), "ProjMatrix(\n+2,+0,+0,+0\n+0,+2,+0,+0\n+0,+0,+2,+0\n+0,+0,+0,+2\n)");
  EXPECT_EQ(text(ProjMatrixFlt(2.F)),
            "ProjMatrixFlt(\n+2,+0,+0,+0\n+0,+2,+0,+0\n+0,+0,+2,+0\n+0,+0,+0,+2\n)");
}

} // namespace
