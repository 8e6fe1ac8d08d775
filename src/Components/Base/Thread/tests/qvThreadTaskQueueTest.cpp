#include "Base/Thread/qvThreadTaskQueue.h"

#include "Base/Thread/qvThreadMutex.h"
#include "Base/Thread/qvThreadPoolImpl.h"
#include "Base/Thread/qvThreadTaskQueueImpl.h"
#include "qvThreadTestPools.h"
#include "testing/qvTestSeed.h"
#include "testing/qvTestYield.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace qvThread {

/// Looks into a queue from the thread that uses it.
struct QueueProbe {
  TaskNode* head() const { return queue.readyList_.head(); }
  int active() const { return queue.numActive_; }
  int outstanding() const { return queue.shared_.outstanding; }
  int done() const {
    MutexOp op(queue.shared_.condition.getMutex(), true);
    op.lock();
    return queue.shared_.done.count();
  }
  bool takePost() const { return queue.shared_.completionSemaphore.tryWait(); }
  void post() const { queue.shared_.completionSemaphore.post(); }

  QueueImpl& queue;
};

} // namespace qvThread

using namespace qvThread;
using qvUtil::ThreadedTask;
using qvUtil::ThreadedTaskQueue;
using qvUtil::ThreadPool;

namespace {

std::thread::id self() { return std::this_thread::get_id(); }

/// Calls `test(queue, isThreaded)` for each kind of queue.
template <class Test>
void forEachQueue(Test test) {
  test(*ThreadedTaskQueue::getSingleThreaded(), false);
  {
    SCOPED_TRACE("no pool");
    TaskQueue queue;
    test(queue, false);
  }
  qvTest::forEachPool([&](Pool& pool) {
    TaskQueue queue;
    test(queue, pool.getPoolImpl()->numThreads() > 0);
    EXPECT_EQ(ThreadPool::get(), &pool);
  });
}

/// What all trees of a test share.
struct Forest {
  Forest(std::uint64_t seed, ThreadedTaskQueue& user, bool isThreaded)
      : random(seed),
        queue(user),
        threaded(isThreaded),
        busy(static_cast<std::size_t>(user.getNumThreads())) {}

  void expectOwner() const { EXPECT_EQ(self(), owner); }

  qvTest::Random random;
  ThreadedTaskQueue& queue;
  bool threaded;
  std::vector<std::atomic<bool>> busy; // for each index, whether a task runs with it
  std::thread::id owner = self();
  int live = 0;
  std::atomic<int> executed{0};
};

/// A task with random children, which checks all that happens to it.
class Tree : public ThreadedTask {
public:
  Tree(Forest& forest, int depth, int* siblings = nullptr)
      : forest_(forest), siblings_(siblings), depth_(depth), before_(children()), after_(children()) {
    ++forest_.live;
    if (siblings_) ++*siblings_;
    setNoExecute(forest_.random.oneIn(5));
  }
  ~Tree() override {
    forest_.expectOwner();
    EXPECT_EQ(liveBefore_ + liveAfter_, 0);
    --forest_.live;
    if (siblings_) --*siblings_;
  }

  ThreadedTask* preExecute(int index) override {
    forest_.expectOwner();
    EXPECT_EQ(index, asked_++);
    EXPECT_FALSE(executed_);
    return index < before_ ? new Tree(forest_, depth_ - 1, &liveBefore_) : nullptr;
  }
  void execute(int index) override {
    EXPECT_EQ(self() != forest_.owner, forest_.threaded);
    EXPECT_FALSE(forest_.busy.at(static_cast<std::size_t>(index)).exchange(true));
    EXPECT_FALSE(executed_ || getNoExecute());
    EXPECT_EQ(liveBefore_, 0);
    EXPECT_TRUE(!forest_.threaded || ThreadPool::get() == ThreadPool::getSingleThreadedPool());
    executed_ = true;
    ++forest_.executed;
    forest_.busy[static_cast<std::size_t>(index)] = false;
  }
  ThreadedTask* postExecute(int index) override {
    forest_.expectOwner();
    EXPECT_EQ(index, askedAfter_++);
    EXPECT_TRUE(executed_ != getNoExecute());
    EXPECT_EQ(liveBefore_, 0);
    return index < after_ ? new Tree(forest_, depth_ - 1, &liveAfter_) : nullptr;
  }

private:
  int children() const { return depth_ > 0 ? forest_.random.between(0, 2) : 0; }

  Forest& forest_;
  int* siblings_;
  int depth_, before_, after_;
  int asked_ = 0, askedAfter_ = 0;
  int liveBefore_ = 0, liveAfter_ = 0;
  bool executed_ = false;
};

TEST(ThreadTaskQueue, RunsTreesOnTheRightThreadsAndInOrder) {
  forEachQueue([](ThreadedTaskQueue& queue, bool threaded) {
    Forest forest(11, queue, threaded);
    for (int round = 0; round < 2; ++round) {
      queue.acquire();
      queue.wait(); // for nothing
      for (int i = 0; i < 5; ++i) queue.submit(new Tree(forest, 3));
      queue.wait();
      EXPECT_EQ(forest.live, 0);
      queue.submit(new Tree(forest, 2));
      queue.release();
      EXPECT_EQ(forest.live, 0);
      EXPECT_GT(forest.executed.exchange(0), 10);
    }
    queue.submit(nullptr);
  });
}

/// Writes down all that happens to it.
class Writer : public ThreadedTask {
public:
  Writer(std::string& text, char name, std::string before, std::string after)
      : text_(text), name_(name), before_(std::move(before)), after_(std::move(after)) {}
  ~Writer() override { write('~'); }

  ThreadedTask* preExecute(int index) override { return child('<', before_, index); }
  void execute(int) override { write('!'); }
  ThreadedTask* postExecute(int index) override { return child('>', after_, index); }

private:
  void write(char what) { text_ += {what, name_}; }
  ThreadedTask* child(char what, const std::string& names, int index) {
    write(what);
    const auto place = static_cast<std::size_t>(index);
    return place < names.size() ? new Writer(text_, names[place], "", "") : nullptr;
  }

  std::string& text_;
  char name_;
  std::string before_, after_;
};

TEST(ThreadTaskQueue, RunsDepthFirstInTheCallerWithoutAPool) {
  std::string text;
  const auto run = [&](ThreadedTaskQueue& queue) {
    text.clear();
    queue.acquire();
    queue.submit(new Writer(text, 'a', "bc", "d"));
    EXPECT_EQ(text, "<a<b!b>b~b<a<c!c>c~c<a!a>a<d!d>d~d>a~a");
    queue.release();
  };
  run(*ThreadedTaskQueue::getSingleThreaded());
  TaskQueue queue;
  run(queue);
  TaskQueue view(queue);
  run(view);
  view.submit(new Writer(text, 'e', "", "")); // not acquired
  EXPECT_TRUE(text.ends_with("~e"));
}

TEST(ThreadTaskQueue, DeletesAllUnrunAfterACancellation) {
  class Task : public ThreadedTask {
  public:
    Task(int& live, std::atomic<int>& executed) : live_(live), executed_(executed) { ++live_; }
    ~Task() override { --live_; }
    ThreadedTask* preExecute(int index) override { return index < 2 ? new Task(live_, executed_) : nullptr; }
    void execute(int) override { ++executed_; }

  private:
    int& live_;
    std::atomic<int>& executed_;
  };
  // Each task has two like itself before it, for ever: only a cancellation ends them.
  forEachQueue([](ThreadedTaskQueue& queue, bool) {
    for (const int patience : {0, 1, 7, 50}) {
      int live = 0;
      std::atomic<int> executed = 0;
      qvTest::Impatient progress(patience);
      queue.acquire();
      queue.setCancelObject(&progress);
      queue.submit(new Task(live, executed));
      queue.wait();
      EXPECT_TRUE(queue.cancelled());
      EXPECT_EQ(live, 0);
      queue.submit(new Task(live, executed));
      EXPECT_EQ(live, 0);
      EXPECT_EQ(executed, 0); // none ever had all that comes before it
      queue.release();
      EXPECT_FALSE(queue.cancelled());
    }
  });
}

TEST(ThreadTaskQueue, IsNotCancelledOnceATaskForbidsIt) {
  forEachQueue([](ThreadedTaskQueue& queue, bool threaded) {
    Forest forest(5, queue, threaded);
    qvTest::Impatient progress(1);
    queue.acquire();
    queue.setCancelObject(&progress);
    auto* const first = new Tree(forest, 0);
    first->setNoCancel(true);
    first->setNoExecute(false);
    queue.submit(first);
    for (int i = 0; i < 5; ++i) queue.submit(new Tree(forest, 2));
    queue.wait();
    EXPECT_FALSE(queue.cancelled());
    EXPECT_GT(forest.executed, 1);
    EXPECT_EQ(forest.live, 0);
    queue.release();
  });
}

TEST(ThreadTaskQueue, FinishesAllTasksBeforeThePoolGoes) {
  const qvTest::Yields yields(7);
  qvTest::Random random(3);
  for (int round = 0; round < 20; ++round) {
    std::unique_ptr<Forest> forest;
    {
      Pool pool(random.between(1, 5));
      ThreadPool::install(&pool);
      TaskQueue queue;
      forest = std::make_unique<Forest>(random.bits(), queue, true);
      queue.acquire();
      for (int i = random.between(0, 30); i > 0; --i) queue.submit(new Tree(*forest, 1));
    }
    EXPECT_EQ(forest->live, 0);
  }
}

/// Does what the test says.
class Step : public ThreadedTask {
public:
  std::function<ThreadedTask*(int)> pre = [](int) { return nullptr; };
  std::function<void()> run = [] {};
  std::function<ThreadedTask*(int)> post = [](int) { return nullptr; };

  ThreadedTask* preExecute(int index) override { return pre(index); }
  void execute(int) override { run(); }
  ThreadedTask* postExecute(int index) override { return post(index); }
};

TEST(ThreadQueueImpl, TakesATaskThroughItsStates) {
  Pool pool(2);
  QueueImpl queue(&pool);
  const QueueProbe probe{queue};
  Semaphore childGate, parentGate;
  TaskNode* parentNode = nullptr;

  auto* const before = new Step;
  before->run = [&] { childGate.wait(); };
  auto* const after = new Step;
  after->run = [&] { childGate.wait(); };
  auto* const parent = new Step;
  parent->pre = [&](int index) {
    parentNode = probe.head();
    EXPECT_EQ(parentNode->state, TaskPre);
    return index == 0 ? before : nullptr;
  };
  parent->run = [&] { parentGate.wait(); };
  parent->post = [&](int index) {
    EXPECT_EQ(probe.head(), parentNode);
    EXPECT_EQ(parentNode->state, TaskPost);
    return index == 0 ? after : nullptr;
  };

  queue.acquire();
  queue.submit(parent);
  EXPECT_EQ(parentNode->state, TaskWaitPre);
  EXPECT_EQ(probe.outstanding(), 1); // the child alone
  EXPECT_EQ(probe.active(), 2);
  EXPECT_EQ(probe.head(), nullptr);
  // A null task only has the queue collect what is done, and go on.
  const auto goOnAfter = [&](Semaphore& gate) {
    gate.post();
    ASSERT_TRUE(qvTest::eventually([&] { return probe.done() > 0; }));
    queue.submit(nullptr);
  };
  goOnAfter(childGate);
  EXPECT_EQ(probe.active(), 1);
  EXPECT_EQ(probe.outstanding(), 1); // now the parent
  goOnAfter(parentGate);
  EXPECT_EQ(parentNode->state, TaskWaitPost);
  EXPECT_EQ(parentNode->pendingChildren, 1);
  goOnAfter(childGate);
  EXPECT_EQ(probe.active(), 0);
  queue.release();
}

TEST(ThreadQueueImpl, DoesNotExecuteWhatWaitedForChildrenAtTheCancellation) {
  Pool pool(2);
  QueueImpl queue(&pool);
  Semaphore gate;
  bool executed = false;
  auto* const child = new Step;
  child->run = [&] { gate.wait(); };
  auto* const parent = new Step;
  parent->pre = [&](int index) { return index == 0 ? child : nullptr; };
  parent->run = [&] { executed = true; };
  queue.acquire();
  queue.submit(parent);
  qvTest::Impatient progress(0);
  queue.setCancelObject(&progress);
  gate.post();
  queue.release();
  EXPECT_FALSE(executed);
}

TEST(ThreadQueueImpl, IsWokenWhenHalfIsDone) {
  Pool pool(4);
  QueueImpl queue(&pool);
  const QueueProbe probe{queue};
  for (const int tasks : {1, 2, 3, 4}) {
    SCOPED_TRACE(tasks);
    Semaphore gate;
    queue.acquire();
    for (int i = 0; i < tasks; ++i) {
      auto* const task = new Step;
      task->run = [&] { gate.wait(); };
      queue.submit(task);
    }
    EXPECT_EQ(probe.outstanding(), tasks);
    for (int done = 1; done <= tasks; ++done) {
      gate.post();
      ASSERT_TRUE(qvTest::eventually([&] { return probe.done() == done; }));
      EXPECT_EQ(probe.takePost(), done == (tasks + 1) / 2);
    }
    probe.post(); // what was taken
    queue.release();
  }
}

TEST(ThreadQueueImpl, GivesEachWorkerTwoTasksAtMost) {
  Pool pool(2);
  QueueImpl queue(&pool);
  const QueueProbe probe{queue};
  int most = 0, live = 0;
  queue.acquire();
  for (int i = 0; i < 100; ++i) {
    auto* const task = new Step;
    task->pre = [&](int) -> ThreadedTask* {
      most = std::max(most, probe.outstanding());
      return nullptr;
    };
    task->post = task->pre;
    queue.submit(task);
    EXPECT_LT(probe.outstanding(), 4); // `submit` came back for more
    live = std::max(live, probe.active());
  }
  queue.release();
  EXPECT_LT(most, 4);
  EXPECT_LE(live, 5);
}

} // namespace
