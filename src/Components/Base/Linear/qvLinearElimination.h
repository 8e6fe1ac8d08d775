// Inversion by Gauss-Jordan elimination with partial pivoting.
#pragma once

#include "Base/Linear/qvLinearNumbers.h"
#include "Base/Linear/qvLinearTolerance.h"

#include <utility>

namespace qvLinear::detail {

/// Brings the row, from `column` on down, with the largest number in this column there: the first of equals.
template <int size>
void bringUpPivot(Numbers<double, 2 * size> (&rows)[size], int column) noexcept {
  int largest = column;
  for (int row = column + 1; row < size; ++row) {
    if (std::fabs(rows[row].n[column]) > std::fabs(rows[largest].n[column])) largest = row;
  }
  if (largest != column) std::swap(rows[column], rows[largest]);
}

/// `matrix`, of `size` rows, becomes its inverse. False, with nothing changed, where a pivot is below
/// `epsilonTol`.
template <int size>
bool invertByElimination(double* matrix) noexcept {
  using Row = Numbers<double, 2 * size>; // of the matrix, and of what becomes the inverse
  Row rows[size];
  for (int i = 0; i < size; ++i) {
    rows[i] = Row::made([&](int k) { return k < size ? matrix[i * size + k] : (k - size == i ? 1.0 : 0.0); });
  }
  for (int column = 0; column < size; ++column) {
    bringUpPivot<size>(rows, column);
    const double pivot = rows[column].n[column];
    if (std::fabs(pivot) < epsilonTol) return false;
    rows[column] = (1.0 / pivot) * rows[column];
    for (int row = 0; row < size; ++row) {
      if (row != column) rows[row] = rows[row] - rows[row].n[column] * rows[column];
    }
  }
  for (int i = 0; i < size; ++i) Numbers<double, size>::at(rows[i].n + size).storeAt(matrix + i * size);
  return true;
}

/// The same of an affine matrix, of which that is the linear part, with the translation in the row after it.
template <int size>
bool invertAffineByElimination(double* matrix) noexcept {
  if (!invertByElimination<size>(matrix)) return false;
  double* const translation = matrix + size * size;
  (-1.0 * weighted<size>(Numbers<double, size>::at(translation), matrix)).storeAt(translation);
  return true;
}

} // namespace qvLinear::detail
