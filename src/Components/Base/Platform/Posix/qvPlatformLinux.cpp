#include "Base/Platform/Posix/qvPlatformLinux.h"

#include <errno.h>

#if defined(__linux__)

#include <fcntl.h>
#include <linux/fs.h>
#include <linux/futex.h>
#include <linux/magic.h>
#include <stdio.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>

namespace qvPlatform {

namespace {

constexpr std::uint32_t remoteFileSystems[] = {
    NFS_SUPER_MAGIC, SMB_SUPER_MAGIC, NCP_SUPER_MAGIC, CODA_SUPER_MAGIC, AFS_SUPER_MAGIC, V9FS_MAGIC,
    0xFF534D42, // CIFS
    0xFE534D42, // SMB 2
    0x5346414F, // AFS of another making
    0x00C36400, // Ceph
    0x0BD00BD0, // Lustre
};

} // namespace

int renameWithoutReplacing(const char* from, const char* to) noexcept {
  return ::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
}

int cloneBlocks(int from, int to) noexcept { return ::ioctl(to, FICLONE, from); }

ssize_t copyInside(int from, int to, std::size_t size) noexcept {
  return ::copy_file_range(from, nullptr, to, nullptr, size, 0);
}

int reserveBlocks(int file, std::int64_t size) noexcept {
  return size > 0 ? ::fallocate(file, FALLOC_FL_KEEP_SIZE, 0, size) : 0;
}

int isRemoteFileSystem(const char* path) noexcept {
  struct statfs status;
  if (::statfs(path, &status) != 0) return -1;
  const auto type = static_cast<std::uint32_t>(status.f_type);
  return std::find(std::begin(remoteFileSystems), std::end(remoteFileSystems), type) !=
         std::end(remoteFileSystems);
}

int sleepOn(const std::atomic<std::uint32_t>* word, std::uint32_t value, std::int64_t deadline) noexcept {
  static_assert(sizeof *word == 4 && sizeof(timespec) == 16);
  const timespec until{deadline / 1'000'000'000, static_cast<long>(deadline % 1'000'000'000)};
  return static_cast<int>(::syscall(SYS_futex, word, FUTEX_WAIT_BITSET_PRIVATE, value,
                                    deadline < 0 ? nullptr : &until, nullptr, FUTEX_BITSET_MATCH_ANY));
}

int wakeOn(const std::atomic<std::uint32_t>* word) noexcept {
  return static_cast<int>(::syscall(SYS_futex, word, FUTEX_WAKE_PRIVATE, 1));
}

} // namespace qvPlatform

#else

namespace qvPlatform {

namespace {

int notHere() {
  errno = ENOSYS;
  return -1;
}

} // namespace

int renameWithoutReplacing(const char*, const char*) noexcept { return notHere(); }
int cloneBlocks(int, int) noexcept { return notHere(); }
ssize_t copyInside(int, int, std::size_t) noexcept { return notHere(); }
int reserveBlocks(int, std::int64_t) noexcept { return notHere(); }
int isRemoteFileSystem(const char*) noexcept { return 0; }
int sleepOn(const std::atomic<std::uint32_t>*, std::uint32_t, std::int64_t) noexcept { return notHere(); }
int wakeOn(const std::atomic<std::uint32_t>*) noexcept { return notHere(); }

} // namespace qvPlatform

#endif
