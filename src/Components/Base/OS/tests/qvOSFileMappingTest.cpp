#include "Base/OS/qvOSFileMapping.h"

#include "Base/OS/qvOSMemoryMappedFile.h"
#include "Base/OS/qvOSUuid.h"
#include "Base/OS/tests/qvOSTestName.h"
#include "Base/Platform/qvPlatformError.h"
#include "testing/qvTestPlatform.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <limits>
#include <regex>
#include <set>

namespace {

using qvOS::FileMapping;
using qvOS::MemoryMappedFile;
using qvOS::Uuid;

constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();

char* bytesOf(const FileMapping& window) { return static_cast<char*>(window.getPtr()); }

void expectNothing(const FileMapping& window) {
  EXPECT_FALSE(window);
  EXPECT_EQ(window.getOffset(), 0);
  EXPECT_EQ(window.getSize(), 0u);
}

void expectClosed(const MemoryMappedFile& file) {
  EXPECT_FALSE(file.valid());
  EXPECT_EQ(file.getSize(), 0);
  EXPECT_TRUE(file.getFilename().isEmpty());
}

TEST(FileMapping, HoldsNothingAtFirst) {
  FileMapping window;
  window.unmap();
  window.flush(0, most);
  window.load(0, most);
  expectNothing(window);

  MemoryMappedFile file;
  expectClosed(file);
  window = file.map(5, 7);
  EXPECT_FALSE(window);
  EXPECT_EQ(window.getOffset(), 5);
  EXPECT_EQ(window.getSize(), 7u);
}

TEST(FileMapping, MapsWhatLiesInTheFile) {
  const qvTest::Scratch scratch;
  const auto unit = static_cast<std::int64_t>(FileMapping::getGranularity());
  const auto size = static_cast<std::uint64_t>(3 * unit + 1);
  ASSERT_TRUE(unit > 0 && 65536 % unit == 0);
  MemoryMappedFile file;
  ASSERT_TRUE(file.createFile(scratch.name("f"), size, false));
  const struct {
    int line;
    std::int64_t offset;
    std::uint64_t size;
    bool good;
  } rows[] = {
      {__LINE__, 0, size, true},       {__LINE__, 0, 1, true},         {__LINE__, 3 * unit, 1, true},
      {__LINE__, 0, 0, false},         {__LINE__, 0, size + 1, false}, {__LINE__, 3 * unit, 2, false},
      {__LINE__, unit, size, false},   {__LINE__, 1, 1, false},        {__LINE__, -unit, 1, false},
      {__LINE__, 4 * unit, 1, false},  {__LINE__, unit, most, false},  {__LINE__, unit / 2, 1, false},
      {__LINE__, INT64_MIN, 1, false},
  };
  for (const auto& row : rows) {
    FileMapping window = file.map(row.offset, row.size);
    EXPECT_EQ(static_cast<bool>(window), row.good) << row.line;
    EXPECT_EQ(window.getOffset(), row.offset);
    EXPECT_EQ(window.getSize(), row.size);
    window.unmap();
  }
}

TEST(FileMapping, WindowsShowOneFile) {
  const qvTest::Scratch scratch;
  const std::uint64_t unit = FileMapping::getGranularity();
  const std::string old = scratch.write("f", "what was there before");
  FileMapping left;
  {
    MemoryMappedFile file, copy(file);
    ASSERT_TRUE(file.createFile(scratch.name("f"), unit + 100, false));
    EXPECT_TRUE(copy.valid());
    EXPECT_EQ(copy.getSize(), static_cast<std::int64_t>(unit + 100));
    EXPECT_EQ(copy.getFilename(), scratch.name("f"));
    FileMapping whole = file.map(0, unit + 100), part = file.map(static_cast<std::int64_t>(unit), 100);
    EXPECT_EQ(std::string(bytesOf(whole), unit + 100), std::string(unit + 100, '\0'));
    std::memcpy(bytesOf(part), "pattern", 7);
    EXPECT_EQ(std::string(bytesOf(whole) + unit, 7), "pattern");
    part.flush(0, most);
    part.load(0, most);
    part.load(most, most);
    left = part;
    whole.unmap();
    expectNothing(whole);
    whole.unmap();

    // Who comes second is refused and harms nothing, and a copy that goes closes nothing.
    MemoryMappedFile second;
    EXPECT_FALSE(second.createFile(scratch.name("f"), 1, false));
    EXPECT_FALSE(second.createFile(scratch.name("f"), 1, true));
    expectClosed(second);
    const MemoryMappedFile view(file);
  }
  EXPECT_EQ(std::string(bytesOf(left), 7), "pattern");
  left.unmap();
  const std::string kept = scratch.read("f");
  EXPECT_EQ(kept.size(), unit + 100);
  EXPECT_EQ(kept.substr(unit, 7), "pattern");
}

TEST(FileMapping, FilesGoWhenTheyAreClosed) {
  const qvTest::Scratch scratch;
  scratch.write("f", "old");
  {
    MemoryMappedFile file;
    ASSERT_TRUE(file.createFile(scratch.name("f"), 1, true));
    ASSERT_TRUE(file.createFile(file.getFilename(), 70000, true));
    EXPECT_EQ(file.getFilename(), scratch.name("f"));
    FileMapping window = file.map(0, 70000);
    ASSERT_TRUE(window);
    bytesOf(window)[69999] = 1;
    window.unmap();
    EXPECT_FALSE(file.createFile(scratch.name("f"), 0, true));
    expectClosed(file);
    EXPECT_EQ(scratch.entries(), 0);
    ASSERT_TRUE(file.createFile(scratch.name("f"), 1, true));
  }
  EXPECT_EQ(scratch.entries(), 0);
}

TEST(FileMapping, RefusesWhatCannotBeMade) {
  const qvTest::Scratch scratch;
  const struct {
    int line;
    qvString::IString name;
    std::uint64_t size;
  } rows[] = {
      {__LINE__, scratch.name("f"), 0},
      {__LINE__, scratch.name("f"), most},
      {__LINE__, scratch.name("f"), most / 2 + 2},
      {__LINE__, scratch.name("f"), most / 2},
      {__LINE__, scratch.name(""), 1},
      {__LINE__, scratch.name("nowhere/f"), 1},
      {__LINE__, qvString::IString(), 1},
  };
  for (const auto& row : rows) {
    MemoryMappedFile file;
    EXPECT_FALSE(file.createFile(row.name, row.size, true)) << row.line;
    expectClosed(file);
    EXPECT_EQ(scratch.entries(), 0) << row.line;
  }
}

TEST(FileMapping, EveryCallMayFail) {
  const qvTest::Scratch scratch;
  const int error = qvPlatform::errorNumber(qvPlatform::ErrorKind::ioFailure);
  for (const bool deleteOnClose : {false, true}) {
    MemoryMappedFile file;
    FileMapping window;
    bool made = false;
    const int failures = qvTest::failEveryCall(
        error, nullptr, [&] { std::filesystem::remove(qvTest::pathOf(scratch.path("f"))); },
        [&] {
          made = file.createFile(scratch.name("f"), 10, deleteOnClose);
          window = file.map(0, 10);
          window.flush(0, 10);
        },
        [&] {
          EXPECT_EQ(file.valid(), made);
          EXPECT_TRUE(made || !window);
          window.unmap();
          EXPECT_FALSE(file.createFile(scratch.name("f"), 0, true));
          const std::string left = scratch.read("f");
          if (made && !deleteOnClose)
            EXPECT_EQ(left, std::string(10, '\0'));
          else
            EXPECT_TRUE(left == "<missing>" || left.empty());
        });
    EXPECT_GE(failures, 5); // of creation at least three
  }
}

TEST(Uuid, IsNewEachTime) {
  EXPECT_STREQ(Uuid().asString().asChar(), "00000000-0000-0000-0000-000000000000");
  const std::regex form("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}");
  std::set<Uuid> made;
  for (int i = 0; i < 1000; ++i) {
    const Uuid uuid = Uuid::generate();
    EXPECT_TRUE(made.insert(uuid).second);
    EXPECT_TRUE(std::regex_match(uuid.asString().asChar(), form)) << uuid.asString().asChar();
  }
}

} // namespace
