// Tasks, algorithms and the sort on two workers, beside oneTBB on two threads and the standard sort. Times
// are those on the clock, since a thread that sleeps costs none of the processor's.
#include "Base/Thread/qvThreadPool.h"
#include "Base/Thread/qvThreadTaskQueue.h"
#include "Base/Utility/qvUtilParallelSort.h"
#include "Base/Utility/qvUtilThreadedTask.h"
#include "bench/qvBench.h"

#include <algorithm>
#include <chrono>
#include <numeric>
#include <vector>

#ifdef BENCH_OneTBB
#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/parallel_for.h>
#include <oneapi/tbb/parallel_sort.h>
#include <oneapi/tbb/task_group.h>
#endif

namespace {

using qvUtil::IntRange2d;
using qvUtil::ThreadPool;

constexpr int threads = 2;

/// A pool that is installed while it lives.
class Installed {
public:
  Installed() { ThreadPool::install(&pool_); }

private:
  qvThread::Pool pool_{threads};
};

// ---- tasks, each of which only shows that it ran ----

constexpr int taskCount = 1'000'000;

template <class Run>
void measureTasks(benchmark::State& state, Run run) {
  std::vector<char> ran(taskCount);
  for (auto _ : state) {
    std::fill(ran.begin(), ran.end(), 0);
    run(ran.data());
  }
  qvBench::setResult(state, std::accumulate(ran.begin(), ran.end(), std::uint64_t{0}));
}

void baseTasks(benchmark::State& state, qvUtil::ThreadedTaskQueue& queue) {
  class Task final : public qvUtil::ThreadedTask {
  public:
    explicit Task(char& ran) : ran_(ran) {}
    void execute(int) override { ran_ = 1; }

  private:
    char& ran_;
  };
  measureTasks(state, [&](char* ran) {
    queue.acquire();
    for (int i = 0; i < taskCount; ++i) queue.submit(new Task(ran[i]));
    queue.release();
  });
}

void baseTasksInCaller(benchmark::State& state) {
  baseTasks(state, *qvUtil::ThreadedTaskQueue::getSingleThreaded());
}

void baseTasksOnWorkers(benchmark::State& state) {
  const Installed installed;
  qvThread::TaskQueue queue;
  baseTasks(state, queue);
}

// ---- algorithms ----

/// Keeps the processor busy.
void work(std::chrono::microseconds time) {
  const auto end = std::chrono::steady_clock::now() + time;
  while (time.count() && std::chrono::steady_clock::now() < end) {
  }
}

template <class Launch>
void measureLaunches(benchmark::State& state, Launch launch) {
  std::uint64_t calls[threads * 64] = {}; // a cache line for each thread
  std::uint64_t launches = 0;
  for (auto _ : state) {
    launch([&](int part) { ++calls[part * 64]; });
    ++launches;
  }
  qvBench::setResult(state, (calls[0] + calls[64]) / launches);
}

void baseLaunch(benchmark::State& state, std::chrono::microseconds time) {
  const Installed installed;
  measureLaunches(state, [&](auto count) {
    class Alg final : public qvUtil::ThreadedAlg {
    public:
      Alg(decltype(count)& counter, std::chrono::microseconds workTime) : count_(counter), time_(workTime) {}
      void execute(int index, int) override {
        count_(index);
        work(time_);
      }

    private:
      decltype(count)& count_;
      std::chrono::microseconds time_;
    };
    Alg alg(count, time);
    ThreadPool::get()->execute(alg);
  });
}

// ---- the sort ----

bool isLess(const IntRange2d& a, const IntRange2d& b) { return a.xMin < b.xMin; }

template <class Sort>
void measureSort(benchmark::State& state, Sort sort) {
  constexpr std::size_t count = 10'000'000;
  std::vector<IntRange2d> ranges(count);
  const std::vector<std::uint64_t> random = qvBench::randomNumbers(count, 1);
  for (std::size_t i = 0; i < count; ++i) ranges[i].xMin = static_cast<std::int32_t>(random[i]);
  std::uint64_t sum = 0;
  for (auto _ : state) sort(ranges, sum);
  qvBench::setResult(state, sum);
}

template <class Indexes>
std::uint64_t orderOf(const std::vector<IntRange2d>& ranges, const Indexes& indexes) {
  std::uint64_t sum = 0; // over what was compared: equal elements come in any order
  for (std::size_t i = 0; i < ranges.size(); i += 1000)
    sum = qvBench::mixed(sum, static_cast<std::uint64_t>(ranges[static_cast<std::size_t>(indexes[i])].xMin));
  return sum;
}

void baseSort(benchmark::State& state) {
  const Installed installed;
  measureSort(state, [](const std::vector<IntRange2d>& ranges, std::uint64_t& sum) {
    qvUtil::Ordering ordering;
    sortOrdering(ordering, ranges.data(), ranges.size(), isLess);
    sum = orderOf(ranges, ordering.get());
  });
}

template <class Sort>
void peerSort(benchmark::State& state, Sort sort) {
  measureSort(state, [&](const std::vector<IntRange2d>& ranges, std::uint64_t& sum) {
    std::vector<std::int32_t> indexes(ranges.size());
    std::iota(indexes.begin(), indexes.end(), 0);
    sort(indexes, qvUtil::IndexedBinaryPredicate<IntRange2d>(ranges.data(), isLess));
    sum = orderOf(ranges, indexes);
  });
}

void standardSort(benchmark::State& state) {
  peerSort(state, [](auto& indexes, const auto& less) { std::sort(indexes.begin(), indexes.end(), less); });
}

BENCHMARK(baseTasksInCaller)->Name("tasks in the caller/Base")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(baseTasksOnWorkers)->Name("tasks on workers/Base")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(baseLaunch, 0, std::chrono::microseconds(0))->Name("launch empty/Base")->UseRealTime();
BENCHMARK_CAPTURE(baseLaunch, 20, std::chrono::microseconds(20))->Name("launch 20 us/Base")->UseRealTime();
BENCHMARK(baseSort)->Name("sort indexes/Base")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(standardSort)->Name("sort indexes/std")->UseRealTime()->Unit(benchmark::kMillisecond);

#ifdef BENCH_OneTBB

using oneapi::tbb::global_control;

void tbbTasks(benchmark::State& state) {
  const global_control limit(global_control::max_allowed_parallelism, threads);
  measureTasks(state, [](char* ran) {
    oneapi::tbb::task_group group;
    for (int i = 0; i < taskCount; ++i) group.run([ran, i] { ran[i] = 1; });
    group.wait();
  });
}

void tbbLaunch(benchmark::State& state, std::chrono::microseconds time) {
  const global_control limit(global_control::max_allowed_parallelism, threads);
  measureLaunches(state, [&](auto count) {
    const auto part = [&](int index) {
      count(index);
      work(time);
    };
    oneapi::tbb::parallel_for(0, threads, part, oneapi::tbb::simple_partitioner());
  });
}

void tbbSort(benchmark::State& state) {
  const global_control limit(global_control::max_allowed_parallelism, threads);
  peerSort(state, [](auto& indexes, const auto& less) {
    oneapi::tbb::parallel_sort(indexes.begin(), indexes.end(), less);
  });
}

BENCHMARK(tbbTasks)->Name("tasks in the caller/OneTBB")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(tbbTasks)->Name("tasks on workers/OneTBB")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(tbbLaunch, 0, std::chrono::microseconds(0))->Name("launch empty/OneTBB")->UseRealTime();
BENCHMARK_CAPTURE(tbbLaunch, 20, std::chrono::microseconds(20))->Name("launch 20 us/OneTBB")->UseRealTime();
BENCHMARK(tbbSort)->Name("sort indexes/OneTBB")->UseRealTime()->Unit(benchmark::kMillisecond);

#endif

} // namespace
