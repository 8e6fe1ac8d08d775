#include "Base/IO/ioBufferChecksum.h"

#include "Base/IO/ioBytes.h"

#include <algorithm>

namespace {

constexpr int headerSize = 10;

} // namespace

ioBufferChecksum::ioBufferChecksum(bool forReading) : ioBuffer(forReading, linkBufferSize) {}

void ioBufferChecksum::finish() {
  if (!forReading()) flushChain();
}

void ioBufferChecksum::writeRaw(const void* source, int count) {
  runningSum_.add(source, static_cast<std::size_t>(count));
  const std::uint16_t sum = runningSum_.sum();
  unsigned char header[headerSize];
  ioStoreBig32(header, static_cast<std::uint32_t>(count));
  ioStoreBig32(header + 4, ~static_cast<std::uint32_t>(count));
  std::memcpy(header + 8, &sum, sizeof sum);
  writeNext(header, headerSize);
  writeNext(source, count);
  inheritStatus(true);
}

int ioBufferChecksum::readRaw(void* destination, int count) {
  auto* bytes = static_cast<unsigned char*>(destination);
  if (blockPosition_ < blockBytes_) return serveBlock(bytes, count);
  const int got = readBlock(bytes, count);
  // What ended below decides where nothing came, so that a clean end is no damage. A stream that was cut
  // before a block's first data byte ends in the same way.
  if (got == 0 && nextLink() && !nextLink()->good()) inheritStatus(true);
  return got;
}

int ioBufferChecksum::serveBlock(unsigned char* destination, int count) {
  const int piece = std::min(count, blockBytes_ - blockPosition_);
  std::memcpy(destination, blockBuffer_.data() + blockPosition_, static_cast<std::size_t>(piece));
  blockPosition_ += piece;
  return piece;
}

/// Reads the next block into the caller's memory, or through the block buffer where it is too large for that.
int ioBufferChecksum::readBlock(unsigned char* destination, int count) {
  unsigned char header[headerSize];
  const bool isWhole = readNext(header, headerSize) == headerSize;
  const std::uint32_t size = isWhole ? ioLoadBig32(header) : 0;
  if (!isWhole || (size ^ ioLoadBig32(header + 4)) != 0xFFFFFFFFU || size < 1 || size > 0x7FFFFFFFU) {
    setStatus(ioBufferBadChecksum);
    return 0;
  }
  std::uint16_t sum = 0;
  std::memcpy(&sum, header + 8, sizeof sum);
  const int wanted = static_cast<int>(size);
  if (wanted <= count) return verified(destination, readNext(destination, wanted), wanted, sum);
  blockPosition_ = 0;
  blockBytes_ = readLargeBlock(wanted);
  verified(blockBuffer_.data(), blockBytes_, wanted, sum);
  return serveBlock(destination, count);
}

/// Reads into the block buffer. It grows with what arrives, so that a false size alone takes no memory.
int ioBufferChecksum::readLargeBlock(int size) {
  int got = 0;
  for (int step = 65536; got < size;) {
    const int piece = std::min(size - got, step);
    if (blockBuffer_.size() < static_cast<std::size_t>(got) + static_cast<std::size_t>(piece))
      blockBuffer_.resize(static_cast<std::size_t>(got) + static_cast<std::size_t>(piece));
    const int came = readNext(blockBuffer_.data() + got, piece);
    got += came;
    if (came < piece) break;
    step = got;
  }
  return got;
}

/// Sums what came and marks a block that is short or does not match. @return `got`
int ioBufferChecksum::verified(const unsigned char* data, int got, int wanted, std::uint16_t sum) {
  runningSum_.add(data, static_cast<std::size_t>(got));
  if (got < wanted || !runningSum_.matches(sum)) setStatus(ioBufferBadChecksum);
  return got;
}
