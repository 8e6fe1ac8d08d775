// The text form that matrices have in common.
#pragma once

#include <ostream>

namespace qvLinear::detail {

/// The name and four rows of `Width` numbers, by the rules of the stream.
template <int Width, class T>
std::ostream& writeRows(std::ostream& out, const char* name, const T* numbers) {
  out << name << "(\n";
  for (int row = 0; row < 4; ++row, numbers += Width) {
    out << numbers[0];
    for (int i = 1; i < Width; ++i) out << ',' << numbers[i];
    out << '\n';
  }
  return out << ')';
}

} // namespace qvLinear::detail
