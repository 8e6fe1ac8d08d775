#include "Base/String/qvStringCharacter.h"

#include "testing/qvTestLocale.h"

#include <gtest/gtest.h>

#include <cwctype>

using namespace qvString;

namespace {

/// Every wide character follows the runtime, but for the letter modifiers and the tab.
TEST(Character, WideClasses) {
  const qvTest::Locale locale(qvTest::utf8Locale); // or whatever there is
  unsigned int modifiers = 0;
  unsigned int sum = 0;
  for (unsigned int code = 0; code <= 0xFFFF; ++code) {
    const auto c = static_cast<qv::WChar>(code);
    const auto w = static_cast<std::wint_t>(code);
    const bool modifier = isLetterModifier(c);
    if (modifier) sum += ++modifiers * code;
    EXPECT_EQ(isAlnum(c), std::iswalnum(w) || modifier) << code;
    EXPECT_EQ(isAlpha(c), (std::iswalnum(w) || modifier) && !std::iswdigit(w)) << code;
    EXPECT_EQ(isPunct(c), std::iswpunct(w) && !modifier) << code;
    EXPECT_EQ(isGraph(c), std::iswgraph(w) || modifier) << code;
    EXPECT_EQ(isPrint(c), code != 9 && (std::iswprint(w) || modifier)) << code;
    EXPECT_EQ(isSpace(c), std::iswspace(w) != 0) << code;
    EXPECT_EQ(isNewLine(c), code == 10 || code == 13);
    EXPECT_EQ(isTab(c), code == 9);
    EXPECT_EQ(isAscii(c), code < 128);
  }
  EXPECT_EQ(modifiers, 178u);
  EXPECT_EQ(sum, 316699642u); // of each modifier times its place: no code may move
  EXPECT_EQ(toUpper(QV_W('é')), locale ? QV_W('É') : std::towupper(QV_W('é')));
  EXPECT_EQ(toLower(QV_W('Я')), locale ? QV_W('я') : std::towlower(QV_W('Я')));
}

TEST(Character, NarrowClasses) {
  for (int code = -128; code < 128; ++code) {
    const char c = static_cast<char>(code);
    EXPECT_EQ(isAscii(c), code >= 0);
    EXPECT_FALSE(isLetterModifier(c));
    EXPECT_EQ(isAlpha(c), isUpper(c) || isLower(c)) << code;
    EXPECT_EQ(isAlnum(c), isAlpha(c) || isDigit(c)) << code;
    EXPECT_EQ(isGraph(c), isAlnum(c) || isPunct(c)) << code;
    EXPECT_EQ(isPrint(c), isGraph(c) || c == ' ') << code;
    EXPECT_EQ(toLower(toUpper(c)), isUpper(c) ? toLower(c) : c) << code;
    EXPECT_EQ(isNewLine(c) || isTab(c), code == 9 || code == 10 || code == 13);
  }
  EXPECT_TRUE(isXDigit('f') && isXDigit(QV_W('F')) && isCntrl('\x1F') && !isXDigit('g'));
  EXPECT_TRUE(isAscii("") && isAscii(static_cast<const char*>(nullptr)) && isAscii("abc") &&
              !isAscii("ab\x80"));
}

} // namespace
