// The link over a socket, which it borrows.
#pragma once

#include "Base/IO/ioBuffer.h"

namespace qvTCP {
class Socket;
}

class ioBufferTCP : public ioBuffer {
public:
  explicit ioBufferTCP(bool forReading);

  /// Borrows the socket, which must outlive the link's use of it. Null is `ioBufferFailed`.
  void attachSocket(qvTCP::Socket* socket) noexcept;

  [[nodiscard]] int kind() const override { return ioBufferKindTCP; }
  /// Forgets the socket and leaves it open.
  void closeLink() override { socket_ = nullptr; }
  /// A failure with no bytes is `ioBufferFailed`: a socket never reports a plain end of the data.
  int readRaw(void* destination, int count) override;
  void writeRaw(const void* source, int count) override;

private:
  qvTCP::Socket* socket_ = nullptr;
};
