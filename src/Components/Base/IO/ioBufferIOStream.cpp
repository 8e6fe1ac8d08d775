#include "Base/IO/ioBufferIOStream.h"

#include "Base/IO/ioTransport.h"
#include "Base/OS/qvOSIOStream.h"

ioBufferIOStream::ioBufferIOStream(bool forReading) : ioBuffer(forReading, linkBufferSize) {}

int ioBufferIOStream::readRaw(void* destination, int count) {
  if (!stream_) {
    setStatus(ioBufferFailed);
    return 0;
  }
  const int got = ioReadTransport(*stream_, destination, count, lastError_);
  if (lastError_ && got == 0) setStatus(ioBufferAtEnd);
  return got;
}

void ioBufferIOStream::writeRaw(const void* source, int count) {
  if (!stream_ || !ioWriteTransport(*stream_, source, count, lastError_)) setStatus(ioBufferFailed);
}
