// The table of operations, class by operation: which there are, which there are not.
#include "qvLinearFamily.h"

#include <ostream>

using namespace qvTest;

namespace {

/// The vector that moves a position.
struct OffsetOf {
  static Vector type(Point*);
  static Vector type(RPoint*);
  static Vector2 type(Point2*);
  static VectorFlt type(PointFlt*);
  static Vector2Flt type(Point2Flt*);
  static void type(...);
};
template <class T>
using Offset = decltype(OffsetOf::type(static_cast<T*>(nullptr)));

// Expects which classes T have an expression over a value a, constants b and c, and addresses of numbers.
// Signs stand for the 4 vectors, the 4 points, the normal, the 2 points with weights and the 3 tuples.
#define EXPECT_CLASSES(expected, ...)                                                                        \
  EXPECT_EQ(Family::signs([]<class T>(T*) {                                                                  \
              return requires(T a, const T b, const T c, typename T::Number* p, const typename T::Number* q, \
                              double d, float* f, double* w, std::ostream& out) {                            \
                __VA_ARGS__;                                                                                 \
              }                                                                                              \
              ? '+' : '.';                                                                                   \
            }),                                                                                              \
            expected)                                                                                        \
      << #__VA_ARGS__

TEST(LinearFamily, OperationsByClass) {
  EXPECT_CLASSES("++++++++++++++", requires std::is_trivially_default_constructible_v<T>);
  EXPECT_CLASSES("++++++++++++++", requires std::is_trivially_copyable_v<T>);
  EXPECT_CLASSES("++++++++++++++", requires std::is_standard_layout_v<T>);
  EXPECT_CLASSES("++++++++++++++", requires alignof(T) == sizeof(typename T::Number));
  EXPECT_CLASSES("++++++++.+++++", requires sizeof(T) == T::size * sizeof(typename T::Number));
  EXPECT_CLASSES("++++++++++++++", T(q));
  EXPECT_CLASSES("..++++++......", T(f));
  EXPECT_CLASSES("++..++++++++++", T(w));
  EXPECT_CLASSES(".+.+.+.+...+..", T(d, d));
  EXPECT_CLASSES("+.+.+.+.+...+.", T(d, d, d));
  EXPECT_CLASSES("+.+.+.+.+...+.", T(1, 2, 3));
  EXPECT_CLASSES("+.+.+.+.+...+.", T(1, 2.0F, 3.0));
  EXPECT_CLASSES(".........++..+", T(d, d, d, d));
  EXPECT_CLASSES("........+.....", T(Promise(), d, d, d));
  EXPECT_CLASSES("........+.....", T(Promise(), w));
  EXPECT_CLASSES("+.+.+.+.+...+.", a.set(d, d, d));
  EXPECT_CLASSES("++++++++++++++", a.set(q));
  EXPECT_CLASSES("..++++++......", a.set(f));
  EXPECT_CLASSES("++++....+.....", a.set(Vector2(1, 2))); // in space with z = 0
  EXPECT_CLASSES("....++++.++...", a.set(Point2(1, 2)));
  EXPECT_CLASSES("........+.....", a.set(Promise(), d, d, d); a.set(Promise(), w));
  EXPECT_CLASSES("++++++++++++++", b.get(p));
  EXPECT_CLASSES(".+.+.+.+...+..", b.get(*p, *p));
  EXPECT_CLASSES("+.+.+.+.+...+.", b.get(*p, *p, *p));
  EXPECT_CLASSES(".........++..+", b.get(*p, *p, *p, *p));
  EXPECT_CLASSES("++++++++++++++", b[0] + a[0] + b[0U] + a[0L] + b[sizeof d]);
  EXPECT_CLASSES("...........+++", a[0] = 1);
  EXPECT_CLASSES("++++++++++++++", q = b);
  EXPECT_CLASSES("++++++++++++++", q = a);
  EXPECT_CLASSES("++++++++.+++++", p = a);
  EXPECT_CLASSES("..............", p = b);
  EXPECT_CLASSES("++++......++++", a += b; a -= b);
  EXPECT_CLASSES("....++++.+....", a += Offset<T>(); a -= Offset<T>());
  EXPECT_CLASSES("++++......++++", a *= d; a /= d);
  EXPECT_CLASSES("...........+++", a *= b; a /= b);
  EXPECT_CLASSES("++++....+.++++", b + c);
  EXPECT_CLASSES("+++++++++.++++", b - c);
  EXPECT_CLASSES("....++++.+....", { b + Offset<T>() } -> std::same_as<T>);
  EXPECT_CLASSES("....++++.+....", { b - Offset<T>() } -> std::same_as<T>);
  EXPECT_CLASSES("....++++......", { b - c } -> std::same_as<Offset<T>>);
  EXPECT_CLASSES("+.......+.....", { b + c } -> std::same_as<Vector>);
  EXPECT_CLASSES("++++....+.++++", { -b } -> std::same_as<T>);
  EXPECT_CLASSES("++++......++++", { b* d } -> std::same_as<T>);
  EXPECT_CLASSES("++++......++++", { d* b } -> std::same_as<T>);
  EXPECT_CLASSES("++++......++++", { b / d } -> std::same_as<T>);
  EXPECT_CLASSES("+.......+.....", { b* d } -> std::same_as<Vector>);
  EXPECT_CLASSES("++++++++++++++", b == c; b != c);
  EXPECT_CLASSES("++++....+.....", { b.length() } -> std::same_as<double>);
  EXPECT_CLASSES("++++....+.....", { b.length2() } -> std::same_as<typename T::Number>);
  EXPECT_CLASSES("++++..........", { a.normalize() } -> std::same_as<bool>);
  EXPECT_CLASSES("++++..........", { b.normalized() } -> std::same_as<Normal>);
  EXPECT_CLASSES("++++....+.....", a.reverse());
  EXPECT_CLASSES("++++....+.....", b.orthogonalVector());
  EXPECT_CLASSES("++...+........", b.asPoint());
  EXPECT_CLASSES(".+............", b.asPoint2());
  EXPECT_CLASSES("..++...+......", b.asPointFlt());
  EXPECT_CLASSES("...+..........", b.asPoint2Flt());
  EXPECT_CLASSES(".+..++........", b.asVector());
  EXPECT_CLASSES(".....+........", b.asVector2());
  EXPECT_CLASSES("...+..++......", b.asVectorFlt());
  EXPECT_CLASSES(".......+......", b.asVector2Flt());
  EXPECT_CLASSES("........+.....", b.isValid(); a.setInvalid(); a = Vector());
  EXPECT_CLASSES("..........+...", b.insideView(true));
  EXPECT_CLASSES("+.+...........", { cross(b, c) } -> std::same_as<T>);
  EXPECT_CLASSES("+++.....+.....", { cross(b, Normal::x) } -> std::same_as<Vector>);
  EXPECT_CLASSES("++++....+.....", dot(b, c));
  EXPECT_CLASSES("++++++++..+...", { combine(b, c) } -> std::same_as<T>);
  EXPECT_CLASSES("++++++++..+...", { combine(d, b, d, c) } -> std::same_as<T>);
  EXPECT_CLASSES("+.......+.....", { combine(d, b, d, c) } -> std::same_as<Vector>);
  EXPECT_CLASSES("++++++++..+...", { combine(2, q, &b) } -> std::same_as<T>);
  EXPECT_CLASSES("++++++++..+...", { combine(2, &b) } -> std::same_as<T>);
  EXPECT_CLASSES("....++++...++.", distance(b, c); distance2(b, c));
  EXPECT_CLASSES("+++++++++++...", equivalent(b, c, d));
  EXPECT_CLASSES("........+.....", angle(b, c); isParallel(b, c, d));
  EXPECT_CLASSES("+.+.+++.+.....", out << b);
  // Other classes beside.
  EXPECT_CLASSES("+++.+...++....", b + Vector());
  EXPECT_CLASSES("+++.+...++....", b - Vector());
  EXPECT_CLASSES("+++.....+.....", b == Vector(); Vector() == b);
  EXPECT_CLASSES("....+++..++...", b == Point(); Point() == b);
  EXPECT_CLASSES("....+++...+...", b - Point());
  EXPECT_CLASSES("+++.....+.....", Vector() - b);
  // What the conversion to pointers would give, were it not for pointers alone.
  EXPECT_CLASSES("..............", b < c);
  EXPECT_CLASSES("..............", !b);
  EXPECT_CLASSES("..............", b + 1);
  EXPECT_CLASSES("...........+..", b == Tuple2());
  EXPECT_CLASSES("...........+..", b - Tuple2());
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
}

} // namespace
