#include "Base/Linear/qvLinearAffineMatrix2.h"

#include "Base/Linear/qvLinearElimination.h"

namespace qvLinear {

constinit const AffineMatrix2 AffineMatrix2::Identity(1.0);

bool AffineMatrix2::invert() noexcept { return detail::invertAffineByElimination<2>(m_.n); }

} // namespace qvLinear
