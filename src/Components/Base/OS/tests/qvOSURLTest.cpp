#include "Base/OS/qvOSURL.h"

#include <gtest/gtest.h>

#include <string>

using qvOS::URL;
using qvString::CString;

namespace {

std::string shown(const CString& text) { return {text.asChar(), text.length()}; }

} // namespace

TEST(URL, TakesLocatorsApart) {
  const struct {
    int line;
    const char *text, *protocol, *authority, *host;
    int port;
    const char *path, *query, *ref, *encodedPath;
  } rows[] = {
      {__LINE__, "XY://Host:8080/A b", "xy", "host:8080", "host", 8080, "/A b", "", "", "/A%20b"},
      {__LINE__, "xy://h:", "xy", "h:", "h", 80, "/", "", "", "/"},
      {__LINE__, "xy://h?q#r", "xy", "h?q#r", "h?q#r", 80, "/", "", "", "/"},
      {__LINE__, "https://h/", "https", "h", "h", 443, "/", "", "", "/"},
      {__LINE__, "ftp://u:p@h/x", "ftp", "u:p@h", "u", 0, "/x", "", "", "/x"},
      {__LINE__, "xy://h/p#f?qq", "xy", "h", "h", 80, "/p#f", "qq", "", "/p#f"},
      {__LINE__, "xy://h/p?ab", "xy", "h", "h", 80, "/p", "ab", "", "/p"},
      {__LINE__, "xy://h/p?a#r?s", "xy", "h", "h", 80, "/p", "a", "r?s", "/p"},
      {__LINE__, "xy://?ab", "xy", "", "", 80, "", "ab", "", ""},
      {__LINE__, "xy://", "xy", "", "", 80, "/", "", "", "/"},
      {__LINE__, "://h/x", "", "h", "h", 80, "/x", "", "", "/x"},
      {__LINE__, "xy://h/a\\b//c/", "xy", "h", "h", 80, "/a/b/c/", "", "", "/a/b/c/"},
      {__LINE__, "xy://h/a%20b", "xy", "h", "h", 80, "/a%20b", "", "", "/a%2520b"},
      {__LINE__, "xy://h:99999999999999999999/", "xy", "h:99999999999999999999", "h",
       static_cast<int>(9223372036854775807), "/", "", "", "/"},
      // Plain paths and files.
      {__LINE__, "", "file", "", "", 80, "", "", "", ""},
      {__LINE__, "a/b?c#d", "file", "", "", 80, "a\\b?c#d", "", "", "a\\b?c#d"},
      {__LINE__, "/C:/x y/", "file", "", "", 80, "C:\\x y", "", "", "C:\\x%20y"},
      {__LINE__, "file:///C:/x", "file", "", "", 80, "C:\\x", "", "", "C:\\x"},
      {__LINE__, "file://srv/x", "file", "", "", 80, "srv\\x", "", "", "srv\\x"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    const URL url(row.text);
    EXPECT_EQ(shown(url.getProtocol()), row.protocol);
    EXPECT_EQ(shown(url.getAuthority()), row.authority);
    EXPECT_EQ(shown(url.getHost()), row.host);
    EXPECT_EQ(url.getPort(), row.port);
    EXPECT_EQ(shown(url.getPath(false)), row.path);
    EXPECT_EQ(shown(url.getPath(true)), row.encodedPath);
    EXPECT_EQ(shown(url.getQuery(false)), row.query);
    EXPECT_EQ(shown(url.getRef(false)), row.ref);
  }
}

TEST(URL, PutsItselfTogether) {
  const struct {
    int line;
    const char *text, *full, *name, *dirname, *canonicalPath;
  } rows[] = {
      {__LINE__, "xy://H/a b/c?q r#s<", "xy://h/a%20b/c?q%20r#s%3C", "xy://h/a%20b/c", "xy://h/a%20b/",
       "/a%20b/c"},
      {__LINE__, "xy://h", "xy://h/", "xy://h/", "xy://h", "/"},
      {__LINE__, "C:\\d\\", "file://C:\\d", "C:\\d\\", "C:\\", "C:\\d"},
      {__LINE__, "d/", "file://d", "d", "\\", "d"},
      {__LINE__, "", "file://", "\\", "\\", ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    const URL url(row.text);
    EXPECT_EQ(shown(url.getFullURL(true)), row.full);
    EXPECT_EQ(shown(url.getName(true)), row.name);
    EXPECT_EQ(shown(url.getDirname(true)), row.dirname);
    EXPECT_EQ(shown(url.getCanonicalPath(true)), row.canonicalPath);
  }
  const URL remote("xy://h/a/../d e/t.s/");
  EXPECT_EQ(shown(remote.dirname(false)) + "|" + shown(remote.dirname(true)), "/d e|/d%20e");
  EXPECT_EQ(shown(remote.baseTrunk(false)) + "|" + shown(remote.baseSuffix(false)), "t|s");
  // A copy takes the platform's separator, an assigned value keeps the slash.
  const URL copied(remote);
  EXPECT_EQ(shown(copied.basename(false)), "/d e/t.s");
  URL assigned("x");
  assigned = remote;
  EXPECT_EQ(shown(assigned.basename(false)), "t.s");
}

TEST(URL, KnowsWhatIsAbsolute) {
  const struct {
    const char* text;
    bool absolute, absolutePath, local;
  } rows[] = {{"C:\\x", true, true, true},    {"x", false, false, true},
              {"\\x", false, false, true},    {"xy://h/x", false, true, false},
              {"\\\\s\\d", true, true, true}, {"iman://x", false, true, false}};
  for (const auto& row : rows) {
    EXPECT_EQ(URL(row.text).isAbsolute(), row.absolute) << row.text;
    EXPECT_EQ(isAbsolutePath(row.text), row.absolutePath) << row.text;
    EXPECT_EQ(isLocalFile(row.text), row.local) << row.text;
  }
  EXPECT_TRUE(URL("IMAN://x").IsIMan() && !URL("xy://iman").IsIMan());
  // Paths compare by the rule of their protocol.
  EXPECT_TRUE(URL("C:\\A").comparePath(URL("c:/a")));
  EXPECT_TRUE(URL("xy://H/a").comparePath(URL("xy://h/a?q")));
  EXPECT_FALSE(URL("xy://h/A").comparePath(URL("xy://h/a")));
}

TEST(URL, EncodesAndDecodes) {
  EXPECT_EQ(shown(URL::encode("a b<c>d%e\xC3&")), "a%20b%3Cc%3Ed%25e\xC3&");
  const struct {
    const char* in;
    std::string out;
  } rows[] = {{"abc%4", "abc"},       {"abc%", "abc"}, {"%zz", std::string(1, '\0')},         {"%41b", "Ab"},
              {"%e4%E4", "\xE4\xE4"}, {"%4g", "@"},    {"%%41", std::string("\x04", 1) + "1"}};
  for (const auto& row : rows) EXPECT_EQ(shown(URL::decode(row.in)), row.out) << row.in;
  EXPECT_EQ(shown(URL::decode(qvString::IString(QV_W("\u00e4%20")))), "\xC3\xA4 ");
  for (int c = 1; c < 256; ++c) {
    const CString text(static_cast<char>(c));
    EXPECT_EQ(URL::decode(URL::encode(text)), text);
  }
}

TEST(URL, FindsIllegalCharacters) {
  for (const char* text : {"", "a/b\\c:d[e]", "!%'()*-._~", "\xC3\xA4\x80"})
    EXPECT_FALSE(URL::hasIllegalCharacters(CString(text))) << text;
  for (const char c : std::string(" \"#$&+,;<=>?@^`{|}\x01\x1F\x7F"))
    EXPECT_TRUE(URL::hasIllegalCharacters(CString(c))) << c;
  const struct {
    const char* text;
    bool illegal;
  } rows[] = {{"C:\\a", false},       {"C:\\a b", false},  {"a[1]", true},        {"a?b", true},
              {"xy://h/p?<>", false}, {"x:y://h/p", true}, {"xy://h\\i/p", true}, {"xy://u:p@h/", false}};
  for (const auto& row : rows) EXPECT_EQ(URL(row.text).hasIllegalCharacters(), row.illegal) << row.text;
}

TEST(URL, RemovesSeparators) {
  EXPECT_EQ(shown(URL::removeDuplicateSeparators("||a||b|||c", '|')), "||a|b|c");
  for (const auto& [text, left] :
       {std::pair("a//", "a"), {"/", "/"}, {"", ""}, {"//srv/", "//srv/"}, {"C:/", "C:/"}})
    EXPECT_EQ(shown(URL::removeTrailingSeparators(text, '/')), left);
}
