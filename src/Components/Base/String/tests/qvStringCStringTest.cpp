#include "Base/String/qvStringCString.h"

#include "Base/Containers/qvVector.h"
#include "Base/String/qvStringCharacter.h"
#include "testing/qvTestStrings.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace qvString {
namespace {

/// Reaches what only derived classes may ask.
struct Checked : CString {
  using CString::CString;
  bool in(unsigned int pos) const { return doBoundsCheck(pos); }
  bool in(unsigned int pos, unsigned int count) const { return doBoundsCheck(pos, count); }
};

TEST(CString, Constructors) {
  const CString nul("a\0b", 3);
  EXPECT_EQ(CString(static_cast<const char*>(nullptr)), "");
  EXPECT_EQ(CString(static_cast<const char*>(nullptr), 5), "");
  EXPECT_EQ(CString("abc", -1), "");
  EXPECT_EQ(CString("abcdef", 3), "abc");
  EXPECT_EQ(CString('x'), "x");
  EXPECT_EQ(CString(3, 'x'), "xxx");
  EXPECT_EQ(CString(nul).length(), 3u); // unlike IString, a copy keeps its NULs
  EXPECT_EQ(nul.substr(1).view(), std::string_view("\0b", 2));
  EXPECT_EQ((nul + nul).length(), 6u);
  EXPECT_EQ(nul, CString(std::string_view("a\0b", 3)));
  EXPECT_FALSE(nul == "a");
  EXPECT_EQ(CString::npos, 0xFFFFFFFFu);
  EXPECT_EQ(nul.maxSize(), 0xFFFFFFFEu);
  EXPECT_THROW(CString(String::npos, 'x'), std::length_error);
}

TEST(CString, EmptyStrings) {
  CString empty;
  EXPECT_TRUE(empty.isEmpty() && empty.isNull() && empty.isAscii());
  EXPECT_EQ(empty.first() + empty.last() + empty.length(), 0u);
  EXPECT_EQ(empty.asCharStoreSize(), 1u);
  EXPECT_NO_THROW(empty.erase(5, 1));
  EXPECT_NO_THROW(empty.erase(0, String::npos));
  EXPECT_EQ(empty.find(""), String::npos);
  EXPECT_EQ(CString("a").find(""), String::npos);
  EXPECT_EQ(CString("a").rfind(CString()), String::npos);
  EXPECT_THROW(empty.insert(1, "x"), std::out_of_range);
  EXPECT_THROW(CString("a").erase(2, 1), std::out_of_range);
  EXPECT_THROW(static_cast<void>(CString("a").substr(2)), std::out_of_range);
}

TEST(CString, BoundsChecksIgnoreTheRestFromThePosition) {
  const Checked text("abc");
  EXPECT_TRUE(text.in(2));
  EXPECT_FALSE(text.in(3));
  EXPECT_TRUE(text.in(2, 3)); // measured against the whole length
  EXPECT_FALSE(text.in(2, 4));
  EXPECT_TRUE(text.in(2, String::npos));
  EXPECT_FALSE(text.in(3, 0));
}

TEST(CString, StripsOneEndOnly) {
  EXPECT_EQ(CString("xxaxx").strip('x'), "axx");
  EXPECT_EQ(CString("xxaxx").rstrip('x'), "xxa");
  EXPECT_EQ(CString(" \t a\n").stripSpaces(), "a\n");
  EXPECT_EQ(CString(" a \t\n").rstripSpaces(), " a");
  EXPECT_EQ(CString("  ").stripSpaces(), "");
  EXPECT_EQ(CString("  ").rstripSpaces(), "");
}

TEST(CString, ComparesBytesAsUnsigned) {
  EXPECT_LT(CString("a").compare("\xE9"), 0);
  EXPECT_GT(CString("ab").compare("a"), 0);
  EXPECT_EQ(CString("").compare(static_cast<const char*>(nullptr)), 0);
  EXPECT_EQ(CString("AbC").compareNoCase("aBc"), 0);
  EXPECT_LT(CString("Ab").compareNoCase("aBc"), 0);
  EXPECT_GT(CString("Z").compareNoCase("a"), 0);
  EXPECT_EQ(CString("AbC").collateNoCase("aBc"), 0);
  EXPECT_LT(CString("B").collate("a"), 0);
  EXPECT_EQ(CString("aBc1").toUpperCase(), "ABC1");
  EXPECT_EQ(CString("aBc1").toLowerCase(), "abc1");
  EXPECT_FALSE(CString("a\x80").isAscii());
  EXPECT_EQ(CString("ab1c").find(&isDigit), 2u);
}

TEST(CString, Formats) {
  CString text("old");
  EXPECT_EQ(text.format("%s", ""), String::npos); // an empty text counts as a failure
  EXPECT_EQ(text.format(""), String::npos);
  EXPECT_EQ(text.format(static_cast<const char*>(nullptr)), String::npos);
  EXPECT_EQ(text.format(static_cast<const CString*>(nullptr)), String::npos);
  EXPECT_EQ(text, "old");
  EXPECT_EQ(text.format("%s-%S-%d", "narrow", QV_W("wide"), 7), 13u);
  EXPECT_EQ(text, "narrow-wide-7");
  EXPECT_EQ(text.format("<%s>", text.asChar()), 15u);
  EXPECT_EQ(text, "<narrow-wide-7>");
  const CString held("%05d");
  EXPECT_EQ(text.format(&held, 42), 5u);
  EXPECT_EQ(text, "00042");
  EXPECT_EQ(text.format("a%cb", 0), 1u); // up to the first NUL
  for (const unsigned int size : {0u, 1u, 2u, 255u, 256u, 257u, 5000u})
    for (const int width : {1, 254, 255, 256, 257, 511, 512, 513, 5000}) {
      EXPECT_EQ(text.format(size, "%*d", width, 1), static_cast<unsigned int>(width));
      EXPECT_EQ(text.length(), static_cast<unsigned int>(width));
    }
}

TEST(CString, CopiesSwapsAndLiesInVectors) {
  CString a("one"), b("two");
  swap(a, b);
  EXPECT_EQ(a, "two");
  a = std::move(b);
  EXPECT_EQ(a, "one");
  a = *&a;
  EXPECT_EQ(a += a, "oneone");
  EXPECT_EQ(a += '!', "oneone!");
  EXPECT_EQ(a.asMultibyte(), a.asChar());
  const std::unique_ptr<char, decltype(&std::free)> copy(a.copyAsMultibyte(), &std::free);
  EXPECT_STREQ(copy.get(), "oneone!");
  EXPECT_GE(a.reserve(1000), 1000u);
  qv::vector<CString> strings;
  for (int i = 0; i < 50; ++i) strings.append(CString(static_cast<unsigned int>(i), 'x'));
  EXPECT_EQ(strings[49].length(), 49u);
}

TEST(CString, PlainFunctions) {
  CString* const made = CString_create("text");
  EXPECT_EQ(*made, "text");
  CString_delete(made);
  CString_delete(nullptr);
}

} // namespace
} // namespace qvString
