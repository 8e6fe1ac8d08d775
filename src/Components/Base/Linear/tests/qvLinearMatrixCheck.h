// The matrices beside a plain reference in long double, for their tests.
#pragma once

#include "Base/Linear/qvLinearAffineMatrix2.h"
#include "Base/Linear/qvLinearProjMatrixFlt.h"
#include "qvLinearFamily.h"
#include "testing/qvTestSeed.h"

#include <cfloat>

namespace qvTest {

using Matrices = ClassList<AffineMatrix, AffineMatrixFlt, AffineMatrix2, ProjMatrix, ProjMatrixFlt>;

template <class M>
constexpr int widthOf = M::size == 6    ? 2
                        : M::size == 12 ? 3
                                        : 4;
template <class M>
constexpr double epsilonOf = std::is_same_v<typename M::Number, float> ? FLT_EPSILON : DBL_EPSILON;

/// A whole matrix, with the last column that affine ones do not store.
struct Reference {
  Reference() = default;
  template <class M>
  explicit Reference(const M& m) {
    for (int i = 0; i < M::size; ++i) n[i / widthOf<M>][i % widthOf<M>] = m[0][i];
    if (M::size / widthOf < M >> widthOf<M>) n[widthOf<M>][widthOf<M>] = 1;
  }

  friend Reference operator*(const Reference& a, const Reference& b) {
    Reference product;
    for (int i = 0; i < 64; ++i) product.n[i / 16][i % 4] += a.n[i / 16][i / 4 % 4] * b.n[i / 4 % 4][i % 4];
    return product;
  }
  /// The sum of all absolute values: what errors are measured by.
  [[nodiscard]] long double norm() const {
    long double sum = 0;
    for (const auto& row : n)
      for (const long double number : row) sum += std::fabs(number);
    return sum;
  }
  /// Of the first `size` rows and columns, by the first row.
  [[nodiscard]] long double determinant(int size) const {
    if (size == 1) return n[0][0];
    long double sum = 0;
    for (int column = 0; column < size; ++column) {
      Reference minor;
      for (int row = 1; row < size; ++row)
        for (int k = 0; k + 1 < size; ++k) minor.n[row - 1][k] = n[row][k + (k >= column)];
      sum += (column % 2 == 0 ? 1 : -1) * n[0][column] * minor.determinant(size - 1);
    }
    return sum;
  }

  long double n[4][4] = {};
};

template <class M>
void expectNear(const M& m, const Reference& expected, long double tolerance, const char* what = "") {
  const Reference actual(m);
  long double largest = 0;
  for (int i = 0; i < 16; ++i) {
    const long double difference = std::fabs(actual.n[i / 4][i % 4] - expected.n[i / 4][i % 4]);
    if (!(difference <= largest)) largest = difference; // not a number too
  }
  EXPECT_LE(largest, tolerance) << what;
}

/// From -1 to 1.
inline double number(Random& random) {
  return static_cast<double>(random.between(-1'000'000, 1'000'000)) / 1e6;
}

template <class V>
V randomValue(Random& random) {
  return detail::build<V>([&](int) { return static_cast<typename V::Number>(number(random)); });
}

template <class M>
M randomMatrix(Random& random, double scale = 1) {
  M m;
  for (int i = 0; i < M::size; ++i) m[0][i] = static_cast<typename M::Number>(scale * number(random));
  return m;
}

/// What a row of numbers becomes; `weight` stands for the last number where the row is a position or a
/// direction.
template <class V, class M>
void expectTransformed(const V& out, const V& in, const M& m, long double weight) {
  const Reference reference(m);
  const int whole = M::size == 6 ? 3 : 4;
  for (int column = 0; column < V::size; ++column) {
    long double sum = V::size < whole ? weight * reference.n[whole - 1][column] : 0;
    for (int i = 0; i < V::size; ++i) sum += in[i] * reference.n[i][column];
    EXPECT_NEAR(out[column], sum, 8 * epsilonOf<M>) << column;
  }
}

} // namespace qvTest
