#include "Base/Linear/qvLinearTolerance.h"

namespace qvLinear {

namespace {

// Of 1e-5 degrees. Written out, since neither function can run before the program does.
constexpr double sine = 1.745329251994321e-07;
constexpr double cosine = 0.9999999999999848;

} // namespace

constinit double epsilonTol = 1e-12;
constinit double epsilon2Tol = 1e-24;
constinit float epsilonTolFlt = 1e-6F;
constinit float epsilon2TolFlt = 1e-12F;
constinit double degreeTol = 1e-5;
constinit double perpendicularTol = sine;
constinit double perpendicular2Tol = sine * sine;
constinit double parallelTol = cosine;
constinit double parallel2Tol = cosine * cosine;

} // namespace qvLinear
