#include "Base/Linear/qvLinearProjMatrix.h"

#include "Base/Linear/qvLinearElimination.h"
#include "Base/Linear/qvLinearLine.h"
#include "Base/Linear/qvLinearMatrixText.h"
#include "Base/Linear/qvLinearPlane.h"
#include "Base/Linear/qvLinearProjMatrixFlt.h"
#include "Base/Linear/qvLinearTransformArray.h"
#include "Base/Linear/qvLinearTurn.h"

namespace qvLinear {

constinit const ProjMatrix ProjMatrix::Identity(1.0);
constinit const ProjMatrixFlt ProjMatrixFlt::Identity(1.0F);

ProjMatrix& ProjMatrix::rotateX(double angle) noexcept {
  detail::turnFirst<4>(m_.n, 1, 2, angle);
  return *this;
}

ProjMatrix& ProjMatrix::rotateY(double angle) noexcept {
  detail::turnFirst<4>(m_.n, 2, 0, angle);
  return *this;
}

ProjMatrix& ProjMatrix::rotateZ(double angle) noexcept {
  detail::turnFirst<4>(m_.n, 0, 1, angle);
  return *this;
}

ProjMatrix& ProjMatrix::rotate(double angle, const Normal& axis) noexcept {
  detail::applyFirst<4>(m_.n, detail::rotationAbout(angle, axis));
  return *this;
}

ProjMatrix& ProjMatrix::rotate(double angle, const Line& axis) noexcept {
  detail::applyFirstAbout<4>(axis.origin(), m_.n, detail::rotationAbout(angle, axis.direction()));
  return *this;
}

ProjMatrix& ProjMatrix::rotate(const Normal& from, const Normal& to) noexcept {
  detail::applyFirst<4>(m_.n, detail::rotationBetween(from, to));
  return *this;
}

ProjMatrix& ProjMatrix::mirror(const Plane& plane) noexcept {
  detail::applyFirstAbout<4>(plane.origin(), m_.n, detail::reflection(plane.normal()));
  return *this;
}

bool ProjMatrix::invert() noexcept { return detail::invertByElimination<4>(m_.n); }

ProjMatrix ProjMatrix::inverse() const noexcept {
  ProjMatrix copy = *this;
  copy.invert();
  return copy;
}

void ProjMatrix::preMult(HPoint* out, const HPoint* in, std::size_t count) const noexcept {
  const All m = m_; // `out` cannot be a part of it
  detail::transformArray<1>(out, in, count,
                            [&](const HPoint& p) { return detail::rowTimes<4, double>(p, m.n); });
}

std::ostream& operator<<(std::ostream& out, const ProjMatrix& m) {
  return detail::writeRows<4, double>(out, "ProjMatrix", m);
}

std::ostream& operator<<(std::ostream& out, const ProjMatrixFlt& m) {
  return detail::writeRows<4, float>(out, "ProjMatrixFlt", m);
}

} // namespace qvLinear
