// The least that a stream of bytes offers: read and write. Files, file transports, memory streams and sockets
// derive from it, and the packet layer works on whatever stream it is handed.
#pragma once

#include "Base/Utility/qvUtilError.h"
#include "Base/qvBase.h"

#include <cstdint>

namespace qvOS {

/// An abstract byte stream. It has no data of its own.
/// Not thread-safe: a stream belongs to one thread at a time.
class QV_BASE_API IOStream {
public:
  virtual ~IOStream();

  /// Reads up to `size` bytes into `buffer` and stores how many came in `*count`, which may be null.
  /// @return no error, or a failure of the derived class. Files and memory streams return code 3 "End Of
  /// File" together with the final bytes when the read met the end, and code 4 on any other failure.
  virtual qvUtil::Error read(void* buffer, std::uint64_t size, std::uint64_t* count) = 0;

  /// Writes `size` bytes from `buffer` and stores how many were taken in `*count`, which may be null.
  /// @return no error if all were taken; otherwise a failure of the derived class, which for files and
  /// memory streams is code 4.
  virtual qvUtil::Error write(const void* buffer, std::uint64_t size, std::uint64_t* count) = 0;
};

} // namespace qvOS
