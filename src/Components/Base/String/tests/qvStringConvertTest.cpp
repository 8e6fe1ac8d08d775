#include "Base/String/qvStringConvert.h"

#include "Base/String/qvStringInt64.h"
#include "testing/qvTestLocale.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <string>

using namespace qvString;

namespace {

using Wide = std::basic_string<qv::WChar>;

constexpr unsigned int kTerminated = 0xFFFFFFFF;

class ConvertLocale : public testing::Test {
protected:
  void SetUp() override {
    if (!locale_) GTEST_SKIP() << "no locale with UTF-8";
  }

private:
  qvTest::Locale locale_{qvTest::utf8Locale};
};

/// The result of a converter, with `ok`, and with '#' for what it did not write.
template <class C>
struct Made {
  unsigned int count;
  bool ok;
  std::basic_string<C> text;
  bool operator==(const Made&) const = default;
};

template <class C, class Convert>
Made<C> make(unsigned int room, Convert convert) {
  Made<C> made{0, false, std::basic_string<C>(8, static_cast<C>('#'))};
  made.count = convert(made.text.data(), room, &made.ok);
  EXPECT_TRUE(made.count == 0 || made.count == convert(nullptr, 0, nullptr)) << "another size was told";
  while (!made.text.empty() && made.text.back() == static_cast<C>('#')) made.text.pop_back();
  return made;
}

Made<qv::WChar> fromLocale(const char* source, unsigned int count, unsigned int room) {
  return make<qv::WChar>(
      room, [&](qv::WChar* to, unsigned int n, bool* ok) { return MBStoWCS(source, count, to, n, ok); });
}

Made<char> toLocale(const qv::WChar* source, unsigned int count, unsigned int room) {
  return make<char>(room,
                    [&](char* to, unsigned int n, bool* ok) { return WCStoMBS(source, count, to, n, ok); });
}

Made<qv::WChar> fromUtf8(const char* source, unsigned int count, unsigned int room, bool skip = false) {
  return make<qv::WChar>(room, [&](qv::WChar* to, unsigned int n, bool* ok) {
    return UTF8toWCS(source, count, to, n, skip, ok);
  });
}

Made<char> toUtf8(const qv::WChar* source, unsigned int count, unsigned int room) {
  return make<char>(room,
                    [&](char* to, unsigned int n, bool* ok) { return WCStoUTF8(source, count, to, n, ok); });
}

TEST_F(ConvertLocale, ToWide) {
  using M = Made<qv::WChar>;
  const Wide nul(1, 0);
  EXPECT_EQ(fromLocale("aé", kTerminated, 8), (M{2, true, QV_W("aé") + nul}));
  EXPECT_EQ(fromLocale("a😀", 5, 4), (M{3, true, QV_W("a\U0001F600") + nul}));
  EXPECT_EQ(fromLocale("abc", 2, 8), (M{0, true, {}})); // longer than the count: refused, not cut
  EXPECT_EQ(fromLocale("abc", 3, 3), (M{0, true, {}})); // no room for the terminator
  EXPECT_EQ(fromLocale("abc", 9, 4), (M{3, true, QV_W("abc") + nul}));
  EXPECT_EQ(fromLocale("", 0, 8), (M{0, true, nul}));
  EXPECT_EQ(fromLocale(nullptr, 3, 8), (M{0, true, {}}));
  // Each byte that is no character gives one question mark, also those of a character cut short.
  // The rest of the destination is zeroed then.
  EXPECT_EQ(fromLocale("a\xFFz\xE2\x82", kTerminated, 8), (M{5, false, QV_W("a?z??") + Wide(3, 0)}));
  EXPECT_EQ(fromLocale("a\xFFz", kTerminated, 3), (M{0, false, {}}));
  EXPECT_EQ(MBStoWCS("a\xFFz", kTerminated, nullptr, 0), 3u);
  std::setlocale(LC_CTYPE, "C");
  EXPECT_EQ(fromLocale("aé", kTerminated, 4), (M{3, false, QV_W("a??") + nul}));
  const char unterminated[] = {'a', 'b', 'c', 'd'};
  EXPECT_EQ(fromLocale(unterminated, 3, 8), (M{0, true, {}}));
}

TEST_F(ConvertLocale, FromWide) {
  using M = Made<char>;
  const std::string nul(1, '\0');
  EXPECT_EQ(toLocale(QV_W("aé"), kTerminated, 4), (M{3, true, "aé" + nul}));
  EXPECT_EQ(toLocale(QV_W("\U0001F600"), 2, 8), (M{4, true, "😀" + nul}));
  EXPECT_EQ(toLocale(QV_W("abc"), 2, 8), (M{0, true, ""}));
  EXPECT_EQ(toLocale(QV_W("aé"), 2, 3), (M{0, true, ""}));
  EXPECT_EQ(toLocale(nullptr, 2, 8), (M{0, true, ""}));
  // One bad character, and each unit gives one byte: those of several bytes a question mark as well.
  EXPECT_EQ(toLocale(QV_W("aé\xD800z"), kTerminated, 8), (M{4, false, "a??z" + nul}));
  EXPECT_EQ(toLocale(QV_W("aé\xD800z"), kTerminated, 4), (M{0, false, ""}));
  std::setlocale(LC_CTYPE, "C");
  EXPECT_EQ(toLocale(QV_W("a\U0001F600é"), kTerminated, 8), (M{4, false, "a???" + nul}));
}

TEST_F(ConvertLocale, PlainSize) {
  qv::WChar units[4] = {'#', '#', '#', '#'};
  EXPECT_EQ(getMultiByteStringSize(nullptr, "aé😀", 0), 4);
  EXPECT_EQ(getMultiByteStringSize(units, "a😀", 2),
            1); // no pair is cut, and there is room for the terminator
  EXPECT_TRUE(Wide(units, 3) == Wide({'a', 0, '#'}));
  EXPECT_EQ(getMultiByteStringSize(units, "abc\xFF", 3), 3);
  EXPECT_EQ(units[3], '#');
  EXPECT_EQ(getMultiByteStringSize(units, "ab\xFF", 3), -1);
}

TEST(Convert, Utf8ToWide) {
  using M = Made<qv::WChar>;
  EXPECT_EQ(fromUtf8("aé", kTerminated, 2), (M{2, true, QV_W("aé")})); // exactly the size, and no terminator
  EXPECT_EQ(fromUtf8("aé", 3, 1), (M{0, true, {}}));
  EXPECT_EQ(fromUtf8("aéz", 3, 8), (M{2, true, QV_W("aé")})); // the count cuts
  EXPECT_EQ(fromUtf8("a\xC3z", kTerminated, 8), (M{3, false, QV_W("a\xFFFDz")}));
  EXPECT_EQ(fromUtf8("aé", 2, 8), (M{2, false, QV_W("a\xFFFD")}));
  EXPECT_EQ(fromUtf8("\xEF\xBB\xBF"
                     "a",
                     kTerminated, 8),
            (M{1, true, QV_W("a")}));
  EXPECT_EQ(fromUtf8("\xEF\xBB\xBF"
                     "a",
                     4, 8, true),
            (M{2, true,
               QV_W("\xFEFF"
                    "a")}));
  EXPECT_EQ(fromUtf8("\xEF\xBB\xBF", 3, 8), (M{0, false, {}}));
  EXPECT_EQ(fromUtf8("\xEF\xBB\xBF", kTerminated, 8), (M{0, false, {}}));
  EXPECT_EQ(fromUtf8("\xEF\xBB\xBF", 2, 8), (M{1, false, QV_W("\xFFFD")}));
  EXPECT_EQ(fromUtf8("", kTerminated, 8), (M{0, true, {}}));
  EXPECT_EQ(fromUtf8("x", 0, 8), (M{0, true, {}}));
  EXPECT_EQ(fromUtf8(nullptr, 5, 8), (M{0, false, {}}));
  const std::string nul("a\0b", 3);
  EXPECT_EQ(fromUtf8(nul.data(), 3, 8), (M{3, true, Wide({'a', 0, 'b'})}));
}

TEST(Convert, WideToUtf8) {
  using M = Made<char>;
  EXPECT_EQ(toUtf8(QV_W("aé"), kTerminated, 3), (M{3, true, "aé"}));
  EXPECT_EQ(toUtf8(QV_W("aé"), kTerminated, 2), (M{0, true, ""}));
  EXPECT_EQ(toUtf8(QV_W("aéz"), 2, 8), (M{3, true, "aé"}));
  EXPECT_EQ(toUtf8(QV_W("\xD800"), 1, 8), (M{3, true, "\xEF\xBF\xBD"})); // deliberately counts as converted
  EXPECT_EQ(toUtf8(QV_W(""), kTerminated, 8), (M{0, true, ""}));
  EXPECT_EQ(toUtf8(QV_W("x"), 0, 8), (M{0, true, ""}));
  EXPECT_EQ(toUtf8(nullptr, 5, 8), (M{0, false, ""}));
}

TEST(Convert, ByteOrderMark) {
  EXPECT_EQ(detectUTF8BOM("\xEF\xBB\xBFx", 4), 3);
  EXPECT_EQ(detectUTF8BOM("\xEF\xBB\xBF", -1), 3);
  for (const int count : {2, 0, -2, INT_MIN}) EXPECT_EQ(detectUTF8BOM("\xEF\xBB\xBF", count), 0);
  for (const char* text : {"", "\xEF", "\xEF\xBB", "\xEF\xBBx"}) EXPECT_EQ(detectUTF8BOM(text, -1), 0);
  EXPECT_EQ(detectUTF8BOM(nullptr, 3), 0);
}

TEST(Int64, TextAndBack) {
  const char* const first = int64ToAscii(INT64_MIN, 0);
  const char* const second = int64ToAscii(7, 1);
  const char* const unsignedFirst = uint64ToAscii(UINT64_MAX, 0);
  EXPECT_STREQ(first, "-9223372036854775808");
  EXPECT_STREQ(second, "7");
  EXPECT_STREQ(unsignedFirst, "18446744073709551615");
  EXPECT_EQ(int64ToAscii(0, 0), first);
  EXPECT_STREQ(first, "0");
  for (const int slot : {-1, 3, INT_MAX}) EXPECT_EQ(int64ToAscii(5, slot), first);
  const struct {
    int line;
    const char* text;
    std::int64_t value;
  } rows[] = {
      {__LINE__, " \t-12x", -12}, {__LINE__, "+9223372036854775807", INT64_MAX},
      {__LINE__, "x", 0},         {__LINE__, "", 0},
      {__LINE__, nullptr, 0},     {__LINE__, "0x10", 0},
      {__LINE__, "010", 10},
  };
  for (const auto& row : rows) EXPECT_EQ(asciiToInt64(row.text), row.value) << "line " << row.line;
  EXPECT_EQ(asciiToUInt64("18446744073709551615"), UINT64_MAX);
  EXPECT_EQ(asciiToUInt64(nullptr), 0u);
}

} // namespace
