// Ordering: the order of elements that stay where they are.
#pragma once

#include "Base/qvBase.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>

namespace qvUtil {

/// A permutation of the indexes of an array, made by `sortOrdering` (qvUtilParallelSort.h). Empty at first.
class Ordering {
public:
  Ordering() noexcept = default;
  ~Ordering() = default;
  Ordering(const Ordering&) = delete;
  Ordering& operator=(const Ordering&) = delete;

  /// The indexes, in order; null where none were made.
  [[nodiscard]] std::int32_t* get() noexcept { return indexes_.get(); }
  [[nodiscard]] const std::int32_t* get() const noexcept { return indexes_.get(); }
  /// The index of the element that stands at `position`, which lies from 0 to the number of elements less 1.
  [[nodiscard]] std::int32_t operator[](std::ptrdiff_t position) const noexcept { return indexes_[position]; }

private:
  template <class T>
  friend void sortOrdering(Ordering& ordering, const T* elements, std::uint64_t count,
                           std::type_identity_t<bool (*)(const T&, const T&)> less);

  /// The indexes 0 to `count - 1`. Throws as an exhausted heap does where there is no memory or where an
  /// index would not fit; there are none then.
  QV_BASE_API void resize(std::uint64_t count);

  std::unique_ptr<std::int32_t[]> indexes_;
  std::int32_t count_ = 0;
};

static_assert(sizeof(Ordering) == 2 * sizeof(void*));

} // namespace qvUtil
