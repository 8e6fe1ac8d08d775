#include "Base/Platform/qvPlatformFile.h"

#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/tests/qvPlatformTestRename.h"
#include "testing/qvTestDirectory.h"
#include "testing/qvTestPeer.h"
#include "testing/qvTestPlatform.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>

using namespace qvPlatform;

namespace {

std::string bytes(std::size_t size) {
  std::string result(size, '\0');
  for (std::size_t i = 0; i < size; ++i) result[i] = static_cast<char>(i * 31 + i / 251);
  return result;
}

/// The least number that the next descriptor gets: unchanged where nothing leaked.
int nextDescriptor() {
  const int descriptor = ::dup(STDIN_FILENO);
  ::close(descriptor);
  return descriptor;
}

FileInfo infoOf(const std::string& path) {
  FileInfo info;
  EXPECT_EQ(queryFile(path.c_str(), &info), 0) << path;
  return info;
}

} // namespace

TEST(PlatformFile, ReadsAndWritesThroughAHandle) {
  const qvTest::Directory directory;
  const std::string path = directory.path("data");
  FileHandle file = noFile;
  EXPECT_EQ(errorKind(openFile(path.c_str(), openRead, &file)), ErrorKind::notFound);
  ASSERT_EQ(openFile(path.c_str(), openRead | openWrite | openCreate | openExclusive, &file), 0);
  std::size_t count = 0;
  EXPECT_EQ(writeFile(file, "0123456789", 10, &count), 0);
  EXPECT_EQ(count, 10u);
  std::int64_t position = 0;
  EXPECT_EQ(seekFile(file, -3, SeekFrom::end, &position), 0);
  EXPECT_EQ(position, 7);
  char buffer[8] = {};
  EXPECT_EQ(readFile(file, buffer, sizeof buffer, &count), 0);
  EXPECT_EQ(std::string(buffer, count), "789");
  EXPECT_EQ(readFile(file, buffer, sizeof buffer, &count), 0);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(truncateFile(file, 4), 0);
  EXPECT_EQ(syncFile(file), 0);
  EXPECT_EQ(closeFile(file), 0);
  EXPECT_EQ(directory.read("data"), "0123");
  EXPECT_EQ(errorKind(openFile(path.c_str(), openWrite | openCreate | openExclusive, &file)),
            ErrorKind::exists);
  const int before = nextDescriptor();
  EXPECT_EQ(errorKind(openFile(directory.path().c_str(), openRead, &file)), ErrorKind::isDirectory);
  EXPECT_EQ(nextDescriptor(), before);

  const int kept = ::dup(STDIN_FILENO);
  ::close(STDIN_FILENO);
  const int error = openFile(path.c_str(), openRead, &file);
  ::dup2(kept, STDIN_FILENO);
  ::close(kept);
  ASSERT_EQ(error, 0);
  EXPECT_GT(file, STDERR_FILENO) << "the standard streams' places stay empty";
  EXPECT_TRUE(qvTest::descriptorClosesOnExec(static_cast<int>(file)));
  closeFile(file);
}

TEST(PlatformFile, GoesOnAfterAnInterruption) {
  const qvTest::Directory directory;
  const std::string path = directory.path("data");
  qvTest::PlatformScript script;
  const int interrupted = errorNumber(ErrorKind::interrupted);
  for (const char* name : {"open", "write", "read", "close"}) script.failCall(0, interrupted, name, 3);
  std::FILE* stream = nullptr;
  ASSERT_EQ(openStream(path.c_str(), "w+b", &stream), 0);
  EXPECT_EQ(writeStream(stream, "abc", 3, nullptr), 0);
  EXPECT_EQ(seekStream(stream, 0, SeekFrom::start, nullptr), 0);
  char buffer[3];
  std::size_t count = 0;
  EXPECT_EQ(readStream(stream, buffer, 3, &count, nullptr), 0);
  EXPECT_EQ(std::string(buffer, count), "abc");
  closeStream(stream);
  EXPECT_EQ(script.count("write"), 4);
  EXPECT_EQ(script.count("read"), 4);
}

TEST(PlatformFile, OpensStreamsByMode) {
  const struct {
    int line;
    const char* mode;
    ErrorKind missing, present;
    const char* after; ///< The content "old" after "N" was written.
  } rows[] = {
      {__LINE__, "rb", ErrorKind::notFound, ErrorKind::none, "old"},
      {__LINE__, "r+b", ErrorKind::notFound, ErrorKind::none, "Nld"},
      {__LINE__, "w", ErrorKind::none, ErrorKind::none, "N"},
      {__LINE__, "wbx", ErrorKind::none, ErrorKind::exists, "old"},
      {__LINE__, "a+b", ErrorKind::none, ErrorKind::none, "oldN"},
      {__LINE__, "", ErrorKind::invalid, ErrorKind::invalid, "old"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    const qvTest::Directory directory;
    const std::string present = directory.write("present", "old");
    std::FILE* stream = nullptr;
    int error = openStream(directory.path("missing").c_str(), row.mode, &stream);
    EXPECT_EQ(errorKind(error), row.missing);
    if (!error) closeStream(stream);
    error = openStream(present.c_str(), row.mode, &stream);
    EXPECT_EQ(errorKind(error), row.present);
    if (!error) {
      (void)writeStream(stream, "N", 1, nullptr);
      closeStream(stream);
    }
    EXPECT_EQ(directory.read("present"), row.after);
  }
}

TEST(PlatformFile, RenamesWithoutReplacing) {
  const qvTest::RenameRow rows[] = {
      {__LINE__, "file", "new", ErrorKind::none},
      {__LINE__, "file", "other", ErrorKind::exists},
      {__LINE__, "file", "empty", ErrorKind::exists},
      {__LINE__, "file", "file", ErrorKind::none},
      {__LINE__, "missing", "new", ErrorKind::notFound},
      {__LINE__, "missing", "missing", ErrorKind::notFound},
      {__LINE__, "full", "new", ErrorKind::none},
      {__LINE__, "full", "empty", ErrorKind::exists},
  };
  for (const auto& row : rows)
    qvTest::expectRename(
        row, [](const auto&) {}, [] { return 0; });
  const qvTest::Directory directory;
  const std::string file = directory.write("file", "content"), nowhere = directory.path("nowhere/new");
  EXPECT_TRUE(isNotFound(renameFile(file.c_str(), nowhere.c_str())));
}

TEST(PlatformFile, CopiesBytesPermissionsAndTime) {
  const qvTest::Directory directory;
  for (const std::size_t size : {0, 1, 65536, 200001})
    for (const unsigned permissions : {0640, 0444}) {
      SCOPED_TRACE(size);
      const std::string from = directory.write("from", bytes(size)), to = directory.path("to");
      ASSERT_EQ(setModified(from.c_str(), 1000000000, 123456700), 0);
      ASSERT_EQ(setPermissions(from.c_str(), permissions), 0);
      EXPECT_EQ(copyFile(from.c_str(), to.c_str(), false), 0);
      EXPECT_EQ(directory.read("to"), bytes(size));
      EXPECT_EQ(infoOf(to).permissions, infoOf(from).permissions);
      EXPECT_EQ(infoOf(to).permissions & 0200, permissions & 0200);
      EXPECT_EQ(infoOf(to).modified, 1000000000);
      EXPECT_EQ(infoOf(to).modifiedNanoseconds, 123456700);
      for (const std::string& path : {from, to}) {
        EXPECT_EQ(setPermissions(path.c_str(), 0666), 0); // What is read-only cannot be deleted everywhere.
        EXPECT_EQ(deleteFile(path.c_str()), 0);
      }
    }
}

TEST(PlatformFile, CopiesOverATargetOnlyOnDemandAndWithRoomForAll) {
  const qvTest::Directory directory;
  const std::string from = directory.write("from", "short");
  const std::string to = directory.write("to", "much longer than the source");
  ASSERT_EQ(setModified(to.c_str(), 5, 0), 0);
  const FileInfo before = infoOf(to);
  EXPECT_EQ(errorKind(copyFile(from.c_str(), to.c_str(), false)), ErrorKind::exists);
  EXPECT_EQ(infoOf(to).modified, 5);
  EXPECT_EQ(copyFile(from.c_str(), to.c_str(), true), 0);
  EXPECT_EQ(directory.read("to"), "short");
  EXPECT_TRUE(infoOf(to).isSameFile(before));
  EXPECT_NE(copyFile(from.c_str(), from.c_str(), true), 0) << "onto itself";
  EXPECT_EQ(directory.read("from"), "short");

  directory.write("to", "old");
  qvTest::PlatformScript script;
  script.failCall(0, errorNumber(ErrorKind::other), "clone");
  script.failCall(0, errorNumber(ErrorKind::noSpace), "reserve");
  EXPECT_EQ(errorKind(copyFile(from.c_str(), to.c_str(), true)), ErrorKind::noSpace);
  EXPECT_EQ(directory.read("to"), "old");
}

TEST(PlatformFile, LeavesNoHalfCopy) {
  const qvTest::Directory directory;
  const std::string from = directory.write("from", bytes(200000)), to = directory.path("to");
  const int descriptors = nextDescriptor();
  int error = 0;
  const int failed = qvTest::failEveryCall(
      errorNumber(ErrorKind::ioFailure), nullptr, [&] { std::filesystem::remove(to); },
      [&] { error = copyFile(from.c_str(), to.c_str(), false); },
      [&] {
        EXPECT_EQ(directory.read("to"), error ? "<missing>" : bytes(200000));
        EXPECT_EQ(directory.read("from"), bytes(200000));
        EXPECT_EQ(nextDescriptor(), descriptors);
      });
  EXPECT_GT(failed, 0);
}
