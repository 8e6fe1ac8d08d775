#include "Base/OS/qvOSAppOutput.h"

#include "Base/OS/tests/qvOSTestName.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace {

using qvOS::AppOutput;
using qvOS::AppOutputStatusTab;
using qvOS::AppOutputStream;
using qvString::IString;

TEST(AppOutputStream, IndentsWhereLinesOfTheFormatStart) {
  const struct {
    int line;
    int indent;
    std::vector<const char*> formats;
    const char* wanted;
  } rows[] = {
      {__LINE__, 4, {"a", "b\n", "c\n"}, "    ab\n    c\n"},
      {__LINE__, 4, {"a\nb\nc"}, "    a\n    b\n    c"},
      {__LINE__, 2, {"\na", "\n", "b\n\n", "\n\nc"}, "  \n  a\n  b\n  \n  \n  \n  c"},
      {__LINE__, 2, {"", "a\n", "", "b"}, "  a\n  b"},
      {__LINE__, 2, {"a", "\n", nullptr, "%%\n"}, "  a\n  %\n"},
      {__LINE__, 0, {"a\nb", "c\n", "", "d"}, "a\nbc\nd"},
      {__LINE__, -3, {"a\n"}, "a\n"},
  };
  const qvTest::Scratch texts;
  AppOutputStream out(false);
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    ASSERT_TRUE(out.open(texts.name("out"), false));
    out.setIndentLevel(row.indent);
    EXPECT_EQ(out.getIndentLevel(), std::max(row.indent, 0));
    for (const char* format : row.formats) out.printf(format);
    EXPECT_EQ(texts.readText("out"), row.wanted);
  }
}

TEST(AppOutputStream, KnowsOfLineStartsFromTheFormatAlone) {
  const qvTest::Scratch texts;
  AppOutputStream out(false);
  out.open(texts.name("out"), false);
  out("x\n"); // a newline counts without indentation, too
  EXPECT_EQ(out.setIndentLevel(2), 0);
  out("%s%S", "a\nb\n", QV_W("c\n"));
  out("d%s", "\n");
  out("e\n");
  EXPECT_EQ(texts.readText("out"), "x\n  a\nb\nc\nd\ne\n");

  // What a closed stream forgets is where it stood in its line, and nothing else.
  out("no end");
  out.setLevel(7);
  out.close();
  EXPECT_FALSE(out.ok());
  EXPECT_EQ(out.getLevel() + out.getIndentLevel(), 9);
  EXPECT_EQ(out.getFile(), nullptr);
  out.open(texts.name("out"), true);
  out(7, "%.*s%c|%5d\n", 2, "xyz", 0, 12);
  const std::string longText(100000, 'l');
  out(8, "above the level\n");
  out("%s\n", longText.c_str());
  const std::string zero(1, '\0');
  EXPECT_EQ(texts.readText("out"),
            "x\n  a\nb\nc\nd\ne\n  no end  xy" + zero + "|   12\n  " + longText + "\n");

  out.open(texts.name("out"), false);
  out.timestamp();
  out("later\n");
  const std::string stamped = texts.readText("out");
  ASSERT_EQ(stamped.size(), 44u) << stamped;
  EXPECT_EQ(stamped.substr(0, 13), "  Timestamp: ");
  int hour = 0, minute = 0, second = 0, year = 0;
  EXPECT_EQ(std::sscanf(stamped.c_str() + 24, "%d:%d:%d %d", &hour, &minute, &second, &year), 4);
  EXPECT_GT(year, 2020);
  EXPECT_EQ(stamped.substr(37), "\nlater\n");
}

TEST(AppOutputStream, ClosedSwallowsAll) {
  AppOutputStream out(false);
  out("text %d", 1);
  out.timestamp();
  out.setLevel(3);
  EXPECT_EQ(out.getLevel(), 0);
  EXPECT_EQ(out.setIndentLevel(8), 0);
  EXPECT_EQ(out.increaseIndentLevel() + out.getIndentLevel(), 0);
  EXPECT_STREQ(out.elapsed(1), "");
  out.close();
  const qvTest::Scratch texts;
  EXPECT_FALSE(out.open(texts.name("missing/out"), false));
  ASSERT_TRUE(out.open(texts.name("there"), false));
  EXPECT_FALSE(out.open(qvTest::wide(texts.path()), false)); // closes what was open
  EXPECT_EQ(out.getFile(), nullptr);
}

TEST(AppOutputStream, SharesFilesAndStandardOutput) {
  const qvTest::Scratch texts;
  AppOutputStream first(false), second(false), unflushed(true);
  first.open(texts.name("out"), false);
  first.open(texts.name("out"), true);
  second.open(texts.name("out"), true);
  first("1\n");
  second("2\n");
  first("3\n");
  EXPECT_EQ(texts.readText("out"), "1\n2\n3\n");
  {
    const AppOutputStream copy(first); // leaves the stream to the first handle
    copy("4\n");
  }
  first("5\n");
  EXPECT_EQ(texts.readText("out"), "1\n2\n3\n4\n5\n");

  unflushed.open(texts.name("kept"), false);
  unflushed("kept");
  EXPECT_EQ(texts.readText("kept"), "");
  unflushed.close();
  EXPECT_EQ(texts.readText("kept"), "kept");

  testing::internal::CaptureStdout();
  EXPECT_TRUE(first.open(IString("-"), false));
  EXPECT_EQ(first.getFile(), stdout);
  first("one ");
  first.close();
  std::printf("two");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "one two");
}

TEST(AppOutputStream, TellsNumbersInWords) {
  const qvTest::Scratch texts;
  AppOutputStream out(false);
  out.open(texts.name("out"), false);
  const struct {
    double seconds;
    const char* text;
  } rows[] = {
      {0, "0.000 seconds"},     {59.5, "59.500 seconds"},       {59.9996, "60.000 seconds"},
      {60, "01:00 minutes"},    {125.0, "02:05 minutes"},       {125.9, "02:05 minutes"},
      {7199, "119:59 minutes"}, {1e300, "35791394:07 minutes"}, {-1.5, "-1.500 seconds"},
  };
  for (const auto& row : rows) EXPECT_STREQ(out.elapsed(row.seconds), row.text);
  EXPECT_STREQ(out.elapsed(std::numeric_limits<double>::quiet_NaN()) + 3, " seconds");
  for (int n : {0, 1, 2, -1}) EXPECT_STREQ(out.plural(n), n == 1 ? "" : "s");
  EXPECT_STREQ(out.aBool(true), "true");
  EXPECT_STREQ(out.aBool(false), "false");
}

TEST(AppOutput, ErrorAndInfoGoToTheFirstTwoStreams) {
  const qvTest::Scratch texts;
  AppOutput& output = AppOutput::getInstance();
  output.info("swallowed");
  for (int i = 0; i < AppOutput::streamCount; ++i)
    output.getStream(i).open(texts.name(std::to_string(i)), false);
  output.setLevel(1);
  output.getStream(1).setLevel(0);
  output.error("%s %d\n", "e", 1);
  output.info(1, "%S\n", QV_W("wide"));
  output.error(2, "above\n");
  {
    const AppOutputStatusTab tooDeep(2);
    const AppOutputStatusTab tab(1);
    const AppOutputStatusTab another(-1);
    output.info(0, "in\n");
  }
  output.error("out\n");
  EXPECT_EQ(texts.readText("0"), "e 1\nwide\n        in\nout\n");
  EXPECT_EQ(texts.readText("1"), "e 1\nin\nout\n");
  EXPECT_EQ(texts.readText("2") + texts.readText("3"), "");
  for (int i = 0; i < AppOutput::streamCount; ++i) {
    EXPECT_EQ(output.getStream(i).getLevel(), i == 1 ? 0 : 1);
    output.getStream(i).close();
  }
}

} // namespace
