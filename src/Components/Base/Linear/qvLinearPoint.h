// Point, Point2, PointFlt, Point2Flt: positions.
#pragma once

#include "Base/Linear/qvLinearVector.h"

namespace qvLinear {

/// A position in space. Two positions have a difference and a distance, and no sum.
class Point {
public:
  using Number = double;
  static constexpr int size = 3;

  QV_BASE_API static const Point origin;

  /// Leaves the numbers as they are in memory.
  Point() = default;
  constexpr Point(double x, double y, double z) noexcept : numbers_{x, y, z} {}
  /// From numbers in memory.
  explicit constexpr Point(detail::PointerTo<double> auto from) noexcept : Point(from[0], from[1], from[2]) {}
  explicit constexpr Point(detail::PointerTo<float> auto from) noexcept : Point(from[0], from[1], from[2]) {}
  /// With z = 0.
  constexpr Point(const Point2& p) noexcept;
  constexpr Point(const PointFlt& p) noexcept;
  /// The true coordinates, without the weight.
  explicit constexpr Point(const RPoint& p) noexcept;
  /// The coordinates times 1 / w; infinities or not-a-number where w is 0.
  explicit constexpr Point(const HPoint& p) noexcept;

  constexpr void set(double x, double y, double z) noexcept { *this = Point(x, y, z); }
  constexpr void set(detail::PointerTo<double> auto from) noexcept { *this = Point(from); }
  constexpr void set(detail::PointerTo<float> auto from) noexcept { *this = Point(from); }
  constexpr void set(const Point2& p) noexcept;
  constexpr void get(double& x, double& y, double& z) const noexcept {
    x = numbers_[0];
    y = numbers_[1];
    z = numbers_[2];
  }
  constexpr void get(std::same_as<double*> auto to) const noexcept { detail::copyOut(numbers_, to); }

  /// The numbers by place, unchecked.
  [[nodiscard]] constexpr double operator[](int place) const noexcept { return numbers_[place]; }
  /// @{ The address of x, for code that takes arrays; templates for the reason told in `Vector`.
  template <std::same_as<double> T>
  constexpr operator T*() noexcept {
    return numbers_;
  }
  template <std::same_as<double> T>
  constexpr operator const T*() const noexcept {
    return numbers_;
  }
  /// @}

  constexpr Point& operator+=(const Vector& v) noexcept {
    return *this = Point(numbers_[0] + v[0], numbers_[1] + v[1], numbers_[2] + v[2]);
  }
  constexpr Point& operator-=(const Vector& v) noexcept {
    return *this = Point(numbers_[0] - v[0], numbers_[1] - v[1], numbers_[2] - v[2]);
  }
  /// Exact.
  constexpr bool operator==(const Point&) const noexcept = default;

  /// The vector from the origin to here.
  [[nodiscard]] constexpr Vector asVector() const noexcept { return Vector(numbers_); }

  friend constexpr Point operator+(Point p, const Vector& v) noexcept { return p += v; }
  friend constexpr Point operator-(Point p, const Vector& v) noexcept { return p -= v; }
  friend constexpr Vector operator-(const Point& a, const Point& b) noexcept {
    return a.asVector() - b.asVector();
  }
  /// "Point(x,y,z)", the numbers as the stream writes them.
  friend QV_BASE_API std::ostream& operator<<(std::ostream& out, const Point& p);

private:
  double numbers_[3];
};

/// A position in the plane. As `Point`, but for what is told here.
class Point2 {
public:
  using Number = double;
  static constexpr int size = 2;

  QV_BASE_API static const Point2 origin;

  Point2() = default;
  constexpr Point2(double x, double y) noexcept : numbers_{x, y} {}
  explicit constexpr Point2(detail::PointerTo<double> auto from) noexcept : Point2(from[0], from[1]) {}
  explicit constexpr Point2(detail::PointerTo<float> auto from) noexcept : Point2(from[0], from[1]) {}
  constexpr Point2(const Point2Flt& p) noexcept;

  constexpr void set(double x, double y) noexcept { *this = Point2(x, y); }
  constexpr void set(detail::PointerTo<double> auto from) noexcept { *this = Point2(from); }
  constexpr void set(detail::PointerTo<float> auto from) noexcept { *this = Point2(from); }
  constexpr void get(double& x, double& y) const noexcept {
    x = numbers_[0];
    y = numbers_[1];
  }
  constexpr void get(std::same_as<double*> auto to) const noexcept { detail::copyOut(numbers_, to); }

  [[nodiscard]] constexpr double operator[](int place) const noexcept { return numbers_[place]; }
  template <std::same_as<double> T>
  constexpr operator T*() noexcept {
    return numbers_;
  }
  template <std::same_as<double> T>
  constexpr operator const T*() const noexcept {
    return numbers_;
  }

  constexpr Point2& operator+=(const Vector2& v) noexcept {
    return *this = Point2(numbers_[0] + v[0], numbers_[1] + v[1]);
  }
  constexpr Point2& operator-=(const Vector2& v) noexcept {
    return *this = Point2(numbers_[0] - v[0], numbers_[1] - v[1]);
  }
  constexpr bool operator==(const Point2&) const noexcept = default;

  [[nodiscard]] constexpr Vector2 asVector2() const noexcept { return Vector2(numbers_); }
  /// @{ With z = 0.
  [[nodiscard]] constexpr Vector asVector() const noexcept { return asVector2(); }
  [[nodiscard]] constexpr Point asPoint() const noexcept;
  /// @}

  friend constexpr Point2 operator+(Point2 p, const Vector2& v) noexcept { return p += v; }
  friend constexpr Point2 operator-(Point2 p, const Vector2& v) noexcept { return p -= v; }
  friend constexpr Vector2 operator-(const Point2& a, const Point2& b) noexcept {
    return a.asVector2() - b.asVector2();
  }
  friend QV_BASE_API std::ostream& operator<<(std::ostream& out, const Point2& p);

private:
  double numbers_[2];
};

/// `Point` in narrow numbers; wider ones are narrowed.
class PointFlt {
public:
  using Number = float;
  static constexpr int size = 3;

  QV_BASE_API static const PointFlt origin;

  PointFlt() = default;
  constexpr PointFlt(detail::Number auto x, detail::Number auto y, detail::Number auto z) noexcept
      : numbers_{static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)} {}
  explicit constexpr PointFlt(detail::PointerTo<double> auto from) noexcept
      : PointFlt(from[0], from[1], from[2]) {}
  explicit constexpr PointFlt(detail::PointerTo<float> auto from) noexcept
      : PointFlt(from[0], from[1], from[2]) {}
  constexpr PointFlt(const Point2Flt& p) noexcept;
  explicit constexpr PointFlt(const Point& p) noexcept;

  constexpr void set(detail::Number auto x, detail::Number auto y, detail::Number auto z) noexcept {
    *this = PointFlt(x, y, z);
  }
  constexpr void set(detail::PointerTo<double> auto from) noexcept { *this = PointFlt(from); }
  constexpr void set(detail::PointerTo<float> auto from) noexcept { *this = PointFlt(from); }
  constexpr void set(const Point2Flt& p) noexcept;
  constexpr void get(float& x, float& y, float& z) const noexcept {
    x = numbers_[0];
    y = numbers_[1];
    z = numbers_[2];
  }
  constexpr void get(std::same_as<float*> auto to) const noexcept { detail::copyOut(numbers_, to); }

  [[nodiscard]] constexpr float operator[](int place) const noexcept { return numbers_[place]; }
  template <std::same_as<float> T>
  constexpr operator T*() noexcept {
    return numbers_;
  }
  template <std::same_as<float> T>
  constexpr operator const T*() const noexcept {
    return numbers_;
  }

  constexpr PointFlt& operator+=(const VectorFlt& v) noexcept {
    return *this = PointFlt(numbers_[0] + v[0], numbers_[1] + v[1], numbers_[2] + v[2]);
  }
  constexpr PointFlt& operator-=(const VectorFlt& v) noexcept {
    return *this = PointFlt(numbers_[0] - v[0], numbers_[1] - v[1], numbers_[2] - v[2]);
  }
  constexpr bool operator==(const PointFlt&) const noexcept = default;

  [[nodiscard]] constexpr VectorFlt asVectorFlt() const noexcept { return VectorFlt(numbers_); }

  friend constexpr PointFlt operator+(PointFlt p, const VectorFlt& v) noexcept { return p += v; }
  friend constexpr PointFlt operator-(PointFlt p, const VectorFlt& v) noexcept { return p -= v; }
  friend constexpr VectorFlt operator-(const PointFlt& a, const PointFlt& b) noexcept {
    return a.asVectorFlt() - b.asVectorFlt();
  }
  friend QV_BASE_API std::ostream& operator<<(std::ostream& out, const PointFlt& p);

private:
  float numbers_[3];
};

/// `Point2` in narrow numbers; wider ones are narrowed.
class Point2Flt {
public:
  using Number = float;
  static constexpr int size = 2;

  QV_BASE_API static const Point2Flt origin;

  Point2Flt() = default;
  constexpr Point2Flt(detail::Number auto x, detail::Number auto y) noexcept
      : numbers_{static_cast<float>(x), static_cast<float>(y)} {}
  explicit constexpr Point2Flt(detail::PointerTo<double> auto from) noexcept : Point2Flt(from[0], from[1]) {}
  explicit constexpr Point2Flt(detail::PointerTo<float> auto from) noexcept : Point2Flt(from[0], from[1]) {}
  explicit constexpr Point2Flt(const Point2& p) noexcept;

  constexpr void set(detail::Number auto x, detail::Number auto y) noexcept { *this = Point2Flt(x, y); }
  constexpr void set(detail::PointerTo<double> auto from) noexcept { *this = Point2Flt(from); }
  constexpr void set(detail::PointerTo<float> auto from) noexcept { *this = Point2Flt(from); }
  constexpr void get(float& x, float& y) const noexcept {
    x = numbers_[0];
    y = numbers_[1];
  }
  constexpr void get(std::same_as<float*> auto to) const noexcept { detail::copyOut(numbers_, to); }

  [[nodiscard]] constexpr float operator[](int place) const noexcept { return numbers_[place]; }
  template <std::same_as<float> T>
  constexpr operator T*() noexcept {
    return numbers_;
  }
  template <std::same_as<float> T>
  constexpr operator const T*() const noexcept {
    return numbers_;
  }

  constexpr Point2Flt& operator+=(const Vector2Flt& v) noexcept {
    return *this = Point2Flt(numbers_[0] + v[0], numbers_[1] + v[1]);
  }
  constexpr Point2Flt& operator-=(const Vector2Flt& v) noexcept {
    return *this = Point2Flt(numbers_[0] - v[0], numbers_[1] - v[1]);
  }
  constexpr bool operator==(const Point2Flt&) const noexcept = default;

  [[nodiscard]] constexpr Vector2Flt asVector2Flt() const noexcept { return Vector2Flt(numbers_); }
  [[nodiscard]] constexpr VectorFlt asVectorFlt() const noexcept { return asVector2Flt(); }
  [[nodiscard]] constexpr PointFlt asPointFlt() const noexcept;

  friend constexpr Point2Flt operator+(Point2Flt p, const Vector2Flt& v) noexcept { return p += v; }
  friend constexpr Point2Flt operator-(Point2Flt p, const Vector2Flt& v) noexcept { return p -= v; }
  friend constexpr Vector2Flt operator-(const Point2Flt& a, const Point2Flt& b) noexcept {
    return a.asVector2Flt() - b.asVector2Flt();
  }

private:
  float numbers_[2];
};

static_assert(sizeof(Point) == 24 && sizeof(Point2) == 16 && sizeof(PointFlt) == 12 &&
              sizeof(Point2Flt) == 8);

constexpr Point::Point(const Point2& p) noexcept : Point(p[0], p[1], 0) {}
constexpr Point::Point(const PointFlt& p) noexcept : Point(p[0], p[1], p[2]) {}
constexpr Point2::Point2(const Point2Flt& p) noexcept : Point2(p[0], p[1]) {}
constexpr PointFlt::PointFlt(const Point2Flt& p) noexcept : PointFlt(p[0], p[1], 0) {}
constexpr PointFlt::PointFlt(const Point& p) noexcept : PointFlt(p[0], p[1], p[2]) {}
constexpr Point2Flt::Point2Flt(const Point2& p) noexcept : Point2Flt(p[0], p[1]) {}
constexpr void Point::set(const Point2& p) noexcept { *this = p; }
constexpr void PointFlt::set(const Point2Flt& p) noexcept { *this = p; }
constexpr Point Point2::asPoint() const noexcept { return *this; }
constexpr PointFlt Point2Flt::asPointFlt() const noexcept { return *this; }

constexpr Point Vector::asPoint() const noexcept { return Point(numbers_); }
constexpr Point2 Vector2::asPoint2() const noexcept { return Point2(numbers_); }
constexpr Point Vector2::asPoint() const noexcept { return asPoint2(); }
constexpr PointFlt VectorFlt::asPointFlt() const noexcept { return PointFlt(numbers_); }
constexpr Point2Flt Vector2Flt::asPoint2Flt() const noexcept { return Point2Flt(numbers_); }
constexpr PointFlt Vector2Flt::asPointFlt() const noexcept { return asPoint2Flt(); }

} // namespace qvLinear
