#include "Base/OS/qvOSProtectedWrite.h"

#include "Base/OS/tests/qvOSTestName.h"
#include "testing/qvTestChild.h"
#include "testing/qvTestDirectory.h"
#include "testing/qvTestPlatform.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using qvOS::ProtectedWrite;

const std::string oldText(50000, 'o');
const std::string newText(70000, 'n');

/// A main file in one directory, and the temporary directory for the process in another.
class ProtectedWriteTest : public testing::Test {
protected:
  void prepare(bool oldFile = true) {
    for (const qvTest::Directory* directory : {&home, &temporary}) {
      for (const auto& entry : fs::directory_iterator(directory->path())) fs::remove_all(entry);
    }
    if (oldFile) home.write("main.dat", oldText);
  }

  qvOS::Filename mainName() const { return qvTest::filename(home.path("main.dat")); }

  static void writeNew(const ProtectedWrite& save) {
    std::ofstream(qvTest::native(save.getTempFilename().name()), std::ios::binary) << newText;
  }

  /// @return whether the save tells that it succeeded.
  bool saveOnce(bool copies) const {
    ProtectedWrite save(mainName());
    if (copies) save.useCopyStrategy();
    if (!save.init()) return false;
    writeNew(save);
    return save.finalize();
  }

  /// True if the main file is whole, or is absent while the old one stands whole under a backup name. A copy
  /// that was cut off may also stand at the main name.
  bool nothingIsLost(bool copies) const {
    const std::string main = home.read("main.dat");
    if (main == oldText || main == newText) return true;
    if (!copies && home.exists("main.dat")) return false;
    const qvTest::Directory& directory = copies ? temporary : home;
    for (const auto& entry : fs::directory_iterator(directory.path())) {
      const std::string name = entry.path().filename().string();
      if (name.ends_with(".1.tmp") && name.starts_with("mai") && directory.read(name) == oldText) return true;
    }
    return false;
  }

  const qvTest::Directory home{qvTest::inMemory()};
  const qvTest::Directory temporary{qvTest::inMemory()};
  qvTest::TemporaryPlace place{temporary.path()};
};

TEST_F(ProtectedWriteTest, savesNewAndOldFilesByBothStrategies) {
  const bool root = geteuid() == 0;
  for (const bool copies : {false, true}) {
    for (const bool oldFile : {false, true}) {
      SCOPED_TRACE(copies * 10 + oldFile);
      prepare(oldFile);
      const std::string path = home.path("main.dat");
      if (oldFile) fs::permissions(path, fs::perms(0640));
      ASSERT_TRUE(!root || !oldFile || chown(path.c_str(), 1234, 2345) == 0);
      qvTest::PlatformScript script;
      EXPECT_TRUE(saveOnce(copies));
      EXPECT_EQ(home.read("main.dat"), newText);
      EXPECT_EQ(home.entries(), 1);
      EXPECT_EQ(temporary.entries(), 0);
      EXPECT_EQ(script.count("sync"), copies ? 3 : 2) << "the content, a copy of it, and the names";
      if (!oldFile) continue;
      struct stat status;
      ASSERT_EQ(stat(path.c_str(), &status), 0);
      EXPECT_EQ(status.st_mode & 0777, 0640u);
      EXPECT_TRUE(!root || (status.st_uid == 1234 && status.st_gid == 2345));
      const std::vector<std::string> calls = script.calls();
      const auto last = [&](const char* name) { return std::find(calls.rbegin(), calls.rend(), name); };
      EXPECT_LT(last("unlink"), last("sync")) << "the old file goes when the new one is safe";
    }
  }
}

TEST_F(ProtectedWriteTest, oddNames) {
  for (const std::string& name : {std::string("\xF0\x9F\x98\x80\xF0\x9F\x98\x80 x"), std::string("b\xFF:\\c"),
                                  std::string(255, 'x'), std::string(".h")}) {
    prepare(false);
    home.write(name, oldText);
    ProtectedWrite save(qvOS::Filename(qvTest::wide(home.path(name)), QV_W('/')));
    ASSERT_TRUE(save.init()) << name;
    writeNew(save);
    EXPECT_TRUE(save.finalize()) << name;
    EXPECT_EQ(home.read(name), newText);
    EXPECT_EQ(home.entries(), 1);
  }
}

TEST_F(ProtectedWriteTest, everyRefusalLeavesTheOldFileAndHasItsStatus) {
  const struct {
    int line;
    const char* step; // what happens after `init`, or the call that fails
    int n;
    ProtectedWrite::status expected;
  } rows[] = {
      {__LINE__, "nothing written", 0, ProtectedWrite::statusTempMissing},
      {__LINE__, "invalidate", 0, ProtectedWrite::statusInvalidated},
      {__LINE__, "sync", 0, ProtectedWrite::statusTempMissing},
      {__LINE__, "stat", 1, ProtectedWrite::statusBackupFailed},
      {__LINE__, "rename", 0, ProtectedWrite::statusBackupFailed},
      {__LINE__, "rename", 1, ProtectedWrite::statusMainNotWritable},
      {__LINE__, "attributes", 0, ProtectedWrite::statusOk},
      {__LINE__, "abandon", 0, ProtectedWrite::statusOk},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    prepare();
    const std::string step = row.step;
    const bool good = step == "attributes";
    {
      ProtectedWrite save(mainName());
      EXPECT_TRUE(save.finalize()) << "nothing was begun";
      ASSERT_TRUE(save.init() && save.init()) << "a second one changes nothing";
      if (step != "nothing written") writeNew(save);
      if (step == "invalidate") save.invalidate();
      qvTest::PlatformScript script;
      script.failCall(row.n, EIO, row.step);
      for (int i = step == "abandon" ? 2 : good; i < 2; ++i) EXPECT_EQ(save.finalize(), good);
      EXPECT_EQ(save.getStatus(), row.expected);
    }
    EXPECT_EQ(home.read("main.dat"), good ? newText : oldText);
    EXPECT_EQ(home.entries(), 1);
  }
}

TEST_F(ProtectedWriteTest, anyFailingCallLeavesOldOrNew) {
  for (const bool copies : {false, true})
    for (const bool persistent : {false, true}) {
      int failures = 1;
      for (int n = 0; failures; ++n) {
        SCOPED_TRACE(testing::Message() << copies << persistent << " call " << n);
        prepare();
        qvTest::PlatformScript script;
        script.failCall(n, EIO, nullptr, persistent ? 100000 : 1);
        const bool saved = saveOnce(copies);
        ASSERT_TRUE(nothingIsLost(copies));
        ASSERT_TRUE(home.read("main.dat") == (saved ? newText : oldText) || (!saved && persistent));
        failures = script.failures();
      }
    }
}

int callsToLive;

TEST_F(ProtectedWriteTest, aKilledProcessLeavesOldOrNew) {
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

TEST_F(ProtectedWriteTest, ordinaryUserIsRefusedAtOnce) {
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

TEST_F(ProtectedWriteTest, staleTemporariesAreInTheWayOnlyIfTheyStay) {
  prepare();
  place.set(temporary.path("missing")); // Without it the names are known beforehand.
  const std::string stale = std::to_string(getpid()) + ".1.tmp";
  home.write(stale, "stale");
  EXPECT_TRUE(saveOnce(false));
  ProtectedWrite interrupted(mainName());
  EXPECT_TRUE(interrupted.init());
  fs::rename(home.path("main.dat"), home.path(stale));
  EXPECT_FALSE(interrupted.finalize());
  EXPECT_EQ(home.read(stale), newText) << "the backup is all that there is";
  fs::rename(home.path(stale), home.path("main.dat"));
  fs::create_directory(home.path(stale));
  ProtectedWrite save(mainName());
  EXPECT_FALSE(save.init());
  EXPECT_EQ(save.getStatus(), ProtectedWrite::statusStaleTempNotRemoved);
  EXPECT_EQ(home.read("main.dat"), newText);
}

TEST_F(ProtectedWriteTest, copyStrategyWantsItsDirectory) {
  prepare();
  place.set(temporary.path("sub"));
  const auto initStatus = [&] {
    ProtectedWrite save(mainName());
    save.useCopyStrategy();
    const bool begun = save.init();
    EXPECT_EQ(begun, save.getStatus() == ProtectedWrite::statusOk);
    return save.getStatus();
  };
  EXPECT_EQ(initStatus(), ProtectedWrite::statusTempDirCreated);
  EXPECT_TRUE(temporary.exists("sub"));
  EXPECT_EQ(initStatus(), ProtectedWrite::statusOk);
  fs::remove(temporary.path("sub"));
  temporary.write("sub", "");
  EXPECT_EQ(initStatus(), ProtectedWrite::statusTempDirNotDirectory);
}

// The variable is read once in a process, so it needs a fresh one.
TEST_F(ProtectedWriteTest, environmentChoosesCopies) {
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
