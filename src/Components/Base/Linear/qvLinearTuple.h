// Tuple2, Tuple3, Tuple4: bare numbers that are neither positions nor directions.
#pragma once

#include "Base/Linear/qvLinearCoordinates.h"
#include "Base/qvBase.h"

namespace qvLinear {

namespace base {

/// The base of the tuples: they also multiply and divide number by number, and their numbers are written by
/// place.
template <class Self, int n>
class Tuple : public Arithmetic<Self, double, n> {
public:
  using Arithmetic<Self, double, n>::operator*=;
  using Arithmetic<Self, double, n>::operator/=;
  using Arithmetic<Self, double, n>::operator[];

  constexpr Self& operator*=(const Self& other) noexcept {
    return this->forAll([&](int i) { this->numbers_[i] *= other[i]; });
  }
  constexpr Self& operator/=(const Self& other) noexcept {
    return this->forAll([&](int i) { this->numbers_[i] /= other[i]; });
  }
  /// A number by its place, unchecked.
  [[nodiscard]] constexpr double& operator[](int place) noexcept { return this->numbers_[place]; }

  friend constexpr Self operator*(Self a, const Self& b) noexcept { return a *= b; }
  friend constexpr Self operator/(Self a, const Self& b) noexcept { return a /= b; }

protected:
  using Arithmetic<Self, double, n>::Arithmetic;
};

} // namespace base

/// Two bare numbers: all arithmetic is number by number.
class Tuple2 : public base::Tuple<Tuple2, 2> {
public:
  QV_BASE_API static const Tuple2 zero;

  Tuple2() = default;
  constexpr Tuple2(double first, double second) noexcept : Tuple(first, second) {}
  /// From numbers in memory.
  constexpr Tuple2(detail::PointerTo<double> auto from) noexcept : Tuple2(from[0], from[1]) {}
};

/// Three bare numbers.
class Tuple3 : public base::Tuple<Tuple3, 3> {
public:
  QV_BASE_API static const Tuple3 zero;

  Tuple3() = default;
  constexpr Tuple3(double first, double second, double third) noexcept : Tuple(first, second, third) {}
  /// From numbers in memory.
  constexpr Tuple3(detail::PointerTo<double> auto from) noexcept : Tuple3(from[0], from[1], from[2]) {}
};

/// Four bare numbers.
class Tuple4 : public base::Tuple<Tuple4, 4> {
public:
  QV_BASE_API static const Tuple4 zero;

  Tuple4() = default;
  constexpr Tuple4(double first, double second, double third, double fourth) noexcept
      : Tuple(first, second, third, fourth) {}
  /// From numbers in memory.
  constexpr Tuple4(detail::PointerTo<double> auto from) noexcept
      : Tuple4(from[0], from[1], from[2], from[3]) {}
};

static_assert(sizeof(Tuple2) == 16 && sizeof(Tuple3) == 24 && sizeof(Tuple4) == 32);

} // namespace qvLinear
