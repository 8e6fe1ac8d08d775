// The arithmetic that matrices of either number type share, on their numbers in storage order: `Size` rows of as
// many numbers, after which an affine matrix has one more, the translation. A detail of the matrices, installed
// because they are inline.
#pragma once

#include "Base/Linear/qvLinearNumbers.h"
#include "Base/Linear/qvLinearTolerance.h"

namespace qvLinear::detail {

/// The row of `Size` numbers at `row` times the matrix, without a translation.
template <int Size, class T>
[[nodiscard, gnu::always_inline]] constexpr Numbers<T, Size> rowTimes(const T* row,
                                                                           const T* matrix) noexcept {
  return weighted<Size>(Numbers<T, Size>::at(row), matrix);
}

/// The same with the translation.
template <int Size, class T>
[[nodiscard, gnu::always_inline]] constexpr Numbers<T, Size>
rowTimesAffine(const T* row, const T* matrix) noexcept {
  return rowTimes<Size>(row, matrix) + Numbers<T, Size>::at(matrix + Size * Size);
}

/// The three coordinates of a homogeneous point, whose weight stays.
template <class T>
[[nodiscard, gnu::always_inline]] constexpr Numbers<T, 3>
homogeneousTimesAffine(const T* point, const T* matrix) noexcept {
  return weighted<3>(Numbers<T, 4>::at(point), matrix);
}

/// @{ out = a * b; any two of them may be the same matrix.
template <int Size, class T>
constexpr void multiplyAffine(T* out, const T* a, const T* b) noexcept {
  const auto first = rowTimes<Size>(a, b);
  const auto second = rowTimes<Size>(a + Size, b);
  if constexpr (Size == 2) {
    const auto translation = rowTimesAffine<2>(a + 4, b);
    first.storeAt(out);
    second.storeAt(out + 2);
    translation.storeAt(out + 4);
  } else {
    const auto third = rowTimes<3>(a + 6, b);
    const auto translation = rowTimesAffine<3>(a + 9, b);
    first.storeAt(out);
    second.storeAt(out + 3);
    third.storeAt(out + 6);
    translation.storeAt(out + 9);
  }
}

template <class T>
constexpr void multiplyProjective(T* out, const T* a, const T* b) noexcept {
  const auto first = rowTimes<4>(a, b);
  const auto second = rowTimes<4>(a + 4, b);
  const auto third = rowTimes<4>(a + 8, b);
  const auto fourth = rowTimes<4>(a + 12, b);
  first.storeAt(out);
  second.storeAt(out + 4);
  third.storeAt(out + 8);
  fourth.storeAt(out + 12);
}
/// @}

/// `value` where the row and the column are the same, else 0, in rows of `Width` numbers.
template <int Width, int Count, class T>
[[nodiscard]] constexpr Numbers<T, Count> diagonal(T value) noexcept {
  return Numbers<T, Count>::made(
      [value](int i) { return i / Width == i % Width ? value : T{0}; });
}

/// @{ What acts on a point before the matrix, whose rows have `Width` numbers, does.
template <int Width, class T>
constexpr void translateFirst(T* matrix, T x, T y, T z) noexcept {
  T* const last = matrix + 3 * Width;
  (Numbers<T, Width>::at(last) + weighted<Width>(Numbers<T, 3>{{x, y, z}}, matrix)).storeAt(last);
}

template <int Width, class T>
constexpr void scaleFirst(T* matrix, T x, T y, T z) noexcept {
  const T factors[] = {x, y, z};
  Numbers<T, 3 * Width>::made([&](int i) { return factors[i / Width] * matrix[i]; }).storeAt(matrix);
}
/// @}

/// The translation becomes 0.
template <class T>
[[nodiscard]] constexpr Numbers<T, 12> transposedAffine(const Numbers<T, 12>& m) noexcept {
  return Numbers<T, 12>::made([&](int i) { return i < 9 ? m.n[i % 3 * 3 + i / 3] : T{0}; });
}

template <class T>
[[nodiscard]] constexpr Numbers<T, 16> transposedProjective(const Numbers<T, 16>& m) noexcept {
  return Numbers<T, 16>::made([&](int i) { return m.n[i % 4 * 4 + i / 4]; });
}

/// An affine matrix as a projective one, in numbers of type `T`.
template <class T, class From>
[[nodiscard]] constexpr Numbers<T, 16> withFourthColumn(const From* affine) noexcept {
  return Numbers<T, 16>::made([affine](int i) {
    if (i % 4 == 3) return i == 15 ? From{1} : From{0};
    return affine[i / 4 * 3 + i % 4];
  });
}

/// Of the first three rows and columns of rows of `Width` numbers.
template <int Width, class T>
[[nodiscard]] constexpr T determinant3(const T* matrix) noexcept {
  using Row = Numbers<T, 3>;
  return sumOfProducts(Row::at(matrix).n, cross(Row::at(matrix + Width), Row::at(matrix + 2 * Width)).n);
}

/// The determinants of the two by two numbers in each pair of columns, of the upper two rows of a matrix of
/// four by four and of the lower two: what its determinant and all its cofactors are made of.
template <class T>
struct Minors {
  constexpr explicit Minors(const T* m) noexcept : upper(ofRows(m, m + 4)), lower(ofRows(m + 8, m + 12)) {}

  [[nodiscard]] constexpr T determinant() const noexcept {
    return upper.n[0] * lower.n[5] - upper.n[1] * lower.n[4] + upper.n[2] * lower.n[3] +
           upper.n[3] * lower.n[2] - upper.n[4] * lower.n[1] + upper.n[5] * lower.n[0];
  }

  Numbers<T, 6> upper; // of the columns 01 02 03 12 13 23
  Numbers<T, 6> lower;

private:
  [[gnu::always_inline]] static constexpr Numbers<T, 6> ofRows(const T* a, const T* b) noexcept {
    return {{a[0] * b[1] - a[1] * b[0], a[0] * b[2] - a[2] * b[0], a[0] * b[3] - a[3] * b[0],
             a[1] * b[2] - a[2] * b[1], a[1] * b[3] - a[3] * b[1], a[2] * b[3] - a[3] * b[2]}};
  }
};

/// Whether a matrix with this determinant counts as invertible.
[[nodiscard]] inline bool isUsableDeterminant(double determinant) noexcept {
  return !(std::abs(determinant) < epsilonTol);
}

/// Makes the matrix its inverse by cofactors. False where the determinant is below `epsilonTol`; nothing is
/// changed then.
/// @{
inline bool invertAffineFast(double* m) noexcept {
  using Row = Numbers<double, 3>;
  const Row x = Row::at(m), y = Row::at(m + 3), z = Row::at(m + 6);
  const Row yz = cross(y, z), zx = cross(z, x), xy = cross(x, y);
  const double determinant = sumOfProducts(x.n, yz.n);
  if (!isUsableDeterminant(determinant)) return false;
  const double factor = 1.0 / determinant;
  const Row a = factor * yz, b = factor * zx, c = factor * xy;
  const Numbers<double, 9> linear{
      {a.n[0], b.n[0], c.n[0], a.n[1], b.n[1], c.n[1], a.n[2], b.n[2], c.n[2]}};
  const Row translation = -1.0 * rowTimes<3>(m + 9, linear.n);
  linear.storeAt(m);
  translation.storeAt(m + 9);
  return true;
}

inline bool invertProjectiveFast(double* m) noexcept {
  const Minors<double> minors(m);
  const double determinant = minors.determinant();
  if (!isUsableDeterminant(determinant)) return false;
  const double factor = 1.0 / determinant;
  const auto upper = factor * minors.upper;
  const auto lower = factor * minors.lower;
  const double *u = upper.n, *l = lower.n;
  const Numbers<double, 16> inverse{{
      m[5] * l[5] - m[6] * l[4] + m[7] * l[3],
      m[2] * l[4] - m[1] * l[5] - m[3] * l[3],
      m[13] * u[5] - m[14] * u[4] + m[15] * u[3],
      m[10] * u[4] - m[9] * u[5] - m[11] * u[3],
      m[6] * l[2] - m[4] * l[5] - m[7] * l[1],
      m[0] * l[5] - m[2] * l[2] + m[3] * l[1],
      m[14] * u[2] - m[12] * u[5] - m[15] * u[1],
      m[8] * u[5] - m[10] * u[2] + m[11] * u[1],
      m[4] * l[4] - m[5] * l[2] + m[7] * l[0],
      m[1] * l[2] - m[0] * l[4] - m[3] * l[0],
      m[12] * u[4] - m[13] * u[2] + m[15] * u[0],
      m[9] * u[2] - m[8] * u[4] - m[11] * u[0],
      m[5] * l[1] - m[4] * l[3] - m[6] * l[0],
      m[0] * l[3] - m[1] * l[1] + m[2] * l[0],
      m[13] * u[1] - m[12] * u[3] - m[14] * u[0],
      m[8] * u[3] - m[9] * u[1] + m[10] * u[0],
  }};
  inverse.storeAt(m);
  return true;
}
/// @}

} // namespace qvLinear::detail
