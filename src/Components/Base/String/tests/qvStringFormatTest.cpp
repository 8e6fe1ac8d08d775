#include "Base/String/qvStringFormat.h"

#include "Base/String/qvStringFormatEngine.h"
#include "testing/qvTestLocale.h"
#include "testing/qvTestSeed.h"

#include <gtest/gtest.h>

#include <bit>
#include <cfenv>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

namespace {

using Wide = std::basic_string<qv::WChar>;

Wide widened(const std::string& text) { return Wide(text.begin(), text.end()); }

constexpr std::size_t kRoom = 2048;

template <class... Args>
std::string narrow(const char* format, Args... args) {
  char buffer[kRoom];
  const int length = QL_snprintf(buffer, kRoom, format, args...);
  return length < 0 ? "<too long>" : std::string(buffer, static_cast<std::size_t>(length));
}

template <class... Args>
Wide wide(const qv::WChar* format, Args... args) {
  qv::WChar buffer[kRoom];
  const int length = QL_swprintf(buffer, kRoom, format, args...);
  return length < 0 ? QV_W("<too long>") : Wide(buffer, static_cast<std::size_t>(length));
}

/// Counts formats whose result differs from the C runtime's, in either width, and tells the first.
class Comparison {
public:
  ~Comparison() {
    EXPECT_GT(compared_, 0);
    EXPECT_EQ(different_, 0) << "of " << compared_ << ", as \"" << first_ << '"';
  }

  template <class... Args>
  void operator()(const std::string& format, Args... args) {
    char expected[kRoom];
    ASSERT_GE(std::snprintf(expected, kRoom, format.c_str(), args...), 0);
    ++compared_;
    if (narrow(format.c_str(), args...) == expected &&
        wide(widened(format).c_str(), args...) == widened(expected))
      return;
    if (different_++ == 0)
      first_ =
          format + "\", which should give \"" + expected + "\" and not \"" + narrow(format.c_str(), args...);
  }

private:
  long compared_ = 0;
  long different_ = 0;
  std::string first_;
};

/// Every set of flags, with widths and precisions.
std::vector<std::string> directives(bool withPrecision = true) {
  std::vector<std::string> result;
  for (unsigned int flags = 0; flags < 32; ++flags)
    for (const char* width : {"", "1", "6", "13", "40"})
      for (const char* precision : {"", ".", ".0", ".1", ".3", ".7", ".17", ".30"}) {
        std::string directive = "%";
        for (int i = 0; i < 5; ++i)
          if (flags >> i & 1) directive += "-+ #0"[i];
        if (withPrecision || !*precision) result.push_back(directive + width + precision);
      }
  return result;
}

template <class Int>
void compareIntegers(Comparison& compare, const char* size, const char* letters) {
  using Limits = std::numeric_limits<Int>;
  const Int values[] = {0,
                        1,
                        9,
                        10,
                        99,
                        100,
                        101,
                        12345 & Limits::max(),
                        Limits::max(),
                        Limits::min(),
                        static_cast<Int>(Limits::min() + 1),
                        static_cast<Int>(-1)};
  for (const std::string& directive : directives())
    for (const char* letter = letters; *letter; ++letter)
      for (const Int value : values) compare(directive + size + *letter, value);
}

TEST(Format, IntegersAsTheRuntime) {
  Comparison compare;
  compareIntegers<signed char>(compare, "hh", "di");
  compareIntegers<unsigned char>(compare, "hh", "uoxX");
  compareIntegers<short>(compare, "h", "di");
  compareIntegers<unsigned short>(compare, "h", "uoxX");
  compareIntegers<int>(compare, "", "di");
  compareIntegers<unsigned int>(compare, "", "uoxX");
  compareIntegers<long>(compare, "l", "di");
  compareIntegers<unsigned long long>(compare, "ll", "uoxX");
  compareIntegers<std::intmax_t>(compare, "j", "di");
  compareIntegers<std::size_t>(compare, "z", "uoxX");
  compareIntegers<std::ptrdiff_t>(compare, "t", "di");
  for (const int width : {-7, 0, 7})
    for (const int precision : {INT_MIN, -1, 0, 4}) compare("%*.*d|%-0*d", width, precision, 42, width, -42);
}

TEST(Format, SizesOfTheirOwn) {
  EXPECT_EQ(narrow("%I64d %I64u %I64x", INT64_MIN, UINT64_MAX, UINT64_MAX),
            "-9223372036854775808 18446744073709551615 ffffffffffffffff");
  EXPECT_EQ(narrow("%I32d %Id %hhd", -1, std::ptrdiff_t{-1}, 257), "-1 -1 1");
  EXPECT_EQ(wide(QV_W("%I64d%5I32u"), std::int64_t{-5}, 7u), QV_W("-5    7"));
}

/// Calls `visit(format, value)` for every set of flags, letter and kind of number.
template <class Visit>
void visitFloats(Visit visit) {
  const double values[] = {0.0,       -0.0,     1.0,       -1.5,         0.5,          2.5,
                           0.05,      9.995,    99999.95,  123456.0,     1234567.0,    1e-5,
                           9.9999e-5, 0.1,      1.0 / 3,   1e22,         DBL_MIN,      DBL_MAX,
                           5e-324,    HUGE_VAL, -HUGE_VAL, std::nan(""), -std::nan("")};
  for (const std::string& directive : directives())
    for (const char letter : {'a', 'A', 'e', 'E', 'f', 'F', 'g', 'G'})
      for (const double value : values) visit(directive, letter, value);
}

TEST(Format, FloatsAsTheRuntime) {
  Comparison compare;
  visitFloats([&](const std::string& directive, char letter, double value) {
    compare(directive + letter, value);
    compare(directive + 'L' + letter, static_cast<long double>(value));
  });
}

// Some runtimes differ from the standard in the flags of unsigned numbers and in wide "%g"; this library
// never.
TEST(Format, NumbersAreTheSameEverywhere) {
  std::uint64_t hash = 0xCBF29CE484222325; // of all texts
  const auto add = [&](const std::string& format, auto value) {
    for (const char c : narrow(format.c_str(), value) + '\n')
      hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
  };
  visitFloats(
      [&](const std::string& directive, char letter, double value) { add(directive + letter, value); });
  for (const std::string& directive : directives())
    for (const char letter : {'d', 'u', 'o', 'x', 'X'})
      for (const std::int64_t value : {INT64_MIN, INT64_C(-1), INT64_C(0), INT64_C(9), INT64_MAX})
        add(directive + "I64" + letter, value);
  EXPECT_EQ(hash, 0x42367EA62AD34721u);
}

TEST(Format, RandomFloatsAsTheRuntime) {
  qvTest::Random random(21);
  Comparison compare;
  for (int i = 0; i < 60000; ++i) {
    const double bits = std::bit_cast<double>(random.bits());
    const double any = std::isnan(bits) ? 0 : bits; // whose sign not every runtime prints
    const double plain = std::ldexp(static_cast<double>(random.below(1u << 30)), random.between(-40, 10));
    const int precision = random.between(-1, 20);
    compare("%.*f %.*e %.*g", precision, any, precision, any, precision, any);
    compare("%f %g %.16g %.3f", plain, plain, plain, plain);
  }
}

TEST(Format, RoundingModeOfTheProcess) {
  Comparison compare;
  for (const int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO, FE_TONEAREST}) {
    ASSERT_EQ(std::fesetround(mode), 0);
    compare("%.1f %.0e %.2g", 0.25, 0.15, 1.115);
  }
}

TEST(Format, PrecisionWithoutLimit) {
  for (const char* format :
       {"%.40000f", "%.40000e", "%#.40000g", "%.40000a", "%040010.40000d", "%-40000s|"}) {
    std::vector<char> expected(50000);
    std::vector<char> made(50000, 'x');
    const bool isFloat =
        std::string("fega").find(format[std::string(format).size() - 1]) != std::string::npos;
    const char* const text = "text";
    const int length = isFloat            ? std::snprintf(expected.data(), expected.size(), format, 1.0 / 3)
                       : format[1] == '-' ? std::snprintf(expected.data(), expected.size(), format, text)
                                          : std::snprintf(expected.data(), expected.size(), format, 77);
    const int ours = isFloat            ? QL_snprintf(made.data(), made.size(), format, 1.0 / 3)
                     : format[1] == '-' ? QL_snprintf(made.data(), made.size(), format, text)
                                        : QL_snprintf(made.data(), made.size(), format, 77);
    EXPECT_EQ(ours, length) << format;
    EXPECT_STREQ(made.data(), expected.data()) << format;
  }
  char small[8];
  EXPECT_EQ(QL_snprintf(small, sizeof small, "%2147483647d%2147483647d", 1, 2), -1);
  EXPECT_EQ(QL_snprintf(small, sizeof small, "%99999999999999999999d", 1), -1);
  EXPECT_STREQ(small, "       ");
}

TEST(Format, StringsAsTheRuntime) {
  Comparison compare;
  for (const std::string& directive : directives()) {
    if (directive.find_first_of("+ #0") < directive.find_first_of(".123456789")) continue; // only for numbers
    compare(directive + "s|", "text");
    compare(directive + "s|", "");
    compare(directive + "c|", 'c');
  }
}

TEST(Format, NarrowAndWideArguments) {
  const qvTest::Locale locale(qvTest::utf8Locale);
  if (!locale) GTEST_SKIP() << "no locale with UTF-8";
  const struct {
    int line;
    std::string narrow;
    Wide wide;
    const char* expectedNarrow;
    const qv::WChar* expectedWide;
  } rows[] = {
      {__LINE__, narrow("[%s|%S]", "n", QV_W("w")), wide(QV_W("[%s|%S]"), "n", QV_W("w")), "[n|w]",
       QV_W("[n|w]")},
      {__LINE__, narrow("[%hs|%ls|%ws|%hS|%lS]", "a", QV_W("b"), QV_W("c"), "d", QV_W("e")),
       wide(QV_W("[%hs|%ls|%ws|%hS|%lS]"), "a", QV_W("b"), QV_W("c"), "d", QV_W("e")), "[a|b|c|d|e]",
       QV_W("[a|b|c|d|e]")},
      {__LINE__, narrow("[%c|%C|%hc|%lc]", 'a', QV_W('b'), 'c', QV_W('d')),
       wide(QV_W("[%c|%C|%hc|%lc]"), 'a', QV_W('b'), 'c', QV_W('d')), "[a|b|c|d]", QV_W("[a|b|c|d]")},
      // Characters of several bytes; widths count what is printed.
      {__LINE__, narrow("[%4s|%4S|%-4S]", "é", QV_W("é"), QV_W("é")),
       wide(QV_W("[%4s|%4S|%-4s]"), "é", QV_W("é"), "é"), "[  é|  é|é  ]", QV_W("[   é|   é|é   ]")},
      // A precision cuts no character in two.
      {__LINE__, narrow("[%.3S|%.4S]", QV_W("aéz"), QV_W("aéz")), wide(QV_W("[%.2s|%.3s]"), "aéz", "aéz"),
       "[aé|aéz]", QV_W("[aé|aéz]")},
      {__LINE__, narrow("[%.2S|%.5S]", QV_W("aéz"), QV_W("a\U0001F600z")),
       wide(QV_W("[%.2s|%.3s]"), "a😀z", "a😀z"), "[a|a😀]", QV_W("[a|a\U0001F600]")},
      // What cannot be converted.
      {__LINE__, narrow("[%S|%C]", QV_W("a\xD800z"), QV_W('\xDC00')), wide(QV_W("[%s|%c]"), "a\xFFz", '\xE9'),
       "[a?z|?]", QV_W("[a?z|?]")},
      {__LINE__, narrow("[%s|%S|%.3s]", nullptr, nullptr, nullptr),
       wide(QV_W("[%s|%S|%.3s]"), nullptr, nullptr, nullptr), "[(null)|(null)|(nu]",
       QV_W("[(null)|(null)|(nu]")},
      // In a wide format only the plainest directives are exchanged; the others are read as the runtime does.
      {__LINE__, "",
       wide(QV_W("[%-5.2s|%05s|%+s|%*s|%#S|%--s]"), "abc", "n", QV_W("w"), 3, QV_W("w"), "n", QV_W("w")), "",
       QV_W("[ab   |    n|w|  w|n|w]")},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.narrow, row.expectedNarrow) << "line " << row.line;
    EXPECT_TRUE(row.wide == row.expectedWide) << "line " << row.line << testing::PrintToString(row.wide);
  }
  std::setlocale(LC_CTYPE, "C");
  EXPECT_EQ(narrow("%S %C", QV_W("aé\U0001F600z"), QV_W('é')), "a??z ?");
  EXPECT_TRUE(wide(QV_W("%s"), "a\xC3z") == QV_W("a?z"));
}

TEST(Format, TextsWithoutTerminator) {
  const std::vector<char> bytes = {'a', 'b', 'c'};
  const std::vector<qv::WChar> units = {'a', 'b', 'c'};
  EXPECT_EQ(narrow("%.3s%.*S", bytes.data(), 3, units.data()), "abcabc");
  EXPECT_TRUE(wide(QV_W("%.3s%.3S"), bytes.data(), units.data()) == QV_W("abcabc"));
}

TEST(Format, NulCharacterIsText) { EXPECT_EQ(narrow("a%cb%C", 0, 0), std::string("a\0b\0", 4)); }

TEST(Format, PointersHaveSixteenDigits) {
  void* const p = reinterpret_cast<void*>(std::uintptr_t{0xABCDEF12});
  EXPECT_EQ(narrow("%p|%18p|%-18p|%p", p, p, p, nullptr),
            "00000000ABCDEF12|  00000000ABCDEF12|00000000ABCDEF12  |0000000000000000");
  EXPECT_TRUE(wide(QV_W("0x%p"), p) == QV_W("0x00000000ABCDEF12"));
}

TEST(Format, UnknownDirectivesStand) {
  int untouched = 7;
  const struct {
    int line;
    const char* format;
    const char* text;
  } rows[] = {
      {__LINE__, "%n", "%n"},
      {__LINE__, "%*.*lln|", "%*.*lln|"},
      {__LINE__, "%y%k", "%y%k"},
      {__LINE__, "%5q3", "%5q3"},
      {__LINE__, "%", "%"},
      {__LINE__, "a%-", "a%-"},
      {__LINE__, "%08.3l", "%08.3l"},
      {__LINE__, "%%d%%", "%d%"},
      {__LINE__, "%zs%wd", "%zs%wd"},
      {__LINE__, "5 % %%", "5 % %"},
      {__LINE__, "%I6", "%I6"},
      {__LINE__, "\xE9%\xE9", "\xE9%\xE9"},
      {__LINE__, "", ""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(narrow(row.format, &untouched, &untouched), row.text) << "line " << row.line;
    const Wide format(row.format, row.format + std::string(row.format).size());
    const Wide text(row.text, row.text + std::string(row.text).size());
    EXPECT_TRUE(wide(format.c_str(), &untouched, &untouched) == text) << "line " << row.line;
  }
  EXPECT_EQ(untouched, 7);
  EXPECT_EQ(narrow("%y %d", 5), "%y 5"); // takes no argument
  EXPECT_EQ(narrow(nullptr), "");
}

TEST(Format, WithoutArgumentsOnlyPercentSignsChange) {
  const struct {
    int line;
    const char *format, *text;
  } rows[] = {{__LINE__, "%s %n%-*.3I64d", "%s %n%-*.3I64d"},
              {__LINE__, "100%", "100%"},
              {__LINE__, "%%%%%d%%", "%%%d%"},
              {__LINE__, "%5%%s", "%5%s"},
              {__LINE__, nullptr, ""}};
  for (const auto& row : rows) {
    char buffer[4] = "???";
    const std::string text = row.text;
    EXPECT_EQ(qvString::formatWithoutArguments(buffer, sizeof buffer, row.format), text.size()) << row.line;
    EXPECT_EQ(buffer, text.substr(0, 3)) << row.line;
  }
}

TEST(Format, FullBufferCountsAsTooLong) {
  for (std::size_t size = 0; size < 8; ++size) {
    std::string buffer(9, '#');
    const int length = QL_snprintf(buffer.data(), size, "%s", "abcd");
    EXPECT_EQ(length, size > 5 ? 4 : -1) << size;
    EXPECT_EQ(buffer, std::string("abcd").substr(0, size ? size - 1 : 0) + std::string(size ? 1 : 0, '\0') +
                          std::string(9 - std::min<std::size_t>(size, 5), '#'))
        << size;
    Wide units(9, '#');
    EXPECT_EQ(QL_swprintf(units.data(), size, QV_W("%d%s"), 1, "bcd"), length);
    EXPECT_EQ(units[size], '#');
  }
  EXPECT_EQ(QL_snprintf(nullptr, 5, "a"), -1);
}

std::size_t lengthTwice(const char* format, ...) {
  va_list args;
  va_start(args, format);
  char text[64];
  const std::size_t first = qvString::formatText(text, 0, format, args);
  const std::size_t second = qvString::formatText(text, sizeof text, format, args);
  va_end(args);
  EXPECT_STREQ(text, "1 two 3.0");
  EXPECT_EQ(first, second);
  return first;
}

TEST(Format, EngineTellsTheLengthAndLeavesTheList) {
  EXPECT_EQ(lengthTwice("%d %s %.1f", 1, "two", 3.0), 9u);
}

TEST(Format, ConvertStringFormat) {
  const struct {
    int line;
    const qv::WChar* format;
    const qv::WChar* converted;
  } rows[] = {
      {__LINE__, QV_W("%s %S %c %C"), QV_W("%S %s %C %c")},
      {__LINE__, QV_W("%-12.34s%5S%.s%-c"), QV_W("%-12.34S%5s%.S%-C")},
      {__LINE__, QV_W("%+s% s%#s%*s%ls%hs%--s"), QV_W("%+s% s%#s%*s%ls%hs%--s")},
      {__LINE__, QV_W("%%s %d%s%"), QV_W("%%s %d%S%")},
      {__LINE__, QV_W("s"), QV_W("s")},
      {__LINE__, QV_W(""), QV_W("")},
      {__LINE__, QV_W("%-%s"), QV_W("%-%s")}, // the second sign is stepped over
  };
  for (const auto& row : rows) {
    qv::WChar* const converted = QL_convert_string_format(row.format);
    EXPECT_TRUE(Wide(converted) == row.converted) << "line " << row.line;
    std::free(converted);
  }
  EXPECT_EQ(QL_convert_string_format(nullptr), nullptr);
}

} // namespace
