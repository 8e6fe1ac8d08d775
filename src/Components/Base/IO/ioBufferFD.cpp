#include "Base/IO/ioBufferFD.h"

#include "Base/OS/qvOSNativePath.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformTransfer.h"
#include "Base/String/qvStringCString.h"

ioBufferFD::ioBufferFD(bool forReading) : ioBuffer(forReading, fileBufferSize) {}

void ioBufferFD::openDescriptor(const qvString::IString& name) {
  using namespace qvPlatform;
  const unsigned writing = openWrite | openCreate | openPrivate | (truncateFile_ ? openTruncate : 0U);
  FileHandle file = noFile;
  if (openFile(qvOS::toNativePath(name).asChar(), forReading() ? openRead : writing, &file)) {
    setStatus(ioBufferOpenFailed);
    return;
  }
  fileDescriptor_ = file;
  ownsDescriptor_ = true;
}

void ioBufferFD::attachDescriptor(int descriptor) {
  if (descriptor < 0) {
    setStatus(ioBufferOpenFailed);
    return;
  }
  fileDescriptor_ = qvPlatform::fileOfDescriptor(descriptor);
  ownsDescriptor_ = true;
}

bool ioBufferFD::seekLink(std::int64_t position) {
  using qvPlatform::SeekFrom;
  if (position < 0) return !qvPlatform::seekFile(fileDescriptor_, 0, SeekFrom::end, nullptr);
  return !qvPlatform::seekFile(fileDescriptor_, position, SeekFrom::start, nullptr);
}

std::int64_t ioBufferFD::tellLink() {
  std::int64_t position = -1;
  (void)qvPlatform::seekFile(fileDescriptor_, 0, qvPlatform::SeekFrom::current, &position);
  return position;
}

std::int64_t ioBufferFD::fileSize() const {
  qvPlatform::FileInfo info;
  return qvPlatform::queryHandle(fileDescriptor_, &info) ? -1 : info.size;
}

void ioBufferFD::closeLink() {
  if (fileDescriptor_ < 0) return;
  if (ownsDescriptor_ && qvPlatform::closeFile(fileDescriptor_)) setStatus(ioBufferFailed);
  fileDescriptor_ = -1;
}

int ioBufferFD::readRaw(void* destination, int count) {
  if (fileDescriptor_ < 0) setStatus(ioBufferFailed);
  if (!good()) return -1;
  std::size_t got = 0;
  if (qvPlatform::readSome(fileDescriptor_, destination, static_cast<std::size_t>(count), &got)) {
    setStatus(ioBufferFailed);
    return -1;
  }
  if (got == 0) setStatus(ioBufferAtEnd);
  return static_cast<int>(got);
}

void ioBufferFD::writeRaw(const void* source, int count) {
  if (fileDescriptor_ < 0) setStatus(ioBufferFailed);
  const auto* next = static_cast<const unsigned char*>(source);
  while (count > 0 && good()) {
    std::size_t put = 0;
    const int error = qvPlatform::writeSome(fileDescriptor_, next, static_cast<std::size_t>(count), &put);
    if (error) {
      const bool isFull = qvPlatform::errorKind(error) == qvPlatform::ErrorKind::noSpace;
      setStatus(isFull ? ioBufferDiskFull : ioBufferFailed);
    }
    next += put;
    count -= static_cast<int>(put);
  }
}
