// Matrix: what the classes of matrices have in common.
#pragma once

#include "Base/Linear/qvLinearForward.h"
#include "Base/Linear/qvLinearMatrixKernel.h"

// Not in `detail`: the functions there would be looked up for every matrix.
namespace qvLinear::base {

/// The base of class `Self`: `rows` rows of `width` numbers of type `T` and nothing else. Points are rows and
/// stand on the left: `p * A * B` applies A first. A matrix with as many rows as columns is the whole one;
/// where there is a row more, it is affine: that row is the translation, and the last column, 0 but for its
/// end of 1, is not stored. Default construction leaves the numbers as they are in memory.
template <class Self, class T, int rows, int width>
class Matrix {
public:
  using Number = T;
  static constexpr int size = rows * width;

  /// @{ All numbers, in storage order, row by row.
  constexpr void set(detail::PointerTo<T> auto numbers) noexcept { m_ = All::at(numbers); }
  constexpr void get(std::same_as<T*> auto numbers) const noexcept { m_.storeAt(numbers); }
  /// A template, so that a matrix is a pointer only where one is asked for.
  template <std::same_as<T> P>
  constexpr operator const P*() const noexcept {
    return m_.n;
  }
  /// @}
  /// @{ The numbers of a row. Unchecked.
  [[nodiscard]] constexpr T* operator[](int row) noexcept { return m_.n + width * row; }
  [[nodiscard]] constexpr const T* operator[](int row) const noexcept { return m_.n + width * row; }
  /// @}

  constexpr Self& identity() noexcept { return self() = Self(T{1}); }
  constexpr Self& zero() noexcept { return self() = Self(T{0}); }

  /// out = m * this; any of them may be the same.
  constexpr void preMult(Self& out, const Self& m) const noexcept {
    detail::multiply<rows, width>(out.m_.n, m.m_.n, m_.n);
  }
  /// this = m * this.
  constexpr void preMult(const Self& m) noexcept { preMult(self(), m); }
  /// this = this * m.
  constexpr Self& operator*=(const Self& m) noexcept {
    m.preMult(self(), self());
    return self();
  }
  /// @{ Number by number, on all that are stored.
  constexpr Self& operator+=(const Self& m) noexcept {
    m_ = m_ + m.m_;
    return self();
  }
  constexpr Self& operator-=(const Self& m) noexcept {
    m_ = m_ - m.m_;
    return self();
  }
  constexpr Self& operator*=(T factor) noexcept {
    m_ = factor * m_;
    return self();
  }
  /// @}

  [[gnu::always_inline]] friend constexpr Self operator*(const Self& a, const Self& b) noexcept {
    Self product; // inlined, or it would be stored and copied to where it is assigned
    detail::multiply<rows, width>(product.m_.n, a.m_.n, b.m_.n);
    return product;
  }
  friend constexpr Self operator+(Self a, const Self& b) noexcept { return a += b; }
  friend constexpr Self operator-(Self a, const Self& b) noexcept { return a -= b; }
  friend constexpr Self operator*(T factor, Self m) noexcept { return m *= factor; }
  friend constexpr Self operator*(Self m, T factor) noexcept { return m *= factor; }
  /// Exact, of all numbers.
  friend constexpr bool operator==(const Self& a, const Self& b) noexcept { return a.m_ == b.m_; }

protected:
  using All = detail::Numbers<T, size>;

  Matrix() = default;
  explicit constexpr Matrix(const All& numbers) noexcept : m_(numbers) {}

  /// `value` on the diagonal; all else, a translation too, is 0.
  [[nodiscard]] static constexpr All diagonal(T value) noexcept {
    return All::made([value](int i) { return i / width == i % width ? value : T{0}; });
  }

  using Row = detail::Numbers<T, width>;
  [[nodiscard]] constexpr Row row(int place) const noexcept { return Row::at((*this)[place]); }
  /// Turns the axis of one row towards that of another.
  Self& turn(int from, int to, T angle) noexcept {
    const T sine = std::sin(angle), cosine = std::cos(angle);
    const Row a = row(from), b = row(to);
    (cosine * a + sine * b).storeAt((*this)[from]);
    (cosine * b - sine * a).storeAt((*this)[to]);
    return self();
  }
  /// A copy after `invert`.
  [[nodiscard]] Self inverted() const noexcept {
    Self copy = static_cast<const Self&>(*this);
    (void)copy.invert();
    return copy;
  }
  constexpr Self& self() noexcept { return static_cast<Self&>(*this); }

  All m_;
};

} // namespace qvLinear::base

namespace qvLinear {

namespace detail {

template <class T>
concept AnyMatrix = OneOf<T, AffineMatrix, AffineMatrixFlt, AffineMatrix2, ProjMatrix, ProjMatrixFlt>;

} // namespace detail

/// Whether all numbers differ by strictly less than `tolerance`. Narrow numbers are subtracted wide.
template <detail::AnyMatrix M>
[[nodiscard]] inline bool equivalent(const M& a, const M& b, double tolerance) noexcept {
  const typename M::Number *left = a, *right = b;
  bool same = true;
  detail::forEach<M::size>([&](int i) { same &= std::fabs(double{left[i]} - double{right[i]}) < tolerance; });
  return same;
}

} // namespace qvLinear
