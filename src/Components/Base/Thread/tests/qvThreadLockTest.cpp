#include "Base/Thread/qvThreadMutex.h"
#include "Base/Thread/qvThreadRWLock.h"
#include "Base/Thread/qvThreadSemaphore.h"
#include "Base/Utility/qvUtilError.h"
#include "testing/qvTestYield.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

using qvTest::eventually;
using qvThread::Mutex;
using qvThread::MutexOp;
using qvThread::RWLock;
using qvThread::RWLockOp;
using qvThread::Semaphore;

template <class Work>
void inThreads(int threads, Work work) {
  std::vector<std::jthread> running;
  for (int i = 0; i < threads; ++i) running.emplace_back([&, i] { work(i); });
}

/// A thread that takes the mutex, and tells when it has.
class Taker {
public:
  explicit Taker(Mutex& mutex)
      : thread_([this, &mutex] {
          MutexOp op(mutex, true);
          op.lock();
          took_ = true;
        }) {}

  /// Whether it has to wait, as far as a short while can tell.
  bool waits() {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    return !took_;
  }
  bool takes() {
    return eventually([&] { return took_.load(); });
  }

private:
  std::atomic<bool> took_{false};
  std::jthread thread_;
};

class EitherMutex : public testing::TestWithParam<bool> {};
INSTANTIATE_TEST_SUITE_P(Kinds, EitherMutex, testing::Values(true, false));

TEST_P(EitherMutex, LetsOneThreadInAtATime) {
  const qvTest::Yields yields(11);
  Mutex mutex(GetParam());
  int count = 0;
  inThreads(4, [&](int) {
    for (int i = 0; i < 200; ++i) {
      MutexOp outer(mutex, true), inner(mutex, true);
      outer.lock();
      inner.lock();
      ++count;
      if (i % 2) inner.unlock();
    }
  });
  EXPECT_EQ(count, 800);
}

TEST_P(EitherMutex, IsGivenUpLevelByLevelAndByItsOwnerOnly) {
  Mutex mutex(GetParam());
  MutexOp op(mutex, true);
  op.lock();
  op.lock();
  Taker taker(mutex);
  op.unlock();
  std::jthread([&] { MutexOp(mutex, true).unlock(); }).join();
  EXPECT_TRUE(taker.waits());
  op.unlock();
  EXPECT_TRUE(taker.takes());
  op.unlock(); // one too many
  EXPECT_TRUE(Taker(mutex).takes());
}

TEST(ThreadMutexOp, UnlocksOnlyWhatItIsToldTo) {
  Mutex mutex;
  {
    MutexOp op(mutex, false);
    op.lock();
  }
  Taker taker(mutex);
  EXPECT_TRUE(taker.waits());
  MutexOp(mutex, true).unlock();
  EXPECT_TRUE(taker.takes());
  {
    MutexOp op(mutex, true);
    op.lock();
  }
  EXPECT_TRUE(Taker(mutex).takes());
}

TEST(ThreadRWLock, HoldsManyReadersOrOneWriter) {
  RWLock lock;
  RWLockOp first(lock), writer(lock, true);
  first.unlock(); // holds nothing
  first.read();
  EXPECT_EQ(lock.numberOfReaders(), 1);

  std::atomic<bool> wrote{false};
  std::jthread writing([&] {
    RWLockOp op(lock, false);
    op.write();
    wrote = true;
  }); // is released by its destructor, whatever it was told
  std::this_thread::sleep_for(std::chrono::milliseconds(2));
  {
    RWLockOp second(lock, false);
    second.read(); // though a writer waits
    EXPECT_EQ(lock.numberOfReaders(), 2);
    EXPECT_FALSE(lock.hasWriter());
    second.unlock();
    second.unlock();
    EXPECT_EQ(lock.numberOfReaders(), 1);
  }
  EXPECT_FALSE(wrote);
  first.unlock();
  writing.join();
  EXPECT_TRUE(wrote);
  writer.write();
  EXPECT_TRUE(lock.hasWriter());
  writer.unlock();
  EXPECT_FALSE(lock.hasWriter());
  EXPECT_EQ(lock.numberOfReaders(), 0);
}

TEST(ThreadRWLock, ShowsReadersWholeWrites) {
  const qvTest::Yields yields(12);
  RWLock lock;
  int written = 0, again = 0;
  inThreads(4, [&](int index) {
    for (int i = 0; i < 50; ++i) {
      RWLockOp op(lock);
      if ((i + index) % 3) {
        op.read();
        EXPECT_EQ(written, again);
      } else {
        op.write();
        ++written;
        std::this_thread::yield();
        again = written;
      }
    }
  });
  EXPECT_EQ(again, 17 + 16 + 17 + 17);
}

TEST(ThreadSemaphore, IsACountUpToItsMaximum) {
  Semaphore semaphore(2), none, full(Semaphore::maxValue());
  EXPECT_TRUE(semaphore.tryWait());
  semaphore.wait();
  EXPECT_FALSE(semaphore.tryWait());
  semaphore.post();
  EXPECT_TRUE(semaphore.tryWait());
  EXPECT_FALSE(none.tryWait());
  full.post(); // adds nothing
  EXPECT_TRUE(full.tryWait());
  EXPECT_THROW(Semaphore{Semaphore::maxValue() + 1}, qvUtil::Error);
}

TEST(ThreadSemaphore, GivesEachPostToOneWaiter) {
  const qvTest::Yields yields(13);
  Semaphore items, room(3);
  std::atomic<int> inside{0}, taken{0};
  inThreads(6, [&](int index) {
    for (int i = 0; i < 60; ++i) {
      Semaphore& waited = index % 2 ? items : room;
      if (i % 5)
        waited.wait();
      else
        while (!waited.tryWait()) std::this_thread::yield();
      if (index % 2) {
        EXPECT_GE(--inside, 0);
        ++taken;
        room.post();
      } else {
        EXPECT_LE(++inside, 3);
        items.post();
      }
    }
  });
  EXPECT_EQ(taken, 180);
  EXPECT_FALSE(items.tryWait());
}

} // namespace
