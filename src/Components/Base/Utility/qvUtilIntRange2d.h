// IntRange2d: a rectangle of whole numbers, such as the pixels of an image or of a part of it.
#pragma once

#include <algorithm>
#include <cstdint>

namespace qvUtil {

/// From `xMin` up to, and without, `xMax`, and so in `y`. Empty unless both have a length above 0; the
/// default is empty.
struct IntRange2d {
  std::int32_t xMin = 0;
  std::int32_t yMin = 0;
  std::int32_t xMax = 0;
  std::int32_t yMax = 0;

  [[nodiscard]] constexpr bool isEmpty() const noexcept { return xMin >= xMax || yMin >= yMax; }
  /// @{ Lengths, 0 where there is nothing between the ends.
  [[nodiscard]] constexpr std::int64_t width() const noexcept { return length(xMin, xMax); }
  [[nodiscard]] constexpr std::int64_t height() const noexcept { return length(yMin, yMax); }
  /// @}
  /// The number of points; it always fits.
  [[nodiscard]] constexpr std::uint64_t area() const noexcept {
    return static_cast<std::uint64_t>(width()) * static_cast<std::uint64_t>(height());
  }

  [[nodiscard]] constexpr bool contains(std::int32_t x, std::int32_t y) const noexcept {
    return xMin <= x && x < xMax && yMin <= y && y < yMax;
  }
  /// Whether all points of `other` lie in this; true of one without points.
  [[nodiscard]] constexpr bool contains(const IntRange2d& other) const noexcept {
    return other.isEmpty() ||
           (xMin <= other.xMin && other.xMax <= xMax && yMin <= other.yMin && other.yMax <= yMax);
  }
  /// What lies in both; empty where nothing does.
  [[nodiscard]] constexpr IntRange2d intersection(const IntRange2d& other) const noexcept {
    return {std::max(xMin, other.xMin), std::max(yMin, other.yMin), std::min(xMax, other.xMax),
            std::min(yMax, other.yMax)};
  }
  /// The smallest range in which both lie; an empty one adds nothing.
  [[nodiscard]] constexpr IntRange2d united(const IntRange2d& other) const noexcept {
    if (isEmpty()) return other;
    if (other.isEmpty()) return *this;
    return {std::min(xMin, other.xMin), std::min(yMin, other.yMin), std::max(xMax, other.xMax),
            std::max(yMax, other.yMax)};
  }

  /// Equal ends; two empty ranges may differ.
  constexpr bool operator==(const IntRange2d&) const noexcept = default;

private:
  [[nodiscard]] static constexpr std::int64_t length(std::int32_t first, std::int32_t last) noexcept {
    return std::max<std::int64_t>(std::int64_t{last} - first, 0);
  }
};

static_assert(sizeof(IntRange2d) == 16);

} // namespace qvUtil
