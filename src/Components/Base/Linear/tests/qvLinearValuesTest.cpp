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

TEST(LinearValues, NumbersComeOutAsTheyWentIn) {
  Family::each([]<class T>(T*) {
    const auto expect = [](const T& value) { expectNumbers(value, [](int i) { return a[i]; }); };
    const T v = make<T>(a);
    typename T::Number numbers[T::size];
    v.get(numbers);
    for (int i = 0; i < T::size; ++i) EXPECT_EQ(numbers[i], v[i]);
    EXPECT_EQ(static_cast<const typename T::Number*>(v), static_cast<const void*>(&v));
    EXPECT_EQ(std::memcmp(&v, numbers, sizeof numbers), 0);
    T set;
    if constexpr (std::same_as<T, Normal>) {
      expect(Normal(Promise(), numbers));
      set.set(Promise(), numbers);
      expect(set);
    } else {
      expect(T(numbers));
      set.set(numbers);
      expect(set);
      static_cast<typename T::Number*>(set)[1] = 9;
      EXPECT_EQ(set[1], 9);
    }
  });
}

TEST(LinearValues, EveryNumberIsCompared) {
  Family::each([]<class T>(T*) {
    const T v = make<T>(a);
    EXPECT_TRUE(v == T(v));
    for (int i = 0; i < T::size; ++i) {
      double numbers[4] = {a[0], a[1], a[2], a[3]};
      numbers[i] += 0.25;
      const T other = make<T>(numbers);
      EXPECT_TRUE(v != other) << i;
      if constexpr (requires { equivalent(v, other, 1); }) {
        EXPECT_TRUE(equivalent(v, other, 0.26)) << i;
        EXPECT_FALSE(equivalent(v, other, 0.25)) << i;
      }
    }
  });
}

TEST(LinearValues, ArithmeticIsNumberByNumber) {
  Added::each([]<class T>(T*) {
    const T v = make<T>(a), w = make<T>(b);
    expectNumbers(v + w, [](int i) { return a[i] + b[i]; });
    expectNumbers(v - w, [](int i) { return a[i] - b[i]; });
    expectNumbers(-v, [](int i) { return -a[i]; });
    expectNumbers(v * 3, [](int i) { return a[i] * 3; });
    expectNumbers(3 * v, [](int i) { return a[i] * 3; });
    if constexpr (requires { v* w; }) {
      expectNumbers(v * w, [](int i) { return a[i] * b[i]; });
      expectNumbers(v / w, [](int i) { return a[i] / b[i]; });
    }
    // Not a true division, which would round otherwise.
    const auto third = typename T::Number(1) / 3;
    expectNumbers(v / 3, [&](int i) { return v[i] * third; });
    expectNumbers(v / 0, [](int i) { return a[i] * infinity; });
  });
  EXPECT_NE((Tuple3(0, 0, 5) / 3)[2], 5.0 / 3);
}

TEST(LinearValues, VectorsMovePoints) {
  Positions::each([]<class T>(T*) {
    const T p = make<T>(a), q = make<T>(b);
    const auto offset = q - p;
    expectNumbers(offset, [](int i) { return b[i] - a[i]; });
    expectNumbers(q + offset, [](int i) { return 2 * b[i] - a[i]; });
    EXPECT_EQ(q - offset, p);
    EXPECT_EQ(distance2(p, q), offset.length2());
    EXPECT_EQ(distance(p, q), offset.length());
  });
}

TEST(LinearValues, CombinedSumsAndAverages) {
  Combined::each([]<class T>(T*) {
    const T v = make<T>(a), w = make<T>(b);
    expectNumbers(combine(v, w), [](int i) { return (a[i] + b[i]) / 2; });
    expectNumbers(combine(3, v, -0.5, w), [](int i) { return 3 * a[i] - 0.5 * b[i]; });
    const T items[] = {v, w, v, v};
    const typename T::Number weights[] = {1, 4, -2, 0.25};
    expectNumbers(combine(4, weights, items), [](int i) { return 4 * b[i] - 0.75 * a[i]; });
    expectNumbers(combine(0, weights, items), [](int) { return 0; });
    expectNumbers(combine(4, items), [](int i) { return (3 * a[i] + b[i]) / 4; });
    EXPECT_EQ(combine(1, items), v);
  });
}

TEST(LinearConversions, MissingNumbersAndWeights) {
  EXPECT_EQ(Vector(Vector2(1, 2)), Vector(1, 2, 0));
  EXPECT_EQ(VectorFlt(Vector2Flt(1, 2)), VectorFlt(1, 2, 0));
  EXPECT_EQ(Point(Point2(1, 2)), Point(1, 2, 0));
  EXPECT_EQ(Vector2(1, 2).asPoint(), Point(1, 2, 0));
  EXPECT_EQ(Vector2(1, 2).asVector(), Vector(1, 2, 0));
  EXPECT_EQ(Vector2(1, 2).asPoint2(), Point2(1, 2));
  EXPECT_EQ(Vector2Flt(1, 2).asPoint2Flt(), Point2Flt(1, 2));
  EXPECT_EQ(Vector2Flt(1, 2).asPointFlt(), PointFlt(1, 2, 0));
  EXPECT_EQ(Vector2Flt(1, 2).asVectorFlt(), VectorFlt(1, 2, 0));
  EXPECT_EQ(Vector(1, 2, 3).asPoint().asVector(), Vector(1, 2, 3));
  EXPECT_EQ(VectorFlt(1, 2, 3).asPointFlt().asVectorFlt(), VectorFlt(1, 2, 3));
  EXPECT_EQ(Point2(1, 2).asVector(), Vector(1, 2, 0));
  EXPECT_EQ(VectorFlt(Vector(0.1, 0, 0))[0], 0.1F);
  EXPECT_EQ(PointFlt(0.1, 16777217, 0), PointFlt(0.1F, 16777216, 0));
  const float narrow[] = {0.1F, 2, 3};
  Point point;
  point.set(narrow);
  EXPECT_EQ(point, Point(0.1F, 2, 3));

  EXPECT_EQ(HPoint(Point(1, 2, 3)), HPoint(1, 2, 3, 1));
  EXPECT_EQ(RPoint(Point(1, 2, 3)), RPoint(1, 2, 3, 1));
  EXPECT_EQ(HPoint(RPoint(1, 2, 3, 4)), HPoint(4, 8, 12, 4));
  EXPECT_EQ(RPoint(HPoint(4, 8, 12, 4)), RPoint(1, 2, 3, 4));
  EXPECT_EQ(RPoint(HPoint(1, -2, 3, 0)), RPoint(infinity, -infinity, infinity, 0));
  EXPECT_EQ(Point(HPoint(4, 8, 12, 4)), Point(1, 2, 3));
  EXPECT_EQ(Point(RPoint(1, 2, 3, 4)), Point(1, 2, 3));
  EXPECT_EQ(RPoint(1, 2, 3, 4) + Vector(1, 1, 1) - Vector(0, 0, 2), RPoint(2, 3, 2, 4));
}

TEST(LinearVectors, NarrowLengthsAreSummedNarrowAndRootedWide) {
  EXPECT_EQ(VectorFlt(1, 1, 0).length(), std::sqrt(2.0));
  EXPECT_EQ(VectorFlt(1e20, 0, 0).length(), infinity);
  EXPECT_EQ(Vector2Flt(1e20, 0).length2(), infinity);
  EXPECT_EQ(Vector(1e20, 0, 0).length(), 1e20);
  EXPECT_EQ(distance(PointFlt(1e20, 0, 0), PointFlt::origin), infinity);
  EXPECT_EQ(Vector(2, 3, 6).length(), 7);
}

/// Expects how `v` is normalised: to a value near `expected`, or that it fails and leaves exactly that.
template <class V>
void expectNormalized(V v, const V& expected, bool works, int line) {
  EXPECT_EQ(v.normalize(), works) << "line " << line;
  if (works)
    EXPECT_TRUE(equivalent(v, expected, 4 * double{std::numeric_limits<typename V::Number>::epsilon()}))
        << line;
  else
    EXPECT_EQ(v, expected) << "line " << line;
}

TEST(LinearVectors, EachClassNormalizesByItsOwnRule) {
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
}

TEST(LinearVectors, OrthogonalVectors) {
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

TEST(LinearNormal, WhateverSetsItNormalises) {
  const double numbers[] = {3, 0, 4};
  const Normal expected(Promise(), 0.6, 0, 0.8);
  Normal set, fromMemory, fromVector, assigned;
  set.set(3, 0, 4);
  fromMemory.set(numbers);
  fromVector.set(Vector(3, 0, 4));
  assigned = Vector(3, 0, 4);
  for (const Normal& n : {Normal(3, 0, 4), Normal(numbers), Normal(Vector(3, 0, 4)),
                          Vector(3, 0, 4).normalized(), set, fromMemory, fromVector, assigned}) {
    EXPECT_TRUE(equivalent(n, expected, 1e-15));
    EXPECT_TRUE(n.isValid());
  }
  EXPECT_EQ(Normal(Promise(), 3, 4, 0).length(), 5);
  EXPECT_TRUE(Normal(Promise(), numbers).isValid());
}

TEST(LinearNormal, InvalidOnesAreZeroAndEqual) {
  Normal cleared = Normal::x;
  cleared.setInvalid();
  for (const Normal& n : {Normal(0, 0, 0), Normal(Vector(1e-13, 0, 0)), Vector(0, 1e-13, 0).normalized(),
                          cleared, -cleared, Normal(std::nan(""), 1, 0)}) {
    EXPECT_FALSE(n.isValid());
    EXPECT_EQ(n, cleared);
    EXPECT_EQ(n.length(), 0);
    EXPECT_EQ(n, Normal(Promise(), 0, 0, 0)); // which is valid
  }
  EXPECT_TRUE((-Normal::x).isValid());
  EXPECT_EQ(-Normal::x, Normal(Promise(), -1, 0, 0));
  // The flag lies behind the numbers.
  const auto flag = [](const Normal& n) { return reinterpret_cast<const char*>(&n)[3 * sizeof(double)]; };
  EXPECT_EQ(flag(Normal::x), 1);
  EXPECT_EQ(flag(cleared), 0);
}

TEST(LinearNormal, ArithmeticGivesVectors) {
  const Normal x = Normal::x, y = Normal::y;
  EXPECT_EQ(x + y, Vector(1, 1, 0));
  EXPECT_EQ(x - y, Vector(1, -1, 0));
  EXPECT_EQ(2 * x, Vector(2, 0, 0));
  EXPECT_EQ(x * 2, x / 0.5);
  EXPECT_EQ(combine(2, x, 3, y), Vector(2, 3, 0));
  EXPECT_EQ(cross(x, y), Vector::z);
  EXPECT_EQ(cross(x, Vector(0, 0, 2)), Vector(0, -2, 0));
  EXPECT_EQ(cross(Vector(0, 0, 2), x), Vector(0, 2, 0));
  EXPECT_EQ(cross(VectorFlt::x, VectorFlt::y), VectorFlt::z);
  EXPECT_EQ(dot(Vector(2, 3, 5), Vector(7, 11, 13)), 112);
  EXPECT_EQ(dot(Vector2Flt(2, 3), Vector2Flt(7, 11)), 47);
}

} // namespace
