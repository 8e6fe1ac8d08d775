// The whole family of values, for tests that walk over its classes.
#pragma once

#include "Base/Linear/qvLinearCombine.h"
#include "Base/Linear/qvLinearDirection.h"
#include "Base/Linear/qvLinearDistance.h"
#include "Base/Linear/qvLinearHPoint.h"
#include "Base/Linear/qvLinearScalar.h"
#include "Base/Linear/qvLinearTuple.h"

#include <gtest/gtest.h>

#include <string>
#include <typeinfo>

namespace qvTest {

using namespace qvLinear;

template <class... Classes>
struct ClassList {
  /// A sign for every class.
  template <class Sign>
  static std::string signs(Sign sign) {
    return {sign(static_cast<Classes*>(nullptr))...};
  }
  /// Tests every class in turn.
  template <class Test>
  static void each(Test test) {
    const auto one = [&]<class T>(T* none) {
      SCOPED_TRACE(typeid(T).name());
      test(none);
    };
    (one(static_cast<Classes*>(nullptr)), ...);
  }
};

// Expects a sign for every class T of a list: '+' where it has the expressions over these parameters.
#define EXPECT_SIGNS(List, parameters, expected, ...)                                                        \
  EXPECT_EQ(List::signs([]<class T>(T*) {                                                                    \
              return requires parameters { __VA_ARGS__; }                                                    \
              ? '+' : '.';                                                                                   \
            }),                                                                                              \
            expected)                                                                                        \
      << #__VA_ARGS__

using Family = ClassList<Vector, Vector2, VectorFlt, Vector2Flt, Point, Point2, PointFlt, Point2Flt, Normal,
                         RPoint, HPoint, Tuple2, Tuple3, Tuple4>;

/// The value of class `T` with the first of these numbers; a normal is of any length.
template <class T>
T make(const double (&numbers)[4]) {
  if constexpr (std::same_as<T, Normal>)
    return Normal(Promise(), numbers);
  else
    return detail::build<T>([&](int i) { return static_cast<typename T::Number>(numbers[i]); });
}

/// Expects that number `i` of `value` is `number(i)`.
template <class V, class Function>
void expectNumbers(const V& value, Function number) {
  for (int i = 0; i < V::size; ++i) EXPECT_EQ(value[i], static_cast<typename V::Number>(number(i))) << i;
}

} // namespace qvTest
