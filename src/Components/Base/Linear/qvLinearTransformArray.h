// Many values through one matrix.
#pragma once

#include <cstddef>

namespace qvLinear::detail {

/// Calls `transform` for `count` values, `group` at a time: all of these are read before one is stored, so
/// that a compiler can calculate numbers of several in one register, and `out` may be `in`.
template <int group, class Element, class Transform>
void transformArray(Element* out, const Element* in, std::size_t count, Transform transform) noexcept {
  using Number = typename Element::Number;
  for (; count >= group; count -= group, in += group, out += group) {
    decltype(transform(*in)) results[group];
    // Plain loops: a compiler gathers numbers of several rounds into one register, and unrolls short ones.
    for (int i = 0; i < group; ++i) results[i] = transform(in[i]);
    for (int i = 0; i < group; ++i) results[i].storeAt(static_cast<Number*>(out[i]));
  }
  for (; count > 0; --count, ++in, ++out) transform(*in).storeAt(static_cast<Number*>(*out));
}

} // namespace qvLinear::detail
