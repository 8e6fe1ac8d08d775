// Pools of many sizes, on all processors and on one, under schedules that a seed chooses.
#pragma once

#include "Base/Thread/qvThreadPool.h"
#include "Base/Utility/qvUtilProgress.h"
#include "testing/qvTestProcessor.h"
#include "testing/qvTestYield.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <thread>

namespace qvTest {

/// Calls `test(pool)` for an installed pool of each size.
template <class Test>
void forEachPool(Test test) {
  for (const bool pinned : {false, true}) {
    std::optional<OneProcessor> one;
    if (pinned) one.emplace();
    for (const int workers : {0, 1, 2, 3, 8, 64}) {
      SCOPED_TRACE(std::to_string(workers) + (pinned ? " workers on one processor" : " workers"));
      std::optional<Yields> yields;
      if (workers <= 8) yields.emplace(workers); // with more it takes long
      qvThread::Pool pool(workers);
      qvUtil::ThreadPool::install(&pool);
      test(pool);
    }
    EXPECT_EQ(qvUtil::ThreadPool::get(),
              qvUtil::ThreadPool::getSingleThreadedPool()); // a pool leaves its slot
  }
}

/// Says that the user wants to stop from the question number `patience` on, and makes sure that only the
/// thread asks which made it.
class Impatient : public qvUtil::Progress {
public:
  explicit Impatient(int patience) : patience_(patience) {}

  bool cancelled() override {
    EXPECT_EQ(std::this_thread::get_id(), owner_);
    return asked_++ >= patience_;
  }
  void set(double value) override {
    EXPECT_EQ(std::this_thread::get_id(), owner_);
    last = value;
  }

  double last = -1;

private:
  std::thread::id owner_ = std::this_thread::get_id();
  int patience_;
  int asked_ = 0;
};

} // namespace qvTest
