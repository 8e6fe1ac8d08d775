// The text forms of the classes that have one.
#include "Base/Linear/qvLinearNormal.h"
#include "Base/Linear/qvLinearPoint.h"

#include <ostream>

namespace qvLinear {

namespace {

template <class T>
std::ostream& write(std::ostream& out, const char* name, const T& value) {
  out << name << '(' << value[0];
  for (int i = 1; i < T::size; ++i) out << ',' << value[i];
  return out << ')';
}

} // namespace

std::ostream& operator<<(std::ostream& out, const Vector& v) { return write(out, "Vector", v); }
std::ostream& operator<<(std::ostream& out, const VectorFlt& v) { return write(out, "VectorFlt", v); }
std::ostream& operator<<(std::ostream& out, const Normal& n) { return write(out, "Normal", n); }
std::ostream& operator<<(std::ostream& out, const Point& p) { return write(out, "Point", p); }
std::ostream& operator<<(std::ostream& out, const PointFlt& p) { return write(out, "PointFlt", p); }
std::ostream& operator<<(std::ostream& out, const Point2& p) { return write(out, "Point2", p); }

} // namespace qvLinear
