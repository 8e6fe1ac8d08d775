#include "Base/OS/qvOSFileOperations.h"

#include "Base/OS/qvOSFilesystem.h"
#include "Base/OS/tests/qvOSTestName.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformFile.h"
#include "testing/qvTestDirectory.h"
#include "testing/qvTestPlatform.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

namespace fs = std::filesystem;
using namespace qvOS;
using qvPlatform::ErrorKind;
using qvString::IString;
using qvTest::filename;
using qvUtil::Error;

std::string textOf(ErrorKind kind) { return qvPlatform::systemErrorText(qvPlatform::errorNumber(kind)); }

TEST(FileOperations, copyReportsEveryFailure) {
  const qvTest::Scratch scratch;
  scratch.write("from", "new");
  scratch.write("there", "old");
  fs::create_directory(scratch.path("dir"));
  // Where a directory on the way is missing, some systems give a number of its own.
  const int noParent = qvPlatform::deleteFile(scratch.path("no/parent").c_str()) == 2 ? 2 : 1;
  const struct {
    int line;
    const char *from, *to;
    bool overwrite;
    int code;
  } rows[] = {
      {__LINE__, "missing", "x", true, 2},   {__LINE__, "from", "no/parent", true, noParent},
      {__LINE__, "from", "there", false, 3}, {__LINE__, "from", "dir", true, 1},
      {__LINE__, "dir", "x", true, 1},       {__LINE__, "from", "from", true, 1},
      {__LINE__, "from", "fresh", false, 0}, {__LINE__, "from", "there", true, 0},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    EXPECT_EQ(scratch.read("there"), "old");
    EXPECT_EQ(fileCopy(scratch.name(row.from), scratch.name(row.to), row.overwrite).num(), row.code);
  }
  for (const char* name : {"from", "there", "fresh"}) EXPECT_EQ(scratch.read(name), "new") << name;
  EXPECT_EQ(scratch.entries(), 4);

  const IString from = scratch.name("missing"), to = scratch.name("x");
  EXPECT_EQ(fileCopy(from.asWChar(), to.asWChar(), false),
            Error(2, "Error copying %S to %S: %s", from.asWChar(), to.asWChar(),
                  textOf(ErrorKind::notFound).c_str()));
}

TEST(FileOperations, moveNeverLosesTheFile) {
  const qvTest::Scratch scratch;
  const std::string big(200000, 'b');
  scratch.write("from", big);
  {
    qvTest::PlatformScript script;
    const int failure = qvPlatform::errorNumber(ErrorKind::ioFailure);
    for (const char* call : {"clone", "copy", "write"}) script.failCall(0, failure, call, 100);
    EXPECT_EQ(fileMove(scratch.name("from"), scratch.name("to"), false).num(), 1);
  }
  EXPECT_EQ(scratch.read("from"), big);
  EXPECT_FALSE(scratch.exists("to")) << "no half of a copy stays";
  fs::permissions(scratch.path("from"), fs::perms(0640));
  const fs::perms permissions = fs::status(scratch.path("from")).permissions();
  EXPECT_FALSE(fileMove(scratch.name("from"), scratch.name("to"), false));
  EXPECT_EQ(scratch.read("to"), big);
  EXPECT_FALSE(scratch.exists("from"));
  EXPECT_EQ(fs::status(scratch.path("to")).permissions(), permissions);
}

TEST(FileOperations, renameStaysInTheDirectory) {
  const qvTest::Scratch scratch;
  scratch.write("a", "a");
  scratch.write("b", "b");
  fs::create_directory(scratch.path("dir"));
  const auto rename = [&](const char* from, const char* to) {
    return fileRename(scratch.name(from), scratch.name(to));
  };
  for (const char* target : {"b", "dir"}) EXPECT_EQ(rename("a", target), Error(6, "Unkown system error."));
  EXPECT_EQ(rename("missing", "c").num(), 6);
  EXPECT_EQ(rename("missing", "dir/c").num(), 2) << "across directories it is a copy";
  EXPECT_FALSE(rename("a", "dir/b"));
  EXPECT_FALSE(rename("b", "dir/b")) << "which overwrites";
  EXPECT_EQ(scratch.read("dir/b"), "b");
  EXPECT_FALSE(rename("dir", "moved"));
  EXPECT_EQ(scratch.entries(), 2);
}

TEST(FileOperations, deleteTakesNoDirectories) {
  const qvTest::Scratch scratch;
  const std::string path = scratch.write("f", "x");
  EXPECT_FALSE(fileDelete(qvTest::wide(path).asWChar()));
  EXPECT_EQ(fileDelete(path.c_str()), Error(1, textOf(ErrorKind::notFound).c_str()));
  EXPECT_EQ(fileDelete(filename(scratch.path())).num(), 1) << "a directory is no file";
}

TEST(FileOperations, exportedFunctions) {
  const qvTest::Scratch scratch;
  const std::string from = scratch.write("from", "12345");
  const std::string to = scratch.path("to");
  EXPECT_TRUE(qvOS_DoesDirectoryExist(from.c_str())) << "a plain file will do";
  EXPECT_FALSE(qvOS_DoesFileExist(to.c_str()) || qvOS_DoesFileExist(nullptr));
  EXPECT_FALSE(qvOS_CopyFileTo(from.c_str(), to.c_str())) << "false is success";
  EXPECT_EQ(scratch.read("to"), "12345");
  EXPECT_TRUE(qvOS_CopyFileTo(from.c_str(), from.c_str()));
  EXPECT_TRUE(qvOS_IsFileWriteable(to.c_str()) && qvOS_IsFileWriteableW(qvTest::wide(to).asWChar()));
  char buffer[8] = {};
  for (const int count : {-1, 0, 5, 6})
    EXPECT_EQ(qvOS_ReadHeaderFromFile(from.c_str(), buffer, count), count == 6 ? -1 : count) << count;
  EXPECT_STREQ(buffer, "12345");
  EXPECT_EQ(qvOS_ReadHeaderFromFile(from.c_str(), nullptr, 1), -1);
}

TEST(Filesystem, tellsSpace) {
  const qvTest::Scratch scratch;
  Filesystem system(scratch.name("missing"));
  EXPECT_EQ(system.size(), 0u);
  ASSERT_FALSE(system.stat());
  EXPECT_EQ(system.blockSize(), 1024u);
  EXPECT_EQ(system.size(), fs::space(scratch.path()).capacity / 1024);
  EXPECT_TRUE(system.avail() > 0 && system.avail() <= system.size() && !system.isRemote());
  for (const auto& [name, remote] : {std::pair("Q:\\d\\x", false), {"//s/d/x", true}}) {
    Filesystem elsewhere{IString(name)};
    EXPECT_EQ(elsewhere.stat().num(), 1) << name;
    EXPECT_EQ(elsewhere.isRemote(), remote) << name;
  }
  qvTest::PlatformScript script;
  script.failCall(0, qvPlatform::errorNumber(ErrorKind::ioFailure), "volume");
  EXPECT_EQ(system.stat(),
            Error(1, "Filesystem::stat(): GetDiskFreeSpaceEx(%S) failed: %s",
                  qvTest::wide(scratch.path()).asWChar(), textOf(ErrorKind::ioFailure).c_str()));
}

} // namespace
