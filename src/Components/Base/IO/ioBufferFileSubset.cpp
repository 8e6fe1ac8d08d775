#include "Base/IO/ioBufferFileSubset.h"

#include <algorithm>
#include <limits>

namespace {

/// The greatest position there is where the sum passes it.
std::int64_t saturatedSum(std::int64_t a, std::int64_t b) {
  if (b > 0 && a > std::numeric_limits<std::int64_t>::max() - b)
    return std::numeric_limits<std::int64_t>::max();
  if (b < 0 && a < std::numeric_limits<std::int64_t>::min() - b)
    return std::numeric_limits<std::int64_t>::min();
  return a + b;
}

} // namespace

ioBufferFileSubset::ioBufferFileSubset() : ioBuffer(true, linkBufferSize), file_(true) {}

void ioBufferFileSubset::openSlice(const qvString::IString& name, std::int64_t start, std::int64_t size) {
  file_.openDescriptor(name);
  sliceStart_ = start;
  sliceSize_ = size;
  setStatus(file_.getStatus());
  if (!good()) return;
  const std::int64_t fileSize = file_.fileSize();
  if (fileSize < 0)
    setStatus(ioBufferFailed);
  else if (fileSize < saturatedSum(start, size))
    setStatus(ioBufferAtEnd);
  if (good()) seekLink(0);
}

bool ioBufferFileSubset::seekLink(std::int64_t position) {
  slicePosition_ = -1;
  if (position >= sliceSize_) {
    setStatus(ioBufferAtEnd);
    return false;
  }
  if (!file_.seekLink(saturatedSum(position, sliceStart_))) return false;
  slicePosition_ = position;
  return true;
}

std::int64_t ioBufferFileSubset::tellLink() {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(file_.tellLink()) -
                                   static_cast<std::uint64_t>(sliceStart_));
}

int ioBufferFileSubset::readRaw(void* destination, int count) {
  if (!good()) return -1;
  slicePosition_ = std::max<std::int64_t>(slicePosition_, 0);
  const std::int64_t wanted = std::min<std::int64_t>(count, sliceSize_ - slicePosition_);
  if (wanted <= 0) {
    setStatus(ioBufferAtEnd);
    return 0;
  }
  const int got = file_.readRaw(destination, static_cast<int>(wanted));
  if (got > 0)
    slicePosition_ += got;
  else
    setStatus(file_.getStatus());
  return got;
}

void ioBufferFileSubset::writeRaw(const void*, int) {}
