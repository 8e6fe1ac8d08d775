// Many values through one matrix.
#pragma once

#include <cstddef>

namespace qvLinear::detail {

/// Calls `transform` for `count` values, two at a time: both are read before either is stored, so that a compiler can
/// calculate numbers of both in one register, and `out` may be `in`.
template <class Element, class Transform>
void transformArray(Element* out, const Element* in, std::size_t count, Transform transform) noexcept {
  std::size_t i = 0;
  for (; i + 1 < count; i += 2) {
    const auto first = transform(in[i]);
    const auto second = transform(in[i + 1]);
    first.storeAt(static_cast<typename Element::Number*>(out[i]));
    second.storeAt(static_cast<typename Element::Number*>(out[i + 1]));
  }
  if (i < count) transform(in[i]).storeAt(static_cast<typename Element::Number*>(out[i]));
}

} // namespace qvLinear::detail
