// What the operations of single values mean.
#include "qvLinearFamily.h"

#include <cstring>
#include <limits>

using namespace qvTest;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

// Their sums, products and quotients by powers of two are exact in narrow numbers too.
constexpr double a[4] = {2, -3, 5, 7};
constexpr double b[4] = {-1, 4, 0.5, 8};

template <class T>
void expectNumbersArePlainAndCompared() {
  const T v = make<T>(a);
  typename T::Number numbers[T::size];
  v.get(numbers);
  expectNumbers(v, [](int i) { return a[i]; });
  EXPECT_EQ(std::memcmp(&v, numbers, sizeof numbers), 0);
  EXPECT_EQ(static_cast<const typename T::Number*>(v), static_cast<const void*>(&v));
  T set;
  if constexpr (std::same_as<T, Normal>)
    set.set(Promise(), numbers);
  else
    set.set(numbers);
  EXPECT_TRUE(set == v);
  for (int i = 0; i < T::size; ++i) {
    double changed[4] = {a[0], a[1], a[2], a[3]};
    changed[i] += 0.25;
    const T other = make<T>(changed);
    EXPECT_TRUE(v != other) << i;
    if constexpr (requires { equivalent(v, other, 1); }) {
      EXPECT_TRUE(equivalent(v, other, 0.26)) << i;
      EXPECT_FALSE(equivalent(v, other, 0.25)) << i;
    }
  }
}

template <class T>
void expectArithmeticIsNumberByNumber() {
  const T v = make<T>(a), w = make<T>(b);
  if constexpr (requires(T sum) { sum *= 3; }) {
    expectNumbers(v + w, [](int i) { return a[i] + b[i]; });
    expectNumbers(v - w, [](int i) { return a[i] - b[i]; });
    expectNumbers(-v, [](int i) { return -a[i]; });
    expectNumbers(v * 3, [](int i) { return a[i] * 3; });
    expectNumbers(3 * v, [](int i) { return a[i] * 3; });
    // Not a true division, which would round otherwise.
    const auto third = typename T::Number(1) / 3;
    expectNumbers(v / 3, [&](int i) { return v[i] * third; });
    expectNumbers(v / 0, [](int i) { return a[i] * infinity; });
  }
  if constexpr (requires { v* w; }) {
    expectNumbers(v * w, [](int i) { return a[i] * b[i]; });
    expectNumbers(v / w, [](int i) { return a[i] / b[i]; });
  }
  if constexpr (
      requires { v + (w - v); } && !requires { v + w; }) { // vectors move points
    const auto offset = w - v;
    expectNumbers(offset, [](int i) { return b[i] - a[i]; });
    expectNumbers(w + offset, [](int i) { return 2 * b[i] - a[i]; });
    EXPECT_EQ(w - offset, v);
    EXPECT_EQ(distance(v, w), offset.length());
  }
  if constexpr (requires { combine(2, &v); }) {
    expectNumbers(combine(v, w), [](int i) { return (a[i] + b[i]) / 2; });
    expectNumbers(combine(3, v, -0.5, w), [](int i) { return 3 * a[i] - 0.5 * b[i]; });
    const T items[] = {v, w, v, v};
    const typename T::Number weights[] = {1, 4, -2, 0.25};
    expectNumbers(combine(4, weights, items), [](int i) { return 4 * b[i] - 0.75 * a[i]; });
    expectNumbers(combine(0, weights, items), [](int) { return 0; });
    expectNumbers(combine(4, items), [](int i) { return (3 * a[i] + b[i]) / 4; });
    EXPECT_EQ(combine(1, items), v);
  }
}

TEST(LinearValues, OperationsOfEveryClass) {
  Family::each([]<class T>(T*) {
    expectNumbersArePlainAndCompared<T>();
    expectArithmeticIsNumberByNumber<T>();
  });
  EXPECT_NE((Tuple3(0, 0, 5) / 3)[2], 5.0 / 3);
  EXPECT_EQ(distance(Tuple2(1, 1), Tuple2(4, 5)), 5);
  EXPECT_EQ(cross(Normal::x, Vector(0, 0, 2)), Vector(0, -2, 0));
  EXPECT_EQ(cross(VectorFlt::x, VectorFlt::y), VectorFlt::z);
  EXPECT_EQ(dot(Vector(2, 3, 5), Vector(7, 11, 13)), 112);
  EXPECT_EQ(dot(Vector2Flt(2, 3), Vector2Flt(7, 11)), 47);
}

TEST(LinearValues, Conversions) {
  const Vector flat(1, 2, 0);
  for (const Vector& v :
       {Vector(Vector2(1, 2)), Vector(VectorFlt(Vector2Flt(1, 2))), Vector2(1, 2).asVector(),
        Vector2(1, 2).asPoint().asVector(), Vector(Vector2(1, 2).asPoint2().asVector2()),
        Point2(1, 2).asVector(), Point2(1, 2).asPoint().asVector()})
    EXPECT_EQ(v, flat);
  for (const VectorFlt& v :
       {Vector2Flt(1, 2).asVectorFlt(), Vector2Flt(1, 2).asPointFlt().asVectorFlt(),
        VectorFlt(Vector2Flt(1, 2).asPoint2Flt().asVector2Flt()), Point2Flt(1, 2).asVectorFlt(),
        VectorFlt(1, 2, 0).asPointFlt().asVectorFlt(), PointFlt(Point2Flt(1, 2).asPointFlt()).asVectorFlt()})
    EXPECT_EQ(v, flat);
  EXPECT_EQ(Vector(1, 2, 3).asPoint().asVector(), Vector(1, 2, 3));
  EXPECT_EQ(VectorFlt(Vector(0.1, 0, 0))[0], 0.1F);
  EXPECT_EQ(PointFlt(0.1, 16777217, 0), PointFlt(0.1F, 16777216, 0));
  const float narrow[] = {0.1F, 2, 3};
  EXPECT_EQ(Point(narrow), Point(0.1F, 2, 3));

  const HPoint multiplied(4, 8, 12, 4);
  const RPoint rational(1, 2, 3, 4);
  EXPECT_EQ(HPoint(Point(1, 2, 3)), HPoint(1, 2, 3, 1));
  EXPECT_EQ(RPoint(Point(1, 2, 3)), RPoint(1, 2, 3, 1));
  EXPECT_EQ(HPoint(rational), multiplied);
  EXPECT_EQ(RPoint(multiplied), rational);
  EXPECT_EQ(RPoint(HPoint(1, -2, 3, 0)), RPoint(infinity, -infinity, infinity, 0));
  EXPECT_EQ(Point(multiplied), Point(1, 2, 3));
  EXPECT_EQ(Point(rational), Point(1, 2, 3));
  EXPECT_EQ(distance(multiplied, Point(1, 2, 5)), 2);
  EXPECT_EQ(rational + Vector(1, 1, 1) - Vector(0, 0, 2), RPoint(2, 3, 2, 4));
}

/// Expects how `v` is normalised: to a value near `expected`, or that it fails and leaves exactly that.
template <class V>
void expectNormalized(V v, const V& expected, bool works, int line) {
  const double error = 4 * double{std::numeric_limits<typename V::Number>::epsilon()};
  EXPECT_EQ(v.normalize(), works) << "line " << line;
  EXPECT_TRUE(works ? equivalent(v, expected, error) : v == expected) << "line " << line;
}

TEST(LinearValues, EachClassOfVectorsHasItsOwnRules) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  expectNormalized(Vector(3, 0, -4), Vector(0.6, 0, -0.8), true, __LINE__);
  expectNormalized(Vector(1.01e-12, 0, 0), Vector::x, true, __LINE__);
  expectNormalized(Vector(1e-13, 0, 0), Vector::zero, false, __LINE__);
  expectNormalized(Vector(0, nan, 1), Vector::zero, false, __LINE__);
  expectNormalized(VectorFlt(0, 3, 4), VectorFlt(0, 0.6, 0.8), true, __LINE__);
  expectNormalized(VectorFlt(0, 1.01e-6, 0), VectorFlt::y, true, __LINE__);
  expectNormalized(VectorFlt(0, 0.99e-6, 0), VectorFlt::zero, false, __LINE__);
  expectNormalized(Vector2Flt(-3, 4), Vector2Flt(-0.6, 0.8), true, __LINE__);
  expectNormalized(Vector2Flt(0.99e-6, 0), Vector2Flt::zero, false, __LINE__);
  expectNormalized(Vector2(-3, 4), Vector2(-0.6, 0.8), true, __LINE__);
  expectNormalized(Vector2(1e-13, 0), Vector2(1e-13, 0), false, __LINE__);
  // The length itself is enough here, and is not above anywhere else.
  epsilonTol = epsilon2Tol = 0.25;
  epsilon2TolFlt = 0.25F;
  expectNormalized(Vector2(0.25, 0), Vector2::x, true, __LINE__);
  expectNormalized(Vector2(0.2, 0), Vector2(0.2, 0), false, __LINE__);
  expectNormalized(Vector(0.5, 0, 0), Vector::zero, false, __LINE__);
  expectNormalized(VectorFlt(0.5, 0, 0), VectorFlt::zero, false, __LINE__);
  EXPECT_FALSE(Normal(0, 0.5, 0).isValid());
  epsilonTol = 1e-12;
  epsilon2Tol = 1e-24;
  epsilon2TolFlt = 1e-12F;
  EXPECT_TRUE(Vector2Flt(1, 0).normalized().isValid() && VectorFlt(1e-7, 0, 0).normalized().isValid());

  // Narrow ones are summed narrow, and the root is taken wide.
  EXPECT_EQ(VectorFlt(1, 1, 0).length(), std::sqrt(2.0));
  EXPECT_EQ(VectorFlt(1e20, 0, 0).length(), infinity);
  EXPECT_EQ(Vector2Flt(1e20, 0).length2(), infinity);
  EXPECT_EQ(Vector(1e20, 0, 0).length(), 1e20);
  EXPECT_EQ(distance(PointFlt(1e20, 0, 0), PointFlt::origin), infinity);
  EXPECT_EQ(Vector(2, 3, 6).length(), 7);

  EXPECT_EQ(Vector2(2, 3).orthogonalVector(), Vector2(-3, 2));
  EXPECT_EQ(Vector2Flt(2, 3).orthogonalVector(), Vector2Flt(-3, 2));
  EXPECT_EQ(Vector::zero.orthogonalVector(), Vector::zero);
  EXPECT_EQ(Vector(1, 2, 3).orthogonalVector(), cross(Vector(-3, 1, 2), Vector(1, 2, 3)));
  EXPECT_EQ(Vector(1, 2, -3).orthogonalVector(), cross(Vector(-3, 1, 2), Vector(1, 2, -3)));
  EXPECT_EQ(Vector(-1, 2, 3).orthogonalVector(), cross(Vector(3, -1, 2), Vector(-1, 2, 3)));
  EXPECT_EQ(Normal(Promise(), 1, 2, 3).orthogonalVector(), Vector(1, 2, 3).orthogonalVector());
  EXPECT_EQ(VectorFlt(1, 2, 3).orthogonalVector(), VectorFlt(Vector(1, 2, 3).orthogonalVector()));
  EXPECT_EQ(Vector(1, 2, 3).reverse(), Vector(-1, -2, -3));
}

TEST(LinearValues, WhateverSetsANormalNormalises) {
  const double numbers[] = {3, 0, 4};
  const Vector vector(numbers);
  Normal set, assigned;
  set.set(numbers);
  assigned = vector;
  for (const Normal& n :
       {Normal(3, 0, 4), Normal(numbers), Normal(vector), vector.normalized(), set, assigned}) {
    EXPECT_TRUE(equivalent(n, Vector(0.6, 0, 0.8), 1e-15));
    EXPECT_TRUE(n.isValid());
  }
  EXPECT_EQ(Normal(Promise(), numbers), vector);

  Normal cleared = Normal::x;
  cleared.setInvalid();
  for (const Normal& n : {Normal(0, 0, 0), Normal(Vector(1e-13, 0, 0)), Vector(0, 1e-13, 0).normalized(),
                          cleared, -cleared, Normal(std::nan(""), 1, 0)}) {
    EXPECT_FALSE(n.isValid());
    EXPECT_EQ(n, cleared);
    EXPECT_EQ(n, Normal(Promise(), 0, 0, 0)); // which is valid
  }
  EXPECT_TRUE((-Normal::x).isValid() && Normal(Promise(), 3, 4, 0).isValid());
  EXPECT_EQ(-Normal::x, Normal(Promise(), -1, 0, 0));
  // The flag lies behind the numbers.
  const auto flag = [](const Normal& n) { return reinterpret_cast<const char*>(&n)[3 * sizeof(double)]; };
  EXPECT_EQ(flag(Normal::x), 1);
  EXPECT_EQ(flag(cleared), 0);

  // Arithmetic gives vectors, and beside a vector nothing is normalised.
  const Normal x = Normal::x, y = Normal::y;
  EXPECT_EQ(x + y, Vector(1, 1, 0));
  EXPECT_EQ(x - 3 * y, Vector(1, -3, 0));
  EXPECT_EQ(x * 2, x / 0.5);
  EXPECT_EQ(combine(2, x, 3, 2 * y), Vector(2, 6, 0));
  EXPECT_NE(x, 2 * x);
}

} // namespace
