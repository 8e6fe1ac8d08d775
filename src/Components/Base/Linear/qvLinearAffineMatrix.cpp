#include "Base/Linear/qvLinearAffineMatrix.h"

#include "Base/Linear/qvLinearElimination.h"
#include "Base/Linear/qvLinearMatrixText.h"
#include "Base/Linear/qvLinearTransformArray.h"

namespace qvLinear {

constinit const AffineMatrix AffineMatrix::Identity(1.0);

bool AffineMatrix::invert() noexcept { return detail::invertAffineByElimination<3>(m_.n); }

AffineMatrix AffineMatrix::vectorMatrix(bool& ok) const noexcept {
  AffineMatrix copy = *this;
  ok = copy.invert();
  if (ok) copy.transpose();
  return copy;
}

AffineMatrix AffineMatrix::normalMatrix(bool& ok) const noexcept {
  AffineMatrix copy = vectorMatrix(ok);
  if (ok && det3x3() < 0.0) copy *= AffineMatrix(-1.0);
  return copy;
}

void AffineMatrix::preMult(Point* out, const Point* in, std::size_t count) const noexcept {
  const All m = m_; // `out` cannot be a part of it
  detail::transformArray<2>(out, in, count,
                            [&](const Point& p) { return detail::rowTimesAffine<3, double>(p, m.n); });
}

void AffineMatrix::preMult(Vector* out, const Vector* in, std::size_t count) const noexcept {
  const All m = m_;
  detail::transformArray<2>(out, in, count,
                            [&](const Vector& v) { return detail::rowTimes<3, double>(v, m.n); });
}

void AffineMatrix::preMult(HPoint* out, const HPoint* in, std::size_t count) const noexcept {
  const All m = m_;
  detail::transformArray<1>(out, in, count, [&](const HPoint& p) {
    const Row moved = detail::homogeneousTimesAffine<double>(p, m.n);
    return detail::Numbers<double, 4>(moved[0], moved[1], moved[2], p[3]);
  });
}

std::ostream& operator<<(std::ostream& out, const AffineMatrix& m) {
  return detail::writeRows<3, double>(out, "AffineMatrix", m);
}

} // namespace qvLinear
