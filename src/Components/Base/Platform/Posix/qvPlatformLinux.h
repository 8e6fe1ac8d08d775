// What this system has beyond the common ground. Each answers as the system does: -1 with `errno` set, and
// ENOSYS where there is no such thing.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <sys/types.h>

namespace qvPlatform {

/// Renames where the target's name is free, in one step.
[[nodiscard]] int renameWithoutReplacing(const char* from, const char* to) noexcept;
/// Makes the file `to` share all blocks of the file `from`.
[[nodiscard]] int cloneBlocks(int from, int to) noexcept;
/// Copies up to `size` bytes from position to position inside the system; 0 at the end.
[[nodiscard]] ssize_t copyInside(int from, int to, std::size_t size) noexcept;
/// Reserves blocks for the first `size` bytes; the file's length stays.
[[nodiscard]] int reserveBlocks(int file, std::int64_t size) noexcept;
/// Whether the file system of that path is another machine's: 1, 0, or -1.
[[nodiscard]] int isRemoteFileSystem(const char* path) noexcept;
/// Sleeps if `*word` is `value`, until it is woken, or until the steady clock shows so many nanoseconds; for
/// good where those are below 0.
[[nodiscard]] int sleepOn(const std::atomic<std::uint32_t>* word, std::uint32_t value,
                          std::int64_t deadline) noexcept;
/// Wakes one that sleeps on that word, which need not exist any more.
[[nodiscard]] int wakeOn(const std::atomic<std::uint32_t>* word) noexcept;

} // namespace qvPlatform
