// One window of a mapped file in the address space.
#pragma once

#include "Base/qvBase.h"

#include <cstdint>

namespace qvOS {

/// A plain value that tells where a window starts in its file, how long it is and where it is mapped. It owns
/// nothing: the window stays mapped until one holder of a copy calls `unmap`, also where its file is closed
/// before. Not thread-safe.
class FileMapping {
public:
  /// No window; all three values are zero.
  FileMapping() noexcept = default;

  [[nodiscard]] std::int64_t getOffset() const noexcept { return offset_; }
  [[nodiscard]] std::uint64_t getSize() const noexcept { return size_; }
  /// The first byte of the window, to be read and written; null if it is not mapped.
  [[nodiscard]] void* getPtr() const noexcept { return address_; }
  /// True if the window is mapped.
  [[nodiscard]] explicit operator bool() const noexcept { return address_ != nullptr; }

  /// Unmaps the window and sets all three values to zero. Nothing where it is not mapped.
  QV_BASE_API void unmap() noexcept;
  /// Writes the bytes from `from` up to `to`, both counted from the start of the window, back to the file,
  /// and returns when the system has done so; it reports no failure. What lies behind the window is left out.
  QV_BASE_API void flush(std::uint64_t from, std::uint64_t to) const noexcept;
  /// Brings the bytes between two offsets in the window into memory by reading one byte of each page. Both
  /// offsets are first rounded down to 1 MiB, and the page at the rounded `to` is the last one: bytes below
  /// `from` are read as well, and those after the last whole 1 MiB below `to` are not. That is meant so.
  /// Nothing outside the window is touched.
  QV_BASE_API void load(std::uint64_t from, std::uint64_t to) const noexcept;

  /// What the offset of a window must be a multiple of on this system, in bytes; a power of two.
  [[nodiscard]] QV_BASE_API static std::uint64_t getGranularity() noexcept;

private:
  friend class MemoryMappedFile;

  FileMapping(std::int64_t offset, std::uint64_t size, void* address) noexcept
      : offset_(offset), size_(size), address_(address) {}
  void accessPagesSequentially(std::uint64_t from, std::uint64_t to) const noexcept;

  std::int64_t offset_ = 0;
  std::uint64_t size_ = 0;
  void* address_ = nullptr;
};

static_assert(sizeof(FileMapping) == 24);

} // namespace qvOS
