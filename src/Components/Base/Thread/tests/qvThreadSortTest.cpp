#include "Base/Thread/qvThreadPool.h"
#include "Base/Utility/qvUtilParallelSort.h"
#include "testing/qvTestSanitizer.h"
#include "testing/qvTestSeed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <bit>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

using qvThread::Pool;
using qvUtil::IntRange2d;
using qvUtil::Ordering;
using qvUtil::ThreadPool;

namespace {

/// Values on which a quick sort that chooses its pivots as `serialSort` does finds bad ones only: they are
/// chosen while it runs, so that what it compares with turns out to be the least that is left (M. D. McIlroy,
/// "A killer adversary for quicksort").
std::vector<int> killerValues(int count) {
  const int open = count;
  std::vector<int> values(static_cast<std::size_t>(count), open), indexes(values.size());
  std::iota(indexes.begin(), indexes.end(), 0);
  int next = 0, candidate = 0;
  std::int64_t comparisons = 0;
  qvUtil::serialSort(indexes.begin(), indexes.end(), [&](int a, int b) {
    ++comparisons;
    int &x = values[static_cast<std::size_t>(a)], &y = values[static_cast<std::size_t>(b)];
    if (x == open && y == open) (a == candidate ? x : y) = next++;
    if (x == open || y == open) candidate = x == open ? a : b;
    return x < y;
  });
  EXPECT_LT(comparisons, 8 * std::int64_t{count} * std::bit_width(static_cast<unsigned>(count)) + 8);
  return values;
}

std::vector<std::vector<int>> allInputs(int count) {
  qvTest::Random random(17);
  const std::vector<int> killer = killerValues((count + 1) / 2); // one for each thread
  std::vector<std::vector<int>> inputs(7, std::vector<int>(static_cast<std::size_t>(count)));
  for (int i = 0; i < count; ++i) {
    const int values[] = {i,                      // sorted
                          -i,                     // reversed
                          5,                      // equal
                          std::min(i, count - i), // an organ pipe
                          i % 3,
                          static_cast<int>(random.bits()),
                          killer[static_cast<std::size_t>(i) % killer.size()]};
    for (std::size_t input = 0; input < inputs.size(); ++input)
      inputs[input][static_cast<std::size_t>(i)] = values[input];
  }
  return inputs;
}

/// Sorts ranges with these values, and compares with what the standard sort makes of the values.
void expectSorted(std::vector<int> values) {
  std::vector<IntRange2d> ranges(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) ranges[i].yMax = values[i];
  Ordering ordering;
  sortOrdering(ordering, ranges.data(), ranges.size(),
               [](const IntRange2d& a, const IntRange2d& b) { return a.yMax < b.yMax; });
  std::sort(values.begin(), values.end());
  std::vector<bool> seen(values.size());
  int wrong = 0; // one check at the end: there are millions
  for (std::size_t i = 0; i < values.size(); ++i) {
    const auto index = static_cast<std::size_t>(ordering.get()[i]);
    const bool right = index < seen.size() && !seen[index] && ranges[index].yMax == values[i];
    wrong += !right;
    if (right) seen[index] = true;
  }
  EXPECT_EQ(wrong, 0) << "of " << values.size();
}

TEST(ThreadSort, SortsAsTheStandardSortDoes) {
  for (const int count : {0, 1, 2, 31, 32, 33, 64, 65, 2001}) {
    const std::vector<std::vector<int>> inputs = allInputs(count);
    for (const int workers : {0, 1, 2, 3, 8}) {
      Pool pool(workers);
      ThreadPool::install(&pool);
      for (const std::vector<int>& values : inputs) expectSorted(values);
    }
  }
}

TEST(ThreadSort, HeavySortsMillions) {
  Pool pool(2);
  ThreadPool::install(&pool);
  constexpr int count = qvTest::isSanitized ? 100'000 : 5'000'000; // what two threads share is the same
  for (const std::vector<int>& values : allInputs(count)) expectSorted(values);
}

TEST(ThreadSort, SortsInsideAnAlgorithm) {
  class Sorts : public qvUtil::ThreadedAlg {
    void execute(int threadIndex, int) override {
      for (const std::vector<int>& values : allInputs(100 + threadIndex)) expectSorted(values);
    }
  };
  Pool pool(3);
  Sorts alg;
  pool.execute(alg);
}

TEST(ThreadSort, SortsElementsOfAnyKindByAnyComparison) {
  Pool pool(2);
  ThreadPool::install(&pool);
  qvTest::Random random(4);
  std::vector<std::string> texts(501), expected;
  for (std::string& text : texts) text = std::to_string(random.below(300)) + " is long enough for the heap";
  expected = texts;
  std::sort(expected.begin(), expected.end(), std::greater<>());
  qvUtil::parallelSort(texts.begin(), texts.end(), std::greater<>());
  EXPECT_EQ(texts, expected);

  // Comparisons that contradict themselves give no order, and do no harm.
  std::atomic<unsigned> state = 1;
  for (const int kind : {0, 1, 2})
    qvUtil::parallelSort(texts.begin(), texts.end(), [&](const std::string& a, const std::string& b) {
      return kind == 2 ? (state = state * 69069 + 1) >> 30 & 1 : kind == 1 || a.size() + b.size() == 0;
    });
  for (const std::string& text : texts) EXPECT_TRUE(text.ends_with("heap"));
}

TEST(ThreadSort, FillsAnOrderingAnew) {
  const IntRange2d ranges[3] = {{.xMin = 2}, {.xMin = 3}, {.xMin = 1}};
  const auto less = [](const IntRange2d& a, const IntRange2d& b) { return a.xMin < b.xMin; };
  Ordering ordering;
  EXPECT_EQ(ordering.get(), nullptr);
  for (const std::uint64_t count : {3, 2, 2, 3}) sortOrdering(ordering, ranges, count, less);
  EXPECT_EQ(std::vector(ordering.get(), ordering.get() + 3), (std::vector{2, 0, 1}));
  EXPECT_THROW(sortOrdering(ordering, ranges, std::uint64_t{1} << 31, less), std::bad_alloc);
}

} // namespace
