// What only systems of this family have: links that any user makes, names of any bytes, special files,
// permission bits and owners, and processes that fork.
#include "Base/OS/qvOSDirectoryIterator.h"
#include "Base/OS/qvOSExtendedPath.h"
#include "Base/OS/qvOSFileOperations.h"
#include "Base/OS/qvOSFileStatus.h"
#include "Base/OS/qvOSFilesystem.h"
#include "Base/OS/qvOSTemporary.h"
#include "Base/OS/tests/qvOSTestNames.h"
#include "Base/OS/tests/qvOSTestSave.h"
#include "testing/qvTestChild.h"
#include "testing/qvTestPlatform.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <set>

#include <sys/stat.h>
#include <sys/statvfs.h>

namespace {

namespace fs = std::filesystem;
using namespace qvOS;
using qvString::IString;
using qvTest::native;
using qvTest::wide;
using qvUtil::Error;

TEST(OSPosix, reachesNamesOfAnyBytes) {
  std::set<std::string> names = {
      "with blank", "C:",       "C:drive", "a\\..\\b",     "\\\\srv\\share", "D:\\x",
      "\\",         "...",      "con",     "trailing.",    "trailing ",      "new\nline",
      "file:x",     "\xC3\xA4", "\xFF",    "\xED\xB2\x80", "a\xC3",          std::string(255, 'n')};
  for (int c = 1; c < 256; ++c)
    if (c != '/') names.insert("b" + std::string(1, static_cast<char>(c)) + ":");
  qvTest::expectReaches(names);
}

TEST(OSPosix, walksTellLinks) {
  const qvTest::Directory directory;
  fs::create_directory(directory.path("sub"));
  fs::create_directory_symlink("sub", directory.path("to-sub"));
  fs::create_symlink("nowhere", directory.path("dangling"));
  std::set<std::string> kinds;
  for (DirectoryIterator it(Filename(wide(directory.path()))); it.next();)
    kinds.insert(native(it.name()) + (it.isDirectory() ? " d" : " ") + (it.isLink() ? "l" : ""));
  EXPECT_EQ(kinds, (std::set<std::string>{"sub d", "to-sub dl", "dangling l"}));
}

TEST(OSPosix, thereIsOneDrive) {
  IString out;
  EXPECT_FALSE(makeExtendedPath("\\tmp\\x", out));
  EXPECT_STREQ(out.asUTF8(), "\\\\?\\C:\\tmp\\x");
  EXPECT_EQ(makeExtendedPath("D:x", out).num(), 14);
  EXPECT_STREQ(out.asUTF8(), "D:x");
  const struct {
    int line;
    const char *name, *failure;
  } rows[] = {
      {__LINE__, "Q:x", "invalid path Q:x\n"},
      {__LINE__, "Q:\\d\\x", "GetDiskFreeSpaceEx(Q:\\d) failed: No such file or directory"},
      {__LINE__, "//s/d/x", "GetDiskFreeSpaceEx(\\\\s\\d) failed: No such file or directory"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(Filesystem(IString(row.name)).stat(), Error(1, "Filesystem::stat(): %s", row.failure))
        << row.line;
}

TEST(OSPosix, operationsOnLinks) {
  const qvTest::Scratch scratch;
  scratch.write("from", "new");
  fs::create_symlink("from", scratch.path("link"));
  fs::create_symlink("made", scratch.path("dangling"));
  EXPECT_EQ(fileCopy(scratch.name("from"), scratch.name("dangling"), false).num(), 3);
  EXPECT_EQ(fileCopy(scratch.name("from"), scratch.name("link"), true).num(), 1);
  EXPECT_TRUE(fileMove(scratch.name("from"), scratch.name("link"), true));
  EXPECT_FALSE(doesFileExist(scratch.path("dangling").c_str()));
  EXPECT_FALSE(fileDelete(scratch.name("link")));
  EXPECT_FALSE(fileDelete(scratch.path("dangling").c_str()));
  EXPECT_EQ(scratch.read("from"), "new");
  EXPECT_EQ(scratch.entries(), 1);

  fs::create_directory_symlink(".", scratch.path("here"));
  FileStatus status;
  ASSERT_FALSE(File::query(scratch.name("here"), status));
  EXPECT_TRUE(status.isDirectory() && status.exists() && !status.isFile());
  fs::create_symlink("nowhere", scratch.path("old.ac$"));
  EXPECT_EQ(cleanupTempDirectory(scratch.name("")), 0);
  EXPECT_TRUE(scratch.exists("old.ac$"));
}

TEST(OSPosix, oneFileUnderTwoNamesIsNeverCopiedOntoItself) {
  const qvTest::Scratch scratch;
  scratch.write("file", "precious");
  fs::create_symlink("file", scratch.path("link"));
  fs::create_hard_link(scratch.path("file"), scratch.path("hard"));
  for (const IString& name :
       {IString(scratch.path("file").c_str()), scratch.name("link"), scratch.name("hard")}) {
    File file = scratch.file("file"), same(name);
    EXPECT_EQ(file.copyTo(same).num(), 7);
    (void)same.moveTo(file);
    EXPECT_EQ(scratch.read("file"), "precious");
    EXPECT_EQ(scratch.entries(), 3);
  }
  fs::create_directories(scratch.path("dir/sub"));
  scratch.write("dir/f", "1");
  fs::create_directory_symlink("dir/sub", scratch.path("short"));
  for (const char* name : {"dir/sub/copy", "dir/copy", "short/copy"}) {
    File directory = scratch.file("dir"), inside = scratch.file(name);
    EXPECT_EQ(directory.copyTo(inside).num(), 7) << name;
    EXPECT_EQ(directory.moveTo(inside).num(), 7) << name;
  }
  EXPECT_EQ(scratch.entries(), 7);
}

TEST(OSPosix, treesAreCopiedAndDeletedWithoutFollowingLinks) {
  const qvTest::Scratch scratch;
  fs::create_directories(scratch.path("tree/a/b"));
  fs::create_directory(scratch.path("outside"));
  for (const char* file : {"tree/a/b/deep", "tree/top", "outside/kept"}) scratch.write(file, "kept");
  const auto links = {std::pair("out", "../outside"), {"loop", "."}, {"dangling", "nowhere"}};
  for (const auto& [name, target] : links) fs::create_symlink(target, fs::path(scratch.path("tree")) / name);
  fs::create_symlink("top", scratch.path("tree/alias"));
  ASSERT_EQ(mkfifo(scratch.path("tree/pipe").c_str(), 0600), 0);
  File tree = scratch.file("tree"), copy = scratch.file("copy");
  for (int round = 0; round < 2; ++round)
    EXPECT_EQ(tree.copyTo(copy).num(), 11) << "the pipe cannot be copied";
  for (const auto& [name, target] : links)
    EXPECT_EQ(fs::read_symlink(fs::path(scratch.path("copy")) / name), target);
  EXPECT_EQ(scratch.read("copy/a/b/deep"), "kept");
  EXPECT_FALSE(fs::is_symlink(scratch.path("copy/alias")));
  EXPECT_EQ(scratch.read("copy/alias"), "kept");
  EXPECT_FALSE(scratch.file("copy/out/").deleteSelf(0)) << "a link goes itself";
  EXPECT_FALSE(scratch.file("copy").deleteSelf(0));
  EXPECT_FALSE(scratch.exists("copy"));
  EXPECT_EQ(tree.deleteSelf(64).num(), 13) << "this entry only";
  qvTest::failEveryCall(
      EIO, nullptr, [] {}, [&] { static_cast<void>(scratch.file("tree").deleteSelf(0)); },
      [&] { EXPECT_EQ(scratch.read("outside/kept"), "kept"); });
  EXPECT_FALSE(scratch.exists("tree"));
}

TEST(OSPosix, specialFilesAndTooLongNames) {
  File full(IString("/dev/full"));
  ASSERT_FALSE(full.open(FileTransport::openWrite));
  const std::string big(1 << 20, 'x');
  std::uint64_t count = 0;
  EXPECT_EQ(full.write(big.data(), big.size(), &count).num(), 4);
  EXPECT_LT(count, big.size());
  const qvTest::Scratch scratch;
  FileStatus status;
  EXPECT_EQ(File::query(scratch.name(std::string(300, 'n')), status), Error(4, strerror(ENAMETOOLONG)));
  ASSERT_FALSE(File::query(IString("/dev/null"), status));
  EXPECT_FALSE(status.exists()) << "neither a file nor a directory";
}

TEST(OSPosix, permissionsOfAnOrdinaryUser) {
  const qvTest::Scratch scratch;
  for (const char* name : {"readonly", "unreadable", "dir/kept", "dir/sub/x"}) {
    fs::create_directories(fs::path(scratch.path(name)).parent_path());
    scratch.write(name, "1");
  }
  for (const auto& [name, rights] :
       {std::pair("", 0777), {"readonly", 0444}, {"unreadable", 0}, {"dir", 0777}, {"dir/sub", 0555}})
    fs::permissions(scratch.path(name), fs::perms(rights));
  EXPECT_EQ(qvTest::inChild([&] {
              ASSERT_TRUE(qvTest::giveUpRoot());
              FileStatus status;
              EXPECT_FALSE(File::query(scratch.name("readonly"), status));
              EXPECT_TRUE(status.isReadable() && !status.isWritable());
              EXPECT_FALSE(File::query(scratch.name("unreadable"), status));
              EXPECT_TRUE(status.exists() && !status.isReadable());
              EXPECT_EQ(scratch.file("unreadable").open(FileTransport::openRead).num(), 4);
              EXPECT_EQ(scratch.file("readonly").open(FileTransport::openWrite).num(), 4);
              EXPECT_EQ(scratch.file("dir").deleteSelf(0).num(), 13);
            }),
            0);
  EXPECT_EQ(scratch.read("dir/sub/x"), "1");
  EXPECT_FALSE(scratch.exists("dir/kept")) << "what can be deleted goes";
}

class PosixSave : public qvTest::SafeSave {};

TEST_F(PosixSave, keepsOwnerAndGroup) {
  if (geteuid() != 0) GTEST_SKIP() << "only root may give a file away";
  for (const bool copies : {false, true}) {
    prepare();
    const std::string path = home.path("main.dat");
    ASSERT_EQ(chown(path.c_str(), 1234, 2345), 0);
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    EXPECT_TRUE(saveOnce(copies));
    struct stat status;
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
    EXPECT_TRUE(status.st_uid == 1234 && status.st_gid == 2345);
  }
}

TEST_F(PosixSave, namesOfAnyBytes) {
  const std::string name = "b\xFF:\\c";
  home.write(name, oldText);
  ProtectedWrite save(Filename(wide(home.path(name)), QV_W('/')));
  ASSERT_TRUE(save.init());
  writeNew(save);
  EXPECT_TRUE(save.finalize());
  EXPECT_EQ(home.read(name), newText);
}

int callsToLive;

TEST_F(PosixSave, aKilledProcessLeavesOldOrNew) {
  constexpr int killed = 99;
  for (const bool copies : {false, true}) {
    int status = killed;
    int died = 0;
    for (; status == killed; ++died) {
      SCOPED_TRACE(testing::Message() << "copies " << copies << ", killed before call " << died);
      prepare();
      status = qvTest::inChild([&] {
        callsToLive = died;
        qvPlatform::callHook = [](const char*) noexcept -> int {
          if (callsToLive-- == 0) _exit(killed);
          return 0;
        };
        EXPECT_TRUE(saveOnce(copies));
      });
      ASSERT_TRUE(nothingIsLost(copies));
    }
    EXPECT_EQ(status, 0);
    EXPECT_GT(died, 10);
    EXPECT_EQ(home.read("main.dat"), newText);
  }
}

TEST_F(PosixSave, ordinaryUserIsRefusedAtOnce) {
  prepare();
  fs::permissions(home.path("main.dat"), fs::perms(0444));
  for (const qvTest::Directory* directory : {&home, &temporary})
    fs::permissions(directory->path(), fs::perms(0777));
  EXPECT_EQ(qvTest::inChild([&] {
              ASSERT_TRUE(qvTest::giveUpRoot());
              ProtectedWrite save(mainName());
              EXPECT_FALSE(save.init());
              EXPECT_EQ(save.getStatus(), ProtectedWrite::statusMainNotWritable);
              EXPECT_TRUE(save.getTempFilename().name().isEmpty());
              EXPECT_FALSE(save.finalize());
            }),
            0);
  EXPECT_EQ(home.read("main.dat"), oldText);
  prepare(false);
  ASSERT_EQ(mkfifo(home.path("main.dat").c_str(), 0600), 0);
  EXPECT_FALSE(saveOnce(false));
  EXPECT_TRUE(fs::is_fifo(home.path("main.dat"))) << "a special file stays what it is";
}

// The variable is read once in a process, so it needs a fresh one.
TEST_F(PosixSave, environmentChoosesCopies) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto saveAndExit = [&] {
    setenv("VELUM_PROTECTED_WRITE_USE_COPY", "", 1);
    bool copies = false;
    if (ProtectedWrite save(mainName()); save.init())
      copies = qvTest::native(save.getTempFilename().dirname()) == temporary.path();
    for (const qvTest::Directory* directory : {&home, &temporary}) fs::remove_all(directory->path());
    std::_Exit(copies);
  };
  EXPECT_EXIT(saveAndExit(), testing::ExitedWithCode(true), "^$");
}

} // namespace
