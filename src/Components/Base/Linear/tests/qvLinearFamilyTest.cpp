// The table of operations, class by operation: which there are, which there are not.
#include "qvLinearFamily.h"
#include "Base/Linear/qvLinearLine.h"

#include <ostream>

using namespace qvTest;

namespace {

/// How `To` is made from `From`: `i`, by itself, or `e`, where it is written out.
template <class To, class From>
char source() {
  if (std::is_convertible_v<const From&, To>) return 'i';
  return std::is_constructible_v<To, const From&> ? 'e' : '.';
}
template <class To>
std::string sources() {
  return Family::signs([]<class From>(From*) { return source<To, From>(); }) + source<To, double*>() +
         source<To, float*>();
}

// Expects which classes T have an expression over a value a, constants b and c, and addresses of numbers.
// Signs stand for the 4 vectors, the 4 points, the normal, the 2 points with weights and the 3 tuples.
#define EXPECT_CLASSES(...)                                                                                  \
  EXPECT_SIGNS(Family,                                                                                       \
               (T a, const T b, const T c, typename T::Number* p, const typename T::Number* q, double d,     \
                float* f, double* w, std::ostream& out),                                                     \
               __VA_ARGS__)

TEST(LinearFamily, OperationsByClass) {
  EXPECT_CLASSES("++++++++++++++", requires std::is_trivially_default_constructible_v<T>;
                 requires std::is_trivially_copyable_v<T>; requires std::is_standard_layout_v<T>;
                 requires alignof(T) == sizeof(typename T::Number));
  EXPECT_CLASSES("++++++++.+++++", requires sizeof(T) == T::size * sizeof(typename T::Number));
  EXPECT_CLASSES("++++++++++++++", T(q); a = q; a.set(q); b.get(p); q = b; q = a; b == c; b != c);
  EXPECT_CLASSES("++++++++++++++", b[0] + a[0] + b[0U] + a[0L] + b[sizeof d]);
  EXPECT_CLASSES("++++++++......", a.set(f));
  EXPECT_CLASSES("++++++++++++++", a.set(w));
  EXPECT_CLASSES("++++....+.....", a.set(Vector2(1, 2))); // in space with z = 0
  EXPECT_CLASSES("....++++.++...", a.set(Point2(1, 2)));
  EXPECT_CLASSES(".+.+.+.+...+..", a = {d, d}; T(1, 2); a.set(d, d); b.get(*p, *p));
  EXPECT_CLASSES("+.+.+.+.+...+.", a = {d, d, d}; T(1, 2, 3); T(1, 2.0F, d); a.set(d, d, d);
                 b.get(*p, *p, *p));
  EXPECT_CLASSES(".........++..+", a = {d, d, d, d}; a.set(d, d, d, d); b.get(*p, *p, *p, *p));
  EXPECT_CLASSES("........+.....", a.set(Promise(), d, d, d); a.set(Promise(), w));
  EXPECT_CLASSES("...........+++", a[0] = 1; a *= b; a /= b);
  EXPECT_CLASSES("++++++++.+++++", p = a);
  EXPECT_CLASSES("++++......++++", a += b; a -= b);
  EXPECT_CLASSES("++++......++++", a *= d; a /= d);
  EXPECT_CLASSES("++++....+.++++", b + c; requires std::same_as<T, decltype(-b)>);
  EXPECT_CLASSES("++++......++++", requires std::same_as<T, decltype(b * d)>;
                 requires std::same_as<T, decltype(d * b)>; requires std::same_as<T, decltype(b / d)>);
  EXPECT_CLASSES("+.......+.....", { b + c } -> std::same_as<Vector>);
  EXPECT_CLASSES("+.......+.....", { d* b } -> std::same_as<Vector>);
  EXPECT_CLASSES("++++....+.....", b.length(); b.length2(); a.reverse(); b.orthogonalVector(); dot(b, c));
  EXPECT_CLASSES("++++..........", { a.normalize() } -> std::same_as<bool>);
  EXPECT_CLASSES("+.+...........", { cross(b, c) } -> std::same_as<T>);
  EXPECT_CLASSES("++++++++..+...", requires std::same_as<T, decltype(combine(b, c))>;
                 requires std::same_as<T, decltype(combine(d, b, d, c))>; combine(2, q, &b); combine(2, &b));
  EXPECT_CLASSES("....++++.++++.", distance(b, c); distance2(b, c));
  EXPECT_CLASSES("+++++++++++...", equivalent(b, c, d));
  EXPECT_CLASSES("+.......+.....", angle(b, c); isParallel(b, c, d); Line(Point(), b));
  EXPECT_CLASSES("+.+.+++.+.....", out << b);
  // Beside other classes.
  EXPECT_CLASSES("+++.+...++....", b + Vector(); b - Vector());
  EXPECT_CLASSES("+++.....+.....", b == Vector(); Vector() == b; Vector() - b; cross(b, Normal::x));
  EXPECT_CLASSES("+++.....+.....", combine(d, b, d, Vector()); equivalent(b, Vector(), d));
  EXPECT_CLASSES("....+++.......", b == Point(); Point() == b);
  EXPECT_CLASSES("....+++..++...", distance(b, Point()); equivalent(Point(), b, d));
  // What the conversion to pointers would give, were it not for pointers alone.
  EXPECT_CLASSES("..............", p = b);
  EXPECT_CLASSES("..............", b < c);
  EXPECT_CLASSES("..............", !b);
  EXPECT_CLASSES("..............", b + 1);
  EXPECT_CLASSES("...........+..", b == Tuple2());
  EXPECT_CLASSES("...........+..", b - Tuple2());

  // From which classes, and from wide and narrow numbers in memory.
  EXPECT_EQ(sources<Vector>(), "iii.....i.....ie");
  EXPECT_EQ(sources<Vector2>(), ".i.i..........ie");
  EXPECT_EQ(sources<VectorFlt>(), "eeii....e.....ei");
  EXPECT_EQ(sources<Vector2Flt>(), ".e.i..........ei");
  EXPECT_EQ(sources<Point>(), "....iii..ii...ie");
  EXPECT_EQ(sources<Point2>(), ".....i.i......ie");
  EXPECT_EQ(sources<PointFlt>(), "....eeii.ee...ei");
  EXPECT_EQ(sources<Point2Flt>(), ".....e.i......ei");
  EXPECT_EQ(sources<Normal>(), "iee.....i.....i.");
  EXPECT_EQ(sources<RPoint>(), "....iee..ii...i.");
  EXPECT_EQ(sources<HPoint>(), "....iee..ii...i.");
  EXPECT_EQ(sources<Tuple3>(), "............i.i.");
}

} // namespace
