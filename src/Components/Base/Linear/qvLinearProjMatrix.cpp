#include "Base/Linear/qvLinearProjMatrix.h"

#include "Base/Linear/qvLinearElimination.h"
#include "Base/Linear/qvLinearMatrixText.h"
#include "Base/Linear/qvLinearProjMatrixFlt.h"
#include "Base/Linear/qvLinearTransformArray.h"

namespace qvLinear {

constinit const ProjMatrix ProjMatrix::Identity(1.0);
constinit const ProjMatrixFlt ProjMatrixFlt::Identity(1.0F);

bool ProjMatrix::invert() noexcept { return detail::invertByElimination<4>(m_.n); }

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
