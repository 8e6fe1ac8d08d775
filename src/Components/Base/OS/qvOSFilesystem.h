// The file system that a name lies on: its size, its free space, and whether it is remote.
#pragma once

#include "Base/String/qvStringIString.h"
#include "Base/Utility/qvUtilError.h"

#include <cstdint>

namespace qvOS {

/// Facts of a file system, as they were when `stat` was last called.
class Filesystem {
public:
  /// Takes the name of any file on it; all numbers are 0 until `stat`.
  explicit Filesystem(const qvString::IString& name) : filename_(name) {}

  /// Asks the system. Code 1 if the name is no valid path, or if the system does not tell the space; whether
  /// the file system is remote is asked in the second case too, and is true of every name that begins with
  /// two backslashes.
  QV_BASE_API qvUtil::Error stat();

  [[nodiscard]] const qvString::IString& filename() const noexcept { return filename_; }
  /// The unit of `size` and `avail`, in bytes.
  [[nodiscard]] std::uint64_t blockSize() const noexcept { return blockSize_; }
  [[nodiscard]] std::uint64_t size() const noexcept { return size_; }
  /// What the caller may still use.
  [[nodiscard]] std::uint64_t avail() const noexcept { return avail_; }
  [[nodiscard]] bool isRemote() const noexcept { return isRemote_; }

private:
  qvString::IString filename_;
  std::uint64_t blockSize_ = 0;
  std::uint64_t size_ = 0;
  std::uint64_t avail_ = 0;
  bool isRemote_ = false;
};

} // namespace qvOS
