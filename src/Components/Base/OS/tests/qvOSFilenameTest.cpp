#include "Base/OS/qvOSFilename.h"

#include "Base/OS/qvOSNativePath.h"
#include "testing/qvTestDirectory.h"
#include "testing/qvTestSeed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

using qvOS::Filename;
using qvString::IString;

namespace {

using Wide = std::basic_string<qv::WChar>;

/// Text that a failure prints readably.
std::string shown(const IString& text) { return text.asUTF8(); }

std::string canonical(const Wide& path, qv::WChar sep) { return shown(Filename(IString(path), sep).name()); }

/// The rules of the canonical form one by one, each in the plainest way.
Wide naive(Wide text, qv::WChar sep) {
  const qv::WChar searched = sep == '\\' ? '\\' : '/';
  std::replace(text.begin(), text.end(), sep == '/' ? QV_W('\\') : QV_W('/'), sep);
  const std::size_t start = text.size() >= 2 ? 1 : 0;
  for (std::size_t at; (at = text.find(Wide(2, searched), start)) != Wide::npos;) text.erase(at, 1);

  const bool root = text.size() == 3 && text[1] == ':' && text[2] == sep;
  const bool server =
      text.size() > 2 && text[0] == sep && text[1] == sep && text.rfind(sep) == text.find(sep, 2);
  while (!root && !server && text.size() > 1 && text.back() == sep) text.pop_back();

  const Wide pattern = {searched, '.', '.', searched};
  for (std::size_t at; (at = text.find(pattern)) != Wide::npos;) {
    const Wide head = text.substr(0, at), tail = text.substr(at + 4);
    const std::size_t last = head.rfind(sep);
    if (last == Wide::npos && head == QV_W("..")) break;
    if (last != Wide::npos)
      text = head.substr(0, last + 1) + tail;
    else
      text = head == QV_W(".") ? Wide(QV_W("..")) + sep + tail : tail;
  }
  return text;
}

} // namespace

TEST(Filename, BringsPathsIntoCanonicalForm) {
  const struct {
    int line;
    const qv::WChar* in;
    const char* out;
  } rows[] = {
      {__LINE__, QV_W(""), ""},
      {__LINE__, QV_W("a\\\\b\\"), "a\\b"},
      {__LINE__, QV_W("\\\\srv\\share\\\\x"), "\\\\srv\\share\\x"},
      {__LINE__, QV_W("\\\\\\srv"), "\\\\srv"},
      {__LINE__, QV_W("C:\\"), "C:\\"},
      {__LINE__, QV_W("\\\\"), "\\"},
      {__LINE__, QV_W("\\\\srv\\"), "\\\\srv\\"},
      {__LINE__, QV_W("a\\b\\..\\c"), "a\\c"},
      {__LINE__, QV_W(".\\..\\x"), "..\\x"},
      {__LINE__, QV_W("..\\..\\x"), "..\\..\\x"},
      {__LINE__, QV_W("\\..\\x"), "x"},
      {__LINE__, QV_W("a\\.."), "a\\.."},
      {__LINE__, QV_W("a\\b\\c\\..\\..\\..\\..\\x"), "..\\x"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(shown(Filename(IString(row.in)).name()), row.out) << "line " << row.line;
  }
}

TEST(Filename, FollowsTheRulesOneByOne) {
  qvTest::Random random(41);
  const Wide alphabet = QV_W("\\\\\\/..:Cab");
  for (int round = 0; round < 50000; ++round) {
    Wide path(random.below(16), ' ');
    for (qv::WChar& c : path) c = alphabet[random.below(alphabet.size())];
    for (const qv::WChar sep : {QV_W('\\'), QV_W('/'), QV_W(':')})
      ASSERT_EQ(canonical(path, sep), shown(IString(naive(path, sep)))) << shown(IString(path));
  }
  Wide longest; // which takes for ever if each step walks all of it
  for (int i = 0; i < 200000; ++i) longest += QV_W("a\\..\\");
  EXPECT_EQ(canonical(longest + QV_W("x"), '\\'), "x");
}

TEST(Filename, SplitsIntoParts) {
  const struct {
    int line;
    const qv::WChar* path;
    const char *prefix, *dirname, *basename, *trunk, *suffix;
  } rows[] = {
      {__LINE__, QV_W(""), "", "", "", "", ""},
      {__LINE__, QV_W("C:\\x\\y.txt"), "C:", "C:\\x", "y.txt", "y", "txt"},
      {__LINE__, QV_W("C:\\"), "C:", "C:\\", "", "", ""},
      {__LINE__, QV_W("C:"), "C:", "C:", "", "", ""},
      {__LINE__, QV_W("C:x\\y"), "C:", "C:x", "y", "y", ""},
      {__LINE__, QV_W("x"), "", "", "x", "x", ""},
      {__LINE__, QV_W("\\y"), "", "\\", "y", "y", ""},
      {__LINE__, QV_W("\\\\srv"), "\\\\srv", "\\\\srv", "", "", ""},
      {__LINE__, QV_W("\\\\srv\\share"), "\\\\srv\\share", "\\\\srv\\share", "", "", ""},
      {__LINE__, QV_W("\\\\srv\\share\\y"), "\\\\srv\\share", "\\\\srv\\share", "y", "y", ""},
      {__LINE__, QV_W("a\\.profile"), "", "a", ".profile", "", "profile"},
      {__LINE__, QV_W("a\\.."), "", "a", "..", ".", ""},
      {__LINE__, QV_W("name."), "", "", "name.", "name", ""},
      {__LINE__, QV_W("a.b.c"), "", "", "a.b.c", "a.b", "c"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    const Filename file{IString(row.path)};
    EXPECT_EQ(file.prefix(), IString(row.prefix));
    EXPECT_EQ(file.dirname(), IString(row.dirname));
    EXPECT_EQ(file.basename(), IString(row.basename));
    EXPECT_EQ(file.baseTrunk(), IString(row.trunk));
    EXPECT_EQ(file.baseSuffix(), IString(row.suffix));
    EXPECT_EQ(file.components(),
              (qv::vector<IString>{row.prefix, row.dirname, row.basename, row.trunk, row.suffix}));
  }
  const Filename drive("C:/x/y.z", '/'), network("//srv/share/y", '/');
  EXPECT_EQ(shown(drive.dirname()), "C:/x");
  EXPECT_EQ(shown(drive.basename()), "y.z");
  EXPECT_FALSE(drive.isAbsolute());
  EXPECT_EQ(shown(network.prefix()), "") << "a network name begins with two backslashes";
}

TEST(Filename, KnowsWhatIsAbsoluteAndWhatIsReserved) {
  for (const char* path : {"C:\\x", "C:/", "\\\\s"})
    EXPECT_TRUE(Filename(IString(path)).isAbsolute()) << path;
  for (const char* path : {"\\x", "C:x", "C:", "", "x\\y", "\\\\"})
    EXPECT_FALSE(Filename(IString(path)).isAbsolute()) << path;
  for (const char* name : {"con", "PRN.txt", "x\\aux", "Nul.a", "COM1", "lpt9.log"})
    EXPECT_TRUE(isWindowsReservedDeviceName(Filename(IString(name)))) << name;
  for (const char* name : {"", "COM0", "NULL", "COMx", "con.txt.bak", "lpt10"})
    EXPECT_FALSE(isWindowsReservedDeviceName(Filename(IString(name)))) << name;
}

TEST(Filename, JoinsDirectoriesAndNames) {
  const struct {
    int line;
    const qv::WChar *a, *b;
    const char* joined;
  } rows[] = {
      {__LINE__, QV_W("a"), QV_W("b"), "a\\b"},     {__LINE__, QV_W("a\\"), QV_W("\\b"), "a\\b"},
      {__LINE__, QV_W("a"), QV_W(""), "a"},         {__LINE__, QV_W(""), QV_W("b\\"), "b"},
      {__LINE__, QV_W(""), QV_W(""), ""},           {__LINE__, QV_W("C:"), QV_W("x"), "C:x"},
      {__LINE__, QV_W("C:\\"), QV_W("x"), "C:\\x"}, {__LINE__, QV_W("a"), QV_W("..\\b"), "b"},
      {__LINE__, QV_W("a/b"), QV_W("c"), "a/b\\c"}, {__LINE__, QV_W("\\\\s\\d"), QV_W("c"), "\\\\s\\d\\c"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(shown(Filename::join(IString(row.a), IString(row.b))), row.joined) << "line " << row.line;
  }
  EXPECT_EQ(shown(Filename::join("a", "b", "c")), "a\\b\\c");
  EXPECT_EQ(shown(Filename::join("C:", "b", "c", "..")), "C:b\\c\\..");
}

TEST(Filename, CarriesTheSeparatorOnAssignmentOnly) {
  const Filename slashed("a/b", '/');
  Filename copied(slashed), assigned;
  assigned = slashed;
  EXPECT_EQ(shown(copied.basename()), "a/b");
  EXPECT_EQ(shown(assigned.basename()), "b");
  assigned = assigned.dirname(); // its own part
  EXPECT_EQ(shown(assigned.name()), "a");
  copied = IString("c/d");
  assigned = IString("c\\d");
  EXPECT_EQ(shown(copied.name()), "c\\d");
  EXPECT_EQ(shown(assigned.name()), "c/d");
}

TEST(Filename, ChangesAndTellsTheCurrentDirectory) {
  const Filename before = Filename().getCwd();
  const qvTest::Directory directory;
  const Filename scratch(qvOS::fromNativePath(directory.path().c_str()));
  EXPECT_TRUE(scratch.setCwd());
  const Filename here = Filename().getCwd();
  EXPECT_EQ(shown(here.basename()), shown(scratch.basename()));
  const Filename sub("sub", '/');
  EXPECT_TRUE(sub.makeDir());
  EXPECT_FALSE(sub.makeDir());
  EXPECT_TRUE(qvOS_FilenameMakeDir("sub/below"));
  EXPECT_FALSE(Filename(IString("D:\\sub")).makeDir());
  EXPECT_EQ(directory.entries(), 2);
  EXPECT_FALSE(Filename(IString("missing")).setCwd());
  std::filesystem::create_directory(directory.path(std::string(250, 'n')));
  EXPECT_TRUE(Filename(IString(250u, 'n')).setCwd());
  EXPECT_TRUE(Filename().getCwd().name().isEmpty());
  EXPECT_TRUE(before.setCwd());
}

TEST(Filename, ServesCallersWithoutClasses) {
  char out[64];
  for (const auto& [function, part] : {std::pair(&qvOS_FilenamePrefix, "C:"),
                                       {&qvOS_FilenameDirname, "C:\\d"},
                                       {&qvOS_FilenameBasename, "t.s"},
                                       {&qvOS_FilenameBaseTrunk, "t"},
                                       {&qvOS_FilenameBaseSuffix, "s"}}) {
    function("C:\\d\\t.s", out);
    EXPECT_STREQ(out, part);
  }
  qvOS_FilenameJoin("a", "b", out);
  EXPECT_STREQ(out, "a\\b");
  qvOS_FilenamePrefix(nullptr, out);
  EXPECT_STREQ(out, "");
}
