// What of mapped files only these systems let a test see: which bytes are asked of the system and which pages
// are touched; and limits that a child of the test gives itself.
#include "Base/OS/qvOSMemoryMappedFile.h"
#include "Base/OS/qvOSMoveableMemory.h"
#include "Base/OS/tests/qvOSTestName.h"
#include "Base/OS/tests/qvOSTestPattern.h"
#include "testing/qvTestChild.h"
#include "testing/qvTestSanitizer.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <vector>

#include <sched.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
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

TEST(FileMappingPosix, LinksAndDevicesStay) {
  namespace fs = std::filesystem;
  const qvTest::Scratch scratch;
  scratch.write("target", "kept");
  fs::create_symlink("target", scratch.path("link"));
  ASSERT_EQ(mkfifo(scratch.path("pipe").c_str(), 0600), 0);
  MemoryMappedFile file;
  EXPECT_FALSE(file.createFile(scratch.name("link"), 5, true));
  EXPECT_FALSE(file.createFile(scratch.name("pipe"), 5, true));
  EXPECT_EQ(scratch.read("link"), "kept");
  EXPECT_TRUE(fs::is_symlink(scratch.path("link")) && fs::is_fifo(scratch.path("pipe")));
  EXPECT_TRUE(file.createFile(scratch.name("link"), 5, false));
  EXPECT_EQ(fs::file_size(scratch.path("target")), 5u);
}

using Mapping = qv::Reference<qvOS::MoveableMapping>;

/// What a child ends with that could not set the scene.
constexpr int notPossible = 77;

void write(const Mapping& block, std::uint64_t seed) {
  qvTest::writePattern(block->map(), block->getSize(), seed);
}
bool isKept(const Mapping& block, std::uint64_t seed) {
  return qvTest::hasPattern(block->map(), block->getSize(), seed);
}

TEST(MoveablePosix, AFullDiskHarmsNothing) {
  const qvTest::Scratch scratch;
  const int result = qvTest::inChild([&] {
    const int spaces = geteuid() == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER;
    if (unshare(spaces) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("none", scratch.path().c_str(), "tmpfs", 0, "size=70m") != 0)
      _exit(notPossible);
    qvOS::MoveableMemory memory;
    ASSERT_TRUE(memory.initializeFiles(scratch.name(""), QV_W("full")));
    const std::uint64_t size = 33 * megabyte; // a file for each
    Mapping first = memory.allocate(size);
    const Mapping second = memory.allocate(size);
    ASSERT_TRUE(first && second);
    write(first, 1);
    write(second, 2);
    EXPECT_FALSE(memory.allocate(size));
    EXPECT_FALSE(memory.allocate(1));
    EXPECT_TRUE(isKept(first, 1) && isKept(second, 2));
    EXPECT_EQ(memory.getStats().fileCount, 2u);
    first = nullptr;
    first = memory.allocate(size);
    ASSERT_TRUE(first);
    std::memset(first->map(), 3, size); // the whole room is there
    EXPECT_TRUE(isKept(second, 2));
  });
  if (result == notPossible) GTEST_SKIP() << "no file system can be mounted here";
  EXPECT_EQ(result, 0);
}

TEST(MoveablePosix, AKilledProcessLeavesNothing) {
  const qvTest::Scratch scratch;
  EXPECT_EQ(qvTest::inChild([&] {
              qvOS::MoveableMemory memory;
              EXPECT_TRUE(memory.initializeFiles(scratch.name(""), QV_W("killed")));
              const Mapping block = memory.allocate(megabyte);
              write(block, 1);
              if (isKept(block, 1)) raise(SIGKILL);
            }),
            -SIGKILL);
  EXPECT_EQ(scratch.entries(), 0);
}

/// Lets the process have so many bytes of address space besides those that it has.
bool limitAddressSpace(std::uint64_t more) {
  std::uint64_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  rlimit limit{}, told{};
  limit.rlim_cur = limit.rlim_max = pages * FileMapping::getGranularity() + more;
  return setrlimit(RLIMIT_AS, &limit) == 0 && getrlimit(RLIMIT_AS, &told) == 0 &&
         told.rlim_cur == limit.rlim_cur;
}

TEST(MoveablePosix, HoldsMoreThanTheAddressSpace) {
  if (qvTest::isSanitized) GTEST_SKIP() << "a sanitizer needs the address space for itself";
  const qvTest::Scratch scratch;
  if (std::filesystem::space(scratch.path()).available < 3072 * megabyte)
    GTEST_SKIP() << "no room for files of 2 GiB";
  const int result = qvTest::inChild([&] {
    if (!limitAddressSpace(256 * megabyte)) _exit(notPossible);
    qvOS::MoveableMemory memory;
    ASSERT_TRUE(memory.initializeFiles(scratch.name(""), QV_W("large")));
    std::vector<Mapping> blocks;
    for (std::uint64_t i = 0; i < 64; ++i) {
      blocks.push_back(memory.allocate(32 * megabyte));
      ASSERT_TRUE(blocks.back() && blocks.back()->map());
      write(blocks.back(), i);
      blocks.back()->unmap();
    }
    EXPECT_EQ(memory.getStats().usedBytes, 2048 * megabyte);
    // All of them at once are too much, and those for which there is room are good.
    std::size_t mapped = 0;
    while (mapped < 64 && blocks[mapped]->map()) ++mapped;
    EXPECT_TRUE(mapped >= 4 && mapped <= 8) << mapped;
    EXPECT_EQ(memory.getStats().mappedBytes, mapped * 32 * megabyte);
    for (std::size_t i = 0; i < 64; ++i) {
      if (i >= mapped) blocks[i - mapped]->unmap();
      ASSERT_TRUE(blocks[i]->map());
      EXPECT_TRUE(isKept(blocks[i], i)) << i;
    }
  });
  if (result == notPossible) GTEST_SKIP() << "the address space cannot be limited here";
  EXPECT_EQ(result, 0);
}

} // namespace
