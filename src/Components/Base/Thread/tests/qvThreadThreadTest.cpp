#include "Base/Thread/qvThreadThread.h"

#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformThread.h"
#include "Base/Thread/qvThreadAtomic.h"
#include "Base/Thread/qvThreadCondition.h"
#include "Base/Thread/qvThreadKey.h"
#include "Base/Thread/qvThreadMutex.h"
#include "Base/Thread/qvThreadReferenceCount.h"
#include "Base/Thread/qvThreadSemaphore.h"
#include "Base/Utility/qvReferenceCount.h"
#include "testing/qvTestPlatform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

namespace {

using qvThread::Condition;
using qvThread::Mutex;
using qvThread::Semaphore;
using qvThread::Thread;
using qvUtil::Error;

const Error stopped(2, "cannot wait for a stopped thread");

void post(void* semaphore) { static_cast<Semaphore*>(semaphore)->post(); }

TEST(Thread, CallsItsFunctionAndIsWaitedForOnce) {
  int value = 0;
  const auto increment = [](void* arg) { ++*static_cast<int*>(arg); };
  Thread thread(increment, nullptr);
  thread.setArg(&value);
  EXPECT_EQ(thread.getSignal(), nullptr);
  EXPECT_EQ(thread.wait(), stopped);
  for (int run = 1; run <= 2; ++run) {
    EXPECT_FALSE(thread.start());
    EXPECT_FALSE(thread.wait());
    EXPECT_EQ(value, run);
    EXPECT_EQ(thread.wait(), stopped);
  }
}

TEST(Thread, EmitsItsSignalThereAndThenDestroysIt) {
  std::vector<int> calls;
  std::vector<std::thread::id> destroyed;
  std::thread::id id;
  Thread thread;
  const auto destroy = [&](int*) { destroyed.push_back(std::this_thread::get_id()); };
  thread.getSignal()->connect([&, token = std::shared_ptr<int>(nullptr, destroy)] { calls.push_back(1); });
  thread.getSignal()->connect([&] {
    calls.push_back(2);
    id = std::this_thread::get_id();
  });
  EXPECT_FALSE(thread.start());
  EXPECT_EQ(thread.getSignal(), nullptr);
  EXPECT_FALSE(thread.wait());
  EXPECT_EQ(calls, (std::vector{2, 1})); // the newest first
  EXPECT_EQ(destroyed, std::vector{id});
  EXPECT_NE(id, std::this_thread::get_id());
  EXPECT_FALSE(thread.start()); // has nothing left to do
  EXPECT_FALSE(thread.wait());
}

TEST(Thread, IsSharedWithItsCopiesAndOwnedByNone) {
  Semaphore ran;
  Thread thread(post, &ran);
  {
    Thread copy(thread);
    EXPECT_FALSE(copy.start());
  }
  ran.wait();
  Thread other(thread);
  EXPECT_FALSE(other.wait());
  EXPECT_EQ(thread.wait(), stopped);
}

TEST(Thread, GoesOnAloneWhenItsObjectIsDestroyedOrStartsAgain) {
  Semaphore ran;
  {
    Thread thread(post, &ran);
    EXPECT_FALSE(thread.start());
    EXPECT_FALSE(thread.start());
  }
  EXPECT_TRUE(qvThread_CreateThread(post, &ran));
  for (int i = 0; i < 3; ++i) ran.wait();
}

// Nothing of a detached thread stays behind, or the system would run out of them.
TEST(Thread, HeavyLeavesNothingBehindWhenDetached) {
  Semaphore ran;
  for (int i = 0; i < 10000; ++i) {
    {
      Thread thread;
      thread.getSignal()->connect([&] { ran.post(); });
      ASSERT_FALSE(thread.start()) << i;
    }
    ran.wait();
  }
}

TEST(Thread, CannotWaitForItself) {
  Semaphore started, ended;
  Error result;
  Thread thread;
  thread.getSignal()->connect([&] {
    started.wait();
    result = thread.wait();
    ended.post();
  });
  ASSERT_FALSE(thread.start());
  started.post();
  ended.wait();
  EXPECT_EQ(result.num(), 1);
  EXPECT_EQ(std::string(result.message()).rfind("WaitForSingleObject() failed: ", 0), 0u);
  EXPECT_EQ(thread.wait(), stopped);
}

TEST(ThreadFailures, TellTheSystemsText) {
  const int number = qvPlatform::errorNumber(qvPlatform::ErrorKind::denied);
  const std::string text = qvPlatform::systemErrorText(number);
  const std::string condition = "Cannot initialize condition: Unable to create                     ";
  const auto makeMutex = [] { Mutex mutex(false); };
  const auto makeCondition = [] { Condition made; };
  const auto makeSemaphore = [] { Semaphore semaphore(1); };
  const auto runThread = [] {
    Thread thread;
    thread.getSignal()->connect([] {});
    if (Error error = thread.start()) throw error;
    if (Error error = thread.wait()) throw error;
    EXPECT_EQ(thread.wait(), stopped);
  };
  const struct {
    int line;
    const char* call;
    std::function<void()> operation;
    std::string message;
  } rows[] = {
      {__LINE__, "createMutex", makeMutex, text},
      {__LINE__, "createSemaphore", makeSemaphore, text},
      {__LINE__, "closeSemaphore", makeSemaphore, text},
      {__LINE__, "createMutex", makeCondition, text},
      {__LINE__, "createSemaphore", makeCondition, condition + "semaphore: " + text},
      {__LINE__, "createEvent", makeCondition, condition + "an generic NT synchro event: " + text},
      {__LINE__, "closeSemaphore", makeCondition, text},
      {__LINE__, "closeEvent", makeCondition, text},
      {__LINE__, "createThread", runThread,
       "_beginthread() failed: " + qvPlatform::startThreadErrorText(number)},
      {__LINE__, "joinThread", runThread, "WaitForSingleObject() failed: " + text + "\n"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    qvTest::PlatformScript script;
    script.failCall(0, number, row.call);
    try {
      row.operation();
      ADD_FAILURE() << "nothing failed";
    } catch (const Error& error) {
      EXPECT_EQ(error.num(), 1);
      EXPECT_EQ(error.message(), row.message);
    }
  }
  qvTest::PlatformScript script;
  script.failCall(0, number, "createThread");
  EXPECT_FALSE(qvThread_CreateThread(post, nullptr));
}

TEST(ThreadKey, HoldsAPointerForEachThread) {
  const unsigned key = qvThread::createThreadKey();
  int here = 0, there = 0;
  EXPECT_EQ(qvThread::getThreadSpecificValue(key), nullptr);
  EXPECT_TRUE(qvThread::setThreadSpecificValue(key, &here));
  std::jthread([&] {
    EXPECT_EQ(qvThread::getThreadSpecificValue(key), nullptr);
    EXPECT_TRUE(qvThread::setThreadSpecificValue(key, &there));
    EXPECT_EQ(qvThread::getThreadSpecificValue(key), &there);
  }).join();
  EXPECT_EQ(qvThread::getThreadSpecificValue(key), &here);
  EXPECT_TRUE(qvThread::freeThreadKey(key));
}

TEST(ThreadKey, EndsWithTheSystemsLimit) {
  std::vector<unsigned> keys;
  while (keys.size() < 100000 && (keys.empty() || keys.back() != qvThread::noThreadKey))
    keys.push_back(qvThread::createThreadKey());
  EXPECT_EQ(keys.back(), qvThread::noThreadKey);
  EXPECT_GT(keys.size(), 100u);
  EXPECT_FALSE(qvThread::setThreadSpecificValue(keys.back(), &keys));
  EXPECT_EQ(qvThread::getThreadSpecificValue(keys.back()), nullptr);
  for (const unsigned key : keys) EXPECT_EQ(qvThread::freeThreadKey(key), key != qvThread::noThreadKey);
}

TEST(ThreadReferenceCount, DeletesOnceAfterTheLastHolder) {
  struct Shared : qvThread::ReferenceCount {
    explicit Shared(int& count) : deleted(count) {}
    ~Shared() override { deleted += std::count(done, done + 4, true) == 4; }
    int& deleted;
    mutable bool done[4] = {}; // plain, like `deleted`: the count orders what holders did
  };
  for (int round = 0; round < 20; ++round) {
    int deleted = 0;
    std::vector<std::jthread> threads;
    qv::Reference<const Shared> first(new Shared(deleted));
    for (int i = 0; i < 4; ++i)
      threads.emplace_back([i, held = first]() mutable {
        for (int n = 0; n < 50; ++n) const qv::Reference<const Shared> other = held;
        held->done[i] = true;
        held.reset();
      });
    first.reset();
    threads.clear();
    EXPECT_EQ(deleted, 1);
  }
}

TEST(ThreadReferenceCount, IsNeverCopiedAndKeepsWhatNobodyHeld) {
  struct Counted : qvThread::ReferenceCount {
    ~Counted() override = default;
  } a;
  a.ref();
  const auto b = std::make_unique<Counted>(a);
  EXPECT_EQ(b->refs(), 0);
  *b = a;
  EXPECT_EQ(b->refs(), 0);
  b->unref(); // from 0: deletes nothing
  EXPECT_EQ(b->refs(), -1);
}

TEST(ThreadAtomic, CountsInOneStep) {
  int value = 0, wrapping = 0x7fffffff;
  std::vector<std::jthread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([&] {
      for (int n = 0; n < 100; ++n) qvThread::atomicIncrement(value);
      for (int n = 0; n < 40; ++n) qvThread::atomicDecrement(value);
    });
  threads.clear();
  EXPECT_EQ(qvThread::atomicDecrement(value), 239);
  EXPECT_EQ(qvThread::atomicIncrement(value), 240);
  EXPECT_EQ(qvThread::atomicIncrement(wrapping), -0x7fffffff - 1);
}

} // namespace
