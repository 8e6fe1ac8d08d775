#include "Base/OS/qvOSAppMain.h"

#include "Base/OS/qvOSAppLocations.h"
#include "Base/OS/tests/qvOSTestName.h"
#include "Base/Platform/qvPlatformPath.h"
#include "Base/Platform/qvPlatformTime.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

namespace fs = std::filesystem;
using qvOS::AppMain;
using qvOS::Filename;
using qvOS::SearchPath;
using qvOS::StopWatch;
using qvString::CString;
using qvString::IString;
using Names = qv::vector<IString>;

IString wideText(const qv::WChar* text) { return IString(text); }

TEST(AppMain, HoldsArgumentsFromInitializeOn) {
  AppMain& app = AppMain::getInstance();
  Names args{wideText(QV_W("old"))};
  EXPECT_TRUE(app.preMain());
  app.getArgs(args);
  EXPECT_TRUE(args.empty());

  qv::WChar first[] = QV_W("w\u00e9"), second[] = QV_W("");
  qv::WChar* wide[] = {first, second, nullptr};
  app.initialize(2, wide, nullptr);
  EXPECT_FALSE(app.preMain());
  app.getArgs(args);
  EXPECT_EQ(args, (Names{wideText(first), IString()}));

  char name[] = "/bin/t\xc3\xa9st", odd[] = "\xff";
  char* narrow[] = {name, odd, nullptr};
  app.initialize(2, narrow, nullptr);
  app.getArgs(args);
  EXPECT_EQ(args, (Names{qvTest::wide(name), qvTest::wide(odd)}));
  app.initialize(5, wide, nullptr); // counts more than the narrow array has
  app.getArgs(args);
  EXPECT_EQ(args.size(), 2);
  app.initialize(0, narrow, nullptr);
  app.getArgs(args);
  EXPECT_TRUE(args.empty());
}

TEST(AppMain, FindsItsPlaces) {
  AppMain& app = AppMain::getInstance();
  std::string executable;
  ASSERT_EQ(qvPlatform::executablePath(&executable), 0);
  const Filename program(qvTest::wide(executable));
  EXPECT_EQ(app.getAppName(), qvOS::appNameOf(program));
  EXPECT_EQ(app.getAppLocation(), program.dirname());
  EXPECT_TRUE(Filename(app.getAppLocation()).isAbsolute());
  EXPECT_EQ(app.getBaseLocation(), program.dirname()); // this program holds the library
  EXPECT_EQ(app.getRuntimeDirectory("ignored"), Filename(program.dirname()).dirname());
  IString root;
  EXPECT_TRUE(app.getBuildRootDirectory(root));
  EXPECT_EQ(root, Filename(app.getRuntimeDirectory()).dirname());
  EXPECT_GE(app.getElapsed(), 0.0);
}

TEST(AppMain, AddsTheSuffixOfPrograms) {
  const struct {
    const qv::WChar *path, *name;
  } rows[] = {
      {QV_W("C:\\bin\\tool"), QV_W("tool.exe")},
      {QV_W("C:\\bin\\tool.exe"), QV_W("tool.exe")},
      {QV_W("C:\\b.exe\\tool.x"), QV_W("tool.x.exe")},
      {QV_W("tool.EXE"), QV_W("tool.EXE.exe")},
  };
  for (const auto& row : rows) EXPECT_EQ(qvOS::appNameOf(wideText(row.path)), wideText(row.name));
}

TEST(AppMain, LooksForPluginsInOrder) {
  const qvTest::Scratch scratch;
  const auto name = [&](const char* path) { return Filename(scratch.name(path)).name(); };
  for (const char* path :
       {"rt/lib/plug-ins", "app/plug-ins", "rt/bin/plug-ins", "rt/plug-ins", "bin/plug-ins"})
    fs::create_directories(scratch.path(path));
  const Names all{name("rt/lib/plug-ins"), name("app/plug-ins"), name("rt/bin/plug-ins"), name("rt/plug-ins"),
                  name("bin/plug-ins")};
  Names found;
  qvOS::appendPluginDirectories(name("rt/lib"), name("app"), name("rt"), found);
  EXPECT_EQ(found, all);
  qvOS::appendPluginDirectories(name("rt/lib"), name("app"), name("rt"), found);
  EXPECT_EQ(found, all);

  found = {all[3]}; // the caller's entries stay ahead
  fs::remove(scratch.path("bin/plug-ins"));
  scratch.write("bin/plug-ins", "a file");
  qvOS::appendPluginDirectories(name("rt/bin"), name("rt/bin"), name("rt"), found);
  EXPECT_EQ(found, (Names{all[3], all[2]}));

  found.clear();
  const fs::path before = fs::current_path();
  fs::current_path(scratch.path("rt"));
  qvOS::appendPluginDirectories(IString(), IString(), IString(), found);
  fs::current_path(before);
  EXPECT_TRUE(found.empty());
}

TEST(AppMain, SearchesThePathOfTheEnvironment) {
  const qvTest::Scratch scratch;
  scratch.write("tool", "");
  fs::create_directories(scratch.path("added"));
  scratch.write("added/other", "");
  const qvTest::Environment path("PATH", scratch.path().c_str());
  AppMain& app = AppMain::getInstance();
  Filename found;
  EXPECT_TRUE(app.searchPathFor(wideText(QV_W("tool")), found));
  EXPECT_EQ(found.name(), scratch.name("tool"));
  EXPECT_FALSE(app.searchPathFor(wideText(QV_W("other")), found));
  EXPECT_TRUE(app.addDirectoryToPath(scratch.name("added")));
  EXPECT_TRUE(app.searchPathFor(wideText(QV_W("other")), found));
  EXPECT_TRUE(app.removeDirectoryFromPath(scratch.name("added")));
  EXPECT_TRUE(app.removeDirectoryFromPath(qvTest::wide(scratch.path())));
  EXPECT_FALSE(app.searchPathFor(wideText(QV_W("tool")), found)); // and "PATH" is not read again
}

TEST(SearchPath, FindsTheFirstFile) {
  const qvTest::Scratch scratch;
  for (const char* path : {"a", "a/x", "b b", "b b/sub", "c"})
    ASSERT_TRUE(Filename(scratch.name(path)).makeDir());
  for (const char* path : {"b b/x", "c/x", "c/y", "b b/sub/z"}) scratch.write(path, "");
  SearchPath path;
  EXPECT_FALSE(path.isSet());
  const std::string separator(1, qvPlatform::pathListSeparator);
  const std::string list = separator + scratch.path("a") + separator + separator + scratch.path("b b") +
                           separator + scratch.path("a") + separator;
  path.set(CString(list));
  EXPECT_TRUE(path.isSet());
  EXPECT_EQ(path.getDirectories(), (Names{scratch.name("a"), scratch.name("b b")}));
  EXPECT_FALSE(path.addDirectory(scratch.name("a")) || path.addDirectory(IString()));
  EXPECT_TRUE(path.addDirectory(scratch.name("c")));

  const struct {
    IString name;
    const char* found; // null for none
  } rows[] = {
      {wideText(QV_W("x")), "b b/x"}, // a directory of that name does not count
      {wideText(QV_W("y")), "c/y"},    {wideText(QV_W("sub/z")), "b b/sub/z"}, {scratch.name("c/x"), "c/x"},
      {scratch.name("c/no"), nullptr}, {wideText(QV_W("sub")), nullptr},       {IString(), nullptr},
  };
  for (const auto& row : rows) {
    Filename found;
    EXPECT_EQ(path.searchFor(row.name, found), row.found != nullptr) << row.name.asUTF8();
    EXPECT_EQ(found.name(), row.found ? scratch.name(row.found) : IString());
  }
  for (const char* name : {"a", "b b", "c"}) EXPECT_TRUE(path.removeDirectory(scratch.name(name)));
  EXPECT_FALSE(path.removeDirectory(scratch.name("a")));
  EXPECT_TRUE(path.isSet() && path.getDirectories().empty());
}

TEST(StopWatch, CountsWhileItRuns) {
  StopWatch watch;
  EXPECT_EQ(watch.getElapsed(), 0.0);
  double counted = 0;
  for (int stretch = 0; stretch < 2; ++stretch) {
    watch.start();
    qvPlatform::sleepNanoseconds(1000000);
    watch.start();
    EXPECT_GE(watch.getElapsed(), counted + 0.001);
    watch.stop();
    counted = watch.getElapsed();
    qvPlatform::sleepNanoseconds(1000000);
    watch.stop();
    EXPECT_EQ(watch.getElapsed(), counted);
  }
  watch.reset();
  EXPECT_EQ(watch.getElapsed(), 0.0);
}

} // namespace
