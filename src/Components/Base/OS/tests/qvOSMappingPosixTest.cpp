// What of mapped files only these systems let a test see: which bytes are asked of the system, which pages
// are touched, who else locks a file; and limits that a child of the test gives itself.
#include "Base/OS/qvOSMemoryMappedFile.h"
#include "Base/OS/tests/qvOSTestName.h"
#include "testing/qvTestChild.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <vector>

#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

struct Flushed {
  const void* address = nullptr;
  std::size_t length = 0;
  int flags = 0;
  int times = 0;
} flushed;

} // namespace

/// In place of the C library's: notes what is asked for, and passes it on.
extern "C" int msync(void* address, std::size_t length, int flags) {
  flushed = {address, length, flags, flushed.times + 1};
  return static_cast<int>(syscall(SYS_msync, address, length, flags));
}

namespace {

using qvOS::FileMapping;
using qvOS::MemoryMappedFile;

constexpr std::uint64_t megabyte = 0x100000;

TEST(FileMappingPosix, FlushesTheBytesThatAreAskedFor) {
  const qvTest::Scratch scratch;
  const std::uint64_t page = FileMapping::getGranularity(), size = 5 * page;
  MemoryMappedFile file;
  ASSERT_TRUE(file.createFile(scratch.name("f"), 6 * page, true));
  FileMapping window = file.map(static_cast<std::int64_t>(page), size);
  ASSERT_TRUE(window);
  const struct {
    int line;
    std::uint64_t from, to, first, end; // the last two as the system is told
  } rows[] = {
      {__LINE__, 0, size, 0, size},
      {__LINE__, 0, 1, 0, 1},
      {__LINE__, page + 5, 3 * page + 7, page, 3 * page + 7},
      {__LINE__, page - 1, ~std::uint64_t(0), 0, size},
      {__LINE__, 7, 7, 0, 0},
      {__LINE__, 8, 7, 0, 0},
      {__LINE__, size, size + 1, 0, 0},
  };
  for (const auto& row : rows) {
    flushed = {};
    window.flush(row.from, row.to);
    EXPECT_EQ(flushed.times, row.end > 0) << row.line;
    if (row.end == 0) continue;
    EXPECT_EQ(flushed.address, static_cast<char*>(window.getPtr()) + row.first) << row.line;
    EXPECT_EQ(flushed.length, row.end - row.first) << row.line;
    EXPECT_EQ(flushed.flags, MS_SYNC);
  }
  window.unmap();
}

std::vector<std::uintptr_t> touched; // its room is reserved, since a handler fills it

/// Notes the page and lets it be read from here on.
void onTouch(int, siginfo_t* info, void*) {
  const std::uintptr_t page = FileMapping::getGranularity();
  touched.push_back(reinterpret_cast<std::uintptr_t>(info->si_addr) & ~(page - 1));
  if (touched.size() == touched.capacity() ||
      mprotect(reinterpret_cast<void*>(touched.back()), page, PROT_READ) != 0)
    _exit(3);
}

TEST(FileMappingPosix, LoadTouchesOnePageAfterAnother) {
  if (FileMapping::getGranularity() != 4096) GTEST_SKIP() << "pages are larger than the steps";
  const qvTest::Scratch scratch;
  const std::uint64_t size = 3 * megabyte + 65536;
  MemoryMappedFile file;
  ASSERT_TRUE(file.createFile(scratch.name("f"), size, true));
  FileMapping window = file.map(0, size);
  ASSERT_TRUE(window);
  touched.reserve(4000);
  const struct {
    int line;
    std::uint64_t from, to, first, last; // the pages at `first` to `last`; none if they are the wrong way
  } rows[] = {
      {__LINE__, 5, 100, 0, 0},
      {__LINE__, megabyte + 5, 2 * megabyte - 1, megabyte, megabyte},
      {__LINE__, 5, 2 * megabyte - 1, 0, megabyte},
      {__LINE__, megabyte - 1, 2 * megabyte, 0, 2 * megabyte},
      {__LINE__, 2 * megabyte + 1, 2 * megabyte, 2 * megabyte, 2 * megabyte},
      {__LINE__, 2 * megabyte, 2 * megabyte - 1, 1, 0},
      {__LINE__, 3 * megabyte + 5, ~std::uint64_t(0), 3 * megabyte, size - 4096},
      {__LINE__, 4 * megabyte, ~std::uint64_t(0), 1, 0},
      {__LINE__, ~std::uint64_t(0), ~std::uint64_t(0), 1, 0},
  };
  struct sigaction action = {}, before = {};
  action.sa_sigaction = onTouch;
  action.sa_flags = SA_SIGINFO;
  const auto start = reinterpret_cast<std::uintptr_t>(window.getPtr());
  for (const auto& row : rows) {
    std::vector<std::uintptr_t> expected;
    for (std::uint64_t page = row.first; page <= row.last; page += 4096) expected.push_back(start + page);
    touched.clear();
    ASSERT_EQ(mprotect(window.getPtr(), size, PROT_NONE), 0);
    sigaction(SIGSEGV, &action, &before);
    window.load(row.from, row.to);
    sigaction(SIGSEGV, &before, nullptr);
    EXPECT_EQ(touched, expected) << row.line;
  }
  window.unmap();
}

TEST(FileMappingPosix, OtherProcessesAreRefused) {
  const qvTest::Scratch scratch;
  MemoryMappedFile file;
  ASSERT_TRUE(file.createFile(scratch.name("f"), 10, false));
  FileMapping window = file.map(0, 10);
  std::memcpy(window.getPtr(), "0123456789", 10);
  EXPECT_EQ(qvTest::inChild([&] {
              MemoryMappedFile second;
              EXPECT_FALSE(second.createFile(scratch.name("f"), 5, true));
            }),
            0);
  EXPECT_EQ(scratch.read("f"), "0123456789");
  window.unmap();
}

} // namespace
