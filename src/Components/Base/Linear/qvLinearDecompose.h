// An affine matrix taken apart into what a person can edit.
#pragma once

#include "Base/Linear/qvLinearAffineMatrix.h"

namespace qvLinear {

/// Splits `matrix` by the method of Gram and Schmidt. It is put together again, what acts on a point first
/// standing first, by `scale`, then `shear`, whose rows are (1, 0, 0), (shear.x, 1, 0), (shear.y, shear.z,
/// 1), then turns about x, y and z by `rotate`, in degrees, then `translate`.
///
/// Where the matrix mirrors, all of `scale` is negative and `rotate` is a pure rotation. Where y is turned by
/// a quarter, x and z turn about the same axis, and z is 0.
/// @return false where the linear part is singular, with lengths measured against 1e-9: `rotate` is zero
/// then, and all else is what could be found.
QV_BASE_API bool atelierDecompose(const AffineMatrix& matrix, Point& translate, Vector& scale, Vector& rotate,
                                  Vector& shear) noexcept;

} // namespace qvLinear
