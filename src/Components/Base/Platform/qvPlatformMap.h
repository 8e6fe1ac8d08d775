// Files that exist to back memory, and windows of them in the address space. Names, numbers and announcements
// are as in qvPlatformFile.h.
#pragma once

#include <cstdint>

namespace qvPlatform {

inline constexpr std::intptr_t noMapHandle = -1;

/// An open file that backs memory. Nobody else gets one of the same file meanwhile, no started program
/// inherits it, and it is never one of the three standard streams. Where the system has one handle for both,
/// the two are equal.
struct MapFile {
  std::intptr_t fileHandle = noMapHandle;
  std::intptr_t mappingHandle = noMapHandle;
};

/// Makes a file of exactly `size` zero bytes in place of whatever had that name, for its owner only where
/// files have permission bits, with all its blocks reserved, so that writing to a window never finds the disk
/// full [open] [lock] [stat] [unlink] [seek] [truncate] [reserve] [mapping]. With `deleteOnClose` the name is
/// gone at once where the system allows that, else with the last handle or with this process. A file that
/// such a handle holds already, of this process too, and what is no ordinary file are refused and stay as
/// they are. A link is followed, but refused likewise where its own name would go at once. `invalid` for a
/// size of 0 or one that no file has. Any other failure may leave a file of no bytes, as may a link that led
/// nowhere.
[[nodiscard]] int createMapFile(const char* path, std::uint64_t size, bool deleteOnClose,
                                MapFile* made) noexcept;
/// Closes what is open, the mapping first, and resets both handles [close]. Windows stay mapped.
void closeMapFile(MapFile* file) noexcept;

/// Maps `size` bytes from `offset` on for reading and writing [map]. The caller makes sure that they lie in
/// the file and that there is at least one. An offset that is no multiple of `mapGranularity`, or of a part
/// of it that the system is content with, is refused.
[[nodiscard]] int mapWindow(const MapFile& file, std::int64_t offset, std::uint64_t size,
                            void** address) noexcept;
/// Unmaps a whole window [unmap]. It is gone in every case.
void unmapWindow(void* address, std::uint64_t size) noexcept;
/// Writes the bytes from `begin` up to `end` of the window at `address` back to the file [flush]; the system
/// takes the whole pages that hold them. There is at least one.
[[nodiscard]] int flushWindow(void* address, std::uint64_t begin, std::uint64_t end) noexcept;

/// What the offset of a window is a multiple of; a power of two.
[[nodiscard]] std::uint64_t mapGranularity() noexcept;

} // namespace qvPlatform
