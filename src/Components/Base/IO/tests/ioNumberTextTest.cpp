// Numbers as text, beside the C library in the C locale.
#include "Base/IO/ioNumberText.h"
#include "testing/qvTestDecimalComma.h"
#include "testing/qvTestSeed.h"

#include <gtest/gtest.h>

#include <bit>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <vector>

namespace {

template <class T>
std::string written(T value) {
  char text[ioNumberText::longest];
  return {text, ioNumberText::write(text, value)};
}

std::string printed(const char* format, double value) {
  char text[64];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

template <class T>
auto bitsOf(T value) {
  return std::bit_cast<std::conditional_t<sizeof value == 4, std::uint32_t, std::uint64_t>>(value);
}

/// Doubles of every kind: any bits, few digits, halves between two texts, both sides of powers of two and
/// ten.
std::vector<double> someDoubles(int count) {
  qvTest::Random random(7);
  std::vector<double> result = {0.0,  -0.0, 1e-5,      1e-4, 1e15,
                                1e16, 1e17, 9999999.5, 0.5,  123456789012345678.0};
  for (int power = -1074; power < 1024; ++power)
    for (const double beside : {0.0, 1e308, -1e308})
      result.push_back(std::nextafter(std::ldexp(1.0, power), beside));
  for (int power = -323; power <= 308; ++power)
    for (const double beside : {0.0, 1e308})
      result.push_back(std::nextafter(std::strtod(("1e" + std::to_string(power)).c_str(), nullptr), beside));
  while (int(result.size()) < count) {
    const double number = std::bit_cast<double>(random.bits());
    if (std::isfinite(number)) result.push_back(number);
    result.push_back(double(std::int64_t(random.bits()) >> random.below(64)) / double(1 << random.below(31)));
    result.push_back(random.between(-1'000'000, 1'000'000) / 1000.0);
  }
  return result;
}

TEST(ioNumberText, doublesAreTextOf16DigitsAndComeBackAsFarAsTheseTell) {
  for (const double value : someDoubles(1'000'000)) {
    const std::string text = written(value);
    ASSERT_EQ(text, printed("%.16g", value)) << printed("%a", value);
    ASSERT_EQ(bitsOf(ioNumberText::read<double>(printed("%.17g", value))), bitsOf(value)) << text;
  }
}

TEST(ioNumberText, readsDoublesAsTheCLibraryReads) {
  for (const double value : someDoubles(1'000'000)) {
    const std::string text = written(value);
    ASSERT_EQ(bitsOf(ioNumberText::read<double>(text)), bitsOf(std::strtod(text.c_str(), nullptr))) << text;
  }
}

TEST(ioNumberText, floatsAreTextOf7DigitsAndComeBackAsFarAsTheseTell) {
  // All of them take an hour under an emulator: every 2003rd, and the text of every seventh of these.
  for (std::uint64_t bits = 0; bits <= UINT32_MAX; bits += 2003) {
    const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(bits));
    if (std::isnan(value)) continue;
    const std::string text = written(value);
    if (bits % 7 == 0) {
      ASSERT_EQ(text, printed("%.7g", value));
    }
    const auto expected = static_cast<float>(std::strtod(text.c_str(), nullptr));
    ASSERT_EQ(bitsOf(ioNumberText::read<float>(text)), bitsOf(expected)) << text;
    if (std::abs(value) >= 1e-6f && std::abs(value) <= 1e6f) {
      ASSERT_NEAR(value / expected, 1, 5.7e-7) << text;
    }
  }
}

TEST(ioNumberText, readsWhatTheCLibraryReads) {
  constexpr double infinity = std::numeric_limits<double>::infinity(),
                   nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    int line;
    const char* text;
    double value;
  } rows[] = {
      {__LINE__, "", 0},
      {__LINE__, "x", 0},
      {__LINE__, " \t\n\v\f\r-7.5", -7.5},
      {__LINE__, "+5", 5},
      {__LINE__, "+-5", 0},
      {__LINE__, "--5", 0},
      {__LINE__, "-  5", 0},
      {__LINE__, "-.", 0},
      {__LINE__, "-0", -0.0},
      {__LINE__, ".5", 0.5},
      {__LINE__, "1.", 1},
      {__LINE__, "1.e2", 100},
      {__LINE__, "1,5", 1},
      {__LINE__, "5.5.5", 5.5},
      {__LINE__, "1e5e5", 1e5},
      {__LINE__, "1E+2", 100},
      {__LINE__, "1e", 1},
      {__LINE__, "1e-x", 1},
      {__LINE__, "0x10", 16},
      {__LINE__, "-0X1.8p-1", -0.75},
      {__LINE__, "0x.8p1", 1},
      {__LINE__, "0x1e5", 0x1e5},
      {__LINE__, "0x1p", 1},
      {__LINE__, "-0x", -0.0},
      {__LINE__, "0x.", 0},
      {__LINE__, "0xg", 0},
      {__LINE__, "0xinf", 0},
      {__LINE__, "0x-5", 0},
      {__LINE__, "0x1.00000000000008p0", 1}, // half way: to even
      {__LINE__, "0x1.000000000000080001p0", 0x1.0000000000001p0},
      {__LINE__, "inf", infinity},
      {__LINE__, "-INFinity", -infinity},
      {__LINE__, "infin", infinity},
      {__LINE__, "NaN", nan},
      {__LINE__, "-nan", -nan},
      {__LINE__, "nan(12)x", nan},
      {__LINE__, "1e400", infinity},
      {__LINE__, "-1e99999999999999999999", -infinity},
      {__LINE__, "-1e-400", -0.0},
      {__LINE__, "1e-99999999999999999999", 0},
      {__LINE__, "0e99999999999999999999", 0},
      {__LINE__, "0x1p1024", infinity},
      {__LINE__, "0x1p-1076", 0},
      {__LINE__, "0x0.000000001p+1100", infinity},
      {__LINE__, "0x10000000000p-1200", 0},
      {__LINE__, "4.9e-324", 4.9406564584124654e-324},
      {__LINE__, "0x1p-1074", 4.9406564584124654e-324},
      {__LINE__, "1.7976931348623157e308", std::numeric_limits<double>::max()},
      {__LINE__, "1.797693134862316e+308", infinity}, // what the largest double is written as
      {__LINE__, "0.00000000000000000000000000000000000000000000000000000000000001e400", infinity},
      {__LINE__, "10000000000000000000000000000000000000000000000000000000000000e-400", 0},
  };
  for (const auto& row : rows) {
    const double value = ioNumberText::read<double>(row.text);
    EXPECT_EQ(std::signbit(value), std::signbit(row.value)) << row.line;
    EXPECT_TRUE(value == row.value || (std::isnan(value) && std::isnan(row.value)))
        << row.line << ' ' << value;
  }
  // What stands behind a number is not its exponent.
  const std::string zeros(400, '0');
  EXPECT_EQ(ioNumberText::read<double>("." + zeros + "1 500"), 0);
  EXPECT_EQ(ioNumberText::read<double>("1" + zeros + "-500"), infinity);
  EXPECT_EQ(ioNumberText::read<double>("1" + zeros + "e+-500"), infinity);
  EXPECT_EQ(ioNumberText::read<float>("-1e39"), -std::numeric_limits<float>::infinity());
  EXPECT_EQ(ioNumberText::read<float>("1e-50"), 0);
  // Half way between two floats, but for what a double drops.
  EXPECT_EQ(ioNumberText::read<float>("1.00000005960464477540"), 1.0f);
  for (const double value : {infinity, -infinity, nan, -nan})
    for (const std::string& text : {written(value), written(float(value))})
      EXPECT_EQ(text, std::string(std::signbit(value) ? "-" : "") + (std::isnan(value) ? "nan" : "inf"));
}

TEST(ioNumberText, integersKeepToTheirRange) {
  const struct {
    int line;
    const char* text;
    std::int32_t i;
    std::uint32_t u;
    std::int64_t l;
    std::uint64_t ul;
  } rows[] = {
      {__LINE__, "", 0, 0, 0, 0},
      {__LINE__, "x", 0, 0, 0, 0},
      {__LINE__, "-", 0, 0, 0, 0},
      {__LINE__, "+-1", 0, 0, 0, 0},
      {__LINE__, "0x10", 0, 0, 0, 0},
      {__LINE__, " \t\n\v\f\r+0012x", 12, 12, 12, 12},
      {__LINE__, "1.9", 1, 1, 1, 1},
      {__LINE__, "-1", -1, UINT32_MAX, -1, UINT64_MAX},
      {__LINE__, "2147483648", INT32_MAX, 2147483648U, 2147483648, 2147483648},
      {__LINE__, "-2147483648", INT32_MIN, 2147483648U, -2147483648LL, 0xFFFFFFFF80000000},
      {__LINE__, "-2147483649", INT32_MIN, 2147483647, -2147483649LL, 0xFFFFFFFF7FFFFFFF},
      {__LINE__, "4294967296", INT32_MAX, UINT32_MAX, 4294967296, 4294967296},
      {__LINE__, "-4294967296", INT32_MIN, UINT32_MAX, -4294967296, 0xFFFFFFFF00000000},
      {__LINE__, "-9223372036854775809", INT32_MIN, UINT32_MAX, INT64_MIN, 0x7FFFFFFFFFFFFFFF},
      {__LINE__, "18446744073709551615", INT32_MAX, UINT32_MAX, INT64_MAX, UINT64_MAX},
      {__LINE__, "-18446744073709551615", INT32_MIN, UINT32_MAX, INT64_MIN, 1},
      {__LINE__, "-99999999999999999999", INT32_MIN, UINT32_MAX, INT64_MIN, UINT64_MAX},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(ioNumberText::read<std::int32_t>(row.text), row.i) << row.line;
    EXPECT_EQ(ioNumberText::read<std::uint32_t>(row.text), row.u) << row.line;
    EXPECT_EQ(ioNumberText::read<std::int64_t>(row.text), row.l) << row.line;
    EXPECT_EQ(ioNumberText::read<std::uint64_t>(row.text), row.ul) << row.line;
  }
  EXPECT_EQ(written(INT64_MIN) + written(UINT64_MAX) + written(INT32_MIN) + written(UINT32_MAX),
            "-922337203685477580818446744073709551615-21474836484294967295");
}

TEST(ioNumberText, isTheSameInALocaleWithADecimalComma) {
  const std::vector<double> values = someDoubles(20'000);
  std::vector<std::string> doubles, floats;
  std::vector<double> read;
  for (const double value : values) {
    doubles.push_back(printed("%.16g", value));
    read.push_back(ioNumberText::read<double>(doubles.back()));
    floats.push_back(printed("%.7g", double(float(value))));
  }
  const qvTest::DecimalComma comma;
  if (!comma.isSet()) GTEST_SKIP() << "no locale with a decimal comma is installed, and localedef makes none";
  ASSERT_EQ(printed("%g", 1.5), "1,5");
  for (std::size_t i = 0; i < values.size(); ++i) {
    ASSERT_EQ(written(values[i]), doubles[i]);
    ASSERT_EQ(written(float(values[i])), floats[i]);
    ASSERT_EQ(bitsOf(ioNumberText::read<double>(doubles[i])), bitsOf(read[i]));
  }
  EXPECT_EQ(ioNumberText::read<double>("1,5"), 1);
  EXPECT_EQ(ioNumberText::read<double>("0x1.8p1"), 3);
}

} // namespace
