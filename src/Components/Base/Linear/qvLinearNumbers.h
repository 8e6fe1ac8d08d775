// What the matrices calculate with: a few numbers as one value, such as a row or a whole matrix. Each
// operation comes out as straight code with a result that is complete before anything is stored, so that a
// compiler need not fear that the target is also a source. That holds only where all of it is inlined, which
// compilers do not see by themselves: hence always_inline, here and where these values are put together.
// Private to qvLinear.
#pragma once

#include "Base/Linear/qvLinearComponents.h"

namespace qvLinear::detail {

template <class T, int count>
struct Numbers {
  using Number = T;
  static constexpr int size = count;

  Numbers() = default;
  [[gnu::always_inline]] constexpr Numbers(std::same_as<T> auto... numbers) noexcept
      requires(sizeof...(numbers) == count)
      : n{numbers...} {}

  /// The value whose number `i` is `number(i)`.
  template <class Function>
  [[gnu::always_inline]] static constexpr Numbers made(Function number) noexcept {
    return madeOf(number, Places());
  }

  /// What stands at `from`, of this number type or the other.
  template <class Other>
  [[gnu::always_inline]] static constexpr Numbers at(const Other* from) noexcept {
    return made([from](int i) { return from[i]; });
  }

  [[gnu::always_inline]] constexpr void storeAt(T* to) const noexcept { storePlaces(to, Places()); }

  [[nodiscard]] constexpr T operator[](int place) const noexcept { return n[place]; }

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

  T n[count];

private:
  using Places = std::make_integer_sequence<int, count>;

  template <class Function, int... i>
  [[gnu::always_inline]] static constexpr Numbers madeOf(const Function& number,
                                                         std::integer_sequence<int, i...>) noexcept {
    return Numbers(static_cast<T>(number(i))...);
  }
  template <int... i>
  [[gnu::always_inline]] constexpr void storePlaces(T* to, std::integer_sequence<int, i...>) const noexcept {
    ((to[i] = n[i]), ...);
  }
};

/// The sum of as many rows of `width` numbers as there are weights, each times its weight. A row begins
/// `stride` numbers after the one before it.
template <int width, int stride = width, class T, int count>
[[nodiscard, gnu::always_inline]] constexpr Numbers<T, width> weighted(const Numbers<T, count>& weights,
                                                                       const T* rows) noexcept {
  using Row = Numbers<T, width>;
  Row sum = weights.n[0] * Row::at(rows) + weights.n[1] * Row::at(rows + stride);
  if constexpr (count > 2) sum = sum + weights.n[2] * Row::at(rows + 2 * stride);
  if constexpr (count > 3) sum = sum + weights.n[3] * Row::at(rows + 3 * stride);
  return sum;
}

} // namespace qvLinear::detail
