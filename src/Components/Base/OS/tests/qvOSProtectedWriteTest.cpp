#include "Base/OS/qvOSProtectedWrite.h"

#include "Base/OS/tests/qvOSTestSave.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformProcess.h"
#include "testing/qvTestPlatform.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace {

namespace fs = std::filesystem;
using qvOS::ProtectedWrite;

class ProtectedWriteTest : public qvTest::SafeSave {};

const int ioFailure = qvPlatform::errorNumber(qvPlatform::ErrorKind::ioFailure);

TEST_F(ProtectedWriteTest, savesNewAndOldFilesByBothStrategies) {
  for (const bool copies : {false, true}) {
    for (const bool oldFile : {false, true}) {
      SCOPED_TRACE(copies * 10 + oldFile);
      prepare(oldFile);
      const std::string path = home.path("main.dat");
      if (oldFile) fs::permissions(path, fs::perms(0640));
      const fs::perms permissions = oldFile ? fs::status(path).permissions() : fs::perms::none;
      qvTest::PlatformScript script;
      EXPECT_TRUE(saveOnce(copies));
      EXPECT_EQ(home.read("main.dat"), newText);
      EXPECT_EQ(home.entries(), 1);
      EXPECT_EQ(temporary.entries(), 0);
      EXPECT_EQ(script.count("sync"), copies ? 3 : 2) << "the content, a copy of it, and the names";
      if (!oldFile) continue;
      EXPECT_EQ(fs::status(path).permissions(), permissions);
      const std::vector<std::string> calls = script.calls();
      const auto last = [&](const char* name) { return std::find(calls.rbegin(), calls.rend(), name); };
      EXPECT_LT(last("unlink"), last("sync")) << "the old file goes when the new one is safe";
    }
  }
}

TEST_F(ProtectedWriteTest, oddNames) {
  for (const std::string& name :
       {std::string("\xF0\x9F\x98\x80\xF0\x9F\x98\x80 x"), std::string(255, 'x'), std::string(".h")}) {
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
      script.failCall(row.n, ioFailure, row.step);
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
        script.failCall(n, ioFailure, nullptr, persistent ? 100000 : 1);
        const bool saved = saveOnce(copies);
        ASSERT_TRUE(nothingIsLost(copies));
        ASSERT_TRUE(home.read("main.dat") == (saved ? newText : oldText) || (!saved && persistent));
        failures = script.failures();
      }
    }
}

TEST_F(ProtectedWriteTest, staleTemporariesAreInTheWayOnlyIfTheyStay) {
  prepare();
  place.set(temporary.path("missing")); // Without it the names are known beforehand.
  const std::string stale = std::to_string(qvPlatform::processId()) + ".1.tmp";
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

} // namespace
