// Small helpers for plain numbers: units of angles, the largest and the smallest of a few.
#pragma once

#include <algorithm>
#include <numbers>

namespace qvLinear {

[[nodiscard]] constexpr double toRadians(double degrees) noexcept {
  return degrees * (std::numbers::pi / 180);
}
[[nodiscard]] constexpr double toDegrees(double radians) noexcept {
  return radians * (180 / std::numbers::pi);
}

[[nodiscard]] constexpr double max(double a, double b, double c) noexcept {
  return std::max(std::max(a, b), c);
}
[[nodiscard]] constexpr double max(double a, double b, double c, double d) noexcept {
  return std::max(max(a, b, c), d);
}
[[nodiscard]] constexpr double min(double a, double b, double c) noexcept {
  return std::min(std::min(a, b), c);
}
[[nodiscard]] constexpr double min(double a, double b, double c, double d) noexcept {
  return std::min(min(a, b, c), d);
}

} // namespace qvLinear
