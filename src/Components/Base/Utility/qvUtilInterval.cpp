#include "Base/Utility/qvUtilInterval.h"

#include "Base/Utility/qvUtilError.h"

#include <cmath>
#include <limits>
#include <string_view>

namespace qvUtil {

Interval::Interval(double seconds) noexcept {
  constexpr std::int32_t kLongest = std::numeric_limits<std::int32_t>::max();
  const double span = std::fabs(seconds);
  if (std::isnan(span)) return;
  if (span >= kLongest + 1.0) {
    seconds_ = kLongest;
    microseconds_ = 999999;
    return;
  }
  const double whole = std::floor(span);
  seconds_ = static_cast<std::int32_t>(whole);
  microseconds_ = static_cast<std::int32_t>((span - whole) * 1e6);
}

Interval::Interval(const char* text) {
  const char* p = text ? text : "";
  std::uint32_t digits = 0;
  for (; *p >= '0' && *p <= '9'; ++p) digits = digits * 10 + static_cast<std::uint32_t>(*p - '0');
  const std::int32_t value = static_cast<std::int32_t>(digits);
  const std::string_view unit = p == text ? "" : p;
  if (unit == "us") {
    seconds_ = value / 1000000;
    microseconds_ = value % 1000000;
  } else if (unit == "ms") {
    seconds_ = value / 1000;
    microseconds_ = value % 1000 * 1000;
  } else if (unit == "s") {
    seconds_ = value;
  } else if (unit == "min") {
    seconds_ = static_cast<std::int32_t>(digits * 60);
  } else if (unit == "h") {
    seconds_ = static_cast<std::int32_t>(digits * 3600);
  } else {
    throw Error(1, "Bad time string");
  }
}

} // namespace qvUtil
