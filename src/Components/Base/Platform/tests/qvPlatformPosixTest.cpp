// What only systems of this family have: other ways of renaming and copying, permission bits and owners,
// device files, and paths that lead into one tree.
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformFile.h"
#include "Base/Platform/qvPlatformPath.h"
#include "Base/Platform/tests/qvPlatformTestRename.h"
#include "testing/qvTestDirectory.h"
#include "testing/qvTestPlatform.h"
#include "testing/qvTestSeed.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <memory>

using namespace qvPlatform;

namespace {

using Wide = std::basic_string<qv::WChar>;

std::string toNative(const Wide& path) { return nativePath(path.data(), path.size()); }
Wide toWide(const std::string& path) { return widePath(path.data(), path.size()); }

FileInfo infoOf(const std::string& path) {
  FileInfo info;
  EXPECT_EQ(queryFile(path.c_str(), &info), 0) << path;
  return info;
}

} // namespace

TEST(PlatformPosix, RenamesLinksAndWithoutTheSystemsOwnForm) {
  const qvTest::RenameRow rows[] = {
      {__LINE__, "file", "new", ErrorKind::none},
      {__LINE__, "file", "other", ErrorKind::exists},
      {__LINE__, "file", "dangling", ErrorKind::exists},
      {__LINE__, "file", "empty", ErrorKind::exists},
      {__LINE__, "file", "file", ErrorKind::none},
      {__LINE__, "file", "nowhere/new", ErrorKind::notFound},
      {__LINE__, "missing", "new", ErrorKind::notFound},
      {__LINE__, "dangling", "new", ErrorKind::none},
      {__LINE__, "full", "new", ErrorKind::none},
      {__LINE__, "full", "empty", ErrorKind::exists},
      {__LINE__, "full", "full/inside", ErrorKind::invalid},
  };
  // The system's own form, then the form by a second name, then that by reserving the name.
  for (const int lacking : {0, 1, 2})
    for (const auto& row : rows) {
      SCOPED_TRACE(testing::Message() << "lacking " << lacking);
      const auto furnish = [](const qvTest::Directory& directory) {
        std::filesystem::create_symlink("nowhere", directory.path("dangling"));
      };
      qvTest::expectRename(row, furnish, [lacking] {
        auto script = std::make_unique<qvTest::PlatformScript>();
        if (lacking > 0) script->failCall(0, EINVAL, "rename");
        if (lacking > 1) script->failCall(0, EPERM, "link");
        return script;
      });
    }
}

TEST(PlatformPosix, LosesNothingWhereARenameFails) {
  const qvTest::Directory directory;
  const std::string from = directory.path("from"), to = directory.path("to");
  for (const int lacking : {1, 2}) {
    int error = 0;
    const int failed = qvTest::failEveryCall(
        EIO, nullptr,
        [&] {
          std::filesystem::remove(to);
          directory.write("from", "content");
        },
        [&] {
          // The rule that is there already goes first, so a call that it fails is not failed twice.
          auto& script = qvTest::PlatformScript::running();
          script.failCall(0, EINVAL, "rename");
          if (lacking > 1) script.failCall(0, EPERM, "link");
          error = renameFile(from.c_str(), to.c_str());
        },
        [&] { EXPECT_EQ(directory.read(error ? "from" : "to"), "content"); });
    EXPECT_GT(failed, 2);
  }
}

TEST(PlatformPosix, TellsWhatABufferLost) {
  std::FILE* full = nullptr;
  ASSERT_EQ(openStream("/dev/full", "w", &full), 0);
  EXPECT_EQ(writeStream(full, "x", 1, nullptr), 0);
  EXPECT_EQ(errorKind(closeStream(full)), ErrorKind::noSpace);
}

TEST(PlatformPosix, CopiesThroughABufferAndOverLinks) {
  const qvTest::Directory directory;
  const std::string content(200001, 'c'), dangling = directory.path("dangling");
  const std::string from = directory.write("from", content);
  std::filesystem::create_symlink("aim", dangling);
  EXPECT_EQ(errorKind(copyFile(from.c_str(), dangling.c_str(), false)), ErrorKind::exists);
  ASSERT_EQ(setPermissions(from.c_str(), 0467), 0);
  qvTest::PlatformScript script;
  script.failCall(0, EOPNOTSUPP, "clone");
  script.failCall(0, EOPNOTSUPP, "copy");
  EXPECT_EQ(copyFile(from.c_str(), dangling.c_str(), true), 0);
  EXPECT_EQ(script.count("write"), 4) << "64 KiB at once";
  EXPECT_EQ(directory.read("aim"), content);
  EXPECT_EQ(infoOf(dangling).permissions, 0467u);
  ASSERT_EQ(setPermissions(from.c_str(), 0604), 0);
  script.failCall(0, EPERM, "attributes", 2); // Neither owner nor group may be given.
  EXPECT_EQ(copyAttributes(from.c_str(), dangling.c_str()), 0);
  EXPECT_EQ(infoOf(dangling).permissions, 0604u);
  EXPECT_EQ(errorKind(EROFS), ErrorKind::denied);
}

TEST(PlatformPosix, TurnsWidePathsNative) {
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

TEST(PlatformPosix, TurnsNativePathsWide) {
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

TEST(PlatformPosix, LosesNoByteOfAnyName) {
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

TEST(PlatformPosix, MakesPathsAbsolute) {
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

TEST(PlatformPosix, KnowsItsDirectories) {
  qvTest::TemporaryPlace place("");
  for (const auto& [set, result] :
       {std::pair("/var/tmp//", "/var/tmp"), {"relative", "/tmp"}, {"", "/tmp"}, {"///", "/"}}) {
    place.set(set);
    EXPECT_EQ(temporaryDirectory(), result) << set;
  }
}
