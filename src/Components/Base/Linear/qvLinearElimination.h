// Inversion by Gauss-Jordan elimination with partial pivoting.
#pragma once

#include "Base/Linear/qvLinearNumbers.h"
#include "Base/Linear/qvLinearTolerance.h"

#include <utility>

namespace qvLinear::detail {

/// Brings the row, from `column` on down, with the largest number in this column there: the first of equals.
template <int Size>
void bringUpPivot(Numbers<double, 2 * Size> (&rows)[Size], int column) noexcept {
  int largest = column;
  for (int row = column + 1; row < Size; ++row) {
    if (std::fabs(rows[row].n[column]) > std::fabs(rows[largest].n[column])) largest = row;
  }
  if (largest != column) std::swap(rows[column], rows[largest]);
}

/// `matrix`, of `Size` rows, becomes its inverse. False, with nothing changed, where a pivot is below `epsilonTol`.
template <int Size>
bool invertByElimination(double* matrix) noexcept {
  using Row = Numbers<double, 2 * Size>; // of the matrix, and of what becomes the inverse
  Row rows[Size];
  for (int i = 0; i < Size; ++i) {
    rows[i] = Row::made([&](int k) { return k < Size ? matrix[i * Size + k] : (k - Size == i ? 1.0 : 0.0); });
  }
  for (int column = 0; column < Size; ++column) {
    bringUpPivot<Size>(rows, column);
    const double pivot = rows[column].n[column];
    if (std::fabs(pivot) < epsilonTol) return false;
    rows[column] = (1.0 / pivot) * rows[column];
    for (int row = 0; row < Size; ++row) {
      if (row != column) rows[row] = rows[row] - rows[row].n[column] * rows[column];
    }
  }
  for (int i = 0; i < Size; ++i) Numbers<double, Size>::at(rows[i].n + Size).storeAt(matrix + i * Size);
  return true;
}

/// The same of an affine matrix, of which that is the linear part, with the translation in the row after it.
template <int Size>
bool invertAffineByElimination(double* matrix) noexcept {
  if (!invertByElimination<Size>(matrix)) return false;
  double* const translation = matrix + Size * Size;
  (-1.0 * weighted<Size>(Numbers<double, Size>::at(translation), matrix)).storeAt(translation);
  return true;
}

} // namespace qvLinear::detail
