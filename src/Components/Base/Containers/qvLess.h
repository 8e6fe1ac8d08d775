// The default order of the ordered containers.
#pragma once

#include <cstdint>
#include <type_traits>

namespace qv {

/// `a < b`; for pointers the order of their addresses.
template <class Key>
struct less {
  [[nodiscard]] constexpr bool operator()(const Key& a, const Key& b) const {
    if constexpr (std::is_pointer_v<Key>)
      return reinterpret_cast<std::uintptr_t>(a) < reinterpret_cast<std::uintptr_t>(b);
    else
      return a < b;
  }
};

} // namespace qv
