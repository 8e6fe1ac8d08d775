// What the matrices calculate with: a few numbers as one value, such as a row or a whole matrix. Each operation
// comes out as straight code, with a result that is complete before anything is stored, so that a compiler need
// not fear that the target is also a source. A detail of the matrices, installed because they are inline.
#pragma once

#include "Base/Linear/qvLinearComponents.h"

#include <cmath>
#include <utility>

namespace qvLinear::detail {

template <class T, int Count>
struct Numbers {
  T n[Count];

  /// The value whose number `i` is `make(i)`.
  template <class Make>
  [[gnu::always_inline]] static constexpr Numbers made(Make make) noexcept {
    return [&]<int... i>(std::integer_sequence<int, i...>) {
      return Numbers{{static_cast<T>(make(i))...}};
    }(std::make_integer_sequence<int, Count>());
  }

  /// What stands at `from`, of this number type or the other.
  template <class Other>
  [[gnu::always_inline]] static constexpr Numbers at(const Other* from) noexcept {
    return made([from](int i) { return from[i]; });
  }

  template <class Other>
  [[gnu::always_inline]] constexpr void storeAt(Other* to) const noexcept {
    [&]<int... i>(std::integer_sequence<int, i...>) {
      (..., (to[i] = static_cast<Other>(n[i])));
    }(std::make_integer_sequence<int, Count>());
  }

  [[gnu::always_inline]] friend constexpr Numbers operator+(const Numbers& a, const Numbers& b) noexcept {
    return made([&](int i) { return a.n[i] + b.n[i]; });
  }
  [[gnu::always_inline]] friend constexpr Numbers operator-(const Numbers& a, const Numbers& b) noexcept {
    return made([&](int i) { return a.n[i] - b.n[i]; });
  }
  [[gnu::always_inline]] friend constexpr Numbers operator*(T factor, const Numbers& a) noexcept {
    return made([&](int i) { return factor * a.n[i]; });
  }
  bool operator==(const Numbers&) const = default;
};

template <class T>
[[nodiscard]] constexpr Numbers<T, 3> cross(const Numbers<T, 3>& a,
                                                 const Numbers<T, 3>& b) noexcept {
  return {{a.n[1] * b.n[2] - a.n[2] * b.n[1], a.n[2] * b.n[0] - a.n[0] * b.n[2],
           a.n[0] * b.n[1] - a.n[1] * b.n[0]}};
}

/// The sum of as many rows of `Width` numbers as there are weights, each times its weight. A row begins `Stride`
/// numbers after the one before it.
template <int Width, int Stride = Width, class T, int Count>
[[nodiscard, gnu::always_inline]] constexpr Numbers<T, Width>
weighted(const Numbers<T, Count>& weights, const T* rows) noexcept {
  using Row = Numbers<T, Width>;
  Row sum = weights.n[0] * Row::at(rows) + weights.n[1] * Row::at(rows + Stride);
  if constexpr (Count > 2) sum = sum + weights.n[2] * Row::at(rows + 2 * Stride);
  if constexpr (Count > 3) sum = sum + weights.n[3] * Row::at(rows + 3 * Stride);
  return sum;
}

/// Whether each of `Count` numbers differs by strictly less than `tolerance`. Narrow numbers are subtracted wide.
template <int Count, class T>
[[nodiscard]] inline bool allWithin(const T* a, const T* b, double tolerance) noexcept {
  bool same = true;
  forEach<Count>([&](std::size_t i) { same &= std::fabs(double{a[i]} - double{b[i]}) < tolerance; });
  return same;
}

} // namespace qvLinear::detail
