// The filter that frames data into blocks with a running sum, so that damage is found.
//
// A block, one per flushed buffer:
//   offset 0   4 bytes   number of data bytes, most significant byte first, at least 1
//   offset 4   4 bytes   its bitwise complement, most significant byte first
//   offset 8   2 bytes   sum of all data up to the end of this block, in the writer's byte order
//   offset 10            the data
#pragma once

#include "Base/IO/ioBuffer.h"
#include "Base/IO/ioChecksum.h"

#include <vector>

class ioBufferChecksum : public ioBuffer {
public:
  explicit ioBufferChecksum(bool forReading);

  /// Flushes what a writer holds.
  void finish() override;
  [[nodiscard]] int kind() const override { return ioBufferKindChecksum; }
  void closeLink() override { closeNext(); }
  /// Bytes of at most one block. Those of a damaged block are returned together with `ioBufferBadChecksum`.
  int readRaw(void* destination, int count) override;
  void writeRaw(const void* source, int count) override;

private:
  int readBlock(unsigned char* destination, int count);
  int readLargeBlock(int size);
  int verified(const unsigned char* data, int got, int wanted, std::uint16_t sum);
  int serveBlock(unsigned char* destination, int count);

  ioChecksum runningSum_;
  std::vector<unsigned char> blockBuffer_; ///< A block larger than what was asked for.
  int blockBytes_ = 0;
  int blockPosition_ = 0;
};
