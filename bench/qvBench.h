// What the benchmarks have in common: the result by which a comparison sees that two have done the same work,
// and seeded data.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <string_view>
#include <vector>

namespace qvBench {

/// Stores what the benchmark computed. All that measure one thing must have the same result.
inline void setResult(benchmark::State& state, std::uint64_t result) {
  state.counters["result"] = static_cast<double>(result % (std::uint64_t{1} << 50)); // a double holds it
}

/// A number that stands for these bytes.
[[nodiscard]] inline std::uint64_t hashOf(std::string_view bytes) {
  return std::hash<std::string_view>()(bytes);
}

/// Adds `value` to a number that stands for a sequence.
[[nodiscard]] inline std::uint64_t mixed(std::uint64_t sequence, std::uint64_t value) {
  sequence = (sequence ^ value) * 0x9E3779B97F4A7C15u;
  return sequence ^ sequence >> 29;
}

/// Numbers of 64 bits, the same in each run.
[[nodiscard]] inline std::vector<std::uint64_t> randomNumbers(std::size_t count, std::uint64_t seed) {
  std::mt19937_64 random(seed);
  std::vector<std::uint64_t> numbers(count);
  for (std::uint64_t& number : numbers) number = random();
  return numbers;
}

} // namespace qvBench
