// The text form that matrices have in common.
#pragma once

#include <ostream>

namespace qvLinear::detail {

/// The name and four rows of `width` numbers, by the rules of the stream.
template <int width, class T>
std::ostream& writeRows(std::ostream& out, const char* name, const T* numbers) {
  out << name << "(\n";
  for (int row = 0; row < 4; ++row, numbers += width) {
    out << numbers[0];
    for (int i = 1; i < width; ++i) out << ',' << numbers[i];
    out << '\n';
  }
  return out << ')';
}

} // namespace qvLinear::detail
