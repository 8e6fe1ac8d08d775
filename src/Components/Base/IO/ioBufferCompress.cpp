#include "Base/IO/ioBufferCompress.h"

#include "Base/IO/ioLzwReader.h"
#include "Base/IO/ioLzwWriter.h"

ioBufferCompress::ioBufferCompress(bool forReading) : ioBuffer(forReading, linkBufferSize) {}

ioBufferCompress::~ioBufferCompress() = default;

ioLzwWriter& ioBufferCompress::writer() {
  if (!writer_) writer_ = std::make_unique<ioLzwWriter>();
  return *writer_;
}

void ioBufferCompress::finish() {
  if (forReading()) return;
  flushBuffer();
  if (nextLink()) writer().end(*nextLink());
  flushChain();
}

void ioBufferCompress::closeLink() {
  finish();
  closeNext();
}

void ioBufferCompress::writeRaw(const void* source, int count) {
  if (!nextLink()) return setStatus(ioBufferFailed);
  writer().compress(*nextLink(), static_cast<const unsigned char*>(source), count);
  inheritStatus(true);
}

int ioBufferCompress::readRaw(void* destination, int count) {
  if (!nextLink()) setStatus(ioBufferFailed);
  if (!good()) return 0;
  if (!reader_) reader_ = std::make_unique<ioLzwReader>();
  int got = 0;
  if (reader_->lastCode() >= 0 && reader_->lastCode() != ioLzwEndCode)
    got = reader_->decompress(*nextLink(), static_cast<unsigned char*>(destination), count);
  if (got > 0) {
    inheritStatus(false);
    return got;
  }
  if (reader_->lastCode() == ioLzwEndCode) {
    reader_->forgetLastCode();
    setStatus(ioBufferCompressedEnd);
    return 0;
  }
  // The codes ended without the end code: the link below may say why, but an end is no excuse.
  inheritStatus(false);
  if (good()) setStatus(ioBufferFailed);
  return 0;
}
