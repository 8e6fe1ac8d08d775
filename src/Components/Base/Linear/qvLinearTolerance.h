// The tolerances of the process, which a host may change. Every comparison reads them when it is called.
#pragma once

#include "Base/qvBase.h"

namespace qvLinear {

/// Not guarded by a lock: change them before other threads calculate. They have their values before any
/// initialiser of the program runs.
/// @{ What is taken for zero: 1e-12 as a length, its square 1e-24 as a squared length.
extern QV_BASE_API double epsilonTol;
extern QV_BASE_API double epsilon2Tol;
/// @}
/// @{ The same for the narrow classes: 1e-6 and 1e-12.
extern QV_BASE_API float epsilonTolFlt;
extern QV_BASE_API float epsilon2TolFlt;
/// @}
/// The angle, in degrees, below which directions are taken for equal: 1e-5. The four below are made from it,
/// once: a change of it does not change them.
extern QV_BASE_API double degreeTol;
/// @{ The sine of that angle, for `isPerpendicular`, and its square.
extern QV_BASE_API double perpendicularTol;
extern QV_BASE_API double perpendicular2Tol;
/// @}
/// @{ The cosine of that angle, for `isParallel`, and its square.
extern QV_BASE_API double parallelTol;
extern QV_BASE_API double parallel2Tol;
/// @}

} // namespace qvLinear
