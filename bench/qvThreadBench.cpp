// Locking and unlocking a mutex that nobody else wants, that the same thread holds already, and that two
// threads want, beside the standard library's recursive mutex; and handing over between two threads, beside
// its condition variable.
#include "Base/Thread/qvThreadCondition.h"
#include "Base/Thread/qvThreadMutex.h"
#include "bench/qvBench.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace {

/// A second thread that sleeps: a process of one thread locks for less, and needs no lock.
class SecondThread {
public:
  SecondThread() : thread_([this] { ended_.wait(false); }) {}
  ~SecondThread() {
    ended_ = true;
    ended_.notify_one();
    thread_.join();
  }

private:
  std::atomic<bool> ended_{false};
  std::thread thread_;
};

struct BaseLock {
  qvThread::Mutex mutex;
  template <class Action>
  void locked(Action action) {
    qvThread::MutexOp op(mutex, true);
    op.lock();
    action();
    op.unlock();
  }
};

struct StdLock {
  std::recursive_mutex mutex;
  template <class Action>
  void locked(Action action) {
    const std::lock_guard guard(mutex);
    action();
  }
};

template <class Lock>
void once(benchmark::State& state) {
  const SecondThread second;
  Lock lock;
  std::uint64_t count = 0, loops = 0;
  for (auto _ : state) {
    lock.locked([&] { benchmark::DoNotOptimize(++count); });
    ++loops;
  }
  qvBench::setResult(state, count - loops);
}

template <class Lock>
void nested(benchmark::State& state) {
  const SecondThread second;
  Lock lock;
  std::uint64_t count = 0, loops = 0;
  lock.locked([&] {
    for (auto _ : state) {
      lock.locked([&] { benchmark::DoNotOptimize(++count); });
      ++loops;
    }
  });
  qvBench::setResult(state, count - loops);
}

BENCHMARK(once<BaseLock>)->Name("mutex/Base");
BENCHMARK(once<StdLock>)->Name("mutex/std");
BENCHMARK(nested<BaseLock>)->Name("mutex held already/Base");
BENCHMARK(nested<StdLock>)->Name("mutex held already/std");

/// Two threads that each add to a sum under the lock.
template <class Lock>
void contended(benchmark::State& state) {
  constexpr std::uint64_t each = 20000;
  std::uint64_t result = 0;
  for (auto _ : state) {
    Lock lock;
    std::uint64_t sum = 0;
    const auto work = [&] {
      for (std::uint64_t i = 0; i < each; ++i) lock.locked([&] { benchmark::DoNotOptimize(++sum); });
    };
    std::thread other(work);
    work();
    other.join();
    result = sum;
  }
  qvBench::setResult(state, result);
}

BENCHMARK(contended<BaseLock>)->Name("mutex that two want/Base")->MeasureProcessCPUTime();
BENCHMARK(contended<StdLock>)->Name("mutex that two want/std")->MeasureProcessCPUTime();

struct BaseTurn {
  qvThread::Condition condition;
  int turn = 0;
  void pass(int from) {
    qvThread::MutexOp op(condition.getMutex(), true);
    op.lock();
    while (turn != from) condition.wait();
    turn = 1 - from;
    condition.signal();
    op.unlock();
  }
};

struct StdTurn {
  std::mutex mutex;
  std::condition_variable condition;
  int turn = 0;
  void pass(int from) {
    std::unique_lock lock(mutex);
    condition.wait(lock, [&] { return turn == from; });
    turn = 1 - from;
    condition.notify_one();
  }
};

template <class Turn>
void handOver(benchmark::State& state) {
  constexpr int rounds = 1000;
  Turn turns;
  for (auto _ : state) {
    std::thread other([&] {
      for (int i = 0; i < rounds; ++i) turns.pass(1);
    });
    for (int i = 0; i < rounds; ++i) turns.pass(0);
    other.join();
  }
  qvBench::setResult(state, static_cast<std::uint64_t>(turns.turn));
}

BENCHMARK(handOver<BaseTurn>)->Name("hand over/Base")->MeasureProcessCPUTime();
BENCHMARK(handOver<StdTurn>)->Name("hand over/std")->MeasureProcessCPUTime();

} // namespace
