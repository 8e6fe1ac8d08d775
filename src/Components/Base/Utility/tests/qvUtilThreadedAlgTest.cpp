#include "Base/Utility/qvUtilThreadedAlg.h"

#include "Base/Utility/qvUtilIntRange2d.h"
#include "Base/Utility/qvUtilThreadPool.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <string>

using qvUtil::IntRange2d;
using qvUtil::ThreadedAlgBase;

namespace {

TEST(ThreadedAlg, SplitsEvenlyAndCompletely) {
  for (const int total : {0, 1, 2, 3, 7, 100, 101, INT_MAX}) {
    for (const int parts : {1, 2, 3, 8, 102}) {
      int end = 0;
      for (int part = 0; part < parts; ++part) {
        EXPECT_EQ(ThreadedAlgBase::getBeginIndex(part, parts, total), end);
        end = ThreadedAlgBase::getEndIndex(part, parts, total);
        EXPECT_EQ(end - ThreadedAlgBase::getBeginIndex(part, parts, total),
                  total / parts + (part < total % parts ? 1 : 0));
      }
      EXPECT_EQ(end, total);
    }
  }
  EXPECT_EQ(ThreadedAlgBase::getEndIndex(0, 2, 7), 4);
  EXPECT_EQ(ThreadedAlgBase::getBeginIndex(1, 0, 7), 0);
}

TEST(ThreadedAlg, RunsInOrderWithoutThreads) {
  struct Writing : qvUtil::ThreadedChunkAlg {
    void initialize(int numThreads) override { text += 'i' + std::to_string(numThreads); }
    void execute(int chunk, int index, int numThreads) override {
      text += 'e' + std::to_string(chunk) + std::to_string(index) + std::to_string(numThreads);
    }
    void finalize() override { text += 'f'; }
    std::string text;
  };
  Writing alg;
  for (const int chunks : {3, 0, -1}) {
    alg.setNumChunks(chunks);
    qvUtil::ThreadPool::get()->execute(alg);
  }
  EXPECT_EQ(alg.text, "i1e001e101e201fi1fi1f");
}

TEST(IntRange2d, MeasuresAndCombines) {
  constexpr IntRange2d a{0, 0, 10, 4}, b{5, -2, 12, 2}, far{20, 20, 21, 21};
  EXPECT_TRUE(IntRange2d().isEmpty());
  EXPECT_EQ(a.area(), 40u);
  EXPECT_EQ((IntRange2d{INT_MIN, INT_MIN, INT_MAX, INT_MAX}).area(), std::uint64_t{UINT_MAX} * UINT_MAX);
  EXPECT_EQ((IntRange2d{5, 0, 3, 9}).area(), 0u);
  EXPECT_EQ(a.intersection(b), (IntRange2d{5, 0, 10, 2}));
  EXPECT_TRUE(a.intersection(far).isEmpty());
  EXPECT_EQ(a.united(b), (IntRange2d{0, -2, 12, 4}));
  EXPECT_EQ(a.united({}), a);
  EXPECT_EQ(IntRange2d().united(a), a);
  EXPECT_TRUE(a.contains(9, 3) && !a.contains(10, 3) && !a.contains(-1, 0) && !a.contains(0, 4));
  EXPECT_TRUE(a.contains(a) && a.contains(a.intersection(b)) && a.contains({}) && !a.contains(b));
}

} // namespace
