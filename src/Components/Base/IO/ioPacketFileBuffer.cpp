#include "Base/IO/ioPacketFileBuffer.h"

#include <algorithm>

ioPacketFileBuffer::~ioPacketFileBuffer() = default;

void ioPacketFileBuffer::goDeeper() {
  if (++depth_ == flagCapacity_) {
    auto larger = std::make_unique<unsigned char[]>(std::size_t(flagCapacity_) * 2);
    std::copy_n(chunkFlags_.get(), flagCapacity_, larger.get());
    chunkFlags_ = std::move(larger);
    flagCapacity_ *= 2;
  }
  chunkFlags_[depth_] = 0;
}
