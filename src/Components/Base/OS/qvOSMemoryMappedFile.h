// A file on disk that exists to back memory. Windows of it are mapped while they are used.
#pragma once

#include "Base/OS/qvOSFileMapping.h"
#include "Base/String/qvStringIString.h"
#include "Base/Utility/qvImplBase.h"
#include "Base/qvBase.h"

#include <cstdint>

namespace qvOS {

/// A handle on one such file, closed at first. A copy is a second handle that does not own the file and is
/// good only while the first one lives, which closes the file when it goes; windows stay mapped then. Not
/// thread-safe.
class MemoryMappedFile {
public:
  QV_BASE_API MemoryMappedFile();

  /// Closes the file that this handle has, and makes one of `size` zero bytes in place of whatever had that
  /// name. Its blocks are reserved, so that a full disk shows here and never later. Nobody else can open it
  /// so meanwhile: while some handle, of whatever process, has a file of that name, a second creation fails
  /// and harms nothing. With `deleteOnClose` the file goes with its last handle and leaves nothing behind
  /// after a crash; where the system allows that, its name is free at once.
  /// @return true on success; otherwise the handle is closed, and nothing tells why. A size of 0 fails.
  QV_BASE_API bool createFile(const qvString::IString& name, std::uint64_t size, bool deleteOnClose);
  /// True if there is a file.
  [[nodiscard]] QV_BASE_API bool valid() const noexcept;
  /// The name with which the file was made; empty if there is none. Valid until the next `createFile`.
  [[nodiscard]] QV_BASE_API const qvString::IString& getFilename() const noexcept;
  /// Bytes of the file; 0 if there is none.
  [[nodiscard]] QV_BASE_API std::int64_t getSize() const noexcept;

  /// Maps `size` bytes from `offset` on, a multiple of `FileMapping::getGranularity`, for reading and
  /// writing. Windows may overlap and then show the same bytes.
  /// @return a window that the caller unmaps; one that is not mapped but tells offset and size where the
  /// range is empty or not in the file, or the address space cannot hold it.
  [[nodiscard]] QV_BASE_API FileMapping map(std::int64_t offset, std::uint64_t size) noexcept;

private:
  qv::ImplHandle handle_;
};

static_assert(sizeof(MemoryMappedFile) == 2 * sizeof(void*));

} // namespace qvOS
