#include "Base/Thread/qvThreadCondition.h"

#include "Base/Thread/qvThreadBarrier.h"
#include "Base/Thread/qvThreadMutex.h"
#include "Base/Thread/qvThreadWaitTime.h"
#include "testing/qvTestYield.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <deque>
#include <memory>
#include <thread>
#include <vector>

namespace {

using qvTest::eventually;
using qvThread::Barrier;
using qvThread::Condition;
using qvThread::MutexOp;
using qvUtil::Interval;
using Clock = std::chrono::steady_clock;

/// Holds the first so many threads that come to a place, until it is opened.
class Gate {
public:
  Gate(const char* place, int threads)
      : threads_(threads), listener_([this, place](std::string_view here) {
          if (here != place || held_ == threads_) return;
          ++held_;
          EXPECT_TRUE(eventually([&] { return open_.load(); }));
        }) {}

  bool holdsAll() {
    return eventually([&] { return held_ == threads_; });
  }
  void open() { open_ = true; }

private:
  const int threads_;
  std::atomic<int> held_{0};
  std::atomic<bool> open_{false};
  qvTest::ScheduleListener listener_;
};

/// Threads that wait once each, with no loop around it.
class Waiters {
public:
  ~Waiters() { EXPECT_EQ(awake, started_); }

  void add(Condition& condition, Interval limit = Interval()) {
    threads_.emplace_back([this, &condition, limit] {
      MutexOp op(condition.getMutex(), true);
      op.lock();
      ++waiting;
      condition.wait(limit);
      ++awake;
    });
    ++started_;
    // Who waits has given up the mutex, so that it can be had.
    EXPECT_TRUE(eventually([&] { return waiting == started_; }));
  }
  bool areAwake(int count) {
    return eventually([&] { return awake == count; });
  }

  std::atomic<int> waiting{0}, awake{0};

private:
  int started_ = 0;
  std::vector<std::jthread> threads_;
};

void locked(Condition& condition, void (Condition::*action)()) {
  MutexOp op(condition.getMutex(), true);
  op.lock();
  (condition.*action)();
}

void pause() { std::this_thread::sleep_for(std::chrono::milliseconds(3)); }

TEST(ThreadCondition, TakesLimitsInWholeMilliseconds) {
  const struct {
    int line;
    const char* limit;
    std::uint32_t milliseconds;
  } rows[] = {
      {__LINE__, "0s", 0xffffffff},
      {__LINE__, "1us", 0},
      {__LINE__, "500us", 0},
      {__LINE__, "999us", 0},
      {__LINE__, "1000us", 1},
      {__LINE__, "2001500us", 2001},
      {__LINE__, "4294967s", 4294967000},
      {__LINE__, "4294968s", 0xfffffffe},
      {__LINE__, "3000000000s", 0}, // wraps below zero
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    EXPECT_EQ(qvThread::waitTime(row.limit), row.milliseconds);
  }
}

TEST(ThreadCondition, WaitsForItsLimitAndGivesUpOneLevelOfItsMutex) {
  Condition condition;
  locked(condition, &Condition::signal); // nobody waits: nothing is kept for later
  locked(condition, &Condition::broadcast);
  MutexOp outer(condition.getMutex(), true), inner(condition.getMutex(), true);
  outer.lock();
  inner.lock();
  std::atomic<bool> took{false};
  std::jthread other([&] {
    locked(condition, &Condition::signal);
    took = true;
  });
  const auto start = Clock::now();
  condition.wait(Interval("4ms"));
  EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(4));
  condition.wait(Interval("500us")); // only polls
  EXPECT_FALSE(took);
  inner.unlock();
  EXPECT_TRUE(eventually([&] {
    condition.wait(Interval("1ms"));
    return took.load();
  }));
  outer.unlock();
}

TEST(ThreadCondition, WakesOneBySignalAndAllByBroadcast) {
  Condition condition;
  Waiters waiters;
  for (int i = 0; i < 4; ++i) waiters.add(condition);
  locked(condition, &Condition::signal);
  EXPECT_TRUE(waiters.areAwake(1));
  pause();
  EXPECT_EQ(waiters.awake, 1);
  locked(condition, &Condition::broadcast);
  EXPECT_TRUE(waiters.areAwake(4));
}

TEST(ThreadCondition, KeepsASignalForWhoIsCountedAndDoesNotSleepYet) {
  Condition condition;
  Gate gate("Condition::wait counted", 1);
  Waiters waiters;
  waiters.add(condition);
  ASSERT_TRUE(gate.holdsAll());
  condition.signal();
  gate.open();
  EXPECT_TRUE(waiters.areAwake(1));
}

TEST(ThreadCondition, BroadcastWaitsForItsOwnWaitersAndWakesNoOther) {
  Condition condition;
  std::atomic<bool> broadcastDone{false}, signalDone{false};
  Gate gate("Condition::wait awake", 2);
  Waiters early, late;
  early.add(condition);
  early.add(condition);
  {
    MutexOp op(condition.getMutex(), true);
    op.lock(); // once the last of the two sleeps
  }
  std::jthread broadcasting([&] {
    condition.broadcast();
    broadcastDone = true;
  });
  ASSERT_TRUE(gate.holdsAll());
  late.add(condition);
  std::jthread signalling([&] {
    MutexOp op(condition.getMutex(), true);
    op.lock(); // once the late one sleeps
    op.unlock();
    condition.signal();
    signalDone = true;
  });
  pause();
  EXPECT_FALSE(broadcastDone);
  EXPECT_FALSE(signalDone);
  EXPECT_EQ(late.awake, 0);
  gate.open();
  broadcasting.join();
  EXPECT_TRUE(early.areAwake(2));
  EXPECT_TRUE(late.areAwake(1)); // by the signal
}

TEST(ThreadCondition, BroadcastCountsNoneWhoseLimitRunsOutMeanwhile) {
  Condition condition;
  std::atomic<bool> broadcastDone{false};
  Gate gate("Condition::wait awake", 1);
  Waiters early, late;
  early.add(condition, Interval("1ms"));
  ASSERT_TRUE(gate.holdsAll()); // its limit is over, and it is counted still
  std::jthread broadcasting([&] {
    condition.broadcast();
    broadcastDone = true;
  });
  pause();
  late.add(condition, Interval("1ms"));
  EXPECT_TRUE(late.areAwake(1));
  pause();
  EXPECT_FALSE(broadcastDone);
  gate.open();
  broadcasting.join();
  EXPECT_TRUE(early.areAwake(1));
  locked(condition, &Condition::broadcast); // nobody is counted any more, or this would never end
}

/// Three threads fill a short queue and three empty it, with waits of every kind.
void runQueue(int each, std::uint64_t seed) {
  const qvTest::Yields yields(seed);
  Condition condition;
  std::deque<int> queue;
  std::atomic<int> sum{0};
  const auto take = [&](int index) {
    for (int i = 0; i < each; ++i) {
      MutexOp op(condition.getMutex(), true);
      op.lock();
      while (index % 2 ? queue.empty() : queue.size() > 2)
        condition.wait(i % 3 ? Interval() : Interval(i % 2 ? "1ms" : "1us"));
      if (index % 2) {
        sum += queue.front();
        queue.pop_front();
      } else {
        queue.push_back(i);
      }
      condition.broadcast();
      op.unlock();
      if (i % 4 == 0) condition.signal(); // in vain, and without the mutex
      if (i % 7 == 0) condition.broadcast();
    }
  };
  {
    std::vector<std::jthread> threads;
    for (int index = 0; index < 6; ++index) threads.emplace_back(take, index);
  }
  EXPECT_TRUE(queue.empty());
  EXPECT_EQ(sum, 3 * each * (each - 1) / 2);
}

TEST(ThreadCondition, HandsEverythingOver) { runQueue(20, 21); }
TEST(ThreadCondition, HeavyHandsEverythingOver) { runQueue(2000, 22); }

TEST(ThreadBarrier, LetsGroupsThroughAgainAndAgain) {
  const qvTest::Yields yields(23);
  constexpr int rounds = 30, total = 3;
  Barrier barrier(total), alone(1);
  int arrived[rounds][total] = {};
  const auto work = [&](int index) {
    for (int round = 0; round < rounds; ++round) {
      alone.wait();
      arrived[round][index] = 1; // plain: the barrier orders it
      barrier.wait();
      EXPECT_EQ(std::count(arrived[round], arrived[round] + total, 1), total);
    }
  };
  std::vector<std::jthread> threads;
  for (int index = 0; index < total; ++index) threads.emplace_back(work, index);
}

TEST(ThreadBarrier, MayBeDestroyedWhileThreadsAreInside) {
  constexpr int total = 3;
  for (int round = 0; round < 10; ++round) {
    auto barrier = std::make_unique<Barrier>(total);
    Gate gate("Barrier::wait", total); // where each has taken its reference
    std::vector<std::jthread> threads;
    for (int i = 0; i < total; ++i) threads.emplace_back([inside = barrier.get()] { inside->wait(); });
    ASSERT_TRUE(gate.holdsAll());
    barrier.reset();
    gate.open();
  }
}

} // namespace
