#include "Base/Platform/qvPlatformPath.h"

#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformFile.h"
#include "Base/Platform/qvPlatformRandom.h"
#include "Base/Platform/qvPlatformTime.h"
#include "testing/qvTestDirectory.h"
#include "testing/qvTestPlatform.h"
#include "testing/qvTestSeed.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

using namespace qvPlatform;

namespace {

using Wide = std::basic_string<qv::WChar>;

std::string toNative(const Wide& path) { return nativePath(path.data(), path.size()); }
Wide toWide(const std::string& path) { return widePath(path.data(), path.size()); }

} // namespace

TEST(PlatformPath, TurnsWidePathsNative) {
  const struct {
    int line;
    Wide wide;
    std::string native;
  } rows[] = {
      {__LINE__, QV_W("C:\\tmp\\x"), "/tmp/x"},
      {__LINE__, QV_W("c:/tmp/x"), "/tmp/x"},
      {__LINE__, QV_W("/tmp/x"), "/tmp/x"},
      {__LINE__, QV_W("\\\\?\\C:\\tmp\\x"), "/tmp/x"},
      {__LINE__, QV_W("//?/C:/tmp/x"), "/tmp/x"},
      {__LINE__, QV_W("\\"), "/"},
      {__LINE__, QV_W("C:"), "."},
      {__LINE__, QV_W("C:x\\y"), "x/y"},
      {__LINE__, QV_W("a b\\..\\c:d"), "a b/../c:d"},
      {__LINE__, QV_W("\u00e4\U0001F600"), "\xC3\xA4\xF0\x9F\x98\x80"},
      {__LINE__, {u'a', 0xDC5C, u'b', 0xDC3A, 0xDCFF}, "a\\b:\xFF"},
      // What has no place in the one tree of files.
      {__LINE__, QV_W(""), ""},
      {__LINE__, QV_W("D:\\x"), ""},
      {__LINE__, QV_W("\\\\server\\share\\x"), ""},
      {__LINE__, QV_W("//tmp/x"), ""},
      {__LINE__, QV_W("\\\\.\\C:\\x"), ""},
      {__LINE__, QV_W("\\\\?\\C:"), ""},
      {__LINE__, QV_W("\\\\?\\UNC\\server\\share\\x"), ""},
      {__LINE__, {u'a', 0, u'b'}, ""},
      {__LINE__, {u'a', 0xD800, u'b'}, ""},
      {__LINE__, {u'a', 0xDC2F, u'b'}, ""},
  };
  for (const auto& row : rows) EXPECT_EQ(toNative(row.wide), row.native) << "line " << row.line;
}

TEST(PlatformPath, TurnsNativePathsWide) {
  const struct {
    int line;
    std::string native;
    Wide wide;
  } rows[] = {
      {__LINE__, "/", QV_W("C:\\")},
      {__LINE__, "/tmp/x y", QV_W("C:\\tmp\\x y")},
      {__LINE__, "//tmp//x/", QV_W("C:\\\\tmp\\\\x\\")},
      {__LINE__, "", QV_W("")},
      {__LINE__, "a\\b", {u'a', 0xDC5C, u'b'}},
      {__LINE__, "C:/x", {u'C', 0xDC3A, u'\\', u'x'}},
      {__LINE__, "/d/C:x:y", {u'C', u':', u'\\', u'd', u'\\', u'C', 0xDC3A, u'x', u':', u'y'}},
      {__LINE__, "\xC3\xA4\xC3", {0x00E4, 0xDCC3}},
      {__LINE__, "\xED\xB2\x80", {0xDCED, 0xDCB2, 0xDC80}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(toWide(row.native), row.wide) << "line " << row.line;
    EXPECT_EQ(toNative(row.wide), row.native) << "line " << row.line;
  }
}

TEST(PlatformPath, LosesNoByteOfAnyName) {
  qvTest::Random random(20110805);
  const std::string alphabet = "/\\:.?C\xC3\xA4\xED\xB0\x80\xFF\xF0\x9F x";
  for (int round = 0; round < 20000; ++round) {
    std::string native(1 + random.below(12), ' ');
    for (char& c : native)
      c = random.oneIn(3) ? static_cast<char>(1 + random.below(255))
                          : alphabet[random.below(alphabet.size())];
    const Wide wide = toWide(native);
    ASSERT_EQ(toNative(wide), native);
    // A name in a directory has the same form as the whole path has.
    ASSERT_EQ(toWide("d/" + native), QV_W("d\\") + (native[0] == '/' ? wide.substr(2) : wide));
  }
}

TEST(PlatformPath, MakesPathsAbsolute) {
  std::string cwd, up, absolute;
  ASSERT_EQ(workingDirectory(&cwd), 0);
  const qvTest::Directory directory;
  std::filesystem::create_directory(directory.path("sub"));
  ASSERT_EQ(setWorkingDirectory(directory.path("sub").c_str()), 0);
  ASSERT_EQ(workingDirectory(&up), 0);
  const std::string here = up;
  up.erase(up.rfind('/'));
  const struct {
    int line;
    std::string path, result;
  } rows[] = {
      {__LINE__, "x", here + "/x"},
      {__LINE__, ".", here},
      {__LINE__, "../x/.", up + "/x"},
      {__LINE__, "a/../b", here + "/a/../b"}, // `a` may be a link.
      {__LINE__, "/", "/"},
      {__LINE__, "../../../../../../../../../../../../x", "/x"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(absolutePath(row.path.c_str(), &absolute), 0);
    EXPECT_EQ(absolute, row.result) << "line " << row.line;
  }
  EXPECT_EQ(errorKind(absolutePath("", &absolute)), ErrorKind::notFound);
  std::filesystem::create_directory_symlink(directory.path("sub"), directory.path("link"));
  EXPECT_EQ(realPath("../link/.", &absolute), 0);
  EXPECT_EQ(absolute, here);
  EXPECT_EQ(errorKind(realPath("missing", &absolute)), ErrorKind::notFound);

  std::string deep = here;
  const std::string name(200, 'd');
  for (int level = 0; level < 6; ++level) {
    ASSERT_EQ(makeDirectory(name.c_str()), 0);
    ASSERT_EQ(setWorkingDirectory(name.c_str()), 0);
    deep += "/" + name;
  }
  EXPECT_EQ(workingDirectory(&absolute), 0);
  EXPECT_EQ(absolute, deep);
  EXPECT_EQ(setWorkingDirectory(cwd.c_str()), 0);
}

TEST(PlatformPath, KnowsItsDirectories) {
  qvTest::TemporaryPlace place("");
  for (const auto& [set, result] :
       {std::pair("/var/tmp//", "/var/tmp"), {"relative", "/tmp"}, {"", "/tmp"}, {"///", "/"}}) {
    place.set(set);
    EXPECT_EQ(temporaryDirectory(), result) << set;
  }
}

TEST(PlatformError, NamesWhatHappens) {
  for (int kind = 0; kind <= static_cast<int>(ErrorKind::other); ++kind)
    EXPECT_EQ(errorKind(errorNumber(static_cast<ErrorKind>(kind))), static_cast<ErrorKind>(kind));
  EXPECT_EQ(errorKind(EROFS), ErrorKind::denied);
  EXPECT_EQ(errorKind(-5), ErrorKind::other);
  EXPECT_NE(systemErrorText(ENOENT), systemErrorText(EEXIST));
  EXPECT_NE(systemErrorText(123456).find("123456"), std::string::npos);
}

TEST(PlatformRandom, DiffersEachTime) {
  std::set<std::uint64_t> seen;
  for (int i = 0; i < 100; ++i) seen.insert(randomName());
  {
    qvTest::PlatformScript script;
    script.failCall(0, ENOSYS, "random", 100);
    for (int i = 0; i < 100; ++i) seen.insert(randomName());
    EXPECT_EQ(script.failures(), 100);
  }
  EXPECT_EQ(seen.size(), 200u);
  unsigned char bytes[1000] = {};
  EXPECT_EQ(randomBytes(bytes, sizeof bytes), 0);
  EXPECT_GT(std::set<unsigned char>(bytes + 700, bytes + 1000).size(), 100u);
}

TEST(PlatformTime, KnowsClockAndCalendar) {
  const std::int64_t before = steadyNanoseconds();
  sleepNanoseconds(2'000'000);
  sleepNanoseconds(-1);
  EXPECT_GE(steadyNanoseconds() - before, 2'000'000);
  EXPECT_NEAR(static_cast<double>(nanosecondsNow()) * 1e-9, static_cast<double>(secondsNow()), 2.0);
  std::tm fields{};
  ASSERT_TRUE(universalTime(1234567890, &fields));
  EXPECT_EQ(fields.tm_year * 10000 + fields.tm_mon * 100 + fields.tm_mday, 1090113);
  EXPECT_EQ(fields.tm_hour * 10000 + fields.tm_min * 100 + fields.tm_sec, 233130);
  EXPECT_FALSE(universalTime(INT64_MAX, &fields));
}
