#include "Base/String/qvStringTable.h"

#include "Base/Containers/qvVector.h"
#include "Base/OS/qvOSNativePath.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/String/qvStringFormatArguments.h"
#include "Base/String/qvStringTableCatalog.h"
#include "Base/Utility/qvUtilText.h"
#include "testing/qvTestDirectory.h"
#include "testing/qvTestPlatform.h"
#include "testing/qvTestSeed.h"
#include "testing/qvTestStrings.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

using namespace std::string_literals;

namespace {

using qvString::CString;
using qvString::IString;
using qvStringTable::appStringTable;
using qvStringTable::Key;
using qvStringTable::Manager;
using qvStringTable::StringTable;
using qvUtil::Error;
using Keys = qv::vector<Key>;

IString utf8(const std::string& text) { return IString(text.c_str(), qvString::UTF8Encoding); }

std::string textOf(const char* key) { return IString(appStringTable().getString(key)).asUTF8(); }

/// Catalogs in a scratch directory, read into an empty table.
class Catalog : public testing::Test {
protected:
  Error load(const std::string& content) {
    appStringTable().clear();
    scratch_.write("catalog", content);
    return Manager::loadCatalog(name_);
  }
  /// The error of that code, which tells a line's number and text.
  [[nodiscard]] Error lineError(int code, int line, const std::string& message,
                                const std::string& text) const {
    IString whole;
    whole.format(QV_W("String file %s error encountered, line %d, file %S: \n%s: %S\n"),
                 code == 3 ? "parsing" : "conversion", line, name_.asWChar(), message.c_str(),
                 utf8(text).asWChar());
    return Error(code, whole);
  }
  ~Catalog() override { appStringTable().clear(); }

  const qvTest::Directory scratch_;
  const IString name_ = qvOS::fromNativePath(CString(scratch_.path("catalog")));
};

TEST(StringTableKey, SplitsAsSplitDoes) {
  std::vector<std::string> all{""};
  for (std::size_t i = 0; i < all.size() && all[i].size() < 6; ++i)
    for (const char c : {'a', '.', '_', '-'}) all.push_back(all[i] + c);
  for (const std::string& text : all) {
    const Key key(text.c_str());
    const qv::vector<CString> parts = qvUtil::split(key.value(), '.', false, false);
    const bool two = parts.size() == 2;
    CString set, rest;
    EXPECT_EQ(key.getSubParts(set, rest), two);
    EXPECT_EQ(set, two ? parts[0] : CString()) << text;
    EXPECT_EQ(rest, two ? parts[1] : key.value()) << text;
    const bool valid =
        two && !parts[0].isEmpty() && !parts[1].isEmpty() && text.find('-') == std::string::npos;
    EXPECT_EQ(Key::isValidKeyString(key.value()), valid) << text;
  }
  EXPECT_FALSE(Key::isValidKeyString("s\xc3\xa9t.x"));
  EXPECT_TRUE(Key::isValidKeyString("Set9_.0"));
}

TEST(StringTableKey, ComparesAndAssigns) {
  EXPECT_EQ(Key("menu.open").compareSetID("menu.close"), 0);
  EXPECT_LT(Key("menu.open").compareSetID("menus.a"), 0);
  EXPECT_EQ(Key("menu").compareSetID("a.b.c"), 0); // neither has a set
  EXPECT_LT(Key("menu").compareSetID("a.b"), 0);
  EXPECT_GT(Key("\xff").compare("a"), 0);
  Key key;
  const CString text("c.d");
  EXPECT_EQ(key.assign("a.b").value(), "a.b");
  EXPECT_EQ(key.assign(Key("b.c")).value(), "b.c");
  EXPECT_EQ((key = text).value(), text);
  EXPECT_TRUE((key = "x.y") == Key("x.y") && !(key == Key("x.z")));
}

TEST(StringTable, BehavesAsAnOrderedMap) {
  qvTest::Random random(1);
  StringTable table;
  std::map<std::string, std::string> model;
  for (int i = 0; i < 4000; ++i) {
    const std::string name =
        std::string(1, char('a' + random.below(3))) + "." + std::to_string(random.below(40));
    const Key key(name.c_str());
    const std::string text = std::to_string(i);
    bool found = false;
    const auto known = model.find(name);
    EXPECT_EQ(table.getString(key, &found), known == model.end() ? IString() : utf8(known->second));
    EXPECT_EQ(found, known != model.end());
    EXPECT_EQ(table.keyExists(key), found);
    if (random.oneIn(3)) {
      EXPECT_EQ(table.remove(key), found);
      model.erase(name);
    } else {
      EXPECT_TRUE(table.assign(key, utf8(text)));
      model[name] = text;
    }
    EXPECT_EQ(table.size(), int(model.size()));
    if (random.oneIn(1000)) table.clear(), model.clear();
  }
  EXPECT_EQ(table.isEmpty(), model.empty());
  Keys keys{"old"};
  EXPECT_EQ(table.getKeys([](const Key&, const Key&) { return 0; }, Key(), keys), table.size());
  std::vector<std::string> wanted, got;
  for (const auto& [name, text] : model) wanted.push_back(name);
  for (const Key& key : keys) got.push_back(key.value().asChar());
  EXPECT_EQ(got, wanted);
}

TEST(StringTable, FallsBackAndListsSets) {
  StringTable table;
  const IString fallback("fallback");
  bool found = true;
  EXPECT_EQ(&table.getString("a.b", fallback, &found), &fallback);
  EXPECT_FALSE(found);
  EXPECT_TRUE(table.getString("a.b").isEmpty());
  for (const char* key : {"b.2", "a.1", "b.1", "none", "b.3.4"}) table.assign(key, utf8(key));
  table.assign("a.1", table.getString("b.2")); // a text of the table itself
  EXPECT_EQ(table.getString("a.1", fallback), IString("b.2"));
  Keys keys;
  EXPECT_EQ(table.getKeysInSet("b.x", keys), 2);
  EXPECT_EQ(keys, (Keys{"b.1", "b.2"}));
  EXPECT_EQ(table.getKeysInSet(keys[1], keys), 2); // a key that is replaced meanwhile
  EXPECT_EQ(table.getKeysInSet("setless", keys), 2);
  EXPECT_EQ(keys, (Keys{"b.3.4", "none"}));
  EXPECT_EQ(&appStringTable(), &appStringTable());
}

TEST_F(Catalog, ReadsEntries) {
  ASSERT_FALSE(load("// first column\n"
                    " // second column\n"
                    "\n \t \n"
                    "a.plain = \"text\"\n"
                    "\t a.blanks\t =\t\" in and out \" \t\r\n"
                    "a.cutoff= \"x\"\n"
                    "a.url = \"http://x//\"\n"
                    "a.equals = \"=\"\n"
                    "a.escapes = \"1\\r\\n2\\n3\\t4\"\"5\\\"6\\x\\\\n\"\n"
                    "a.inner = \"a\"b\"\n"
                    "a.wide = \"\xc3\xa9\xe6\xbc\xa2\xf0\x9f\x98\x80\"\n"
                    "a.long = \\\n"
                    "// a comment between\n"
                    "\n"
                    "  \"one \\  \r\n"
                    "  two\"\n"
                    "a.empty = \"\"\n"
                    "a.dot. = \"passed over\"\n"
                    "a.plain = \"later\"\n"
                    "a.end = \"no newline\""));
  const struct {
    const char *key, *text;
  } rows[] = {
      {"a.plain", "later"},      {"a.blanks", " in and out "},
      {"a.cutof", "x"},          {"a.url", "http://x//"},
      {"a.equals", "="},         {"a.escapes", "1\r\n2\n3\t4\"5\"6\\x\\\n"},
      {"a.inner", "a\"b"},       {"a.wide", "\xc3\xa9\xe6\xbc\xa2\xf0\x9f\x98\x80"},
      {"a.long", "one two"},     {"a.empty", ""},
      {"a.dot.", "passed over"}, {"a.end", "no newline"},
  };
  for (const auto& row : rows) {
    EXPECT_TRUE(appStringTable().keyExists(row.key)) << row.key;
    EXPECT_EQ(textOf(row.key), row.text);
  }
  EXPECT_EQ(appStringTable().size(), int(std::size(rows)));

  EXPECT_FALSE(load("\xef\xbb\xbf"
                    "a.b = \"after a mark\"\na.c = \\\n\"dropped\" \\"));
  EXPECT_EQ(appStringTable().size(), 1);
  EXPECT_EQ(textOf("a.b"), "after a mark");
  EXPECT_FALSE(load(""));
  EXPECT_FALSE(load("a.b = \"x\"\0 = what follows a NUL\nc.d = \"y\""s));
  EXPECT_EQ(textOf("a.b") + textOf("c.d"), "xy");
}

TEST_F(Catalog, TellsTheLineThatIsWrong) {
  const char* const format = "Expected idToken = \"quoted value string\" format";
  const char* const quotes = "Expected quotes surrounding value string. "
                             "Illegal character(s) encountered at start or end of string";
  const char* const ascii = "Key string contains non-ascii characters";
  const char* const invalid = "Key string does not have valid format";
  const struct {
    int row;
    std::string content;
    int line;
    const char* message;
    const char* text;
  } rows[] = {
      {__LINE__, "words\n", 1, format, "words"},
      {__LINE__, "\n\n= \"x\"", 3, format, "= \"x\""},
      {__LINE__, "a.b =", 1, format, "a.b ="},
      {__LINE__, "a.b = \"x\" // note\n", 1, quotes, "a.b = \"x\" // note"},
      {__LINE__, "a.b = x\r\n", 1, quotes, "a.b = x"},
      {__LINE__, "a.b = \"", 1, quotes, "a.b = \""},
      {__LINE__, "a.b = // \"x\"", 1, format, "a.b ="},
      {__LINE__, "a.b // = x", 1, quotes, "a.b // = x"},
      {__LINE__, "\xc3\xa9.b = \"x\"", 1, ascii, "\xc3\xa9.b = \"x\""},
      {__LINE__, "\xc3\xa9.b = x", 1, quotes, "\xc3\xa9.b = x"},
      {__LINE__, "a.b=\"x\"", 1, invalid, "a.b=\"x\""},
      {__LINE__, "a.b.c = \"x\"", 1, invalid, "a.b.c = \"x\""},
      {__LINE__, "ab = \"x\"", 1, invalid, "ab = \"x\""},
      {__LINE__, "a\n=\n", 1, format, "a"},
      {__LINE__, "a=\"x\"", 1, invalid, "a=\"x\""},
      {__LINE__, "a.ok = \"x\"\na.b \\\n\n= \\\n x\na.c = \"y\"", 5, quotes, "a.b = x"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.row);
    EXPECT_EQ(load(row.content), lineError(3, row.line, row.message, row.text));
    EXPECT_EQ(appStringTable().size(), row.content.starts_with("a.ok") ? 1 : 0);
  }
}

TEST_F(Catalog, RefusesBytesThatAreNotUtf8) {
  const char* const message = "Error interpreting input as UTF-8";
  EXPECT_EQ(load("a.b = \"x\"\nc.d = \"\xff\"\ne.f = \"y\"\n"),
            lineError(5, 2, message, "c.d = \"\xef\xbf\xbd\"\n"));
  EXPECT_EQ(appStringTable().size(), 1);
  EXPECT_EQ(load("// \xc3\n").num(), 5); // in comments, too
}

TEST_F(Catalog, CutsLinesOfMoreThan4097Bytes) {
  for (int length = 4094; length <= 4100; ++length) {
    SCOPED_TRACE(length);
    const std::string text(static_cast<std::size_t>(length) - 8, 'x');
    const Error error = load("a.b = \"" + text + "\"\nwords\n");
    if (length <= 4097) {
      // A line feed that did not fit is a line of its own.
      const int line = length < 4097 ? 2 : 3;
      EXPECT_EQ(error, lineError(3, line, "Expected idToken = \"quoted value string\" format", "words"));
      EXPECT_EQ(textOf("a.b"), text);
    } else {
      const std::string message = "Expected quotes surrounding value string. "
                                  "Illegal character(s) encountered at start or end of string";
      EXPECT_EQ(error, lineError(3, 1, message, ("a.b = \"" + text).substr(0, 4097)));
    }
  }
  EXPECT_EQ(load("a.b = \"" + std::string(4089, 'x') + "\xc3\xa9\"\n").num(), 5); // cut in a character
  EXPECT_FALSE(load("a.b = \\\n" + std::string("\"") + std::string(4000, 'x') + "\\\n" +
                    std::string(4000, 'y') + "\"\n"));
  EXPECT_EQ(textOf("a.b").size(), 8000u);
}

TEST_F(Catalog, TellsWhyTheSystemRefuses) {
  using namespace qvPlatform;
  const IString missing = qvOS::fromNativePath(CString(scratch_.path("missing")));
  EXPECT_EQ(Manager::loadCatalog(missing),
            Error(1, "Can't open catalog file %s for read: %s\n", missing.asMultibyte(),
                  systemErrorText(errorNumber(ErrorKind::notFound)).c_str()));
  EXPECT_EQ(Manager::loadCatalog(qvOS::fromNativePath(CString(scratch_.path()))).num(), 1);

  std::string content;
  for (int i = 0; i < 100000; ++i)
    content +=
        "set" + std::to_string(i % 100) + ".k" + std::to_string(i) + " = \"" + std::to_string(i) + "\"\n";
  EXPECT_FALSE(load(content));
  EXPECT_EQ(appStringTable().size(), 100000);
  EXPECT_EQ(textOf("set99.k99999"), "99999");
  Keys keys;
  EXPECT_EQ(appStringTable().getKeysInSet("set7.x", keys), 1000);
  {
    qvTest::PlatformScript script;
    const int failure = errorNumber(ErrorKind::ioFailure);
    script.failCall(3, failure, "read");
    EXPECT_EQ(load(content),
              Error(2, "Error reading file %s: %s\n", name_.asMultibyte(), systemErrorText(failure).c_str()));
  }
  EXPECT_GT(appStringTable().size(), 1000); // what was read before stays
  EXPECT_LT(appStringTable().size(), 90000);
}

TEST(StringFormatArguments, TellsKindsAlike) {
  const struct {
    const qv::WChar* format;
    const char* arguments;
  } rows[] = {
      {QV_W("100 %, 100%% and %y %n, %"), ""},
      {QV_W("%s %-5.3S %c %C %p"), "%s%S%c%C%p"},
      {QV_W("%ls %hs %lc %ws %hC"), "%S%s%C%S%c"},
      {QV_W("%d %5i %+.3d %hhd %hd %ld %lld %I64d %I32d %jd %td %zd"),
       "%d%d%d%hhd%hd%ld%I64d%I64d%d%jd%zd%zd"},
      {QV_W("%u %o %#x %X %I64u %llx"), "%u%o%x%X%I64u%I64x"},
      {QV_W("%f %5.2f %lf %Lf %g"), "%f%f%f%Lf%g"},
      {QV_W("%*d %.*f %*.*s %%%d"), "%*d%.*f%*.*S%d"}, // stars keep the runtime's reading
      {QV_W("20% sure"), "%S"},                        // as flags do
      {nullptr, ""},
  };
  for (const auto& row : rows)
    EXPECT_EQ(qvUtil::join(qvString::formatArguments(row.format)), CString(row.arguments));
}

} // namespace
