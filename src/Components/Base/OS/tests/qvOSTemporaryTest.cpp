#include "Base/OS/qvOSTemporary.h"

#include "Base/OS/tests/qvOSTestName.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformProcess.h"
#include "testing/qvTestDirectory.h"
#include "testing/qvTestPlatform.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace {

namespace fs = std::filesystem;
using namespace qvOS;
using qvString::CString;
using qvString::IString;

/// Whether the name lies in `directory` and its last part has the form of `pattern`.
bool isNameIn(const std::string& directory, const Filename& name, const std::string& pattern) {
  const testing::Matcher<const std::string&> form = testing::MatchesRegex(pattern);
  return qvTest::native(name.dirname()) == directory && form.Matches(qvTest::native(name.basename()));
}

TEST(Temporary, namesAreUniqueAndNotReserved) {
  const std::string directory = qvTest::native(getTempDirectory().name());
  const std::string process = std::to_string(qvPlatform::processId());
  const Filename plain = createTmpFilename("0.tmp", nullptr);
  EXPECT_TRUE(isNameIn(directory, plain, "QVT\\w+" + process + "\\.0\\.tmp")) << plain.name().asUTF8();
  EXPECT_NE(plain.name(), createTmpFilename("0.tmp", nullptr).name());
  EXPECT_TRUE(isNameIn(directory, createTmpFilename("", QV_W("a.bcd")), "a\\.b\\w+" + process));

  const qvTest::Directory scratch;
  const Filename variant = createNewFilenameVariant(qvTest::filename(scratch.path()), nullptr, "x");
  EXPECT_TRUE(isNameIn(scratch.path(), variant, "rec\\w+" + process + "\\.x"));
  EXPECT_EQ(scratch.entries(), 0);
  const Filename failed = createNewFilenameVariant(qvTest::filename(scratch.path("missing")), nullptr, "x");
  EXPECT_EQ(failed.name(), IString(("\\" + process + ".x").c_str()));

  char* narrow = qvOS_CreateTemporaryFileName("t");
  EXPECT_TRUE(isNameIn(directory, Filename(IString(narrow)), "QVT.*\\.t"));
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
  EXPECT_EQ(cleanupTempDirectory(qvTest::wide(scratch.path())), expected);
  for (const auto& row : rows) EXPECT_EQ(scratch.exists(row.name), !row.goes) << row.line;
  for (const char* name : {"young.ac$", "dir.ac$"}) EXPECT_TRUE(scratch.exists(name)) << name;

  fs::last_write_time(scratch.write("b.ac$", ""), fs::file_time_type::clock::now() - eightDays);
  const qvTest::TemporaryPlace place(scratch.path());
  qvTest::PlatformScript script;
  script.failCall(1, qvPlatform::errorNumber(qvPlatform::ErrorKind::ioFailure),
                  "opendir"); // Who runs this keeps what lies in the usual place.
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
