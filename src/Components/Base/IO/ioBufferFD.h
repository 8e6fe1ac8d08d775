// The link over a file descriptor, in large blocks.
#pragma once

#include "Base/IO/ioBuffer.h"

namespace qvString {
class IString;
}

class ioBufferFD : public ioBuffer {
public:
  static constexpr int fileBufferSize = 262144;

  explicit ioBufferFD(bool forReading);

  /// Opens a file in the link's direction. For writing it is made where there is none, for its owner only,
  /// and emptied unless `setTruncate(false)` was called. A failure is `ioBufferOpenFailed`.
  void openDescriptor(const qvString::IString& name);
  /// Takes an open descriptor over: `closeLink` closes it, even a standard stream's. A negative one is
  /// `ioBufferOpenFailed`.
  void attachDescriptor(int descriptor);
  void setTruncate(bool truncate) noexcept { truncateFile_ = truncate; }

  /// A negative position stands for the end of the file.
  bool seekLink(std::int64_t position) override;
  std::int64_t tellLink() override;
  /// The size of the open file in bytes; -1 where it cannot be told.
  [[nodiscard]] std::int64_t fileSize() const;
  [[nodiscard]] int kind() const override { return ioBufferKindFD; }
  void closeLink() override;
  /// -1 with no descriptor, with a status that is not good, and on a failure.
  int readRaw(void* destination, int count) override;
  void writeRaw(const void* source, int count) override;

private:
  std::intptr_t fileDescriptor_ = -1; ///< As the platform's file calls take it.
  bool ownsDescriptor_ = false;
  bool truncateFile_ = true;
};
