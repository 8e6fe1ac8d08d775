#include "Base/Utility/qvUtilOrdering.h"

#include <new>
#include <numeric>

namespace qvUtil {

void Ordering::resize(std::uint64_t count) {
  if (count > INT32_MAX) throw std::bad_array_new_length();
  if (count != static_cast<std::uint64_t>(count_)) {
    count_ = 0;
    indexes_.reset();
    indexes_.reset(new std::int32_t[count]);
    count_ = static_cast<std::int32_t>(count);
  }
  std::iota(indexes_.get(), indexes_.get() + count, 0);
}

} // namespace qvUtil
