#include "Base/OS/qvOSTemporary.h"

#include "Base/OS/tests/qvOSTestName.h"
#include "testing/qvTestChild.h"
#include "testing/qvTestDirectory.h"
#include "testing/qvTestPlatform.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>

namespace {

namespace fs = std::filesystem;
using namespace qvOS;
using qvString::CString;
using qvString::IString;

bool isNameOf(const IString& name, const std::string& pattern) {
  return testing::Matcher<const std::string&>(testing::MatchesRegex(pattern)).Matches(qvTest::native(name));
}

TEST(Temporary, namesAreUniqueAndNotReserved) {
  const std::string directory = qvTest::native(getTempDirectory().name());
  const std::string process = std::to_string(getpid());
  const Filename plain = createTmpFilename("0.tmp", nullptr);
  EXPECT_TRUE(isNameOf(plain.name(), directory + "/QVT[0-9A-F]+" + process + "\\.0\\.tmp"))
      << plain.name().asUTF8();
  EXPECT_NE(plain.name(), createTmpFilename("0.tmp", nullptr).name());
  EXPECT_TRUE(isNameOf(createTmpFilename("", QV_W("a.bcd")).name(), directory + "/a\\.b[0-9A-F]+" + process));

  const qvTest::Directory scratch;
  const Filename variant = createNewFilenameVariant(qvTest::filename(scratch.path()), nullptr, "x");
  EXPECT_TRUE(isNameOf(variant.name(), scratch.path() + "/rec[0-9A-F]+" + process + "\\.x"));
  EXPECT_EQ(scratch.entries(), 0);
  const Filename failed = createNewFilenameVariant(qvTest::filename(scratch.path("missing")), nullptr, "x");
  EXPECT_TRUE(isNameOf(failed.name(), "/" + process + "\\.x")) << failed.name().asUTF8();

  char* narrow = qvOS_CreateTemporaryFileName("t");
  EXPECT_TRUE(isNameOf(IString(narrow), directory + "/QVT.*\\.t"));
  std::free(narrow);
  qv::WChar* wide = qvOS_GetTemporaryDirectoryW();
  EXPECT_EQ(IString(wide), getTempDirectory().name());
  std::free(wide);
}

TEST(Temporary, sweepTakesOldScratchFilesOnly) {
  const struct {
    int line;
    const char* name;
    bool goes;
  } rows[] = {
      {__LINE__, "kel12.unload", false},   {__LINE__, "kel123.unload", true},
      {__LINE__, "kelpaTempWire.", false}, {__LINE__, "kelpaTempWire.1", true},
      {__LINE__, ".ac$", false},           {__LINE__, "a.ac$", true},
      {__LINE__, "jam12out4", false},      {__LINE__, "jam123out4", true},
      {__LINE__, "jam123out", false},      {__LINE__, "jam123outx", false},
      {__LINE__, "jam12cmd3.bat", false},  {__LINE__, "jam123cmd4.bat", true},
  };
  const qvTest::Directory scratch;
  const auto eightDays = std::chrono::hours(8 * 24);
  int expected = 0;
  for (const auto& row : rows) {
    fs::last_write_time(scratch.write(row.name, ""), fs::file_time_type::clock::now() - eightDays);
    expected += row.goes;
  }
  scratch.write("young.ac$", "");
  fs::create_directory(scratch.path("dir.ac$"));
  fs::create_symlink("nowhere", scratch.path("dangling.ac$"));
  EXPECT_EQ(cleanupTempDirectory(qvTest::wide(scratch.path())), expected);
  for (const auto& row : rows) EXPECT_EQ(scratch.exists(row.name), !row.goes) << row.line;
  for (const char* name : {"young.ac$", "dir.ac$", "dangling.ac$"}) EXPECT_TRUE(scratch.exists(name)) << name;

  fs::last_write_time(scratch.write("b.ac$", ""), fs::file_time_type::clock::now() - eightDays);
  const qvTest::TemporaryPlace place(scratch.path());
  qvTest::PlatformScript script;
  script.failCall(1, EIO, "opendir"); // Who runs this keeps what lies in the usual place.
  EXPECT_EQ(cleanupTempDirectory(), 1);
  EXPECT_EQ(script.failures(), 1);
}

TEST(Temporary, typeNames) {
  const struct {
    int line;
    const char *name, *expected;
  } rows[] = {
      {__LINE__, "class A", "A"},
      {__LINE__, "class ", "class "},
      {__LINE__, "struct A", "struct A"},
      {__LINE__, nullptr, ""},
  };
  for (const auto& row : rows) {
    CString result("before");
    cleanupTypeIdName(row.name, result);
    EXPECT_STREQ(result.asChar(), row.expected) << row.line;
    EXPECT_STREQ(cleanupTypeIdName(row.name), row.expected) << row.line;
  }
}

} // namespace
