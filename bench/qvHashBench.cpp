// A hash set of a million random keys of 64 bits, beside GLib's table in two ways.
#include "Base/Containers/qvHashSet.h"
#include "bench/qvBench.h"

#include <algorithm>
#include <memory>

#ifdef BENCH_GHashTable
#include <glib.h>
#endif

namespace {

const std::vector<std::uint64_t> keys = qvBench::randomNumbers(1'000'000, 2);

// The same keys in another order: what was inserted one after the other lies near each other.
const std::vector<std::uint64_t> shuffled = [] {
  std::vector<std::uint64_t> copy = keys;
  std::shuffle(copy.begin(), copy.end(), std::mt19937_64(3));
  return copy;
}();

struct Base {
  void insert(std::uint64_t key) { set.insert(key); }
  [[nodiscard]] bool contains(std::uint64_t key) const { return set.contains(key); }
  bool erase(std::uint64_t key) { return set.erase(key) != 0; }
  [[nodiscard]] std::size_t size() const { return static_cast<std::size_t>(set.size()); }
  qv::hash_set<std::uint64_t> set;
};

#ifdef BENCH_GHashTable
class GLibSet {
public:
  GLibSet(GHashFunc hash, GEqualFunc equal) : set_(g_hash_table_new(hash, equal)) {}
  [[nodiscard]] std::size_t size() const { return g_hash_table_size(set_.get()); }

protected:
  struct Destroy {
    void operator()(::GHashTable* table) const { g_hash_table_destroy(table); }
  };
  std::unique_ptr<::GHashTable, Destroy> set_;
};

// The table's own way with keys of 64 bits: it holds their addresses.
struct GHashTable : GLibSet {
  GHashTable() : GLibSet(g_int64_hash, g_int64_equal) {}
  void insert(const std::uint64_t& key) { g_hash_table_add(set_.get(), const_cast<std::uint64_t*>(&key)); }
  [[nodiscard]] bool contains(const std::uint64_t& key) const {
    return g_hash_table_contains(set_.get(), &key);
  }
  bool erase(const std::uint64_t& key) { return g_hash_table_remove(set_.get(), &key); }
};

// Keys in the place of addresses, which only a machine of 64 bits has room for. Hashes are cut to 32 bits.
struct GHashTableDirect : GLibSet {
  GHashTableDirect() : GLibSet(nullptr, nullptr) {}
  static void* pointer(std::uint64_t key) { return reinterpret_cast<void*>(key); }
  void insert(std::uint64_t key) { g_hash_table_add(set_.get(), pointer(key)); }
  [[nodiscard]] bool contains(std::uint64_t key) const {
    return g_hash_table_contains(set_.get(), pointer(key));
  }
  bool erase(std::uint64_t key) { return g_hash_table_remove(set_.get(), pointer(key)); }
};
#endif

template <class Set>
std::unique_ptr<Set> filled() {
  auto made = std::make_unique<Set>();
  for (const std::uint64_t& key : keys) made->insert(key);
  return made;
}

template <class Set>
void insert(benchmark::State& state) {
  std::size_t size = 0;
  for (auto _ : state) {
    std::unique_ptr<Set> set = filled<Set>();
    state.PauseTiming();
    size = set->size();
    set.reset();
    state.ResumeTiming();
  }
  qvBench::setResult(state, size);
}

template <class Set>
void hit(benchmark::State& state) {
  const std::unique_ptr<Set> set = filled<Set>();
  std::size_t hits = 0;
  for (auto _ : state) {
    hits = 0;
    for (const std::uint64_t& key : shuffled) hits += set->contains(key);
  }
  qvBench::setResult(state, hits);
}

template <class Set>
void erase(benchmark::State& state) {
  std::size_t erased = 0;
  for (auto _ : state) {
    state.PauseTiming();
    std::unique_ptr<Set> set = filled<Set>();
    state.ResumeTiming();
    erased = 0;
    for (const std::uint64_t& key : shuffled) erased += set->erase(key);
    state.PauseTiming();
    erased -= set->size();
    set.reset();
    state.ResumeTiming();
  }
  qvBench::setResult(state, erased);
}

#define BENCH_SET(Set)                                                                                       \
  BENCHMARK(insert<Set>)->Name("hash insert/" #Set)->Unit(benchmark::kMillisecond);                          \
  BENCHMARK(hit<Set>)->Name("hash hit/" #Set)->Unit(benchmark::kMillisecond);                                \
  BENCHMARK(erase<Set>)->Name("hash erase/" #Set)->Unit(benchmark::kMillisecond)

BENCH_SET(Base);
#ifdef BENCH_GHashTable
BENCH_SET(GHashTable);
BENCH_SET(GHashTableDirect);
#endif

} // namespace
