#include "Base/OS/qvOSFile.h"

#include "Base/OS/qvOSFileFactory.h"
#include "Base/OS/qvOSFileStatus.h"
#include "Base/OS/qvOSLocalFileTransport.h"
#include "Base/OS/tests/qvOSTestName.h"
#include "Base/Platform/qvPlatformError.h"
#include "testing/qvTestDirectory.h"
#include "testing/qvTestPlatform.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using qvOS::File;
using qvOS::FileFactory;
using qvOS::FileStatus;
using qvOS::FileTransport;
using qvString::IString;
using qvTest::wide;
using qvUtil::Error;

const int ioFailure = qvPlatform::errorNumber(qvPlatform::ErrorKind::ioFailure);
const int readFlag = FileTransport::openRead;
const int writeFlag = FileTransport::openWrite;

/// A back end whose every answer the test chooses.
class ScriptedTransport : public FileTransport {
public:
  explicit ScriptedTransport(const char* name = "scripted:x") : name_(name) {}
  Error read(void*, std::uint64_t, std::uint64_t* count) override {
    return *count = 0, File::getError(readCode);
  }
  Error write(const void*, std::uint64_t, std::uint64_t*) override { return File::getError(writeCode); }
  Error open(int flags) override { return openFlags = flags, File::getError(openCode); }
  Error close() override { return File::getError(closeCode); }
  Error makeDirectory() override { return File::getError(1); }
  Error readDir(qv::vector<IString>&, bool) override { return File::getError(1); }
  Error deleteSelf() override { return ++deletions, Error(); }
  bool isDirectory() const override { return false; }
  bool isOpen() const override { return false; }
  IString getFullName() const override { return name_; }
  IString getNameTitle() const override { return {}; }
  IString getNameBase() const override { return {}; }
  qv::WChar getSeparator() const override { return QV_W('/'); }
  IString transportId() const override { return "Scripted"; }
  Error query(FileStatus&) override { return Error(); }

  int readCode = 3, writeCode = 0, openCode = 0, closeCode = 0, openFlags = 0, deletions = 0;

private:
  const char* name_;
};

class ScriptedFactory : public qvOS::FileTransportFactory {
public:
  FileTransport* create(const IString& name) override {
    return name.find(QV_W("scripted:")) == 0 ? new ScriptedTransport : nullptr;
  }
};

TEST(File, errorTable) {
  const char* const root = "Cannot become the parent of a root directory";
  for (const auto& [code, message] :
       {std::pair(-1, ""), {3, "End Of File"}, {13, "The directory is not empty"}, {19, root}, {20, ""}})
    EXPECT_EQ(File::getError(code), Error(code, message)) << code;
}

TEST(File, nameResolves) {
  const struct {
    int line;
    const char *name, *full, *title, *base;
  } rows[] = {
      {__LINE__, "file:///x", "x", "", ""},      {__LINE__, "file:C:/x", "C:/x", "C:/", "x"},
      {__LINE__, "C:\\x", "C:\\x", "C:\\", "x"}, {__LINE__, "a\\b\\", "a\\b\\", "a\\b\\", ""},
      {__LINE__, "bare", "bare", "", ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    const File file{IString(row.name)};
    EXPECT_STREQ(file.getFullName().asUTF8(), row.full);
    EXPECT_STREQ(file.getNameTitle().asUTF8(), row.title);
    EXPECT_STREQ(file.getNameBase().asUTF8(), row.base);
    EXPECT_STREQ(file.transportId().asUTF8(), "LocalFileTransport");
  }
  static ScriptedFactory scripted;
  FileFactory::getFileFactory()->addTransportFactory(&scripted);
  EXPECT_STREQ(File(IString("scripted:y")).transportId().asUTF8(), "Scripted");
  EXPECT_STREQ(File(IString("y")).transportId().asUTF8(), "LocalFileTransport");
}

TEST(File, stateIsChecked) {
  const qvTest::Scratch scratch;
  scratch.write("there", "12345");
  File none(static_cast<FileTransport*>(nullptr));
  File file = scratch.file("there"), other = scratch.file("other");
  FileStatus status;
  qv::vector<IString> names;
  char byte = 0;
  for (const Error& error :
       {none.open(4), none.close(), none.readDir(names, true), none.copyTo(other), other.copyTo(none),
        none.deleteSelf(0), none.query(status, true), none.read(nullptr, 0, nullptr)})
    EXPECT_EQ(error.num(), 1) << "there is no transport";
  EXPECT_EQ(file.read(&byte, 1, nullptr).num(), 4);
  EXPECT_EQ(file.write(&byte, 1, nullptr).num(), 4);
  EXPECT_EQ(file.close().num(), 8);
  ASSERT_FALSE(file.open(readFlag));
  for (const Error& error :
       {file.open(4), file.openTemp(4), file.copyTo(other), file.moveTo(other), file.deleteSelf(0),
        file.makeDirectory(), file.makeTempDirectory(), file.makeDirectoryAll(), other.copyTo(file)})
    EXPECT_EQ(error.num(), 9);
  EXPECT_EQ(file.readDir(names, false).num(), 10);
  EXPECT_FALSE(file.close());
  EXPECT_EQ(scratch.read("there"), "12345");
  EXPECT_FALSE(scratch.exists("other"));
}

TEST(File, opensAndTellsTheEndWhenItIsTouched) {
  const qvTest::Scratch scratch;
  scratch.write("f", "");
  fs::create_directory(scratch.path("dir"));
  const struct {
    int line;
    std::string name;
    int flags, code;
  } rows[] = {
      {__LINE__, "missing", 4, 18}, {__LINE__, "no\\parent", 8, 18}, {__LINE__, "f/x", 8, 18},
      {__LINE__, "dir", 4, 4},      {__LINE__, "f", 0, 4},           {__LINE__, "f", 32 | 2 | 8, 0},
  };
  for (const auto& row : rows)
    EXPECT_EQ(File(wide(scratch.path()) + "\\" + IString(row.name.c_str())).open(row.flags).num(), row.code)
        << row.line;
  EXPECT_EQ(scratch.entries(), 2);
  scratch.write("f", "12345");
  File file = scratch.file("f");
  ASSERT_FALSE(file.open(readFlag));
  char buffer[8] = {};
  std::uint64_t count = 0;
  EXPECT_FALSE(file.read(buffer, 5, &count));
  EXPECT_EQ(count, 5u);
  EXPECT_EQ(file.read(buffer, 1, &count).num(), 3);
  EXPECT_EQ(count, 0u);
  ASSERT_FALSE(file.getTransport()->open(readFlag)) << "a second open starts again";
  EXPECT_EQ(file.read(buffer, 8, &count).num(), 3);
  EXPECT_EQ(count, 5u);
  ASSERT_FALSE(file.getTransport()->open(FileTransport::openAppend | readFlag));
  for (const char* piece : {"6", "7"}) {
    EXPECT_EQ(file.read(buffer, 8, nullptr).num(), 3);
    EXPECT_FALSE(file.write(piece, 1, nullptr)) << "appending reads and writes in turn";
  }
  ASSERT_FALSE(file.getTransport()->open(readFlag));
  EXPECT_EQ(scratch.read("f"), "1234567");
  qvTest::PlatformScript script;
  script.failCall(0, ioFailure, "read");
  EXPECT_EQ(file.read(buffer, 8, &count).num(), 4) << "a failure is not an end";
  EXPECT_EQ(count, 0u);
}

TEST(FileTransport, copyTellsTheLastCloseOnly) {
  const struct {
    int line, sourceOpen, sourceRead, targetOpen, targetWrite, targetClose, result;
  } rows[] = {
      {__LINE__, 0, 3, 0, 0, 0, 0},  {__LINE__, 18, 3, 0, 0, 0, 0}, {__LINE__, 0, 4, 0, 0, 0, 0},
      {__LINE__, 0, 3, 18, 0, 0, 4}, {__LINE__, 0, 3, 0, 4, 0, 0},  {__LINE__, 0, 0, 0, 4, 5, 5},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    ScriptedTransport source, target("scripted:z");
    source.openCode = row.sourceOpen;
    source.readCode = row.sourceRead;
    target.openCode = row.targetOpen;
    target.writeCode = row.targetWrite;
    target.closeCode = row.targetClose;
    EXPECT_EQ(source.copyTo(target).num(), row.result);
    EXPECT_EQ(target.openFlags, 40);
    EXPECT_EQ(source.openFlags, row.targetOpen ? 0 : 6);
    EXPECT_EQ(source.moveTo(target).num(), row.result);
    EXPECT_EQ(source.deletions, row.result ? 0 : 1);
    EXPECT_EQ(source.copyTo(source).num(), 7);
  }
  ScriptedTransport base;
  FileStatus status;
  for (const Error& error : {base.openTemp(4), base.makeTempDirectory(), base.makeDirectoryAll()})
    EXPECT_EQ(error, Error(-1, "This function is not implemented."));
  EXPECT_STREQ(base.queryOwnerGroup(status).message(), "This function still not supported.");
  EXPECT_STREQ(status.getOwner().asChar(), "Unknown");
}

TEST(File, oneFileUnderTwoNamesIsNeverCopiedOntoItself) {
  const qvTest::Scratch scratch;
  scratch.write("file", "precious");
  fs::create_hard_link(scratch.path("file"), scratch.path("hard"));
  for (const IString& name : {IString(scratch.path("file").c_str()), scratch.name("hard")}) {
    File file = scratch.file("file"), same(name);
    EXPECT_EQ(file.copyTo(same).num(), 7);
    EXPECT_EQ(scratch.read("file"), "precious");
    EXPECT_EQ(scratch.entries(), 2);
  }
  fs::create_directories(scratch.path("dir/sub"));
  scratch.write("dir/f", "1");
  for (const char* name : {"dir/sub/copy", "dir/copy"}) {
    File directory = scratch.file("dir"), inside = scratch.file(name);
    EXPECT_EQ(directory.copyTo(inside).num(), 7) << name;
    EXPECT_EQ(directory.moveTo(inside).num(), 7) << name;
  }
  EXPECT_EQ(scratch.entries(), 5);
}

TEST(File, treesAreCopiedAndDeleted) {
  const qvTest::Scratch scratch;
  fs::create_directories(scratch.path("tree/a/b"));
  for (const char* file : {"tree/a/b/deep", "tree/top"}) scratch.write(file, file);
  File tree = scratch.file("tree"), copy = scratch.file("copy");
  for (int round = 0; round < 2; ++round) EXPECT_FALSE(tree.copyTo(copy));
  EXPECT_EQ(scratch.read("copy/a/b/deep"), "tree/a/b/deep");
  EXPECT_EQ(scratch.read("copy/top"), "tree/top");
  EXPECT_FALSE(copy.deleteSelf(0));
  EXPECT_FALSE(scratch.exists("copy"));
  EXPECT_EQ(tree.deleteSelf(64).num(), 13) << "this entry only";
}

TEST(File, movesByRenamingAndOtherwiseByCopying) {
  const qvTest::Scratch scratch;
  scratch.write("f", "new");
  scratch.write("old", "old, and longer");
  fs::create_directories(scratch.path("dir/sub"));
  const auto move = [&](const char* from, const char* to) {
    File source = scratch.file(from), target = scratch.file(to);
    return source.moveTo(target).num();
  };
  EXPECT_EQ(move("missing", "x"), 2);
  EXPECT_EQ(move("f", "old"), 0);
  EXPECT_EQ(scratch.read("old"), "new");
  EXPECT_FALSE(scratch.exists("f"));
  EXPECT_EQ(move("old", "dir"), 4) << "a file cannot become a directory";
  EXPECT_EQ(move("dir", "moved"), 0);
  EXPECT_EQ(move("moved", "no/parent"), 4);
  fs::create_directory(scratch.path("full"));
  EXPECT_EQ(move("moved", "full"), 13) << "what was copied into a directory that exists stays as well";
  EXPECT_TRUE(scratch.exists("moved/sub") && scratch.exists("full/sub"));
  scratch.write("moved/f", "f");
  File source = scratch.file("moved"), target = scratch.file("full"), file = scratch.file("full/f");
  EXPECT_FALSE(source.getTransport()->recreateDirStructure(*target.getTransport(), true));
  EXPECT_FALSE(scratch.exists("moved/f") || scratch.exists("moved/sub")) << "each goes once it is copied";
  EXPECT_EQ(scratch.read("full/f"), "f");
  EXPECT_EQ(source.getTransport()->recreateDirStructure(*file.getTransport(), false).num(), 10);
}

TEST(File, directories) {
  const qvTest::Scratch scratch;
  const IString root = wide(scratch.path());
  scratch.write("file", "");
  const struct {
    int line;
    const char* name;
    int code;
  } rows[] = {
      {__LINE__, "\\a\\b\\c", 0}, {__LINE__, "\\a\\b\\c", 0}, {__LINE__, "/t/u\\", 0},
      {__LINE__, "\\file\\x", 2}, {__LINE__, "\\file", 2},    {__LINE__, "", 0},
  };
  for (const auto& row : rows)
    EXPECT_EQ(File(root + IString(row.name)).makeDirectoryAll().num(), row.code) << row.line;
  for (const char* name : {"a/b/c", "t/u"}) EXPECT_TRUE(fs::is_directory(scratch.path(name)));
  EXPECT_EQ(File(root + "\\a").makeDirectory().num(), 2);
  EXPECT_EQ(File(root + "\\x\\y").makeDirectory().num(), 4);

  File file(root + "\\late");
  EXPECT_FALSE(file.isDirectory() || file.makeDirectory());
  EXPECT_TRUE(file.isDirectory()) << "only an answer is remembered";

  // A name of 260 characters that ends in no separator is too long to be listed.
  constexpr unsigned longest = 259;
  IString longPath = root;
  while (longPath.length() < longest - 102) longPath.append("/").append(std::string(100, 'd').c_str());
  longPath.append("/");
  longPath.append(std::string(longest - longPath.length(), 'e').c_str());
  qv::vector<IString> names;
  EXPECT_FALSE(File(longPath).makeDirectoryAll());
  EXPECT_FALSE(File(longPath).readDir(names, false));
  EXPECT_FALSE(File(longPath + "x").makeDirectoryAll());
  EXPECT_EQ(File(longPath + "x").readDir(names, false).num(), 12);

  qvTest::failEveryCall(
      ioFailure, "readdir", [] {},
      [&] {
        const Error error = File(root).readDir(names, false);
        EXPECT_TRUE(error ? error.num() == 4 && names.empty() : names.size() == 7);
      },
      [] {});
}

TEST(File, temporaries) {
  const qvTest::Scratch scratch;
  File file = scratch.file("name.ext");
  ASSERT_FALSE(file.openTemp(writeFlag));
  EXPECT_FALSE(file.write("t", 1, nullptr));
  EXPECT_FALSE(file.close());
  const std::string made = fs::path(qvTest::native(file.getFullName())).filename().string();
  EXPECT_EQ(made.substr(0, 3), "nam");
  EXPECT_EQ(scratch.read(made), "t");
  File directory = scratch.file("dir");
  ASSERT_FALSE(directory.makeTempDirectory());
  const std::string name = fs::path(qvTest::native(directory.getFullName())).filename().string();
  EXPECT_EQ(name.size(), 10u);
  EXPECT_EQ(name.find_first_not_of("abcdefghijklmnopqrstuvwxy"), std::string::npos);
  EXPECT_TRUE(fs::is_directory(scratch.path(name)));
  EXPECT_EQ(scratch.file("no/x").openTemp(8).num(), 18);
  EXPECT_EQ(scratch.file("no/x").makeTempDirectory().num(), 4);
  qvTest::failEveryCall(
      qvPlatform::errorNumber(qvPlatform::ErrorKind::exists), "open", [] {},
      [&] { EXPECT_FALSE(scratch.file("again").openTemp(8)); }, [] {});
}

TEST(File, statusTellsWhatTheFileIs) {
  const qvTest::Scratch scratch;
  scratch.write("f", "12345");
  fs::last_write_time(scratch.path("f"), fs::file_time_type::clock::now() - std::chrono::hours(9));
  struct stat expected;
  ASSERT_EQ(stat(scratch.path("f").c_str(), &expected), 0);
  FileStatus status;
  ASSERT_FALSE(scratch.file("f").query(status, true));
  EXPECT_TRUE(status.exists() && status.isFile() && status.isReadable() && status.isWritable());
  EXPECT_EQ(status.getSize(), 5);
  EXPECT_EQ(status.getLastModifiedDate(), expected.st_mtime);
  EXPECT_EQ(status.getCreationDate(), expected.st_ctime);
  EXPECT_NE(std::string(status.getOwner().asChar()).find('\\'), std::string::npos);
  EXPECT_NE(std::string(status.getGroup().asChar()).find('\\'), std::string::npos);
  ASSERT_FALSE(File::query(scratch.name("."), status));
  EXPECT_TRUE(status.isDirectory() && status.exists() && !status.isFile());

  // A size that a `long` cannot hold is a failure and no other size.
  fs::resize_file(scratch.path("f"), 3'000'000'000);
  EXPECT_EQ(scratch.file("f").query(status, false).num(), sizeof(long) < 8 ? 4 : 0);
  fs::resize_file(scratch.path("f"), 5);

  for (const char* name : {"missing", "f/below"}) {
    status.setExists(true);
    status.setSize(9);
    EXPECT_FALSE(File::query(scratch.name(name), status)) << "no such file is no error";
    EXPECT_FALSE(status.exists() || status.getSize());
  }
  const IString missing = scratch.name("missing");
  EXPECT_EQ(File(missing).getTransport()->queryOwnerGroup(status),
            Error(-1, "Failed to query Owner/Group of %s", missing.asUTF8()));
}

} // namespace
