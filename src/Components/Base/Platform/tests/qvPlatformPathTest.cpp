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

TEST(PlatformPath, MakesPathsAbsolute) {
  namespace fs = std::filesystem;
  std::string cwd, here, absolute;
  ASSERT_EQ(workingDirectory(&cwd), 0);
  const qvTest::Directory directory;
  ASSERT_EQ(setWorkingDirectory(directory.path().c_str()), 0);
  ASSERT_EQ(workingDirectory(&here), 0);
  EXPECT_TRUE(fs::equivalent(here, directory.path()));
  const std::string up = fs::path(here).parent_path().string();
  for (const auto& [path, result] : {std::pair<std::string, fs::path>("x", fs::path(here) / "x"),
                                     {".", here},
                                     {"../x/.", fs::path(up) / "x"},
                                     {here, here}}) {
    EXPECT_EQ(absolutePath(path.c_str(), &absolute), 0);
    EXPECT_EQ(absolute, result.string()) << path;
  }
  EXPECT_EQ(errorKind(absolutePath("", &absolute)), ErrorKind::notFound);
  EXPECT_EQ(errorKind(realPath("missing", &absolute)), ErrorKind::notFound);
  EXPECT_EQ(realPath("../.", &absolute), 0);
  EXPECT_TRUE(fs::equivalent(absolute, up));
  EXPECT_EQ(setWorkingDirectory(cwd.c_str()), 0);
}

TEST(PlatformError, NamesWhatHappens) {
  for (int kind = 0; kind <= static_cast<int>(ErrorKind::other); ++kind)
    EXPECT_EQ(errorKind(errorNumber(static_cast<ErrorKind>(kind))), static_cast<ErrorKind>(kind));
  EXPECT_EQ(errorKind(-5), ErrorKind::other);
  EXPECT_NE(systemErrorText(errorNumber(ErrorKind::notFound)),
            systemErrorText(errorNumber(ErrorKind::exists)));
  EXPECT_NE(systemErrorText(123456).find("123456"), std::string::npos);
}

TEST(PlatformRandom, DiffersEachTime) {
  std::set<std::uint64_t> seen;
  for (int i = 0; i < 100; ++i) seen.insert(randomName());
  {
    qvTest::PlatformScript script;
    script.failCall(0, errorNumber(ErrorKind::other), "random", 100);
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
