#include "Base/IO/ioBuffer.h"

#include <algorithm>

ioBuffer::ioBuffer(bool forReading, int bufferSize) : bufferSize_(bufferSize), forReading_(forReading) {}

ioBuffer::~ioBuffer() { release(nextLink_); }

void ioBuffer::release(ioBuffer* link) noexcept {
  if (link && --link->owners_ == 0) delete link;
}

bool ioBuffer::seekLink(std::int64_t) { return false; }

std::int64_t ioBuffer::tellLink() { return 0; }

void ioBuffer::finish() {}

void ioBuffer::setNext(ioBuffer* link) { nextLink_ = link; }

ioBuffer* ioBuffer::detachNext() {
  finish();
  return std::exchange(nextLink_, nullptr);
}

unsigned char* ioBuffer::room() {
  if (!buffer_) buffer_.reset(new unsigned char[static_cast<std::size_t>(bufferSize_)]);
  return buffer_.get();
}

void ioBuffer::countBytes(int count) {
  totalBytes_ =
      static_cast<std::int32_t>(static_cast<std::uint32_t>(totalBytes_) + static_cast<std::uint32_t>(count));
}

void ioBuffer::fillBuffer() {
  if (!good()) return;
  position_ = 0;
  validBytes_ = 0;
  const int count = readRaw(room(), bufferSize_);
  countBytes(count);
  validBytes_ = count;
  if (progressFunction_) progressFunction_(totalBytes_);
}

void ioBuffer::flushBuffer() {
  if (!good()) return;
  if (forReading_) {
    position_ = 0;
    validBytes_ = 0;
    return;
  }
  if (position_ < 1) return;
  writeRaw(buffer_.get(), position_);
  countBytes(position_);
  position_ = 0;
  validBytes_ = 0;
  if (progressFunction_) progressFunction_(totalBytes_);
}

void ioBuffer::flushChain() {
  flushBuffer();
  if (!nextLink_) return;
  nextLink_->flushChain();
  inheritStatus(true);
}

int ioBuffer::readPieces(unsigned char* destination, int count) {
  int remaining = count;
  while (good()) {
    const int piece = std::min(remaining, heldBytes());
    if (piece > 0) std::memcpy(destination, heldData(), static_cast<std::size_t>(piece));
    position_ += piece;
    destination += piece;
    remaining -= piece;
    if (remaining == 0) return count;
    fillBuffer();
  }
  return count - remaining;
}

void ioBuffer::writePieces(const unsigned char* source, int count) {
  while (good()) {
    const int piece = std::min(count, bufferSize_ - position_);
    if (piece > 0) std::memcpy(room() + position_, source, static_cast<std::size_t>(piece));
    position_ += piece;
    source += piece;
    count -= piece;
    if (count == 0) return;
    flushBuffer();
  }
}

void ioBuffer::putByte(unsigned char byte) { room()[position_++] = byte; }

void ioBuffer::inheritStatus(bool includeEnd) {
  if (!nextLink_ || nextLink_->good()) return;
  const ioBufferStatus below = nextLink_->getStatus();
  const bool isEnd = below == ioBufferAtEnd || below == ioBufferCompressedEnd;
  if (includeEnd || !isEnd) status_ = below;
}

int ioBuffer::readNext(void* destination, int count) {
  if (nextLink_) return nextLink_->readBytes(destination, count);
  status_ = ioBufferFailed;
  return 0;
}

void ioBuffer::writeNext(const void* source, int count) {
  if (nextLink_)
    nextLink_->writeBytes(source, count);
  else
    status_ = ioBufferFailed;
}

void ioBuffer::closeNext() {
  if (!nextLink_) return;
  nextLink_->closeLink();
  if (good()) inheritStatus(false);
}
