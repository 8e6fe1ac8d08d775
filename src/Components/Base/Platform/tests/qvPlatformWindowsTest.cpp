// What only Windows has: paths as UTF-8 of any units, names beyond 260 units, the runtime's text form, and
// files that others open meanwhile.
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformFile.h"
#include "Base/Platform/qvPlatformPath.h"
#include "testing/qvTestDirectory.h"
#include "testing/qvTestSeed.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace qvPlatform;

namespace {

using Wide = std::wstring;

std::string toNative(const Wide& path) { return nativePath(path.data(), path.size()); }
Wide toWide(const std::string& path) { return widePath(path.data(), path.size()); }

} // namespace

TEST(PlatformWindows, WritesPathsAsUtf8) {
  const struct {
    int line;
    Wide wide;
    std::string native;
  } rows[] = {
      {__LINE__, L"C:\\tmp/x", "C:\\tmp/x"},
      {__LINE__, L"\\\\server\\share\\x", "\\\\server\\share\\x"},
      {__LINE__, L"\u00e4\U0001F600", "\xC3\xA4\xF0\x9F\x98\x80"},
      {__LINE__,
       {0xD800, L'a', 0xDFFF, 0xDC80},
       "\xED\xA0\x80"
       "a\xED\xBF\xBF\xED\xB2\x80"},
      {__LINE__, {0xDBFF}, "\xED\xAF\xBF"},
      {__LINE__, {0xD9AB, 0xD9AB, 0xDD12}, "\xED\xA6\xAB\xF1\xBA\xB4\x92"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(toNative(row.wide), row.native) << row.line;
    EXPECT_EQ(toWide(row.native), row.wide) << row.line;
  }
  EXPECT_EQ(toNative({L'a', 0, L'b'}), "");
  EXPECT_EQ(toWide("a\xFF"), Wide({L'a', 0xDCFF}));
  qvTest::Random random(20111110);
  const Wide alphabet = {0xD800, 0xDBFF, 0xDC00, 0xDC80, 0xDCED, 0xDCA0, 0xDFFF, L'a', L'\\', 0x00E4, 0xFFFD};
  for (int round = 0; round < 20000; ++round) {
    Wide wide(1 + random.below(12), L' ');
    for (wchar_t& c : wide)
      c = random.oneIn(4) ? static_cast<wchar_t>(1 + random.below(0xFFFF))
                          : alphabet[random.below(alphabet.size())];
    ASSERT_EQ(toWide(toNative(wide)), wide);
  }
}

TEST(PlatformWindows, NamesMayBeLong) {
  const qvTest::Directory directory;
  std::string deep = directory.path();
  std::vector<std::string> made;
  for (int level = 0; level < 4; ++level) {
    deep += "/" + std::string(150, static_cast<char>('a' + level)); // Either separator will do.
    ASSERT_EQ(makeDirectory(deep.c_str()), 0) << systemErrorText(makeDirectory(deep.c_str()));
    made.push_back(deep);
  }
  const std::string file = deep + "\\file", copy = deep + "\\copy", renamed = deep + "\\renamed";
  std::FILE* stream = nullptr;
  ASSERT_EQ(openStream(file.c_str(), "wb", &stream), 0);
  EXPECT_EQ(writeStream(stream, "content", 7, nullptr), 0);
  EXPECT_EQ(closeStream(stream), 0);
  EXPECT_EQ(copyFile(file.c_str(), copy.c_str(), false), 0);
  EXPECT_EQ(renameFile(copy.c_str(), renamed.c_str()), 0);
  FileInfo info;
  EXPECT_EQ(queryFile(renamed.c_str(), &info), 0);
  EXPECT_EQ(info.size, 7);
  int files = 0;
  Directory walk;
  ASSERT_EQ(walk.open(deep.c_str()), 0);
  for (const char* name = ""; walk.next(&name) == 0 && name;) files += walk.kind() == FileKind::file;
  EXPECT_EQ(files, 2);
  walk.close();
  for (const std::string& path : {file, renamed}) EXPECT_EQ(deleteFile(path.c_str()), 0);
  EXPECT_EQ(errorKind(removeDirectory(made[0].c_str())), ErrorKind::notEmpty);
  for (; !made.empty(); made.pop_back()) EXPECT_EQ(removeDirectory(made.back().c_str()), 0);
  EXPECT_EQ(errorKind(queryFile(std::string(100000, 'x').c_str(), &info)), ErrorKind::tooLong);
}

TEST(PlatformWindows, TellsWhatIsMissing) {
  const qvTest::Directory directory;
  const std::string file = directory.write("file", "");
  FileHandle handle = noFile;
  Directory walk;
  FileInfo info;
  const auto opened = [&](const char* name) {
    return openFile(directory.path(name).c_str(), openRead, &handle);
  };
  EXPECT_EQ(opened("missing"), 2);
  EXPECT_EQ(opened("nowhere\\x"), 3);
  EXPECT_EQ(walk.open(directory.path("nowhere").c_str()), 3);
  EXPECT_EQ(errorKind(walk.open(file.c_str())), ErrorKind::notDirectory) << walk.open(file.c_str());
  EXPECT_EQ(queryFile(directory.path("a<b").c_str(), &info), 2) << "no file has such a name";
  EXPECT_EQ(makeDirectory(directory.path("file").c_str()), 183);
  EXPECT_EQ(copyFile(file.c_str(), file.c_str(), false), 80);
}

TEST(PlatformWindows, ReadOnlyIsTheOwnersBitForWriting) {
  const qvTest::Directory directory;
  const std::string file = directory.write("file", "content");
  ASSERT_EQ(setPermissions(file.c_str(), 0577), 0);
  FileHandle handle = noFile;
  EXPECT_EQ(errorKind(openFile(file.c_str(), openWrite, &handle)), ErrorKind::denied);
  EXPECT_EQ(errorKind(deleteFile(file.c_str())), ErrorKind::denied);
  EXPECT_EQ(errorKind(checkAccess(file.c_str(), accessWrite)), ErrorKind::denied);
  EXPECT_EQ(checkAccess(file.c_str(), accessRead), 0);
  EXPECT_EQ(syncFileAt(file.c_str()), 0);
  ASSERT_EQ(setPermissions(file.c_str(), 0200), 0);
  EXPECT_EQ(checkAccess(file.c_str(), accessRead | accessWrite), 0);
  EXPECT_EQ(syncFileAt(file.c_str()), 0);
  EXPECT_EQ(errorKind(syncFileAt(directory.path().c_str())), ErrorKind::isDirectory);
  EXPECT_EQ(syncDirectory(directory.path().c_str()), 0);
}

TEST(PlatformWindows, OpenFilesMayBeRenamedAndDeleted) {
  const qvTest::Directory directory;
  const std::string from = directory.write("from", "content"), to = directory.path("to");
  FileHandle first = noFile, second = noFile;
  ASSERT_EQ(openFile(from.c_str(), openRead | openWrite, &first), 0);
  ASSERT_EQ(openFile(from.c_str(), openWrite | openAppend, &second), 0);
  EXPECT_EQ(renameFile(from.c_str(), to.c_str()), 0);
  EXPECT_EQ(writeFile(second, "1", 1, nullptr), 0);
  EXPECT_EQ(writeFile(first, "C", 1, nullptr), 0);
  EXPECT_EQ(writeFile(second, "2", 1, nullptr), 0) << "behind what others wrote meanwhile";
  EXPECT_EQ(directory.read("to"), "Content12");
  EXPECT_EQ(deleteFile(to.c_str()), 0);
  closeFile(first);
  closeFile(second);
  EXPECT_FALSE(directory.exists("to"));
}

TEST(PlatformWindows, PositionsHave64Bits) {
  const qvTest::Directory directory;
  const std::string path = directory.write("file", "");
  constexpr std::int64_t far = 5'000'000'000;
  FileHandle file = noFile;
  std::FILE* stream = nullptr;
  std::int64_t position = 0;
  ASSERT_EQ(openFile(path.c_str(), openRead | openWrite, &file), 0);
  EXPECT_EQ(seekFile(file, far, SeekFrom::start, &position), 0);
  EXPECT_EQ(position, far);
  EXPECT_EQ(closeFile(file), 0);
  ASSERT_EQ(openStream(path.c_str(), "r+b", &stream), 0);
  EXPECT_EQ(seekStream(stream, far, SeekFrom::start, &position), 0);
  EXPECT_EQ(position, far);
  EXPECT_EQ(closeStream(stream), 0);
}

TEST(PlatformWindows, TextHasItsLineEndsInTheTextFormOnly) {
  const qvTest::Directory directory;
  const std::string path = directory.path("file");
  for (const auto& [mode, content] : {std::pair("w", "a\nb\n"), {"wb", "a\nb\n"}, {"wt", "a\r\nb\r\n"}}) {
    std::FILE* stream = nullptr;
    ASSERT_EQ(openStream(path.c_str(), mode, &stream), 0);
    EXPECT_EQ(writeStream(stream, "a\nb\n", 4, nullptr), 0);
    EXPECT_EQ(closeStream(stream), 0);
    EXPECT_EQ(directory.read("file"), content) << mode;
  }
}

TEST(PlatformWindows, KnowsItsDirectories) {
  std::string path;
  EXPECT_EQ(absolutePath("C:\\a\\..\\b/./c", &path), 0);
  EXPECT_EQ(path, "C:\\b\\c");
  EXPECT_EQ(absolutePath("C:\\", &path), 0);
  EXPECT_EQ(path, "C:\\");
  const qvTest::Directory directory;
  EXPECT_EQ(realPath(directory.path().c_str(), &path), 0);
  EXPECT_EQ(path.substr(1, 2), ":\\");
  std::string before, now;
  ASSERT_EQ(workingDirectory(&before), 0);
  EXPECT_EQ(setWorkingDirectory(("\\\\?\\" + path).c_str()), 0);
  EXPECT_EQ(workingDirectory(&now), 0);
  EXPECT_EQ(now, path) << "the extended form goes no further";
  EXPECT_EQ(setWorkingDirectory(before.c_str()), 0);
  qvTest::TemporaryPlace place("C:\\Temp\\\\");
  EXPECT_EQ(temporaryDirectory(), "C:\\Temp");
  place.set("C:\\");
  EXPECT_EQ(temporaryDirectory(), "C:\\");
}

TEST(PlatformWindows, KnowsVolumesAndOwners) {
  const qvTest::Directory directory;
  VolumeSpace space;
  EXPECT_EQ(queryVolumeSpace(directory.path().c_str(), &space), 0);
  EXPECT_TRUE(space.available > 0 && space.available <= space.total);
  const std::string file = directory.write("file", "");
  VolumeSpace around;
  EXPECT_EQ(queryVolumeSpace(file.c_str(), &around), 0);
  EXPECT_EQ(around.total, space.total);
  EXPECT_NE(queryVolumeSpace(directory.path("missing").c_str(), &space), 0);
  bool remote = true;
  EXPECT_EQ(queryRemote(directory.path().c_str(), &remote), 0);
  EXPECT_FALSE(remote);
  AccountName name;
  EXPECT_EQ(queryOwner(file.c_str(), &name), 0);
  EXPECT_FALSE(name.account.empty());
  EXPECT_NE(queryOwner(directory.path("missing").c_str(), &name), 0);
  EXPECT_EQ(copyAttributes(file.c_str(), file.c_str()), 0);
}
