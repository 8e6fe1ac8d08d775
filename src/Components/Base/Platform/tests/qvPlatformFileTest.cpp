#include "Base/Platform/qvPlatformFile.h"

#include "Base/Platform/qvPlatformError.h"
#include "testing/qvTestDirectory.h"
#include "testing/qvTestPlatform.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

using namespace qvPlatform;

namespace {

std::string bytes(std::size_t size) {
  std::string result(size, '\0');
  for (std::size_t i = 0; i < size; ++i) result[i] = static_cast<char>(i * 31 + i / 251);
  return result;
}

int openDescriptors() {
  return static_cast<int>(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
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
  const int before = openDescriptors();
  EXPECT_EQ(errorKind(openFile(directory.path().c_str(), openRead, &file)), ErrorKind::isDirectory);
  EXPECT_EQ(openDescriptors(), before);

  const int kept = ::dup(STDIN_FILENO);
  ::close(STDIN_FILENO);
  const int error = openFile(path.c_str(), openRead, &file);
  ::dup2(kept, STDIN_FILENO);
  ::close(kept);
  ASSERT_EQ(error, 0);
  EXPECT_GT(file, STDERR_FILENO) << "the standard streams' places stay empty";
  EXPECT_TRUE(::fcntl(static_cast<int>(file), F_GETFD) & FD_CLOEXEC);
  closeFile(file);
}

TEST(PlatformFile, GoesOnAfterAnInterruption) {
  const qvTest::Directory directory;
  const std::string path = directory.path("data");
  qvTest::PlatformScript script;
  for (const char* name : {"open", "write", "read", "close"}) script.failCall(0, EINTR, name, 3);
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
  std::FILE* full = nullptr;
  ASSERT_EQ(openStream("/dev/full", "w", &full), 0);
  EXPECT_EQ(writeStream(full, "x", 1, nullptr), 0);
  EXPECT_EQ(errorKind(closeStream(full)), ErrorKind::noSpace) << "what was lost in the buffer";
}

TEST(PlatformFile, RenamesWithoutReplacing) {
  const struct {
    int line;
    const char* source;
    const char* target;
    ErrorKind result;
  } rows[] = {
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
      SCOPED_TRACE(testing::Message() << "line " << row.line << ", lacking " << lacking);
      const qvTest::Directory directory;
      directory.write("file", "content");
      directory.write("other", "precious");
      std::filesystem::create_symlink("nowhere", directory.path("dangling"));
      std::filesystem::create_directory(directory.path("empty"));
      std::filesystem::create_directory(directory.path("full"));
      directory.write("full/entry", "entry");
      const int entries = directory.entries();
      const std::string from = directory.path(row.source), to = directory.path(row.target);
      const auto kind = std::filesystem::symlink_status(from).type();
      int error = 0;
      {
        qvTest::PlatformScript script;
        if (lacking > 0) script.failCall(0, EINVAL, "rename");
        if (lacking > 1) script.failCall(0, EPERM, "link");
        error = renameFile(from.c_str(), to.c_str());
      }
      EXPECT_EQ(errorKind(error), row.result) << systemErrorText(error);
      EXPECT_EQ(directory.entries(), entries);
      EXPECT_EQ(directory.read("other"), "precious");
      EXPECT_EQ(std::filesystem::symlink_status(error ? from : to).type(), kind);
      EXPECT_EQ(directory.exists(row.source),
                error ? kind != std::filesystem::file_type::not_found : from == to);
    }
}

TEST(PlatformFile, LosesNothingWhereARenameFails) {
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

TEST(PlatformFile, CopiesBytesPermissionsAndTime) {
  const qvTest::Directory directory;
  for (const std::size_t size : {0, 1, 65536, 200001})
    for (const bool inside : {true, false}) {
      SCOPED_TRACE(testing::Message() << size << " bytes, inside the system: " << inside);
      const std::string from = directory.write("from", bytes(size)), to = directory.path("to");
      ASSERT_EQ(setPermissions(from.c_str(), 0467), 0);
      ASSERT_EQ(setModified(from.c_str(), 1000000000, 123456789), 0);
      qvTest::PlatformScript script;
      if (!inside) script.failCall(0, EOPNOTSUPP, "clone");
      if (!inside) script.failCall(0, EOPNOTSUPP, "copy");
      EXPECT_EQ(copyFile(from.c_str(), to.c_str(), false), 0);
      EXPECT_EQ(directory.read("to"), bytes(size));
      EXPECT_EQ(infoOf(to).permissions, 0467u);
      EXPECT_EQ(infoOf(to).modified, 1000000000);
      EXPECT_EQ(infoOf(to).modifiedNanoseconds, 123456789);
      std::filesystem::remove(from);
      std::filesystem::remove(to);
    }
}

TEST(PlatformFile, CopiesOverATargetOnlyOnDemandAndWithRoomForAll) {
  const qvTest::Directory directory;
  const std::string from = directory.write("from", "short");
  const std::string to = directory.write("to", "much longer than the source");
  const std::string dangling = directory.path("dangling");
  std::filesystem::create_symlink("aim", dangling);
  ASSERT_EQ(setModified(to.c_str(), 5, 0), 0);
  const FileInfo before = infoOf(to);
  EXPECT_EQ(errorKind(copyFile(from.c_str(), to.c_str(), false)), ErrorKind::exists);
  EXPECT_EQ(errorKind(copyFile(from.c_str(), dangling.c_str(), false)), ErrorKind::exists);
  EXPECT_EQ(infoOf(to).modified, 5);
  EXPECT_EQ(copyFile(from.c_str(), to.c_str(), true), 0);
  EXPECT_EQ(directory.read("to"), "short");
  EXPECT_TRUE(infoOf(to).isSameFile(before));
  EXPECT_EQ(copyFile(from.c_str(), dangling.c_str(), true), 0);
  EXPECT_EQ(directory.read("aim"), "short");
  ASSERT_EQ(setPermissions(from.c_str(), 0604), 0);
  {
    qvTest::PlatformScript script;
    script.failCall(0, EPERM, "attributes", 2); // Neither owner nor group may be given.
    EXPECT_EQ(copyAttributes(from.c_str(), to.c_str()), 0);
    EXPECT_EQ(infoOf(to).permissions, 0604u);
  }

  directory.write("to", "precious");
  qvTest::PlatformScript script;
  script.failCall(0, EOPNOTSUPP, "clone");
  script.failCall(0, ENOSPC, "reserve");
  EXPECT_EQ(errorKind(copyFile(from.c_str(), to.c_str(), true)), ErrorKind::noSpace);
  EXPECT_EQ(directory.read("to"), "precious");
}

TEST(PlatformFile, LeavesNoHalfCopy) {
  const qvTest::Directory directory;
  const std::string from = directory.write("from", bytes(200000)), to = directory.path("to");
  const int descriptors = openDescriptors();
  int error = 0;
  const int failed = qvTest::failEveryCall(
      EIO, nullptr, [&] { std::filesystem::remove(to); },
      [&] { error = copyFile(from.c_str(), to.c_str(), false); },
      [&] {
        EXPECT_EQ(directory.read("to"), error ? "<missing>" : bytes(200000));
        EXPECT_EQ(directory.read("from"), bytes(200000));
        EXPECT_EQ(openDescriptors(), descriptors);
      });
  EXPECT_GT(failed, 8);
}
