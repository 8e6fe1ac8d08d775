// The locales of Windows: code pages of one byte a character, and those of East Asia, whose second bytes may
// look like ASCII.
#include "Base/String/qvStringConvert.h"
#include "Base/String/qvStringFormat.h"
#include "Base/String/qvStringIString.h"
#include "testing/qvTestLocale.h"

#include <gtest/gtest.h>

using qvString::IString;

namespace {

struct Row {
  int line;
  IString wide;
  const char* narrow;
  bool ok;
};

void expectBothWays(const Row& row) {
  SCOPED_TRACE(row.line);
  bool ok = false;
  EXPECT_STREQ(IString(row.wide).asMultibyte(qvString::DefaultEncoding, &ok), row.narrow);
  EXPECT_EQ(ok, row.ok);
  char formatted[16];
  EXPECT_EQ(QL_snprintf(formatted, sizeof formatted, "%6S|", row.wide.asWChar()), 7);
  EXPECT_EQ(std::string(formatted), std::string(6 - std::string(row.narrow).size(), ' ') + row.narrow + '|');
  EXPECT_EQ(IString(row.narrow) == row.wide, row.ok);
}

TEST(CodePage, OneByteForEachCharacter) {
  const qvTest::Locale locale(".1252");
  ASSERT_TRUE(locale);
  for (const Row& row :
       {Row{__LINE__, QV_W("a\xE9\x20AC"), "a\xE9\x80", true}, Row{__LINE__, QV_W("a\x30BDz"), "a?z", false}})
    expectBothWays(row);
  EXPECT_STREQ(IString(QV_W("a\xD83D\xDE00z")).asMultibyte(), "a??z");
}

TEST(CodePage, SecondBytesThatLookLikeAscii) {
  const qvTest::Locale locale(".932");
  ASSERT_TRUE(locale);
  for (const Row& row :
       {Row{__LINE__, QV_W("a\x30BD\\"), "a\x83\x5C\\", true}, Row{__LINE__, QV_W("\xFF71z"), "\xB1z", true},
        Row{__LINE__, QV_W("\xE01z"), "?z", false}})
    expectBothWays(row);
  bool ok = true;
  EXPECT_TRUE(IString("a\x83", qvString::DefaultEncoding, &ok) == QV_W("a?")); // cut in two
  EXPECT_FALSE(ok);
  qv::WChar wide[16];
  EXPECT_EQ(QL_swprintf(wide, 16, QV_W("%.1s|%s"), "\x83\x5C\x83\x5C", "\x83\x5C%d"), 5);
  EXPECT_TRUE(IString(wide) == QV_W("\x30BD|\x30BD%d"));
}

} // namespace
