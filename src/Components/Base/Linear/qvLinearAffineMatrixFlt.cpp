#include "Base/Linear/qvLinearAffineMatrixFlt.h"

#include "Base/Linear/qvLinearTransformArray.h"

namespace qvLinear {

constinit const AffineMatrixFlt AffineMatrixFlt::Identity(1.0F);

void AffineMatrixFlt::preMult(PointFlt* out, const PointFlt* in, std::size_t count) const noexcept {
  const All m = m_; // `out` cannot be a part of it
  detail::transformArray<4>(out, in, count,
                            [&](const PointFlt& p) { return detail::rowTimesAffine<3, float>(p, m.n); });
}

void AffineMatrixFlt::preMult(VectorFlt* out, const VectorFlt* in, std::size_t count) const noexcept {
  const All m = m_;
  detail::transformArray<4>(out, in, count,
                            [&](const VectorFlt& v) { return detail::rowTimes<3, float>(v, m.n); });
}

} // namespace qvLinear
