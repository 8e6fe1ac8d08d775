#include "Base/Utility/qvUtilText.h"

#include "Base/String/qvStringCharacter.h"
#include "Base/Utility/qvUtilInterval.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

using namespace qvUtil;
using qvString::CString;
using qvString::IString;

namespace {

using Strings = std::vector<std::string>;

Strings plain(const qv::vector<CString>& parts) {
  Strings result;
  for (const CString& part : parts) result.emplace_back(part.view());
  return result;
}

Strings plain(const qv::vector<IString>& parts) {
  Strings result;
  for (const IString& part : parts) result.emplace_back(part.view().begin(), part.view().end());
  return result;
}

bool isComma(char c) { return c == ','; }
bool isWideComma(qv::WChar c) { return c == ','; }

TEST(UtilText, Split) {
  const struct {
    int line;
    const char* text;
    Strings all, skipping, keeping;
  } rows[] = {
      {__LINE__, "", {}, {}, {}},
      {__LINE__, "a", {"a"}, {"a"}, {"a"}},
      {__LINE__, "a,,b", {"a", "", "b"}, {"a", "b"}, {"a", ",", ",", "b"}},
      {__LINE__, "a,", {"a"}, {"a"}, {"a", ","}},
      {__LINE__, ",a", {"", "a"}, {"a"}, {",", "a"}},
      {__LINE__, ",,", {"", ""}, {}, {",", ","}},
      {__LINE__, ",abc,de,", {"", "abc", "de"}, {"abc", "de"}, {",", "abc", ",", "de", ","}},
  };
  for (const auto& row : rows) {
    const auto expect = [&row](const Strings& expected, bool skip, bool keep) {
      EXPECT_EQ(plain(split(CString(row.text), ',', skip, keep)), expected) << "line " << row.line;
      EXPECT_EQ(plain(split(CString(row.text), isComma, skip, keep)), expected) << "line " << row.line;
      EXPECT_EQ(plain(split(IString(row.text), QV_W(','), skip, keep)), expected) << "line " << row.line;
      EXPECT_EQ(plain(split(IString(row.text), isWideComma, skip, keep)), expected) << "line " << row.line;
    };
    expect(row.all, false, false);
    expect(row.skipping, true, false);
    expect(row.keeping, false, true);
    expect(row.keeping, true, true);
    EXPECT_TRUE(join(split(CString(row.text), ',', false, true)) == CString(row.text));
    EXPECT_TRUE(join(split(IString(row.text), QV_W(','), false, true)) == IString(row.text));
  }
}

TEST(UtilText, MultiLines) {
  const struct {
    int line;
    const char* text;
    Strings lines;
  } rows[] = {
      {__LINE__, "", {""}},
      {__LINE__, "a\nb", {"a", "b"}},
      {__LINE__, "a\r\nb\n", {"a", "", "b", ""}},
      {__LINE__, "\n", {"", ""}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(plain(splitMultiLines(CString(row.text))), row.lines) << "line " << row.line;
    EXPECT_EQ(numMultiLines(CString(row.text)), static_cast<int>(row.lines.size())) << "line " << row.line;
  }
}

struct QuoteRow {
  int line;
  const char* text;
  Strings tokens;
  int code;
  const char* message;
};

template <std::size_t N>
void expectTokens(const QuoteRow (&rows)[N], Error (*function)(const CString&, qv::vector<CString>&)) {
  for (const QuoteRow& row : rows) {
    qv::vector<CString> tokens{CString("old")};
    const Error error = function(CString(row.text), tokens);
    EXPECT_EQ(plain(tokens), row.tokens) << "line " << row.line;
    EXPECT_EQ(error.num(), row.code) << "line " << row.line;
    EXPECT_STREQ(error.message(), row.message) << "line " << row.line;
  }
}

TEST(UtilText, SplitWithQuotes) {
  const QuoteRow rows[] = {
      {__LINE__, "", {}, 0, ""},
      {__LINE__, " \t ", {}, 0, ""},
      {__LINE__, "a \"b\"", {"a", "b"}, 0, ""},
      {__LINE__, " \"a b\"  c\\d ", {"a b", "c\\d"}, 0, ""},
      {__LINE__, "\"\" x", {"", "x"}, 0, ""},
      {__LINE__, "x \"", {"x"}, 3, "Unmatched double quote"},
      {__LINE__, "x \"y z", {"x"}, 3, "Unmatched double quote"},
      {__LINE__, "x a\"b\"", {"x"}, 3, "Unexpected character before a double quote: 'a'"},
      {__LINE__, "\"a\"b", {}, 4, "Unexpected character after double quote: 'b'"},
      {__LINE__, "\"a\"\"b\"", {}, 4, "Unexpected character after double quote: '\"'"},
  };
  expectTokens(rows, splitWithQuotes);
}

TEST(UtilText, SplitWithQuotesAndBackslash) {
  const QuoteRow rows[] = {
      {__LINE__, "", {}, 0, ""},
      {__LINE__, "a\"b c\"d e", {"ab cd", "e"}, 0, ""},
      {__LINE__, "\"\" a\"\"", {"", "a"}, 0, ""},
      {__LINE__, "\\\"a\\\\ \"\\\"\"", {"\"a\\", "\""}, 0, ""},
      {__LINE__, "a \\", {"a"}, 3, "Single backslash character"},
      {__LINE__, "a b\\n", {"a"}, 5, "Illegal escape of character 'n'"},
      {__LINE__, "a b\"c d", {"a"}, 4, "Unmatched double quote"},
  };
  expectTokens(rows, splitWithQuotesAndBackslash);
}

TEST(UtilText, EscapingAndDuplicates) {
  EXPECT_TRUE(rebackslash(IString(QV_W("\\a\\\\b"))) == IString(QV_W("\\\\a\\\\\\\\b")));
  EXPECT_TRUE(rebackslash(IString()) == IString());
  EXPECT_TRUE(escapeMarkupText(IString(QV_W("a{b}\\"))) == IString(QV_W("a\\{b\\}\\\\")));
  EXPECT_EQ(plain(removeDuplicated({CString("b"), CString("a"), CString("b"), CString(""), CString("a")})),
            (Strings{"", "a", "b"}));
  EXPECT_TRUE(removeDuplicated({}).empty());
}

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
