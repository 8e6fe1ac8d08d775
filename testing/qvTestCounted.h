// Elements that count themselves: they show that a container destroys what it makes, makes no copy that it
// need not, and never treats raw or dead memory as an element.
#pragma once

#include "Base/Containers/qvRelocatable.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace qvTest {

/// Counts of all objects of one element type.
struct ElementCounts {
  int live = 0;
  int copied = 0;
  int destroyed = 0;
  /// Copies that may still be made before one throws; below 0 for ever.
  int copiesUntilThrow = -1;
};

/// What a copy throws that was told to fail.
struct CopyFailed {};

/// An int that counts. A `pinned` one also knows its address and finds out when its bytes were moved.
template <bool pinned>
class CountedInt {
public:
  static inline ElementCounts counts;

  CountedInt(int value = 0) : value_(value) { begin(); }
  CountedInt(const CountedInt& other) : value_(other.value()) {
    if (counts.copiesUntilThrow == 0) throw CopyFailed();
    if (counts.copiesUntilThrow > 0) --counts.copiesUntilThrow;
    ++counts.copied;
    begin();
  }
  CountedInt& operator=(const CountedInt& other) {
    check();
    value_ = other.value();
    return *this;
  }
  ~CountedInt() {
    check();
    mark_ = 0;
    --counts.live;
    ++counts.destroyed;
  }

  [[nodiscard]] int value() const {
    check();
    return value_;
  }
  friend bool operator==(const CountedInt& a, const CountedInt& b) { return a.value() == b.value(); }
  friend bool operator<(const CountedInt& a, const CountedInt& b) { return a.value() < b.value(); }

private:
  static constexpr std::uint64_t liveMark = 0x5EED0F11FE5A11CE;

  void begin() {
    mark_ = liveMark;
    self_ = this;
    ++counts.live;
  }
  void check() const {
    EXPECT_EQ(mark_, liveMark) << "used as an element, but none lives here";
    EXPECT_TRUE(!pinned || self_ == this) << "an element was moved as bytes";
  }

  std::uint64_t mark_;
  const CountedInt* self_;
  int value_;
};

/// For containers that move elements as bytes.
using Counted = CountedInt<false>;
/// For containers whose elements stay where they are.
using Pinned = CountedInt<true>;

/// Expects that at the end of a scope as many elements live as at its beginning.
template <class Element>
class NothingLeaks {
public:
  NothingLeaks() : live_(Element::counts.live) {}
  NothingLeaks(const NothingLeaks&) = delete;
  NothingLeaks& operator=(const NothingLeaks&) = delete;
  ~NothingLeaks() {
    Element::counts.copiesUntilThrow = -1;
    EXPECT_EQ(Element::counts.live, live_) << "elements leaked, or were destroyed twice";
  }

private:
  int live_;
};

} // namespace qvTest

template <>
inline constexpr bool qv::isRelocatable<qvTest::Counted> = true;
