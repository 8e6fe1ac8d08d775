// The link over any abstract byte stream, which it borrows.
#pragma once

#include "Base/IO/ioBuffer.h"

namespace qvOS {
class IOStream;
}

class ioBufferIOStream : public ioBuffer {
public:
  explicit ioBufferIOStream(bool forReading);

  /// Borrows the stream, which must outlive the link's use of it.
  void attachStream(qvOS::IOStream* stream) noexcept { stream_ = stream; }

  [[nodiscard]] int kind() const override { return ioBufferKindIOStream; }
  /// Forgets the stream and leaves it open.
  void closeLink() override { stream_ = nullptr; }
  /// A failure with no bytes is the end of the data. No bytes without a failure set no status.
  int readRaw(void* destination, int count) override;
  void writeRaw(const void* source, int count) override;

private:
  qvOS::IOStream* stream_ = nullptr;
};
