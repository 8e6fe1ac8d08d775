#include "Base/Thread/qvThreadPool.h"

#include "Base/Thread/qvThreadTaskQueue.h"
#include "Base/Utility/qvUtilError.h"
#include "Base/Utility/qvUtilThreadedAlg.h"
#include "qvThreadTestPools.h"
#include "testing/qvTestPlatform.h"
#include "testing/qvTestStrings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <set>
#include <stdexcept>
#include <vector>

using namespace qvThread;
using qvUtil::ThreadPool;

namespace {

std::thread::id self() { return std::this_thread::get_id(); }

/// Notes which thread had which index. `Base` is one of the two kinds of algorithms.
template <class Base>
class Noting : public Base {
public:
  void initialize(int numThreads) override {
    EXPECT_EQ(self(), owner);
    EXPECT_EQ(ThreadPool::get(), ThreadPool::getSingleThreadedPool());
    threads.assign(static_cast<std::size_t>(numThreads), {});
    calls = std::vector<std::atomic<int>>(static_cast<std::size_t>(numThreads));
    finalized = false;
  }
  void finalize() override {
    EXPECT_EQ(self(), owner);
    EXPECT_EQ(ThreadPool::get(), ThreadPool::getSingleThreadedPool());
    finalized = true;
  }
  void note(int index, int numThreads) {
    EXPECT_FALSE(finalized);
    EXPECT_EQ(numThreads, int(threads.size()));
    EXPECT_EQ(ThreadPool::get(), ThreadPool::getSingleThreadedPool());
    threads.at(static_cast<std::size_t>(index)) = self();
    ++calls.at(static_cast<std::size_t>(index));
  }

  std::thread::id owner = self();
  std::vector<std::thread::id> threads;
  std::vector<std::atomic<int>> calls;
  bool finalized = false;
};

class Once : public Noting<qvUtil::ThreadedAlg> {
public:
  void execute(int index, int numThreads) override { note(index, numThreads); }
};

class Chunks : public Noting<qvUtil::ThreadedChunkAlg> {
public:
  void execute(int chunk, int index, int numThreads) override {
    note(index, numThreads);
    taken[static_cast<std::size_t>(chunk)] = 1 + taken.at(static_cast<std::size_t>(chunk));
    if (chunk % 8 == 0) std::this_thread::yield();
  }
  std::vector<int> taken; // each is one thread's, or a race
};

TEST(ThreadPool, RunsAnAlgorithmOnceInTheCallerAndInAllWorkersButTheLast) {
  qvTest::forEachPool([](Pool& pool) {
    Once alg;
    std::vector<std::thread::id> before;
    for (int round = 0; round < 3; ++round) {
      pool.execute(alg);
      EXPECT_EQ(ThreadPool::get(), &pool);
      EXPECT_TRUE(alg.finalized);
      EXPECT_EQ(int(alg.threads.size()), pool.numThreads());
      EXPECT_EQ(alg.threads[0], self());
      EXPECT_TRUE(std::all_of(alg.calls.begin(), alg.calls.end(), [](int calls) { return calls == 1; }));
      EXPECT_EQ(std::set(alg.threads.begin(), alg.threads.end()).size(), alg.threads.size());
      EXPECT_TRUE(round == 0 || alg.threads == before); // a worker keeps its number
      before = alg.threads;
    }
  });
}

TEST(ThreadPool, DealsEachChunkOnce) {
  qvTest::forEachPool([](Pool& pool) {
    for (const int chunks : {0, -1, 1, 100}) {
      Chunks alg;
      EXPECT_EQ(alg.getNumChunks(), 100);
      alg.setNumChunks(chunks);
      alg.taken.resize(static_cast<std::size_t>(std::max(chunks, 0)));
      pool.execute(alg);
      EXPECT_TRUE(alg.finalized);
      EXPECT_TRUE(std::all_of(alg.taken.begin(), alg.taken.end(), [](int times) { return times == 1; }));
    }
  });
}

TEST(ThreadPool, TellsAllThreadsOfACancellation) {
  class Endless : public qvUtil::ThreadedAlg {
  public:
    void execute(int index, int) override {
      while (!cancelled(index)) {
        updateProgress(index, 0.5);
        std::this_thread::yield();
      }
      EXPECT_EQ(getProgress(index) != nullptr, index == 0);
    }
  };
  qvTest::forEachPool([](Pool& pool) {
    Endless alg;
    qvTest::Impatient progress(2);
    alg.setProgress(&progress);
    pool.execute(alg);
    EXPECT_EQ(progress.last, 0.5);
    EXPECT_TRUE(Endless(alg).cancelled(1)); // a copy knows as well
  });
}

TEST(ThreadPool, ServesOnWhenTheCallersPartThrows) {
  class Throwing : public Once {
  public:
    void initialize(int numThreads) override {
      Once::initialize(numThreads);
      if (early) throw std::runtime_error("initialize");
    }
    void execute(int index, int numThreads) override {
      note(index, numThreads);
      if (index == 0) throw std::runtime_error("execute");
    }
    bool early = false;
  };
  Pool pool(3);
  for (const bool early : {true, false}) {
    Throwing alg;
    alg.early = early;
    EXPECT_THROW(pool.execute(alg), std::runtime_error);
    EXPECT_EQ(ThreadPool::get(), &pool);
    EXPECT_EQ(alg.calls[2], early ? 0 : 1);
    Once next;
    pool.execute(next);
    EXPECT_EQ(next.calls[2], 1);
  }
}

TEST(ThreadPool, ThrowsWhatKeptAThreadFromStarting) {
  for (const char* const call : {"createThread", "createSemaphore", "createEvent", "createMutex"}) {
    SCOPED_TRACE(call);
    int thrown = 0;
    const auto make = [&] {
      try {
        const Pool pool(3);
      } catch (const qvUtil::Error& error) {
        ++thrown;
        EXPECT_EQ(error.num(), 1);
      }
    };
    const int failed = qvTest::failEveryCall(
        EAGAIN, call, [] {}, make, [] {});
    EXPECT_EQ(thrown, failed);
    EXPECT_GT(failed, 0);
  }
  const Pool none(-1);
  EXPECT_EQ(none.numThreads(), 1);
}

TEST(ThreadPool, SleepsWhileItHasNothingToDo) {
  Pool pool(8);
  ThreadPool::install(&pool);
  TaskQueue queue;
  // Something else may run now and then, and all take a while to go to sleep.
  const auto sleeps = [] {
    for (int attempt = 0; attempt < 20; ++attempt) {
      const double before = qvTest::processorSeconds();
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
      if (qvTest::processorSeconds() - before < 0.0005) return true;
    }
    return false;
  };
  EXPECT_TRUE(sleeps());
  queue.acquire();
  EXPECT_TRUE(sleeps());
  queue.release();
}

} // namespace
