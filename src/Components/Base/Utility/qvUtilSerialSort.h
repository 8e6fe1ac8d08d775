// serialSort: an unstable comparison sort in one thread. It is made for elements that are small, as indexes
// are, and whose comparison reads memory anywhere: no step of a partition waits for a comparison before it.
#pragma once

#include "Base/Containers/qvPrefetch.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>

namespace qvUtil {

namespace detail {

/// A comparison that can load ahead what it will read of an element.
template <class Less, class It>
concept LoadsAhead = requires(const Less& less, It position) {
  less.loadAhead(*position);
};

/// How many elements ahead of the one that is compared.
inline constexpr std::ptrdiff_t loadDistance = 24;

template <class It, class Less>
void loadAhead([[maybe_unused]] It position, [[maybe_unused]] const Less& less) {
  if constexpr (LoadsAhead<Less, It>) less.loadAhead(*position);
}

/// Brings the elements for which `goesLeft` is true before all others. @return where the others begin.
template <class It, class Less, class GoesLeft>
It partition(It first, It last, const Less& less, GoesLeft goesLeft) {
  It boundary = first;
  // Every element is swapped, where nothing needs it too: the processor then has no branch to guess.
  const auto place = [&](It position) {
    const bool left = goesLeft(*position);
    std::iter_swap(position, boundary);
    boundary += left;
  };
  for (; last - first > loadDistance; ++first) {
    loadAhead(first + loadDistance, less);
    place(first);
  }
  for (; first != last; ++first) place(first);
  return boundary;
}

template <class It, class Less>
It median(It a, It b, It c, const Less& less) {
  if (less(*b, *a)) std::swap(a, b);
  if (!less(*c, *b)) return b;
  return less(*c, *a) ? a : c;
}

/// An element of the range that is likely to lie near its middle.
template <class It, class Less>
It choosePivot(It first, It last, const Less& less) {
  const std::ptrdiff_t count = last - first;
  if (count < 128) return median(first, first + count / 2, last - 1, less);
  const std::ptrdiff_t step = count / 9;
  const auto medianOf3 = [&](It from) { return median(from, from + step, from + 2 * step, less); };
  return median(medianOf3(first), medianOf3(first + 3 * step), medianOf3(first + 6 * step), less);
}

template <class It, class Less>
void insertionSort(It first, It last, const Less& less) {
  for (It next = first; next != last; ++next) {
    auto value = std::move(*next);
    It hole = next;
    for (; hole != first && less(value, hole[-1]); --hole) *hole = std::move(hole[-1]);
    *hole = std::move(value);
  }
}

template <class It, class Less>
void heapSort(It first, It last, const Less& less) {
  std::make_heap(first, last, less);
  std::sort_heap(first, last, less);
}

/// Sorts a part of a range that starts at `begin`: what lies before the part is not greater than anything in
/// it. `budget` shrinks with each level; quick sort that uses it up has met bad luck or an enemy.
template <class It, class Less>
void quickSort(It begin, It first, It last, std::uint64_t budget, const Less& less) {
  constexpr std::ptrdiff_t few = 32;
  while (last - first > few) {
    if (budget == 0) return heapSort(first, last, less);
    budget = budget * 3 / 4;
    std::iter_swap(first, choosePivot(first, last, less));
    const auto pivot = *first;
    if (first != begin && !less(first[-1], pivot)) { // the pivot is the least: what equals it is in place
      first = partition(first + 1, last, less, [&](const auto& value) { return !less(pivot, value); });
      continue;
    }
    const It middle =
        partition(first + 1, last, less, [&](const auto& value) { return less(value, pivot); }) - 1;
    std::iter_swap(first, middle);
    if (middle - first < last - middle) {
      quickSort(begin, first, middle, budget, less);
      first = middle + 1;
    } else {
      quickSort(begin, middle + 1, last, budget, less);
      last = middle;
    }
  }
  insertionSort(first, last, less);
}

} // namespace detail

/// Sorts a range of copyable elements. Equal elements come in any order. A comparison that is no strict weak
/// order gives any order, and reads nothing outside the range.
///
/// Quick sort (the partition of N. Lomuto without branches), heap sort where that goes badly, insertion sort
/// for few elements. Cost: n log n comparisons at worst, n where all are equal; as much stack as log n
/// levels.
template <std::random_access_iterator It, class Less>
void serialSort(It first, It last, const Less& less) {
  detail::quickSort(first, first, last, static_cast<std::uint64_t>(last - first), less);
}

} // namespace qvUtil
