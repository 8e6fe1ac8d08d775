// Range3d: a box along the axes, such as the bounds of points.
#pragma once

#include "Base/Linear/qvLinearCombine.h"
#include "Base/Linear/qvLinearPoint.h"

#include <algorithm>
#include <limits>

namespace qvLinear {

/// All points from `low` up to `high`, both included. Empty unless `low` is at most `high` along each axis.
class Range3d {
public:
  /// Leaves the fields as they are in memory.
  Range3d() = default;
  constexpr Range3d(const Point& low, const Point& high) noexcept : low_(low), high_(high) {}
  /// The bounds of `n` points; empty where there are none.
  constexpr Range3d(int n, const Point* points) noexcept {
    setEmpty();
    for (int i = 0; i < n; ++i) extend(points[i]);
  }

  [[nodiscard]] constexpr const Point& low() const noexcept { return low_; }
  [[nodiscard]] constexpr const Point& high() const noexcept { return high_; }
  constexpr void setEmpty() noexcept {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    low_.set(infinity, infinity, infinity);
    high_.set(-infinity, -infinity, -infinity);
  }
  [[nodiscard]] constexpr bool isEmpty() const noexcept { return !atMost(low_, high_); }
  /// The same points: all empty ranges are equal.
  constexpr bool operator==(const Range3d& other) const noexcept {
    return isEmpty() ? other.isEmpty() : low_ == other.low_ && high_ == other.high_;
  }

  /// @{ Grows as little as may be to hold the argument too. A coordinate that is not a number is passed over.
  constexpr void extend(const Point& p) noexcept { growTo(p, p); }
  constexpr void extend(const Range3d& other) noexcept {
    if (!other.isEmpty()) growTo(other.low_, other.high_);
  }
  /// @}

  [[nodiscard]] constexpr bool contains(const Point& p) const noexcept {
    return atMost(low_, p) && atMost(p, high_);
  }
  /// Whether all points of `other` lie in this; true of an empty one.
  [[nodiscard]] constexpr bool contains(const Range3d& other) const noexcept {
    return other.isEmpty() || (contains(other.low_) && contains(other.high_));
  }
  /// Whether they have a point in common; touching is enough.
  [[nodiscard]] constexpr bool intersects(const Range3d& other) const noexcept {
    return !isEmpty() && !other.isEmpty() && atMost(low_, other.high_) && atMost(other.low_, high_);
  }

  /// @{ Not of an empty range, whose numbers mean nothing.
  [[nodiscard]] constexpr Point center() const noexcept { return combine(0.5, low_, 0.5, high_); }
  /// From `low` to `high`.
  [[nodiscard]] constexpr Vector diagonal() const noexcept { return high_ - low_; }
  /// `place` from 0 to 7: its bits 0, 1 and 2 choose the high end along x, y and z.
  [[nodiscard]] constexpr Point corner(int place) const noexcept {
    return detail::build<Point>([&](int i) { return place >> i & 1 ? high_[i] : low_[i]; });
  }
  /// @}

private:
  [[nodiscard]] static constexpr bool atMost(const Point& a, const Point& b) noexcept {
    return a[0] <= b[0] && a[1] <= b[1] && a[2] <= b[2];
  }
  constexpr void growTo(const Point& low, const Point& high) noexcept {
    if (isEmpty()) setEmpty();
    low_ = detail::build<Point>([&](int i) { return std::min(low_[i], low[i]); });
    high_ = detail::build<Point>([&](int i) { return std::max(high_[i], high[i]); });
  }

  Point low_;
  Point high_;
};

static_assert(sizeof(Range3d) == 48);

} // namespace qvLinear
