#include "Base/IO/ioBufferedStream.h"

#include "Base/IO/ioBufferChecksum.h"
#include "Base/IO/ioBufferCompress.h"
#include "Base/IO/ioBufferEncrypt.h"
#include "Base/OS/qvOSNativePath.h"
#include "Base/Platform/qvPlatformFile.h"

#include <array>

namespace {

constexpr std::array<ioStreamStatus, 7> streamStatusOf = {
    ioStreamOK,          ioStreamOpenFailed,    ioStreamAtEnd, ioStreamDiskFull,
    ioStreamBadChecksum, ioStreamCompressedEnd, ioStreamFailed};

} // namespace

ioBufferedStream::ioBufferedStream(bool forReading) noexcept : forReading_(forReading) {}

ioBufferedStream::ioBufferedStream(const ioBufferedStream& other) noexcept
    : status_(other.status_), forReading_(other.forReading_), bufferChain_(other.bufferChain_) {
  if (bufferChain_) bufferChain_->retain();
}

ioBufferedStream& ioBufferedStream::operator=(const ioBufferedStream& other) noexcept {
  if (other.bufferChain_) other.bufferChain_->retain();
  setChain(other.bufferChain_);
  status_ = other.status_;
  forReading_ = other.forReading_;
  return *this;
}

ioBufferedStream::~ioBufferedStream() { ioBuffer::release(bufferChain_); }

void ioBufferedStream::setChain(ioBuffer* link) noexcept {
  ioBuffer::release(bufferChain_);
  bufferChain_ = link;
}

void ioBufferedStream::openChain(ioBuffer* link, ioStreamStatus kept) {
  setChain(link);
  promoteBufferStatus();
  if (!good() && getStatus() != kept) setChain(nullptr);
}

void ioBufferedStream::close() {
  if (!bufferChain_) return;
  bufferChain_->closeLink();
  promoteBufferStatus();
  setChain(nullptr);
}

void ioBufferedStream::promoteBufferStatus() noexcept {
  if (!bufferChain_->good()) status_ = streamStatusOf[static_cast<std::size_t>(bufferChain_->getStatus())];
}

bool ioBufferedStream::demandOpen() noexcept {
  if (bufferChain_) return true;
  if (good()) status_ = ioStreamFailed;
  return false;
}

void ioBufferedStream::addBufferToChain(ioBuffer* link) noexcept {
  link->setNext(bufferChain_);
  bufferChain_ = link;
}

void ioBufferedStream::popBufferChain() {
  if (!bufferChain_) return;
  setChain(bufferChain_->detachNext());
}

template <class Link>
void ioBufferedStream::changeFilter(bool on) {
  if (!on)
    popBufferChain();
  else if (demandOpen())
    addBufferToChain(new Link(forReading_));
}

void ioBufferedStream::compress(bool on) {
  changeFilter<ioBufferCompress>(on);
  if (!on && status_ == ioStreamCompressedEnd) resetStatus();
}

void ioBufferedStream::checksum(bool on) { changeFilter<ioBufferChecksum>(on); }

void ioBufferedStream::encrypt(bool on) { changeFilter<ioBufferEncrypt>(on); }

bool ioBufferedStream::seek(std::int64_t position) {
  if (!demandOpen()) return false;
  bufferChain_->flushChain();
  const bool moved = bufferChain_->seekLink(position);
  promoteBufferStatus();
  return moved;
}

std::int64_t ioBufferedStream::tell() {
  if (!demandOpen()) return 0;
  bufferChain_->flushChain();
  return bufferChain_->tellLink();
}

void ioBufferedStream::associateProgressFunction(void (*function)(int totalBytes)) {
  if (bufferChain_) bufferChain_->setProgressFunction(function);
}

std::int64_t ioBufferedStream::fileSize(const qvString::IString& name) {
  qvPlatform::FileInfo info;
  return qvPlatform::queryFile(qvOS::toNativePath(name).asChar(), &info) ? -1 : info.size;
}
