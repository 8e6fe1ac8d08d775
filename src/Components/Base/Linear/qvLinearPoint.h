// Point, Point2, PointFlt, Point2Flt: positions.
#pragma once

#include "Base/Linear/qvLinearVector.h"

namespace qvLinear {

namespace base {

/// The base of a class of positions: an `Offset`, the vector of the same numbers, moves one and tells two
/// apart.
template <class Self, class Offset, class T, int n>
class Position : public Coordinates<Self, T, n> {
public:
  constexpr Self& operator+=(const Offset& v) noexcept { return moveTo(offset() + v); }
  constexpr Self& operator-=(const Offset& v) noexcept { return moveTo(offset() - v); }

  friend constexpr Self operator+(Self p, const Offset& v) noexcept { return p += v; }
  friend constexpr Self operator-(Self p, const Offset& v) noexcept { return p -= v; }
  friend constexpr Offset operator-(const Self& a, const Self& b) noexcept { return a.offset() - b.offset(); }

protected:
  using Coordinates<Self, T, n>::Coordinates;

  /// From the origin to here.
  [[nodiscard]] constexpr Offset offset() const noexcept { return Offset(this->numbers_); }

private:
  constexpr Self& moveTo(const Offset& v) noexcept {
    v.get(this->numbers_);
    return static_cast<Self&>(*this);
  }
};

} // namespace base

/// A position in space. Two positions have a difference and a distance, and no sum. The base gives `set`,
/// `get`,
/// `[]`, pointers, comparison, and how vectors move a point.
class Point : public base::Position<Point, Vector, double, 3> {
public:
  QV_BASE_API static const Point origin;

  Point() = default;
  constexpr Point(double x, double y, double z) noexcept : Position(x, y, z) {}
  /// @{ From numbers in memory.
  constexpr Point(detail::PointerTo<double> auto from) noexcept : Point(from[0], from[1], from[2]) {}
  explicit constexpr Point(detail::PointerTo<float> auto from) noexcept : Point(from[0], from[1], from[2]) {}
  /// @}
  /// With z = 0.
  constexpr Point(const Point2& p) noexcept;
  constexpr Point(const PointFlt& p) noexcept;
  /// The true coordinates, without the weight.
  constexpr Point(const RPoint& p) noexcept;
  /// The coordinates times 1 / w; infinities or not-a-number where w is 0.
  constexpr Point(const HPoint& p) noexcept;

  /// The vector from the origin to here.
  [[nodiscard]] constexpr Vector asVector() const noexcept { return offset(); }

  /// "Point(x,y,z)", the numbers as the stream writes them.
  friend QV_BASE_API std::ostream& operator<<(std::ostream& out, const Point& p);
};

/// A position in the plane. As `Point`, but for what is told here.
class Point2 : public base::Position<Point2, Vector2, double, 2> {
public:
  QV_BASE_API static const Point2 origin;

  Point2() = default;
  constexpr Point2(double x, double y) noexcept : Position(x, y) {}
  constexpr Point2(detail::PointerTo<double> auto from) noexcept : Point2(from[0], from[1]) {}
  explicit constexpr Point2(detail::PointerTo<float> auto from) noexcept : Point2(from[0], from[1]) {}
  constexpr Point2(const Point2Flt& p) noexcept;

  [[nodiscard]] constexpr Vector2 asVector2() const noexcept { return offset(); }
  /// @{ With z = 0.
  [[nodiscard]] constexpr Vector asVector() const noexcept { return offset(); }
  [[nodiscard]] constexpr Point asPoint() const noexcept { return *this; }
  /// @}

  /// "Point2(x,y)", the numbers as the stream writes them.
  friend QV_BASE_API std::ostream& operator<<(std::ostream& out, const Point2& p);
};

/// `Point` in narrow numbers. What it is given may be wider and is narrowed.
class PointFlt : public base::Position<PointFlt, VectorFlt, float, 3> {
public:
  QV_BASE_API static const PointFlt origin;

  PointFlt() = default;
  constexpr PointFlt(detail::Numeric auto x, detail::Numeric auto y, detail::Numeric auto z) noexcept
      : Position(x, y, z) {}
  constexpr PointFlt(detail::PointerTo<float> auto from) noexcept : PointFlt(from[0], from[1], from[2]) {}
  explicit constexpr PointFlt(detail::PointerTo<double> auto from) noexcept
      : PointFlt(from[0], from[1], from[2]) {}
  constexpr PointFlt(const Point2Flt& p) noexcept;
  explicit constexpr PointFlt(const Point& p) noexcept : PointFlt(p[0], p[1], p[2]) {}

  [[nodiscard]] constexpr VectorFlt asVectorFlt() const noexcept { return offset(); }

  /// "PointFlt(x,y,z)", the numbers as the stream writes them.
  friend QV_BASE_API std::ostream& operator<<(std::ostream& out, const PointFlt& p);
};

/// `Point2` in narrow numbers. What it is given may be wider and is narrowed.
class Point2Flt : public base::Position<Point2Flt, Vector2Flt, float, 2> {
public:
  QV_BASE_API static const Point2Flt origin;

  Point2Flt() = default;
  constexpr Point2Flt(detail::Numeric auto x, detail::Numeric auto y) noexcept : Position(x, y) {}
  constexpr Point2Flt(detail::PointerTo<float> auto from) noexcept : Point2Flt(from[0], from[1]) {}
  explicit constexpr Point2Flt(detail::PointerTo<double> auto from) noexcept : Point2Flt(from[0], from[1]) {}
  explicit constexpr Point2Flt(const Point2& p) noexcept : Point2Flt(p[0], p[1]) {}

  [[nodiscard]] constexpr Vector2Flt asVector2Flt() const noexcept { return offset(); }
  [[nodiscard]] constexpr VectorFlt asVectorFlt() const noexcept { return offset(); }
  [[nodiscard]] constexpr PointFlt asPointFlt() const noexcept { return *this; }
};

static_assert(sizeof(Point) == 24 && sizeof(Point2) == 16 && sizeof(PointFlt) == 12 &&
              sizeof(Point2Flt) == 8);

constexpr Point::Point(const Point2& p) noexcept : Point(p[0], p[1], 0) {}
constexpr Point::Point(const PointFlt& p) noexcept : Point(p[0], p[1], p[2]) {}
constexpr Point2::Point2(const Point2Flt& p) noexcept : Point2(p[0], p[1]) {}
constexpr PointFlt::PointFlt(const Point2Flt& p) noexcept : PointFlt(p[0], p[1], 0) {}

constexpr Point Vector::asPoint() const noexcept { return Point(numbers_); }
constexpr Point2 Vector2::asPoint2() const noexcept { return Point2(numbers_); }
constexpr Point Vector2::asPoint() const noexcept { return asPoint2(); }
constexpr PointFlt VectorFlt::asPointFlt() const noexcept { return PointFlt(numbers_); }
constexpr Point2Flt Vector2Flt::asPoint2Flt() const noexcept { return Point2Flt(numbers_); }
constexpr PointFlt Vector2Flt::asPointFlt() const noexcept { return asPoint2Flt(); }

} // namespace qvLinear
