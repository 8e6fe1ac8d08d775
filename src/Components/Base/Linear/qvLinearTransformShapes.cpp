// Lines, planes and ranges through an affine matrix.
#include "Base/Linear/qvLinearAffineMatrix.h"
#include "Base/Linear/qvLinearPlane.h"
#include "Base/Linear/qvLinearRange3d.h"

namespace qvLinear {

namespace {

template <class Shape>
Shape transformed(const Shape& shape, const AffineMatrix& m) noexcept {
  Shape out;
  m.preMult(out, shape);
  return out;
}

} // namespace

void AffineMatrix::preMult(Line& out, const Line& in) const noexcept {
  out = Line(in.origin() * *this, Normal(in.direction() * *this));
}

void AffineMatrix::preMult(ParamLine& out, const ParamLine& in) const noexcept {
  out = ParamLine(in.origin() * *this, in.direction() * *this);
}

void AffineMatrix::preMult(Plane& out, const Plane& in) const noexcept {
  bool ok;
  out = Plane(in.origin() * *this, Normal(in.normal() * normalMatrix(ok)));
}

void AffineMatrix::preMult(ParamPlane& out, const ParamPlane& in) const noexcept {
  out = ParamPlane(in.origin() * *this, in.u() * *this, in.v() * *this);
}

void AffineMatrix::preMult(Range3d& out, const Range3d& in) const noexcept {
  if (in.isEmpty()) {
    out.setEmpty();
    return;
  }
  // Each row adds to the lowest corner what is less at the two ends, and to the highest what is more.
  Row low(0.0, 0.0, 0.0), high = low;
  detail::forEach<3>([&](int axis) {
    const double* const row = (*this)[axis];
    // Where a row has 0 an end adds nothing, were it infinite.
    const auto times = [row](double end) {
      return Row::made([&](int i) { return row[i] == 0.0 ? 0.0 : end * row[i]; });
    };
    const Row a = times(in.low()[axis]), b = times(in.high()[axis]);
    low = low + Row::made([&](int i) { return std::min(a[i], b[i]); });
    high = high + Row::made([&](int i) { return std::max(a[i], b[i]); });
  });
  const Row translation = Row::at((*this)[3]);
  out = Range3d(Point((low + translation).n), Point((high + translation).n));
}

Line operator*(const Line& line, const AffineMatrix& m) noexcept { return transformed(line, m); }
ParamLine operator*(const ParamLine& line, const AffineMatrix& m) noexcept { return transformed(line, m); }
Plane operator*(const Plane& plane, const AffineMatrix& m) noexcept { return transformed(plane, m); }
ParamPlane operator*(const ParamPlane& plane, const AffineMatrix& m) noexcept {
  return transformed(plane, m);
}
Range3d operator*(const Range3d& range, const AffineMatrix& m) noexcept { return transformed(range, m); }

} // namespace qvLinear
