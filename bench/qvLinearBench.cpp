// Transforming points, products and inverses of matrices, turning between rotations and normalising, beside
// Eigen and GLM. Theirs are columns where ours are rows, so the same numbers in the same order mean the same.
#include "Base/Linear/qvLinearAffineMatrix.h"
#include "Base/Linear/qvLinearProjMatrix.h"
#include "Base/Linear/qvLinearQuaternion.h"
#include "bench/qvBench.h"

#include <cmath>
#include <cstring>
#include <span>

#ifdef BENCH_Eigen
#include <Eigen/Geometry>
#endif
#ifdef BENCH_GLM
#include <glm/glm.hpp>
#include <glm/gtc/matrix_inverse.hpp>
#include <glm/gtc/quaternion.hpp>
#endif

namespace {

/// Numbers between -1 and 1, the same in each run.
std::vector<double> randomCoordinates(std::size_t count) {
  std::vector<double> numbers;
  numbers.reserve(count);
  for (const std::uint64_t number : qvBench::randomNumbers(count, 8)) {
    numbers.push_back(std::ldexp(static_cast<double>(number >> 11), -52) - 1);
  }
  return numbers;
}

/// What stands for all these numbers, rounded so far that the order of additions cannot be seen.
std::uint64_t roundedSum(std::span<const double> numbers) {
  double sum = 0;
  for (const double number : numbers) sum += std::abs(number);
  return static_cast<std::uint64_t>(std::llround(sum * 1000));
}

template <class T>
std::span<const double> numbersOf(const std::vector<T>& items) {
  static_assert(sizeof(T) % sizeof(double) == 0);
  return {reinterpret_cast<const double*>(items.data()), items.size() * (sizeof(T) / sizeof(double))};
}

/// `count` items whose numbers are those of `numbers`, in order.
template <class T>
std::vector<T> itemsOf(std::span<const double> numbers) {
  std::vector<T> items(numbers.size() / (sizeof(T) / sizeof(double)));
  std::memcpy(static_cast<void*>(items.data()), numbers.data(), items.size() * sizeof(T));
  return items;
}

// ---- The libraries: their types, and each work in their own words ----

struct BaseLinear {
  using Point = qvLinear::Point;
  using Vector = qvLinear::Vector;
  using Affine = qvLinear::AffineMatrix;
  using Projective = qvLinear::ProjMatrix;
  using Quaternion = qvLinear::Quaternion;

  static Affine affineOf(const double* numbers) { return Affine(numbers); }
  static void transform(const Affine& matrix, const std::vector<Point>& points, std::vector<Point>& out) {
    matrix.preMult(out.data(), points.data(), points.size());
  }
  template <class Matrix>
  static void product(Matrix& out, const Matrix& first, const Matrix& second) {
    second.preMult(out, first);
  }
  template <class Matrix>
  static void invert(Matrix& out, const Matrix& matrix) {
    Matrix inverse = matrix;
    (void)inverse.invertFast();
    out = inverse;
  }
  template <class Matrix>
  static void eliminate(Matrix& out, const Matrix& matrix) {
    out = matrix;
    (void)out.invert();
  }
  static Quaternion between(const Quaternion& a, const Quaternion& b, double t) {
    return qvLinear::slerp(a, b, t);
  }
  static void normalize(Vector& vector) { (void)vector.normalize(); }
};

#ifdef BENCH_Eigen
struct EigenLinear {
  using Point = Eigen::Vector3d;
  using Vector = Eigen::Vector3d;
  using Affine = Eigen::Affine3d;
  using Projective = Eigen::Matrix4d;
  using Quaternion = Eigen::Quaterniond;

  static Affine affineOf(const double* numbers) {
    Affine affine = Affine::Identity();
    affine.affine() = Eigen::Map<const Eigen::Matrix<double, 3, 4>>(numbers);
    return affine;
  }
  static void transform(const Affine& matrix, const std::vector<Point>& points, std::vector<Point>& out) {
    for (std::size_t i = 0; i < points.size(); ++i) out[i] = matrix * points[i];
  }
  static void product(Affine& out, const Affine& first, const Affine& second) { out = second * first; }
  static void product(Projective& out, const Projective& first, const Projective& second) {
    out.noalias() = second * first;
  }
  static void invert(Affine& out, const Affine& matrix) { out = matrix.inverse(Eigen::Affine); }
  static void invert(Projective& out, const Projective& matrix) { out = matrix.inverse(); }
  static void eliminate(Affine& out, const Affine& matrix) {
    out.linear() = matrix.linear().partialPivLu().inverse();
    out.translation() = -(out.linear() * matrix.translation());
  }
  static void eliminate(Projective& out, const Projective& matrix) { out = matrix.partialPivLu().inverse(); }
  static Quaternion between(const Quaternion& a, const Quaternion& b, double t) { return a.slerp(t, b); }
  static void normalize(Vector& vector) { vector.normalize(); }
};

/// All points as one matrix of three rows.
struct EigenBlock : EigenLinear {
  static void transform(const Affine& matrix, const std::vector<Point>& points, std::vector<Point>& out) {
    using Block = Eigen::Matrix<double, 3, Eigen::Dynamic>;
    const auto count = static_cast<Eigen::Index>(points.size());
    Eigen::Map<Block>(out[0].data(), 3, count).noalias() =
        (matrix.linear() * Eigen::Map<const Block>(points[0].data(), 3, count)).colwise() +
        matrix.translation();
  }
};
#endif

#ifdef BENCH_GLM
struct GlmLinear {
  using Point = glm::dvec3;
  using Vector = glm::dvec3;
  using Affine = glm::dmat4;
  using Projective = glm::dmat4;
  using Quaternion = glm::dquat;

  static Affine affineOf(const double* numbers) {
    Affine affine(1);
    for (int column = 0; column < 4; ++column) {
      for (int row = 0; row < 3; ++row) affine[column][row] = numbers[3 * column + row];
    }
    return affine;
  }
  static void transform(const Affine& matrix, const std::vector<Point>& points, std::vector<Point>& out) {
    const glm::dmat4x3 narrow(matrix);
    for (std::size_t i = 0; i < points.size(); ++i) out[i] = narrow * glm::dvec4(points[i], 1);
  }
  static void product(Affine& out, const Affine& first, const Affine& second) { out = second * first; }
  static void invert(Projective& out, const Projective& matrix) { out = glm::inverse(matrix); }
  static Quaternion between(const Quaternion& a, const Quaternion& b, double t) {
    return glm::slerp(a, b, t);
  }
  static void normalize(Vector& vector) { vector = glm::normalize(vector); }
};

/// Its inverse of an affine matrix.
struct GlmAffine : GlmLinear {
  static Affine inverse(const Affine& matrix) { return glm::affineInverse(matrix); }
  static void invert(Affine& out, const Affine& matrix) { out = inverse(matrix); }
};
#endif

// ---- The rows ----

constexpr std::size_t matrixCount = 1000;

/// Well-conditioned matrices of `size` numbers a row.
template <class Matrix, class Make>
std::vector<Matrix> matricesOf(std::size_t numbersEach, std::size_t rowLength, Make make) {
  std::vector<double> numbers = randomCoordinates(matrixCount * numbersEach);
  std::vector<Matrix> matrices;
  for (std::size_t i = 0; i < numbers.size(); i += numbersEach) {
    for (std::size_t k = 0; k < rowLength; ++k) numbers[i + k * (rowLength + 1)] += 3;
    matrices.push_back(make(&numbers[i]));
  }
  return matrices;
}

template <class Library>
std::vector<typename Library::Affine> affines() {
  return matricesOf<typename Library::Affine>(12, 3, Library::affineOf);
}

template <class Library>
std::vector<typename Library::Projective> projectives() {
  using Projective = typename Library::Projective;
  return matricesOf<Projective>(16, 4, [](const double* n) { return itemsOf<Projective>({n, 16})[0]; });
}

template <class Library, std::size_t count>
void transformPoints(benchmark::State& state) {
  const auto points = itemsOf<typename Library::Point>(randomCoordinates(3 * count));
  std::vector<typename Library::Point> out(points.size());
  const auto matrix = affines<Library>()[0];
  for (auto _ : state) {
    Library::transform(matrix, points, out);
    benchmark::ClobberMemory();
  }
  qvBench::setResult(state, roundedSum(numbersOf(out)));
}

/// Rounds over all matrices: `work(i)` writes the i-th of `out`.
template <class Matrix, class Work>
void overMatrices(benchmark::State& state, std::vector<Matrix>& out, Work work) {
  for (auto _ : state) {
    for (std::size_t i = 0; i < out.size(); ++i) work(i);
    benchmark::ClobberMemory();
  }
}

/// What stands for the matrices, however they are stored: where they take one point.
template <class Library>
std::uint64_t resultOf(const std::vector<typename Library::Affine>& matrices, Library) {
  const auto corner = itemsOf<typename Library::Point>(std::vector<double>{1, 2, 3});
  std::vector<typename Library::Point> images;
  for (const auto& matrix : matrices) {
    std::vector<typename Library::Point> image(1);
    Library::transform(matrix, corner, image);
    images.push_back(image[0]);
  }
  return roundedSum(numbersOf(images));
}

template <class Library>
struct AffineRows {
  using Matrix = typename Library::Affine;
  static std::vector<Matrix> matrices() { return affines<Library>(); }
  static std::uint64_t result(const std::vector<Matrix>& matrices) { return resultOf(matrices, Library()); }
};

template <class Library>
struct ProjectiveRows {
  using Matrix = typename Library::Projective;
  static std::vector<Matrix> matrices() { return projectives<Library>(); }
  static std::uint64_t result(const std::vector<Matrix>& matrices) { return roundedSum(numbersOf(matrices)); }
};

template <class Library, class Rows>
void product(benchmark::State& state) {
  const auto matrices = Rows::matrices();
  auto out = matrices;
  overMatrices(state, out,
               [&](std::size_t i) { Library::product(out[i], matrices[i], matrices[matrixCount - 1 - i]); });
  qvBench::setResult(state, Rows::result(out));
}

template <class Library, class Rows>
void inverse(benchmark::State& state) {
  const auto matrices = Rows::matrices();
  auto out = matrices;
  overMatrices(state, out, [&](std::size_t i) { Library::invert(out[i], matrices[i]); });
  qvBench::setResult(state, Rows::result(out));
}

template <class Library, class Rows>
void elimination(benchmark::State& state) {
  const auto matrices = Rows::matrices();
  auto out = matrices;
  overMatrices(state, out, [&](std::size_t i) { Library::eliminate(out[i], matrices[i]); });
  qvBench::setResult(state, Rows::result(out));
}

template <class Library>
void slerp(benchmark::State& state) {
  std::vector<double> numbers = randomCoordinates(4 * matrixCount);
  for (std::size_t i = 0; i < numbers.size(); i += 4) {
    const double length =
        std::hypot(std::hypot(numbers[i], numbers[i + 1]), std::hypot(numbers[i + 2], numbers[i + 3]));
    for (std::size_t k = 0; k < 4; ++k) numbers[i + k] /= length;
  }
  const auto turns = itemsOf<typename Library::Quaternion>(numbers);
  auto out = turns;
  for (auto _ : state) {
    for (std::size_t i = 0; i < turns.size(); ++i) {
      out[i] = Library::between(turns[i], turns[turns.size() - 1 - i], static_cast<double>(i) / matrixCount);
    }
    benchmark::ClobberMemory();
  }
  qvBench::setResult(state, roundedSum(numbersOf(out)));
}

template <class Library>
void normalize(benchmark::State& state) {
  const auto vectors = itemsOf<typename Library::Vector>(randomCoordinates(3'000'000));
  auto out = vectors;
  for (auto _ : state) {
    for (std::size_t i = 0; i < vectors.size(); ++i) {
      auto vector = vectors[i];
      Library::normalize(vector);
      out[i] = vector;
    }
    benchmark::ClobberMemory();
  }
  qvBench::setResult(state, roundedSum(numbersOf(out)));
}

BENCHMARK(transformPoints<BaseLinear, 1'000'000>)->Name("points in memory/Base");
BENCHMARK(transformPoints<BaseLinear, 1000>)->Name("points in cache/Base");
BENCHMARK(product<BaseLinear, AffineRows<BaseLinear>>)->Name("affine product/Base");
BENCHMARK(product<BaseLinear, ProjectiveRows<BaseLinear>>)->Name("projective product/Base");
BENCHMARK(inverse<BaseLinear, AffineRows<BaseLinear>>)->Name("affine inverse/Base");
BENCHMARK(inverse<BaseLinear, ProjectiveRows<BaseLinear>>)->Name("projective inverse/Base");
BENCHMARK(elimination<BaseLinear, AffineRows<BaseLinear>>)->Name("affine elimination/Base");
BENCHMARK(elimination<BaseLinear, ProjectiveRows<BaseLinear>>)->Name("projective elimination/Base");
BENCHMARK(slerp<BaseLinear>)->Name("slerp/Base");
BENCHMARK(normalize<BaseLinear>)->Name("normalize/Base");

#ifdef BENCH_Eigen
BENCHMARK(transformPoints<EigenLinear, 1'000'000>)->Name("points in memory/Eigen");
BENCHMARK(transformPoints<EigenLinear, 1000>)->Name("points in cache/Eigen");
BENCHMARK(product<EigenLinear, AffineRows<EigenLinear>>)->Name("affine product/Eigen");
BENCHMARK(product<EigenLinear, ProjectiveRows<EigenLinear>>)->Name("projective product/Eigen");
BENCHMARK(inverse<EigenLinear, AffineRows<EigenLinear>>)->Name("affine inverse/Eigen");
BENCHMARK(inverse<EigenLinear, ProjectiveRows<EigenLinear>>)->Name("projective inverse/Eigen");
BENCHMARK(elimination<EigenLinear, AffineRows<EigenLinear>>)->Name("affine elimination/Eigen");
BENCHMARK(elimination<EigenLinear, ProjectiveRows<EigenLinear>>)->Name("projective elimination/Eigen");
BENCHMARK(slerp<EigenLinear>)->Name("slerp/Eigen");
BENCHMARK(normalize<EigenLinear>)->Name("normalize/Eigen");
BENCHMARK(transformPoints<EigenBlock, 1'000'000>)->Name("points in memory/Eigen block");
BENCHMARK(transformPoints<EigenBlock, 1000>)->Name("points in cache/Eigen block");
#endif

#ifdef BENCH_GLM
BENCHMARK(transformPoints<GlmLinear, 1'000'000>)->Name("points in memory/GLM");
BENCHMARK(transformPoints<GlmLinear, 1000>)->Name("points in cache/GLM");
BENCHMARK(product<GlmLinear, AffineRows<GlmLinear>>)->Name("affine product/GLM");
BENCHMARK(product<GlmLinear, ProjectiveRows<GlmLinear>>)->Name("projective product/GLM");
BENCHMARK(inverse<GlmAffine, AffineRows<GlmAffine>>)->Name("affine inverse/GLM");
BENCHMARK(inverse<GlmLinear, ProjectiveRows<GlmLinear>>)->Name("projective inverse/GLM");
BENCHMARK(slerp<GlmLinear>)->Name("slerp/GLM");
BENCHMARK(normalize<GlmLinear>)->Name("normalize/GLM");
#endif

} // namespace
