// The arithmetic that matrices of either number type share, on their numbers in storage order: `size` rows of
// as many numbers, after which an affine matrix has one more, the translation. A detail of the matrices,
// installed because they are inline.
#pragma once

#include "Base/Linear/qvLinearNumbers.h"
#include "Base/Linear/qvLinearTolerance.h"

namespace qvLinear::detail {

/// The row of `size` numbers at `row` times the matrix, without a translation.
template <int size, class T>
[[nodiscard, gnu::always_inline]] constexpr Numbers<T, size> rowTimes(const T* row,
                                                                      const T* matrix) noexcept {
  return weighted<size>(Numbers<T, size>::at(row), matrix);
}

/// The same with the translation.
template <int size, class T>
[[nodiscard, gnu::always_inline]] constexpr Numbers<T, size> rowTimesAffine(const T* row,
                                                                            const T* matrix) noexcept {
  return rowTimes<size>(row, matrix) + Numbers<T, size>::at(matrix + size * size);
}

/// The three coordinates of a homogeneous point, whose weight stays.
template <class T>
[[nodiscard, gnu::always_inline]] constexpr Numbers<T, 3> homogeneousTimesAffine(const T* point,
                                                                                 const T* matrix) noexcept {
  return weighted<3>(Numbers<T, 4>::at(point), matrix);
}

/// out = a * b, which have `rows` rows of `width` numbers: as many, or, where they are affine, one more. Any
/// two of them may be the same matrix.
template <int rows, int width, class T>
[[gnu::always_inline]] constexpr void multiply(T* out, const T* a, const T* b) noexcept {
  using Row = Numbers<T, width>;
  // Row by row of b, so that what is live at one time fits into the registers.
  const auto term = [&](int row, int k) { return a[width * row + k] * Row::at(b + width * k); };
  Row sums[rows];
  forEach<rows>([&](int row) { sums[row] = term(row, 0); });
  forEach<width - 1>(
      [&](int k) { forEach<rows>([&](int row) { sums[row] = sums[row] + term(row, k + 1); }); });
  if constexpr (rows > width) sums[width] = sums[width] + Row::at(b + width * width);
  forEach<rows>([&](int row) { sums[row].storeAt(out + width * row); });
}

/// The translation becomes 0.
template <class T>
[[nodiscard]] constexpr Numbers<T, 12> transposedAffine(const Numbers<T, 12>& m) noexcept {
  return Numbers<T, 12>::made([&](int i) { return i < 9 ? m[i % 3 * 3 + i / 3] : T{0}; });
}

template <class T>
[[nodiscard]] constexpr Numbers<T, 16> transposedProjective(const Numbers<T, 16>& m) noexcept {
  return Numbers<T, 16>::made([&](int i) { return m[i % 4 * 4 + i / 4]; });
}

/// An affine matrix as a projective one, in numbers of type `T`.
template <class T, class From>
[[nodiscard]] constexpr Numbers<T, 16> withFourthColumn(const From* affine) noexcept {
  return Numbers<T, 16>::made([affine](int i) {
    if (i % 4 == 3) return i == 15 ? From{1} : From{0};
    return affine[i / 4 * 3 + i % 4];
  });
}

/// Of the first three rows and columns of rows of `width` numbers.
template <int width, class T>
[[nodiscard]] constexpr T determinant3(const T* matrix) noexcept {
  using Row = Numbers<T, 3>;
  return dot(Row::at(matrix), cross(Row::at(matrix + width), Row::at(matrix + 2 * width)));
}

/// Of four by four, by the minors of the upper two rows and of the lower two.
template <class T>
[[nodiscard]] constexpr T determinant4(const T* m) noexcept {
  const auto upper = [m](int j, int k) { return m[j] * m[4 + k] - m[k] * m[4 + j]; };
  const auto lower = [m](int j, int k) { return m[8 + j] * m[12 + k] - m[8 + k] * m[12 + j]; };
  // Summed as `invertProjectiveFast` does, so that they agree on what has an inverse.
  return (lower(0, 1) * upper(2, 3) - lower(0, 2) * upper(1, 3) + lower(0, 3) * upper(1, 2)) +
         (upper(0, 1) * lower(2, 3) - upper(0, 2) * lower(1, 3) + upper(0, 3) * lower(1, 2));
}

/// Whether a matrix with this determinant counts as invertible.
[[nodiscard]] inline bool isUsableDeterminant(double determinant) noexcept {
  return !(std::fabs(determinant) < epsilonTol);
}

/// Two numbers for one register. Left to itself, a compiler calculates cofactors one by one.
using Pair [[gnu::vector_size(16)]] = double;

/// @{ Makes the matrix its inverse by cofactors. False where the determinant is below `epsilonTol`; nothing
/// is changed then.
inline bool invertAffineFast(double* m) noexcept {
  // The products of the second row with the third and of the third with the first end up side by side.
  const double x0 = m[0], x1 = m[1], x2 = m[2], y0 = m[3], y1 = m[4], y2 = m[5];
  const double z0 = m[6], z1 = m[7], z2 = m[8], t0 = m[9], t1 = m[10], t2 = m[11];
  const Pair a0 = {y0, z0}, a1 = {y1, z1}, a2 = {y2, z2}, b0 = {z0, x0}, b1 = {z1, x1}, b2 = {z2, x2};
  const Pair pair0 = a1 * b2 - a2 * b1, pair1 = a2 * b0 - a0 * b2, pair2 = a0 * b1 - a1 * b0;
  const double determinant = x0 * pair0[0] + x1 * pair1[0] + x2 * pair2[0];
  const double last0 = x1 * y2 - x2 * y1, last1 = x2 * y0 - x0 * y2, last2 = x0 * y1 - x1 * y0;
  const Pair moved = t0 * pair0 + t1 * pair1 + t2 * pair2;
  const double lastMoved = t0 * last0 + t1 * last1 + t2 * last2;
  // Here at last: the code above stays in one piece, and need not wait for the quotient.
  if (!isUsableDeterminant(determinant)) return false;
  const double factor = 1.0 / determinant;
  const auto store = [m](int row, Pair pair, double last, double by) {
    pair *= by;
    Numbers<double, 3>(pair[0], pair[1], last * by).storeAt(m + 3 * row);
  };
  store(0, pair0, last0, factor);
  store(1, pair1, last1, factor);
  store(2, pair2, last2, factor);
  store(3, moved, lastMoved, -factor);
  return true;
}

inline bool invertProjectiveFast(double* m) noexcept {
  // Always the same of the upper half of the matrix and of its lower half, so that all minors and cofactors
  // come in pairs.
  const auto inRow = [m](int row, int column) { return Pair{m[4 * row + column], m[4 * row + 8 + column]}; };
  const Pair r0 = inRow(0, 0), r1 = inRow(0, 1), r2 = inRow(0, 2), r3 = inRow(0, 3);
  const Pair s0 = inRow(1, 0), s1 = inRow(1, 1), s2 = inRow(1, 2), s3 = inRow(1, 3);
  // The minors of two columns, with that of the lower half first.
  const auto swapped = [](Pair pair) { return Pair{pair[1], pair[0]}; };
  const Pair m01 = swapped(r0 * s1 - r1 * s0), m02 = swapped(r0 * s2 - r2 * s0),
             m03 = swapped(r0 * s3 - r3 * s0);
  const Pair m12 = swapped(r1 * s2 - r2 * s1), m13 = swapped(r1 * s3 - r3 * s1),
             m23 = swapped(r2 * s3 - r3 * s2);
  const Pair halves = m01 * swapped(m23) - m02 * swapped(m13) + m03 * swapped(m12);
  const double determinant = halves[0] + halves[1];
  if (!isUsableDeterminant(determinant)) return false;
  const double factor = 1.0 / determinant;
  const auto store = [m, factor](int row, Pair even, Pair odd) {
    even *= factor, odd *= factor;
    Numbers<double, 4>(even[0], odd[0], even[1], odd[1]).storeAt(m + 4 * row);
  };
  store(0, s1 * m23 - s2 * m13 + s3 * m12, r2 * m13 - r1 * m23 - r3 * m12);
  store(1, s2 * m03 - s0 * m23 - s3 * m02, r0 * m23 - r2 * m03 + r3 * m02);
  store(2, s0 * m13 - s1 * m03 + s3 * m01, r1 * m03 - r0 * m13 - r3 * m01);
  store(3, s1 * m02 - s0 * m12 - s2 * m01, r0 * m12 - r1 * m02 + r2 * m01);
  return true;
}
/// @}

} // namespace qvLinear::detail
