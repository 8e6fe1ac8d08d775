#include "Base/IO/ioBufferTCP.h"

#include "Base/IO/ioTransport.h"
#include "Base/TCP/qvTCPSocket.h"

ioBufferTCP::ioBufferTCP(bool forReading) : ioBuffer(forReading, linkBufferSize) {}

void ioBufferTCP::attachSocket(qvTCP::Socket* socket) noexcept {
  socket_ = socket;
  if (!socket) setStatus(ioBufferFailed);
}

int ioBufferTCP::readRaw(void* destination, int count) {
  if (!socket_) {
    setStatus(ioBufferFailed);
    return 0;
  }
  const int got = ioReadTransport(*socket_, destination, count, lastError_);
  if (lastError_ && got == 0) setStatus(ioBufferFailed);
  return got;
}

void ioBufferTCP::writeRaw(const void* source, int count) {
  if (!socket_ || !ioWriteTransport(*socket_, source, count, lastError_)) setStatus(ioBufferFailed);
}
