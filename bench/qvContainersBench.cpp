// The ordered map, the vector of pointers and the list, beside the standard containers.
#include "Base/Containers/qvList.h"
#include "Base/Containers/qvMap.h"
#include "Base/Containers/qvVector.h"
#include "bench/qvBench.h"

#include <algorithm>
#include <list>
#include <map>
#include <memory>

namespace {

constexpr int appendCount = 1'000'000;
constexpr int keyCount = 200'000;
const std::vector<std::uint64_t> keys = qvBench::randomNumbers(keyCount, 4);
const std::vector<std::uint64_t> shuffled = [] {
  std::vector<std::uint64_t> copy = keys;
  std::shuffle(copy.begin(), copy.end(), std::mt19937_64(5));
  return copy;
}();

template <class Map>
std::unique_ptr<Map> filled() {
  auto map = std::make_unique<Map>();
  for (const std::uint64_t key : keys) (*map)[key] = static_cast<int>(key & 0xFF);
  return map;
}

template <class Map>
void mapInsert(benchmark::State& state) {
  std::uint64_t result = 0;
  for (auto _ : state) {
    std::unique_ptr<Map> map = filled<Map>();
    state.PauseTiming();
    result = static_cast<std::uint64_t>(map->size());
    map.reset();
    state.ResumeTiming();
  }
  qvBench::setResult(state, result);
}

template <class Map>
void mapFind(benchmark::State& state) {
  const std::unique_ptr<Map> map = filled<Map>();
  std::uint64_t result = 0;
  for (auto _ : state) {
    result = 0;
    for (const std::uint64_t key : shuffled) result += static_cast<std::uint64_t>(map->find(key)->second);
  }
  qvBench::setResult(state, result);
}

template <class Map>
void mapWalk(benchmark::State& state) {
  const std::unique_ptr<Map> map = filled<Map>();
  std::uint64_t result = 0;
  for (auto _ : state) {
    result = 0;
    for (const auto& element : *map) result = qvBench::mixed(result, element.first);
  }
  qvBench::setResult(state, result);
}

template <class Map>
void mapErase(benchmark::State& state) {
  std::uint64_t result = 0;
  for (auto _ : state) {
    state.PauseTiming();
    const std::unique_ptr<Map> map = filled<Map>();
    result = 0;
    state.ResumeTiming();
    for (const std::uint64_t key : shuffled) result += static_cast<std::uint64_t>(map->erase(key));
  }
  qvBench::setResult(state, result);
}

// A sequence is made, filled and destroyed.
template <class Sequence>
void append(benchmark::State& state) {
  static int element = 0;
  std::uint64_t result = 0;
  for (auto _ : state) {
    Sequence sequence;
    for (int i = 0; i < appendCount; ++i) sequence.push_back(&element + (i & 1));
    benchmark::DoNotOptimize(sequence);
    result = static_cast<std::uint64_t>(sequence.size()) + (sequence.back() == &element);
  }
  qvBench::setResult(state, result);
}

#define BENCH_MAP(Map, who)                                                                                  \
  BENCHMARK(mapInsert<Map<std::uint64_t, int>>)->Name("map insert/" who)->Unit(benchmark::kMillisecond);     \
  BENCHMARK(mapFind<Map<std::uint64_t, int>>)->Name("map find/" who)->Unit(benchmark::kMillisecond);         \
  BENCHMARK(mapWalk<Map<std::uint64_t, int>>)->Name("map walk/" who)->Unit(benchmark::kMillisecond);         \
  BENCHMARK(mapErase<Map<std::uint64_t, int>>)->Name("map erase/" who)->Unit(benchmark::kMillisecond)

BENCH_MAP(qv::map, "Base");
BENCH_MAP(std::map, "StdMap");
BENCHMARK(append<qv::vector<int*>>)->Name("vector append/Base")->Unit(benchmark::kMicrosecond);
BENCHMARK(append<std::vector<int*>>)->Name("vector append/StdVector")->Unit(benchmark::kMicrosecond);
BENCHMARK(append<qv::list<int*>>)->Name("list append/Base")->Unit(benchmark::kMicrosecond);
BENCHMARK(append<std::list<int*>>)->Name("list append/StdList")->Unit(benchmark::kMicrosecond);

} // namespace
