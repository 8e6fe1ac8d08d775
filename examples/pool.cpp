// Counts prime numbers on a thread pool, shows how far it is, and stops when it is told to.
//
// The host chooses how many workers there are and installs the pool. The algorithm neither knows nor cares:
// it runs on the pool that is installed, or in this thread where there is none.
#include "Base/Thread/qvThreadPool.h"
#include "Base/Utility/qvUtilProgress.h"
#include "Base/Utility/qvUtilThreadedAlg.h"

#include <cstdio>
#include <numeric>
#include <vector>

namespace {

bool isPrime(int number) {
  for (int divisor = 2; divisor <= number / divisor; ++divisor)
    if (number % divisor == 0) return false;
  return number >= 2;
}

/// Each chunk is a range of numbers. Each thread counts for itself; the caller adds up at the end.
class PrimeCount : public qvUtil::ThreadedChunkAlg {
public:
  explicit PrimeCount(int limit) : limit_(limit) {}

  void initialize(int numThreads) override { counts_.assign(static_cast<std::size_t>(numThreads), 0); }

  void execute(int chunk, int threadIndex, int) override {
    if (cancelled(threadIndex)) return;
    updateProgress(threadIndex, double(chunk) / getNumChunks());
    const int end = getEndIndex(chunk, getNumChunks(), limit_);
    int count = 0;
    for (int number = getBeginIndex(chunk, getNumChunks(), limit_); number < end; ++number)
      count += isPrime(number);
    counts_[static_cast<std::size_t>(threadIndex)] += count;
  }

  void finalize() override { total = std::accumulate(counts_.begin(), counts_.end(), 0); }

  int total = 0;

private:
  int limit_;
  std::vector<int> counts_;
};

/// A user who has seen enough once `patience` of the work is done.
class User : public qvUtil::Progress {
public:
  explicit User(double patience) : patience_(patience) {}

  bool cancelled() override { return done_ > patience_; }
  void set(double value) override { done_ = value; }

private:
  double patience_;
  double done_ = 0;
};

int countPrimes(int limit, double patience) {
  User user(patience);
  PrimeCount alg(limit);
  alg.setProgress(&user);
  qvUtil::ThreadPool::get()->execute(alg);
  return alg.total;
}

} // namespace

int main() {
  qvThread::Pool pool(2);
  qvUtil::ThreadPool::install(&pool);

  const int all = countPrimes(1'000'000, 1.0);
  const int some = countPrimes(1'000'000, 0.1);
  std::printf("%d primes below a million; %d were found before the user had enough\n", all, some);
  return all == 78498 && some <= all ? 0 : 1;
}
