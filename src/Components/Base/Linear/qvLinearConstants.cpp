// The named values. Constant-initialised, so that initialisers everywhere may use them.
#include "Base/Linear/qvLinearNormal.h"
#include "Base/Linear/qvLinearPoint.h"
#include "Base/Linear/qvLinearTuple.h"

namespace qvLinear {

constinit const Vector Vector::x(1, 0, 0);
constinit const Vector Vector::y(0, 1, 0);
constinit const Vector Vector::z(0, 0, 1);
constinit const Vector Vector::zero(0, 0, 0);

constinit const Vector2 Vector2::x(1, 0);
constinit const Vector2 Vector2::y(0, 1);
constinit const Vector2 Vector2::zero(0, 0);

constinit const VectorFlt VectorFlt::x(1, 0, 0);
constinit const VectorFlt VectorFlt::y(0, 1, 0);
constinit const VectorFlt VectorFlt::z(0, 0, 1);
constinit const VectorFlt VectorFlt::zero(0, 0, 0);

constinit const Vector2Flt Vector2Flt::x(1, 0);
constinit const Vector2Flt Vector2Flt::y(0, 1);
constinit const Vector2Flt Vector2Flt::zero(0, 0);

constinit const Normal Normal::x(Promise(), 1, 0, 0);
constinit const Normal Normal::y(Promise(), 0, 1, 0);
constinit const Normal Normal::z(Promise(), 0, 0, 1);

constinit const Point Point::origin(0, 0, 0);
constinit const Point2 Point2::origin(0, 0);
constinit const PointFlt PointFlt::origin(0, 0, 0);
constinit const Point2Flt Point2Flt::origin(0, 0);

constinit const Tuple2 Tuple2::zero(0, 0);
constinit const Tuple3 Tuple3::zero(0, 0, 0);
constinit const Tuple4 Tuple4::zero(0, 0, 0, 0);

} // namespace qvLinear
