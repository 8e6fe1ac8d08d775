#include "Base/String/qvStringIString.h"

#include "Base/Containers/qvVector.h"
#include "Base/String/qvStringCString.h"
#include "Base/String/qvStringCharacter.h"
#include "testing/qvTestLocale.h"
#include "testing/qvTestStrings.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>

namespace qvString {
namespace {

using View = std::basic_string_view<qv::WChar>;

TEST(IString, Constructors) {
  bool ok = false;
  EXPECT_EQ(IString(static_cast<const qv::WChar*>(nullptr)), IString());
  EXPECT_EQ(IString(static_cast<const char*>(nullptr), UTF8Encoding, &ok), IString());
  EXPECT_TRUE(ok);
  EXPECT_EQ(IString(QV_W("abcdef"), 3), IString("abc"));
  EXPECT_EQ(IString(QV_W("abcdef"), -3), IString());
  EXPECT_EQ(IString(2, QV_W('\x20AC')), IString(QV_W("\x20AC\x20AC")));
  EXPECT_EQ(IString('x', UTF8Encoding, &ok), IString(QV_W('x')));
  EXPECT_TRUE(ok);
  EXPECT_EQ(IString(3, 'x'), IString(CString("xxx")));
  EXPECT_EQ(IString("\xE2\x82\xAC", UTF8Encoding), IString(QV_W("\x20AC")));
  EXPECT_THROW(IString(String::npos, QV_W('x')), std::length_error);
}

TEST(IString, OnlyTheCopyIsCutAtANul) {
  const IString whole(QV_W("ab\0cd"), 5);
  EXPECT_EQ(whole.length(), 5u);
  EXPECT_EQ(IString(whole).view(), View(QV_W("ab")));
  EXPECT_EQ(whole.substr(1).view(), View(QV_W("b")));
  IString target;
  whole.substr(target, 1);
  EXPECT_EQ(target.view(), View(QV_W("b")));
  EXPECT_EQ((whole + whole).view(), View(QV_W("abab\0cd"), 7));
  target = whole;
  EXPECT_EQ(target, whole);
  EXPECT_EQ(target.assign(whole), whole);
  EXPECT_EQ(IString(whole.view()), whole);
  EXPECT_STREQ(whole.asUTF8(), "ab");
  EXPECT_EQ(whole.asUTF8StoreSize(), 3u);
  bool ok = true;
  EXPECT_STREQ(IString(QV_W('\0')).asUTF8(&ok), "");
  EXPECT_FALSE(ok);                                 // something was lost
  EXPECT_EQ(whole.compareNoCase(IString("AB")), 0); // compares copies
  EXPECT_NE(whole.compare(IString("ab")), 0);
}

TEST(IString, Sizes) {
  const IString empty, text(QV_W("a\x20AC"));
  EXPECT_EQ(empty.asMultibyteStoreSize(), 1u);
  EXPECT_EQ(empty.asWCharStoreSize(), 2u);
  EXPECT_EQ(text.asWCharStoreSize(), 6u);
  EXPECT_EQ(text.asUnicodeStoreSize(), 6u);
  EXPECT_EQ(text.asUTF8StoreSize(), 5u);
  EXPECT_EQ(text.maxSize(), 0xFFFFFFFEu);
  EXPECT_EQ(text.asUnicode(), text.asWChar());
}

TEST(IString, DecodesNarrowText) {
  const struct {
    int line;
    const char* bytes;
    View text;
    bool ok;
  } rows[] = {
      {__LINE__, "", QV_W(""), true},
      {__LINE__, nullptr, QV_W(""), true},
      {__LINE__, "abc", QV_W("abc"), true},
      {__LINE__,
       "\xEF\xBB\xBF"
       "abc",
       QV_W("abc"), true},
      {__LINE__, "\xEF\xBB\xBF", QV_W(""), false}, // nothing follows the byte order mark
      {__LINE__, "\xF0\x9F\x98\x80", QV_W("\xD83D\xDE00"), true},
      {__LINE__, "a\xFFz", QV_W("a\xFFFDz"), false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    bool ok = !row.ok;
    IString text("old");
    EXPECT_EQ(text.assign(row.bytes, UTF8Encoding, &ok).view(), row.text);
    EXPECT_EQ(ok, row.ok);
    EXPECT_EQ(IString(row.bytes, UTF8Encoding).view(), row.text);
  }
  std::string longText;
  for (int i = 0; i < 3000; ++i) longText += "a\xC3\xA9";
  EXPECT_EQ(IString(longText.c_str(), UTF8Encoding).length(), 6000u);
  EXPECT_EQ(IString(longText.c_str(), UTF8Encoding).asUTF8(), longText);
}

TEST(IString, DefaultEncodingFollowsTheLocale) {
  bool ok = true;
  EXPECT_STREQ(IString(QV_W("a\x20AC")).asMultibyte(DefaultEncoding, &ok), "a?");
  EXPECT_FALSE(ok);
  const qvTest::Locale locale(qvTest::utf8Locale);
  if (!locale) GTEST_SKIP() << "no locale with UTF-8";
  EXPECT_EQ(IString("a\xE2\x82", DefaultEncoding, &ok), IString("a??"));
  EXPECT_FALSE(ok);
  EXPECT_STREQ(IString(QV_W("a\x20AC")).asMultibyte(DefaultEncoding, &ok), "a\xE2\x82\xAC");
  EXPECT_TRUE(ok);
  EXPECT_EQ(IString("\xF0\x9F\x98\x80", DefaultEncoding, &ok), IString(QV_W("\xD83D\xDE00")));
  EXPECT_TRUE(ok);
  EXPECT_EQ(IString(QV_W("\xC9\x416")).toLowerCase(), IString(QV_W("\xE9\x436")));
  EXPECT_EQ(IString(QV_W("\xC9")).compareNoCase(IString(QV_W("\xE9"))), 0);
  EXPECT_EQ(IString(QV_W("\xC9")).collateNoCase(IString(QV_W("\xE9"))), 0);
}

TEST(IString, NarrowFormIsKeptUntilTheTextChanges) {
  IString text(QV_W("abc"));
  const char* const first = text.asUTF8();
  EXPECT_EQ(text.asUTF8(), first);
  text[0] = QV_W('x'); // does not mark the narrow form
  text.at(1) = QV_W('y');
  text = *&text; // does nothing at all
  EXPECT_STREQ(text.asUTF8(), "abc");
  EXPECT_STREQ(text.asMultibyte(), "xyc"); // another encoding is made anew
  bool ok = false;
  EXPECT_STREQ(text.asMultibyte(DefaultEncoding, &ok), "xyc");
  EXPECT_TRUE(ok);
  text.append(QV_W('\x20AC'));
  EXPECT_STREQ(text.asMultibyte(), "xyc?"); // nobody asks whether that is clean
  EXPECT_STREQ(text.asMultibyte(DefaultEncoding, &ok), "xyc?");
  EXPECT_FALSE(ok);
  ok = true;
  EXPECT_STREQ(text.asMultibyte(DefaultEncoding, &ok), "xyc?"); // now the answer is remembered
  EXPECT_FALSE(ok);
  text.erase();
  EXPECT_STREQ(text.asMultibyte(DefaultEncoding, &ok), "");
  EXPECT_TRUE(ok);
}

TEST(IString, ChangesOfTheWholeMarkTheNarrowForm) {
  void (*const changes[])(IString&) = {
      [](IString& s) { s.assign("x"); },
      [](IString& s) { s.stripSpaces(); },
      [](IString& s) { s.rstripSpaces(); },
      [](IString& s) { s.toUpperCase(); },
      [](IString& s) { s.toLowerCase(); },
      [](IString& s) { s.format("x"); },
      [](IString& s) { s.replace(IString("B"), IString("x")); },
      [](IString& s) { IString("xyz").substr(s, 1); },
  };
  for (std::size_t i = 0; i < std::size(changes); ++i) {
    IString text(QV_W(" aBc "));
    EXPECT_STREQ(text.asUTF8(), " aBc ");
    changes[i](text);
    EXPECT_STRNE(text.asUTF8(), " aBc ") << "change " << i;
    EXPECT_EQ(IString(text.asUTF8(), UTF8Encoding), text) << "change " << i;
  }
}

TEST(IString, SwapLeavesTheOthersNarrowForm) {
  IString a(QV_W("left")), b(QV_W("right"));
  EXPECT_STREQ(a.asUTF8(), "left");
  EXPECT_STREQ(b.asUTF8(), "right");
  a.swap(b);
  EXPECT_STREQ(a.asUTF8(), "right");
  EXPECT_EQ(b.view(), View(QV_W("left")));
  EXPECT_STREQ(b.asUTF8(), "right"); // still the form of its old text
  b.append(QV_W('!'));
  EXPECT_STREQ(b.asUTF8(), "left!");
  a = std::move(b);
  EXPECT_STREQ(a.asUTF8(), "left!");
}

TEST(IString, FindsAndReplaces) {
  const IString text(QV_W("one two one"));
  EXPECT_EQ(text.find(IString()), String::npos);
  EXPECT_EQ(text.find(QV_W("one"), 1), 8u);
  EXPECT_EQ(text.rfind(IString("one"), 7), 0u);
  EXPECT_EQ(text.find(&isSpace), 3u);
  EXPECT_EQ(text.findAny(IString()), String::npos);
  EXPECT_EQ(text.rfindAny(IString("wt")), 5u);
  IString changed("aaa");
  EXPECT_EQ(changed.replace(IString("a"), IString("aa")), IString("aaaaaa"));
  EXPECT_EQ(changed.replace(changed, IString("b")), IString("b"));
  EXPECT_EQ(changed.replace(IString(), IString("x")), IString("b"));
  EXPECT_EQ(IString("xax").strip(QV_W('x')), IString("ax"));
  EXPECT_EQ(IString("xax").rstrip(QV_W('x')), IString("xa"));
  EXPECT_FALSE(IString(QV_W("a\x80")).isAscii());
  EXPECT_LT(IString(QV_W("\xD83D")).compare(IString(QV_W("\xFFFF"))), 0); // by unit
  EXPECT_LT(IString("B").collate(IString("a")), 0);
  EXPECT_NE(IString(QV_W("\xD800\x461")).collate(IString(QV_W("\xD800\x61"))), 0); // no pairs
  EXPECT_NO_THROW(IString().erase(5, 1));
  EXPECT_THROW(IString().insert(1, QV_W("x")), std::out_of_range);
}

TEST(IString, Formats) {
  IString text("old");
  EXPECT_EQ(text.format(QV_W("")), String::npos);
  EXPECT_EQ(text.format(""), String::npos);
  EXPECT_EQ(text.format("%s", ""), String::npos);
  EXPECT_EQ(text.format(static_cast<const IString*>(nullptr)), String::npos);
  EXPECT_EQ(text, IString("old"));
  EXPECT_EQ(text.format(QV_W("%s-%S"), "narrow", QV_W("wide")), 11u);
  EXPECT_EQ(text, IString("narrow-wide"));
  EXPECT_EQ(text.format("%s-%S", "narrow", QV_W("wide")), 11u);
  EXPECT_EQ(text, IString("narrow-wide"));
  EXPECT_EQ(text.format(QV_W("%S %s"), text.asWChar(), text.asUTF8()), 23u);
  EXPECT_EQ(text, IString("narrow-wide narrow-wide"));
  const IString held("%03d");
  EXPECT_EQ(text.format(&held, 7), 3u);
  EXPECT_EQ(text.format(2u, &held, 7), 3u);
  EXPECT_EQ(text, IString("007"));
  for (const int width : {254, 255, 256, 511, 512, 513, 9000}) {
    EXPECT_EQ(text.format(300u, "%*d", width, 1), static_cast<unsigned int>(width));
    EXPECT_EQ(text.format(0u, QV_W("%*d"), width, 1), static_cast<unsigned int>(width));
    EXPECT_EQ(text.length(), static_cast<unsigned int>(width));
  }
}

TEST(IString, Copies) {
  const IString text(QV_W("a\x20AC"));
  bool ok = false;
  const std::unique_ptr<qv::WChar, decltype(&std::free)> wide(text.copyAsWChar(), &std::free);
  EXPECT_EQ(View(wide.get()), text.view());
  const std::unique_ptr<char, decltype(&std::free)> narrow(text.copyAsMultibyte(UTF8Encoding, &ok),
                                                           &std::free);
  EXPECT_STREQ(narrow.get(), "a\xE2\x82\xAC");
  EXPECT_TRUE(ok);
  EXPECT_EQ(text.convertToCString(), "a?");
  const std::unique_ptr<char[]> plain(IStringToTCHARCopy(text));
  EXPECT_STREQ(plain.get(), "a?");
  qv::vector<IString> strings;
  for (int i = 0; i < 50; ++i) strings.append(IString(static_cast<unsigned int>(i), QV_W('x')));
  EXPECT_EQ(strings[49].length(), 49u);
}

} // namespace
} // namespace qvString
