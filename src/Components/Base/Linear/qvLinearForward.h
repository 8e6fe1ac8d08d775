// The names of all classes of qvLinear, for headers that only mention them.
#pragma once

namespace qvLinear {

struct Promise;

class Vector;
class Vector2;
class VectorFlt;
class Vector2Flt;

class Point;
class Point2;
class PointFlt;
class Point2Flt;

class Normal;

class RPoint;
class HPoint;

class Tuple2;
class Tuple3;
class Tuple4;

class Line;
class ParamLine;
class Plane;
class ParamPlane;
class Range3d;

class AffineMatrix;
class AffineMatrixFlt;
class AffineMatrix2;
class ProjMatrix;
class ProjMatrixFlt;
class Quaternion;

} // namespace qvLinear
