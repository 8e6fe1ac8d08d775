#include "Base/Utility/qvUtilThreadedAlg.h"

#include "Base/Utility/qvUtilProgress.h"

#include <algorithm>

namespace qvUtil {

ThreadedAlgBase::~ThreadedAlgBase() = default;

ThreadedAlgBase::ThreadedAlgBase(const ThreadedAlgBase& other) noexcept
    : progress_(other.progress_), wasCancelled_(other.wasCancelled_.load(std::memory_order_relaxed)) {}

ThreadedAlgBase& ThreadedAlgBase::operator=(const ThreadedAlgBase& other) noexcept {
  progress_ = other.progress_;
  wasCancelled_.store(other.wasCancelled_.load(std::memory_order_relaxed), std::memory_order_relaxed);
  return *this;
}

namespace {

/// How many items lie before part `part`.
int itemsBefore(std::int64_t part, int parts, int total) noexcept {
  if (parts == 0) return 0;
  const std::int64_t each = std::int64_t{total} / parts;
  const std::int64_t longer = std::int64_t{total} % parts; // so many parts have one item more
  return static_cast<int>(each * part + std::min(part, longer));
}

} // namespace

int ThreadedAlgBase::getBeginIndex(int part, int parts, int total) noexcept {
  return itemsBefore(part, parts, total);
}

int ThreadedAlgBase::getEndIndex(int part, int parts, int total) noexcept {
  return itemsBefore(std::int64_t{part} + 1, parts, total);
}

bool ThreadedAlgBase::cancelled(int threadIndex) {
  if (progress_ && threadIndex == 0 && progress_->cancelled())
    wasCancelled_.store(true, std::memory_order_relaxed);
  return wasCancelled_.load(std::memory_order_relaxed);
}

void ThreadedAlgBase::updateProgress(int threadIndex, double value) {
  if (Progress* const progress = getProgress(threadIndex)) progress->set(value);
}

ThreadedAlg::~ThreadedAlg() = default;
void ThreadedAlg::initialize(int) {}
void ThreadedAlg::finalize() {}

ThreadedChunkAlg::~ThreadedChunkAlg() = default;
void ThreadedChunkAlg::initialize(int) {}
void ThreadedChunkAlg::finalize() {}

} // namespace qvUtil
