// The one source of randomness in tests. A failing test prints the seed that repeats it.
#pragma once

#include <cstdint>
#include <random>

namespace qvTest {

/// A seeded random engine that tells its seed when the test that holds it fails. The seed is `QV_TEST_SEED`
/// from the environment where that is set, else `fallback`, so that an ordinary run repeats exactly.
class Random {
public:
  explicit Random(std::uint64_t fallback);
  ~Random();
  Random(const Random&) = delete;
  Random& operator=(const Random&) = delete;

  /// A number from 0 to `bound - 1`; `bound` is at least 1.
  [[nodiscard]] std::uint64_t below(std::uint64_t bound);
  /// A number from `first` to `last`, both included.
  [[nodiscard]] int between(int first, int last);
  /// True once in `n` times on the average.
  [[nodiscard]] bool oneIn(std::uint64_t n) { return below(n) == 0; }
  [[nodiscard]] std::uint64_t bits() { return engine_(); }

private:
  std::uint64_t seed_;
  std::mt19937_64 engine_;
};

} // namespace qvTest
