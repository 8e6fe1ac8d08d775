// Coordinates and Arithmetic: what the classes of values have in common.
#pragma once

#include "Base/Linear/qvLinearComponents.h"
#include "Base/Linear/qvLinearForward.h"

// Not in `detail`: the functions there would be looked up for every value.
namespace qvLinear::base {

/// The base of class `Self`: `n` numbers of type `T` and nothing else, so that a value may be copied as bytes
/// and an array of values is an array of numbers. Default construction leaves the numbers as they are in
/// memory.
template <class Self, class T, int n>
class Coordinates {
public:
  using Number = T;
  static constexpr int size = n;

  /// Sets what a constructor with the same arguments makes: from numbers, from numbers in memory, from
  /// another class.
  template <class... Arguments>
  requires(sizeof...(Arguments) > 0 && std::constructible_from<Self, const Arguments&...>) constexpr void set(
      const Arguments&... arguments) noexcept {
    static_cast<Self&>(*this) = Self(arguments...);
  }
  /// @{ Reads all numbers out: into `n` variables, or into memory.
  constexpr void get(std::same_as<T> auto&... to) const noexcept requires(sizeof...(to) == n) {
    int place = 0;
    ((to = numbers_[place++]), ...);
  }
  constexpr void get(std::same_as<T*> auto to) const noexcept {
    detail::forEach<n>([&](int i) { to[i] = numbers_[i]; });
  }
  /// @}

  /// A number by its place, unchecked.
  [[nodiscard]] constexpr T operator[](int place) const noexcept { return numbers_[place]; }
  /// @{ The address of the first number, for code that takes arrays. Templates, so that an object is only
  /// ever a pointer where one is asked for: addresses are not compared, subtracted or tested by mistake.
  template <std::same_as<T> P>
  constexpr operator P*() noexcept {
    return numbers_;
  }
  template <std::same_as<T> P>
  constexpr operator const P*() const noexcept {
    return numbers_;
  }
  /// @}

  /// Exact, of all numbers.
  friend constexpr bool operator==(const Self& a, const Self& b) noexcept {
    bool same = true;
    detail::forEach<n>([&](int i) { same &= a[i] == b[i]; });
    return same;
  }

protected:
  Coordinates() = default;
  explicit constexpr Coordinates(detail::Numeric auto... numbers) noexcept requires(sizeof...(numbers) == n)
      : numbers_{static_cast<T>(numbers)...} {}

  T numbers_[n];
};

/// The base of a class whose values are added and scaled, number by number.
template <class Self, class T, int n>
class Arithmetic : public Coordinates<Self, T, n> {
public:
  constexpr Self& operator+=(const Self& other) noexcept {
    return forAll([&](int i) { this->numbers_[i] += other[i]; });
  }
  constexpr Self& operator-=(const Self& other) noexcept {
    return forAll([&](int i) { this->numbers_[i] -= other[i]; });
  }
  constexpr Self& operator*=(T factor) noexcept {
    return forAll([&](int i) { this->numbers_[i] *= factor; });
  }
  /// Multiplies by the reciprocal: one division, the last bit may differ from true ones, and 0 gives
  /// infinities.
  constexpr Self& operator/=(T divisor) noexcept { return *this *= 1 / divisor; }

  friend constexpr Self operator+(Self a, const Self& b) noexcept { return a += b; }
  friend constexpr Self operator-(Self a, const Self& b) noexcept { return a -= b; }
  friend constexpr Self operator-(Self a) noexcept { return a *= -1; }
  friend constexpr Self operator*(Self a, T factor) noexcept { return a *= factor; }
  friend constexpr Self operator*(T factor, Self a) noexcept { return a *= factor; }
  friend constexpr Self operator/(Self a, T divisor) noexcept { return a /= divisor; }

protected:
  using Coordinates<Self, T, n>::Coordinates;

  template <class Action>
  constexpr Self& forAll(Action action) noexcept {
    detail::forEach<n>(action);
    return static_cast<Self&>(*this);
  }
};

} // namespace qvLinear::base
