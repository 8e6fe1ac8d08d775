// The table of operations, class by operation: which there are, which there are not.
#include "qvLinearFamily.h"

#include <gtest/gtest.h>

#include <ostream>

using namespace qvTest;

namespace {

template <class A, class B>
concept Added = requires(A a, const B b) {
  a + b;
};
template <class A, class B>
concept Subtracted = requires(A a, const B b) {
  a - b;
};
template <class A, class B>
concept Equated = requires(const A a, const B b) {
  a == b;
};

/// The vector that moves a position.
template <class T>
struct OffsetOf {
  using Type = void;
};
template <>
struct OffsetOf<Point2> {
  using Type = Vector2;
};
template <>
struct OffsetOf<PointFlt> {
  using Type = VectorFlt;
};
template <>
struct OffsetOf<Point2Flt> {
  using Type = Vector2Flt;
};
template <class T>
requires detail::OneOf<T, Point, RPoint>
struct OffsetOf<T> {
  using Type = Vector;
};
template <class T>
using Offset = typename OffsetOf<T>::Type;

// One row: an expression over a value a of class T, constants b and c, and p, the address of T's numbers.
#define ROW(...)                                                                                             \
#__VA_ARGS__, Family::signs([] <class T>(T*) {                                                             \
    return requires(T a, const T b, const T c, typename T::Number* p, const typename T::Number* q, double d, \
                    float* f, double* w, std::ostream& out) {                                                \
      __VA_ARGS__;                                                                                           \
    }                                                                                                        \
    ? '+' : '.';                                                                                             \
  })

TEST(LinearFamily, OperationsByClass) {
  const struct {
    int line;
    const char* operation;
    std::string found;
    const char* expected; // 4 vectors, 4 points, the normal, 2 weighted points, 3 tuples
  } rows[] = {
      {__LINE__, ROW(requires std::is_trivially_default_constructible_v<T>), "++++++++++++++"},
      {__LINE__, ROW(requires std::is_trivially_copyable_v<T>), "++++++++++++++"},
      {__LINE__, ROW(requires std::is_standard_layout_v<T>), "++++++++++++++"},
      {__LINE__, ROW(requires alignof(T) == sizeof(typename T::Number)), "++++++++++++++"},
      {__LINE__, ROW(requires sizeof(T) == T::size * sizeof(typename T::Number)), "++++++++.+++++"},
      {__LINE__, ROW(T(q)), "++++++++++++++"},
      {__LINE__, ROW(T(f)), "..++++++......"},
      {__LINE__, ROW(T(w)), "++..++++++++++"},
      {__LINE__, ROW(T(d, d)), ".+.+.+.+...+.."},
      {__LINE__, ROW(T(d, d, d)), "+.+.+.+.+...+."},
      {__LINE__, ROW(T(1, 2, 3)), "+.+.+.+.+...+."},
      {__LINE__, ROW(T(1, 2.0F, 3.0)), "+.+.+.+.+...+."},
      {__LINE__, ROW(T(d, d, d, d)), ".........++..+"},
      {__LINE__, ROW(T(Promise(), d, d, d)), "........+....."},
      {__LINE__, ROW(T(Promise(), w)), "........+....."},
      {__LINE__, ROW(a.set(d, d)), ".+.+.+.+...+.."},
      {__LINE__, ROW(a.set(d, d, d)), "+.+.+.+.+...+."},
      {__LINE__, ROW(a.set(d, d, d, d)), ".........++..+"},
      {__LINE__, ROW(a.set(q)), "++++++++++++++"},
      {__LINE__, ROW(a.set(f)), "..++++++......"},
      {__LINE__, ROW(a.set(Vector2(1, 2))), "++++....+....."}, // in space with z = 0
      {__LINE__, ROW(a.set(Point2(1, 2))), "....++++.++..."},
      {__LINE__, ROW(a.set(Promise(), d, d, d); a.set(Promise(), w)), "........+....."},
      {__LINE__, ROW(b.get(p)), "++++++++++++++"},
      {__LINE__, ROW(b.get(*p, *p)), ".+.+.+.+...+.."},
      {__LINE__, ROW(b.get(*p, *p, *p)), "+.+.+.+.+...+."},
      {__LINE__, ROW(b.get(*p, *p, *p, *p)), ".........++..+"},
      {__LINE__, ROW(b[0] + a[0] + b[0U] + a[0L] + b[sizeof d]), "++++++++++++++"},
      {__LINE__, ROW(a[0] = 1), "...........+++"},
      {__LINE__, ROW(q = b), "++++++++++++++"},
      {__LINE__, ROW(q = a), "++++++++++++++"},
      {__LINE__, ROW(p = a), "++++++++.+++++"},
      {__LINE__, ROW(p = b), ".............."},
      {__LINE__, ROW(a += b; a -= b), "++++......++++"},
      {__LINE__, ROW(a += Offset<T>(); a -= Offset<T>()), "....++++.+...."},
      {__LINE__, ROW(a *= d; a /= d), "++++......++++"},
      {__LINE__, ROW(a *= b; a /= b), "...........+++"},
      {__LINE__, ROW(b + c), "++++....+.++++"},
      {__LINE__, ROW(b - c), "+++++++++.++++"},
      {__LINE__, ROW({ b + Offset<T>() } -> std::same_as<T>), "....++++.+...."},
      {__LINE__, ROW({ b - Offset<T>() } -> std::same_as<T>), "....++++.+...."},
      {__LINE__, ROW({ b - c } -> std::same_as<Offset<T>>), "....++++......"},
      {__LINE__, ROW({ b + c } -> std::same_as<Vector>), "+.......+....."},
      {__LINE__, ROW({ -b } -> std::same_as<T>), "++++....+.++++"},
      {__LINE__, ROW({ b* d } -> std::same_as<T>), "++++......++++"},
      {__LINE__, ROW({ d* b } -> std::same_as<T>), "++++......++++"},
      {__LINE__, ROW({ b / d } -> std::same_as<T>), "++++......++++"},
      {__LINE__, ROW({ b* d } -> std::same_as<Vector>), "+.......+....."},
      {__LINE__, ROW(b == c; b != c), "++++++++++++++"},
      {__LINE__, ROW({ b.length() } -> std::same_as<double>), "++++....+....."},
      {__LINE__, ROW({ b.length2() } -> std::same_as<typename T::Number>), "++++....+....."},
      {__LINE__, ROW({ a.normalize() } -> std::same_as<bool>), "++++.........."},
      {__LINE__, ROW({ b.normalized() } -> std::same_as<Normal>), "++++.........."},
      {__LINE__, ROW(a.reverse()), "++++....+....."},
      {__LINE__, ROW(b.orthogonalVector()), "++++....+....."},
      {__LINE__, ROW(b.asPoint()), "++...+........"},
      {__LINE__, ROW(b.asPoint2()), ".+............"},
      {__LINE__, ROW(b.asPointFlt()), "..++...+......"},
      {__LINE__, ROW(b.asPoint2Flt()), "...+.........."},
      {__LINE__, ROW(b.asVector()), ".+..++........"},
      {__LINE__, ROW(b.asVector2()), ".....+........"},
      {__LINE__, ROW(b.asVectorFlt()), "...+..++......"},
      {__LINE__, ROW(b.asVector2Flt()), ".......+......"},
      {__LINE__, ROW(b.isValid(); a.setInvalid(); a = Vector()), "........+....."},
      {__LINE__, ROW(b.insideView(true)), "..........+..."},
      {__LINE__, ROW({ cross(b, c) } -> std::same_as<T>), "+.+..........."},
      {__LINE__, ROW({ cross(b, Normal::x) } -> std::same_as<Vector>), "+++.....+....."},
      {__LINE__, ROW(dot(b, c)), "++++....+....."},
      {__LINE__, ROW({ combine(b, c) } -> std::same_as<T>), "++++++++..+..."},
      {__LINE__, ROW({ combine(d, b, d, c) } -> std::same_as<T>), "++++++++..+..."},
      {__LINE__, ROW({ combine(d, b, d, c) } -> std::same_as<Vector>), "+.......+....."},
      {__LINE__, ROW({ combine(2, q, &b) } -> std::same_as<T>), "++++++++..+..."},
      {__LINE__, ROW({ combine(2, &b) } -> std::same_as<T>), "++++++++..+..."},
      {__LINE__, ROW(distance(b, c); distance2(b, c)), "....++++...++."},
      {__LINE__, ROW(equivalent(b, c, d)), "+++++++++++..."},
      {__LINE__, ROW(angle(b, c); isParallel(b, c, d)), "........+....."},
      {__LINE__, ROW(out << b),
       "+.+.++"
       "+.+....."},
      // What the conversion to pointers would give, were it not for pointers alone.
      {__LINE__, ROW(b < c), ".............."},
      {__LINE__, ROW(!b), ".............."},
      {__LINE__, ROW(b + 1), ".............."},
      {__LINE__, ROW(b == Tuple2()), "...........+.."},
      {__LINE__, ROW(b - Tuple2()), "...........+.."},
  };
  for (const auto& row : rows)
    EXPECT_EQ(row.found, row.expected) << "line " << row.line << ": " << row.operation;
}

/// From which classes `To` is made: `i`, by itself, or `e`, where it is written out.
template <class To>
std::string sources() {
  return Family::signs([]<class From>(From*) {
    if (std::is_convertible_v<const From&, To>) return 'i';
    return std::is_constructible_v<To, const From&> ? 'e' : '.';
  });
}

TEST(LinearFamily, ConversionsThatLoseNothingHappenByThemselves) {
  EXPECT_EQ(sources<Vector>(), "iii.....i.....");
  EXPECT_EQ(sources<Vector2>(), ".i.i..........");
  EXPECT_EQ(sources<VectorFlt>(), "eeii....e.....");
  EXPECT_EQ(sources<Vector2Flt>(), ".e.i..........");
  EXPECT_EQ(sources<Point>(), "....iii..ee...");
  EXPECT_EQ(sources<Point2>(), ".....i.i......");
  EXPECT_EQ(sources<PointFlt>(), "....eeii......");
  EXPECT_EQ(sources<Point2Flt>(), ".....e.i......");
  EXPECT_EQ(sources<Normal>(), "eee.....i.....");
  EXPECT_EQ(sources<RPoint>(), "....iee..ie...");
  EXPECT_EQ(sources<HPoint>(), "....iee..ei...");
  EXPECT_EQ(sources<Tuple3>(), "............i.");
  EXPECT_TRUE((Added<Vector, VectorFlt> && Added<Vector, Normal> && Added<Normal, Vector>));
  EXPECT_TRUE((Equated<Vector, Normal> && Equated<Normal, Vector> && Equated<Vector, VectorFlt>));
  EXPECT_FALSE(
      (Added<Point, Point> || Added<Vector, Point> || Subtracted<Vector, Point> || Equated<Vector, Point>));
}

} // namespace
