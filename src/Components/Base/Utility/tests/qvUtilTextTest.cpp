#include "Base/Utility/qvUtilText.h"

#include "Base/String/qvStringCharacter.h"

#include <gtest/gtest.h>

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
  // Bytes are counted, but wide text ends at its first NUL, as a copy of it does.
  EXPECT_EQ(plain(split(CString("a\0,b", 4), ',', false, false)), (Strings{std::string("a\0", 2), "b"}));
  EXPECT_EQ(plain(split(IString(QV_W("a\0,b"), 4), QV_W(','), false, false)), (Strings{"a"}));
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

} // namespace
