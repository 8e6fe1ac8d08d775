// The sort that runs on a thread pool, and the ordering of elements that it makes.
//
// It sorts two halves at once and then merges them from both ends at once. So it is twice as fast with any
// pool of two threads or more, and needs no search for where to cut the halves.
#pragma once

#include "Base/Utility/qvUtilIntRange2d.h"
#include "Base/Utility/qvUtilOrdering.h"
#include "Base/Utility/qvUtilSerialSort.h"
#include "Base/Utility/qvUtilThreadPool.h"
#include "Base/Utility/qvUtilThreadedAlg.h"
#include "Base/qvBase.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <type_traits>

namespace qvUtil {

/// Compares two indexes by the elements that they name. `elements` stay the caller's.
template <class T>
class IndexedBinaryPredicate {
public:
  using Less = bool (*)(const T&, const T&);

  IndexedBinaryPredicate(const T* elements, Less less) noexcept : elements_(elements), less_(less) {}

  bool operator()(std::int32_t a, std::int32_t b) const { return less_(elements_[a], elements_[b]); }
  /// Starts to load what a comparison will read.
  void loadAhead(std::int32_t index) const noexcept { qv::detail::prefetch(elements_ + index); }

private:
  const T* elements_;
  Less less_;
};

/// First step: the threads 0 and 1 sort one half each. The first one has the odd element.
template <class It, class Predicate>
class SMPSortPiecewise : public ThreadedAlg {
public:
  SMPSortPiecewise(It begin, It end, Predicate predicate);

  void execute(int threadIndex, int) override;

private:
  It begin_, end_;
  Predicate predicate_;
};

/// Second step: thread 0 merges the lower half of all from the front, thread 1 the upper half from the back.
/// Among equal elements those of the first half come first, on either way.
template <class It, class Predicate>
class SMPSortMerge : public ThreadedAlg {
public:
  SMPSortMerge(It begin, It end, Predicate predicate);

  void execute(int threadIndex, int) override;
  void finalize() override;

private:
  using Value = std::iter_value_t<It>;

  [[nodiscard]] It middle() const;

  // Both copy and do not move, since the other thread may compare with the same element.
  void mergeForward();

  void mergeBackward();

  It begin_, end_;
  std::unique_ptr<Value[]> scratch_;
  Predicate predicate_;
};

// ---- Their work: outside of the classes, so that every compiler exports what is instantiated below ----

template <class It, class Predicate>
SMPSortPiecewise<It, Predicate>::SMPSortPiecewise(It begin, It end, Predicate predicate)
    : begin_(begin), end_(end), predicate_(predicate) {}

template <class It, class Predicate>
void SMPSortPiecewise<It, Predicate>::execute(int threadIndex, int) {
  if (threadIndex > 1) return;
  const It middle = begin_ + (end_ - begin_ + 1) / 2;
  if (threadIndex == 0)
    serialSort(begin_, middle, predicate_);
  else
    serialSort(middle, end_, predicate_);
}

template <class It, class Predicate>
SMPSortMerge<It, Predicate>::SMPSortMerge(It begin, It end, Predicate predicate)
    : begin_(begin),
      end_(end),
      scratch_(new Value[static_cast<std::size_t>(end - begin)]),
      predicate_(predicate) {}

template <class It, class Predicate>
void SMPSortMerge<It, Predicate>::execute(int threadIndex, int) {
  if (threadIndex == 0) mergeForward();
  if (threadIndex == 1) mergeBackward();
}

template <class It, class Predicate>
void SMPSortMerge<It, Predicate>::finalize() {
  std::copy_n(scratch_.get(), end_ - begin_, begin_);
}

template <class It, class Predicate>
It SMPSortMerge<It, Predicate>::middle() const {
  return begin_ + (end_ - begin_ + 1) / 2;
}

template <class It, class Predicate>
void SMPSortMerge<It, Predicate>::mergeForward() {
  It left = begin_, right = middle();
  Value* out = scratch_.get();
  Value* const stop = out + (right - begin_);
  while (out != stop && right != end_) {
    if (end_ - right > detail::loadDistance) {
      detail::loadAhead(left + detail::loadDistance, predicate_); // it lies before `end_` as well
      detail::loadAhead(right + detail::loadDistance, predicate_);
    }
    const bool takeRight = predicate_(*right, *left);
    *out++ = takeRight ? *right : *left;
    right += takeRight;
    left += !takeRight;
  }
  std::copy_n(left, stop - out, out);
}

template <class It, class Predicate>
void SMPSortMerge<It, Predicate>::mergeBackward() {
  It left = middle(), right = end_;
  Value* out = scratch_.get() + (end_ - begin_);
  Value* const stop = scratch_.get() + (left - begin_);
  while (out != stop && left != begin_) {
    if (left - begin_ > detail::loadDistance) {
      detail::loadAhead(left - 1 - detail::loadDistance, predicate_);
      detail::loadAhead(right - 1 - detail::loadDistance, predicate_); // it lies behind `begin_` as well
    }
    const bool takeLeft = predicate_(right[-1], left[-1]);
    *--out = takeLeft ? left[-1] : right[-1];
    left -= takeLeft;
    right -= !takeLeft;
  }
  std::copy_backward(right - (out - stop), right, out);
}

/// Sorts a range of copyable elements on the installed thread pool, or in this thread where that has one
/// thread only. Not stable. `less` is copied and called by two threads at once, and may do parallel work
/// itself.
///
/// A comparison that is no strict weak order gives any order, in which elements may even be doubled or
/// missing, and reads nothing outside the range. Throws as an exhausted heap does where there is no memory
/// for a copy of the range; the range then holds all its elements in some order.
template <std::random_access_iterator It, class Less>
void parallelSort(It begin, It end, Less less) {
  ThreadPool* const pool = ThreadPool::get();
  if (pool->numThreads() < 2) return serialSort(begin, end, less);
  SMPSortPiecewise<It, Less> piecewise(begin, end, less);
  pool->execute(piecewise);
  SMPSortMerge<It, Less> merge(begin, end, less);
  pool->execute(merge);
}

/// Makes the order in which `count` elements, which stay as they are, are sorted. `less` is called by two
/// threads at once. Throws as an exhausted heap does where there is no memory, or where there are more than
/// 2^31 - 1 elements.
template <class T>
void sortOrdering(Ordering& ordering, const T* elements, std::uint64_t count,
                  std::type_identity_t<bool (*)(const T&, const T&)> less) {
  ordering.resize(count);
  parallelSort(ordering.get(), ordering.get() + count, IndexedBinaryPredicate<T>(elements, less));
}

/// @{ What the library itself holds.
extern template class QV_BASE_API SMPSortPiecewise<std::int32_t*, IndexedBinaryPredicate<IntRange2d>>;
extern template class QV_BASE_API SMPSortMerge<std::int32_t*, IndexedBinaryPredicate<IntRange2d>>;
/// @}

} // namespace qvUtil
