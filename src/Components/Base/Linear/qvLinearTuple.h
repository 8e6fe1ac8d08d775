// Tuple2, Tuple3, Tuple4: bare numbers that are neither positions nor directions.
#pragma once

#include "Base/Linear/qvLinearComponents.h"
#include "Base/Linear/qvLinearForward.h"
#include "Base/qvBase.h"

namespace qvLinear {

/// Two bare numbers: all arithmetic is number by number.
class Tuple2 {
public:
  using Number = double;
  static constexpr int size = 2;

  QV_BASE_API static const Tuple2 zero;

  /// Leaves the numbers as they are in memory.
  Tuple2() = default;
  constexpr Tuple2(double first, double second) noexcept : numbers_{first, second} {}
  /// From numbers in memory.
  explicit constexpr Tuple2(detail::PointerTo<double> auto from) noexcept : Tuple2(from[0], from[1]) {}

  constexpr void set(double first, double second) noexcept { *this = Tuple2(first, second); }
  constexpr void set(detail::PointerTo<double> auto from) noexcept { *this = Tuple2(from); }
  constexpr void get(double& first, double& second) const noexcept {
    first = numbers_[0];
    second = numbers_[1];
  }
  constexpr void get(std::same_as<double*> auto to) const noexcept { detail::copyOut(numbers_, to); }

  /// @{ The numbers by place, unchecked.
  [[nodiscard]] constexpr double operator[](int place) const noexcept { return numbers_[place]; }
  [[nodiscard]] constexpr double& operator[](int place) noexcept { return numbers_[place]; }
  /// @}
  /// @{ The address of the first number, for code that takes arrays; templates for the reason told in
  /// `Vector`.
  template <std::same_as<double> T>
  constexpr operator T*() noexcept {
    return numbers_;
  }
  template <std::same_as<double> T>
  constexpr operator const T*() const noexcept {
    return numbers_;
  }
  /// @}

  constexpr Tuple2& operator+=(const Tuple2& other) noexcept {
    detail::add(numbers_, other.numbers_);
    return *this;
  }
  constexpr Tuple2& operator-=(const Tuple2& other) noexcept {
    detail::subtract(numbers_, other.numbers_);
    return *this;
  }
  constexpr Tuple2& operator*=(const Tuple2& other) noexcept {
    detail::multiply(numbers_, other.numbers_);
    return *this;
  }
  constexpr Tuple2& operator/=(const Tuple2& other) noexcept {
    detail::divide(numbers_, other.numbers_);
    return *this;
  }
  constexpr Tuple2& operator*=(double factor) noexcept {
    detail::scale(numbers_, factor);
    return *this;
  }
  /// Multiplies by the reciprocal.
  constexpr Tuple2& operator/=(double divisor) noexcept { return *this *= 1.0 / divisor; }
  /// Exact.
  constexpr bool operator==(const Tuple2&) const noexcept = default;

  friend constexpr Tuple2 operator+(Tuple2 a, const Tuple2& b) noexcept { return a += b; }
  friend constexpr Tuple2 operator-(Tuple2 a, const Tuple2& b) noexcept { return a -= b; }
  friend constexpr Tuple2 operator*(Tuple2 a, const Tuple2& b) noexcept { return a *= b; }
  friend constexpr Tuple2 operator/(Tuple2 a, const Tuple2& b) noexcept { return a /= b; }
  friend constexpr Tuple2 operator-(Tuple2 t) noexcept { return t *= -1; }
  friend constexpr Tuple2 operator*(Tuple2 t, double factor) noexcept { return t *= factor; }
  friend constexpr Tuple2 operator*(double factor, Tuple2 t) noexcept { return t *= factor; }
  friend constexpr Tuple2 operator/(Tuple2 t, double divisor) noexcept { return t /= divisor; }

private:
  double numbers_[2];
};

/// Three bare numbers; as `Tuple2`.
class Tuple3 {
public:
  using Number = double;
  static constexpr int size = 3;

  QV_BASE_API static const Tuple3 zero;

  Tuple3() = default;
  constexpr Tuple3(double first, double second, double third) noexcept : numbers_{first, second, third} {}
  explicit constexpr Tuple3(detail::PointerTo<double> auto from) noexcept
      : Tuple3(from[0], from[1], from[2]) {}

  constexpr void set(double first, double second, double third) noexcept {
    *this = Tuple3(first, second, third);
  }
  constexpr void set(detail::PointerTo<double> auto from) noexcept { *this = Tuple3(from); }
  constexpr void get(double& first, double& second, double& third) const noexcept {
    first = numbers_[0];
    second = numbers_[1];
    third = numbers_[2];
  }
  constexpr void get(std::same_as<double*> auto to) const noexcept { detail::copyOut(numbers_, to); }

  [[nodiscard]] constexpr double operator[](int place) const noexcept { return numbers_[place]; }
  [[nodiscard]] constexpr double& operator[](int place) noexcept { return numbers_[place]; }
  template <std::same_as<double> T>
  constexpr operator T*() noexcept {
    return numbers_;
  }
  template <std::same_as<double> T>
  constexpr operator const T*() const noexcept {
    return numbers_;
  }

  constexpr Tuple3& operator+=(const Tuple3& other) noexcept {
    detail::add(numbers_, other.numbers_);
    return *this;
  }
  constexpr Tuple3& operator-=(const Tuple3& other) noexcept {
    detail::subtract(numbers_, other.numbers_);
    return *this;
  }
  constexpr Tuple3& operator*=(const Tuple3& other) noexcept {
    detail::multiply(numbers_, other.numbers_);
    return *this;
  }
  constexpr Tuple3& operator/=(const Tuple3& other) noexcept {
    detail::divide(numbers_, other.numbers_);
    return *this;
  }
  constexpr Tuple3& operator*=(double factor) noexcept {
    detail::scale(numbers_, factor);
    return *this;
  }
  constexpr Tuple3& operator/=(double divisor) noexcept { return *this *= 1.0 / divisor; }
  constexpr bool operator==(const Tuple3&) const noexcept = default;

  friend constexpr Tuple3 operator+(Tuple3 a, const Tuple3& b) noexcept { return a += b; }
  friend constexpr Tuple3 operator-(Tuple3 a, const Tuple3& b) noexcept { return a -= b; }
  friend constexpr Tuple3 operator*(Tuple3 a, const Tuple3& b) noexcept { return a *= b; }
  friend constexpr Tuple3 operator/(Tuple3 a, const Tuple3& b) noexcept { return a /= b; }
  friend constexpr Tuple3 operator-(Tuple3 t) noexcept { return t *= -1; }
  friend constexpr Tuple3 operator*(Tuple3 t, double factor) noexcept { return t *= factor; }
  friend constexpr Tuple3 operator*(double factor, Tuple3 t) noexcept { return t *= factor; }
  friend constexpr Tuple3 operator/(Tuple3 t, double divisor) noexcept { return t /= divisor; }

private:
  double numbers_[3];
};

/// Four bare numbers; as `Tuple2`.
class Tuple4 {
public:
  using Number = double;
  static constexpr int size = 4;

  QV_BASE_API static const Tuple4 zero;

  Tuple4() = default;
  constexpr Tuple4(double first, double second, double third, double fourth) noexcept
      : numbers_{first, second, third, fourth} {}
  explicit constexpr Tuple4(detail::PointerTo<double> auto from) noexcept
      : Tuple4(from[0], from[1], from[2], from[3]) {}

  constexpr void set(double first, double second, double third, double fourth) noexcept {
    *this = Tuple4(first, second, third, fourth);
  }
  constexpr void set(detail::PointerTo<double> auto from) noexcept { *this = Tuple4(from); }
  constexpr void get(double& first, double& second, double& third, double& fourth) const noexcept {
    first = numbers_[0];
    second = numbers_[1];
    third = numbers_[2];
    fourth = numbers_[3];
  }
  constexpr void get(std::same_as<double*> auto to) const noexcept { detail::copyOut(numbers_, to); }

  [[nodiscard]] constexpr double operator[](int place) const noexcept { return numbers_[place]; }
  [[nodiscard]] constexpr double& operator[](int place) noexcept { return numbers_[place]; }
  template <std::same_as<double> T>
  constexpr operator T*() noexcept {
    return numbers_;
  }
  template <std::same_as<double> T>
  constexpr operator const T*() const noexcept {
    return numbers_;
  }

  constexpr Tuple4& operator+=(const Tuple4& other) noexcept {
    detail::add(numbers_, other.numbers_);
    return *this;
  }
  constexpr Tuple4& operator-=(const Tuple4& other) noexcept {
    detail::subtract(numbers_, other.numbers_);
    return *this;
  }
  constexpr Tuple4& operator*=(const Tuple4& other) noexcept {
    detail::multiply(numbers_, other.numbers_);
    return *this;
  }
  constexpr Tuple4& operator/=(const Tuple4& other) noexcept {
    detail::divide(numbers_, other.numbers_);
    return *this;
  }
  constexpr Tuple4& operator*=(double factor) noexcept {
    detail::scale(numbers_, factor);
    return *this;
  }
  constexpr Tuple4& operator/=(double divisor) noexcept { return *this *= 1.0 / divisor; }
  constexpr bool operator==(const Tuple4&) const noexcept = default;

  friend constexpr Tuple4 operator+(Tuple4 a, const Tuple4& b) noexcept { return a += b; }
  friend constexpr Tuple4 operator-(Tuple4 a, const Tuple4& b) noexcept { return a -= b; }
  friend constexpr Tuple4 operator*(Tuple4 a, const Tuple4& b) noexcept { return a *= b; }
  friend constexpr Tuple4 operator/(Tuple4 a, const Tuple4& b) noexcept { return a /= b; }
  friend constexpr Tuple4 operator-(Tuple4 t) noexcept { return t *= -1; }
  friend constexpr Tuple4 operator*(Tuple4 t, double factor) noexcept { return t *= factor; }
  friend constexpr Tuple4 operator*(double factor, Tuple4 t) noexcept { return t *= factor; }
  friend constexpr Tuple4 operator/(Tuple4 t, double divisor) noexcept { return t /= divisor; }

private:
  double numbers_[4];
};

static_assert(sizeof(Tuple2) == 16 && sizeof(Tuple3) == 24 && sizeof(Tuple4) == 32);

} // namespace qvLinear
