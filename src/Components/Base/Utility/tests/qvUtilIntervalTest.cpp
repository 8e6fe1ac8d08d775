#include "Base/Utility/qvUtilInterval.h"

#include "Base/Utility/qvUtilError.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>

using namespace qvUtil;

namespace {

TEST(Interval, TimeStrings) {
  const struct {
    int line;
    const char* text;
    int seconds, microseconds;
  } rows[] = {
      {__LINE__, "1500ms", 1, 500000},
      {__LINE__, "2500000us", 2, 500000},
      {__LINE__, "3min", 180, 0},
      {__LINE__, "2h", 7200, 0},
      {__LINE__, "0s", 0, 0},
      {__LINE__, "007s", 7, 0},
      {__LINE__, "4294967297s", 1, 0}, // the number wraps
      {__LINE__, "4294966296ms", -1, 0},
      {__LINE__, "4294967295us", 0, -1},
      {__LINE__, "71582789min", 44, 0},
  };
  for (const auto& row : rows) {
    const Interval interval(row.text);
    EXPECT_EQ(interval.seconds(), row.seconds) << "line " << row.line;
    EXPECT_EQ(interval.microseconds(), row.microseconds) << "line " << row.line;
  }
  const char* const bad[] = {"10", "5 s", "s", "-1s", "1.5s", "1sec", "", " 1s", "1s ", "1ns", "1S", nullptr};
  for (const char* text : bad) {
    try {
      const Interval interval(text);
      ADD_FAILURE() << (text ? text : "null");
    } catch (const Error& error) {
      EXPECT_EQ(error.num(), 1);
      EXPECT_STREQ(error.message(), "Bad time string");
    }
  }
}

TEST(Interval, NumbersAndOrder) {
  EXPECT_TRUE(Interval().isZero() && Interval(0.0).isZero() && !Interval("1us").isZero());
  EXPECT_TRUE(Interval(-1.5) == Interval("1500ms"));
  EXPECT_DOUBLE_EQ(Interval("2500ms").dseconds(), 2.5);
  EXPECT_EQ(Interval(0.9999999).microseconds(), 999999); // cut, not rounded
  for (const double endless : {1e300, -HUGE_VAL, 2147483648.0})
    EXPECT_EQ(Interval(endless).seconds(), INT_MAX);
  EXPECT_EQ(Interval(2147483647.5).microseconds(), 500000);
  EXPECT_TRUE(Interval(std::nan("")).isZero());
  const Interval second("1s");
  const Interval later("1000001us");
  EXPECT_TRUE(second < later && !(later < second) && !(second < second) && !(second == later));
}

} // namespace
