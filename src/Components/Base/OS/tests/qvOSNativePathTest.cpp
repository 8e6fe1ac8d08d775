#include "Base/OS/qvOSNativePath.h"

#include "Base/OS/qvOSDirectoryIterator.h"
#include "Base/OS/qvOSExtendedPath.h"
#include "Base/OS/tests/qvOSTestNames.h"
#include "Base/Platform/qvPlatformError.h"
#include "testing/qvTestPlatform.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

using qvOS::DirectoryIterator;
using qvOS::Filename;
using qvString::IString;
using qvTest::native;
using qvTest::wide;

TEST(NativePath, ReachesEveryName) {
  qvTest::expectReaches({"with blank", ".hidden", "x.y.z", "a;b,c=d+e[f]", "%41", "\xC3\xA4\xE2\x82\xAC",
                         "\xF0\x9F\x98\x80", "CON_", std::string(255, 'n')});
}

TEST(DirectoryIterator, TellsKindsAndWhyItCannotWalk) {
  const qvTest::Directory directory;
  namespace fs = std::filesystem;
  fs::create_directory(directory.path("sub"));
  directory.write("file", "");
  const auto walk = [](const std::string& path, int code) {
    std::set<std::string> kinds;
    DirectoryIterator it(Filename(wide(path)));
    while (it.next())
      kinds.insert(native(it.name()) + (it.isDirectory() ? " d" : " ") + (it.isLink() ? "l" : ""));
    EXPECT_FALSE(it.next());
    EXPECT_EQ(it.error().num(), code) << path;
    return kinds;
  };
  EXPECT_EQ(walk(directory.path(), 0), (std::set<std::string>{"sub d", "file "}));
  EXPECT_TRUE(walk(directory.path("missing"), 18).empty() && walk(directory.path("file"), 10).empty());
  qvTest::PlatformScript script;
  script.failCall(1, qvPlatform::errorNumber(qvPlatform::ErrorKind::ioFailure), "readdir");
  EXPECT_LE(walk(directory.path(), 4).size(), 1u) << "what came before the failure";
}

TEST(ExtendedPath, PutsTheLongPrefixBeforeAWholePath) {
  IString out;
  for (const auto& [name, extended] :
       {std::pair("C:/a\\..\\b\\", "\\\\?\\C:\\b"), {"\\\\srv\\share\\x", "\\\\?\\UNC\\srv\\share\\x"}}) {
    EXPECT_FALSE(qvOS::makeExtendedPath(name, out));
    EXPECT_STREQ(out.asUTF8(), extended);
  }
  EXPECT_FALSE(qvOS::makeExtendedPath("x\\y", out));
  const std::filesystem::path here = std::filesystem::current_path();
  EXPECT_EQ(out, QV_W("\\\\?\\") + wide((here / "x" / "y").string()));
  const qvUtil::Error error = qvOS::makeExtendedPath("", out);
  EXPECT_EQ(error.num(), 14);
  EXPECT_STRNE(error.message(), "");
  EXPECT_TRUE(out.isEmpty());
  qvTest::PlatformScript script;
  script.failCall(0, qvPlatform::errorNumber(qvPlatform::ErrorKind::denied), "getcwd");
  EXPECT_EQ(qvOS::makeExtendedPath("x", out).num(), 14);
}
