#include "Base/Linear/qvLinearAffineMatrix2.h"

#include "Base/Linear/qvLinearElimination.h"

namespace qvLinear {

constinit const AffineMatrix2 AffineMatrix2::Identity(1.0);

AffineMatrix2& AffineMatrix2::rotate(double angle) noexcept {
  const double sine = std::sin(angle), cosine = std::cos(angle);
  const Row a = Row::at((*this)[0]), b = Row::at((*this)[1]);
  (cosine * a + sine * b).storeAt((*this)[0]);
  (cosine * b - sine * a).storeAt((*this)[1]);
  return *this;
}

bool AffineMatrix2::invert() noexcept { return detail::invertAffineByElimination<2>(m_.n); }

AffineMatrix2 AffineMatrix2::inverse() const noexcept {
  AffineMatrix2 copy = *this;
  copy.invert();
  return copy;
}

} // namespace qvLinear
