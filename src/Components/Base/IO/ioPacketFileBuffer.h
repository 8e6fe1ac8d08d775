// What a context keeps for each open packet: which chunks are open at which depth, and, in the derived class
// of an encoding, the packet's bytes. A context hands every packet that it opens the buffer of its stack
// level and uses it again for later packets.
#pragma once

#include "Base/qvBase.h"

#include <cstddef>
#include <memory>

class ioBufferedStreamInput;
class ioBufferedStreamOutput;
class ioPacketType;
class ioReadContext;
class ioWriteContext;

/// The buffer of one packet. Writers call the first group of operations, readers the second; each encoding
/// fills in both. Virtual order is part of the interface.
class ioPacketFileBuffer {
public:
  ioPacketFileBuffer() = default;
  ioPacketFileBuffer(const ioPacketFileBuffer&) = delete;
  ioPacketFileBuffer& operator=(const ioPacketFileBuffer&) = delete;
  virtual ~ioPacketFileBuffer();

  /// Starts the packet's bytes anew, with its head. A packet without a type is not valid.
  virtual void startPacket(ioWriteContext& context, bool hasReference, const ioPacketType* type) = 0;
  /// Completes the packet and, if it is valid, gives all of it to `stream`.
  virtual void endPacket(ioWriteContext& context, ioBufferedStreamOutput& stream) = 0;
  virtual void startChunk(ioWriteContext& context) = 0;
  virtual void endChunk(ioWriteContext& context) = 0;
  virtual void startSubPacket(ioWriteContext& context) = 0;
  virtual void endSubPacket(ioWriteContext& context) = 0;

  /// Reads the whole next packet and sets its type, null where it has none.
  /// @return the reference mode: 1 if the body starts with a reference, 0 if not; other modes are for later
  /// versions.
  virtual int readPacketHeader(ioReadContext& context, ioBufferedStreamInput& stream) = 0;
  /// Leaves the packet, whatever was left unread.
  virtual void finishPacket(ioReadContext& context) = 0;
  /// Steps into the chunk that starts here, if one does.
  virtual void nextChunk(ioReadContext& context) = 0;
  /// Whether the last `nextChunk` found a chunk with content. Reading values does not change it.
  [[nodiscard]] virtual bool moreInChunk() const = 0;
  /// Steps over the rest of the current chunk.
  virtual void skipChunk(ioReadContext& context) = 0;
  virtual void startSubPacketRead(ioReadContext& context) = 0;
  virtual void endSubPacketRead(ioReadContext& context) = 0;

  /// Makes this the buffer of a new packet: depth 0, no chunk open, valid, without a type.
  void reset() {
    if (!chunkFlags_) chunkFlags_ = std::make_unique<unsigned char[]>(std::size_t(flagCapacity_));
    depth_ = 0;
    chunkFlags_[0] = 0;
    packetType_ = nullptr;
    packetValid_ = true;
  }
  /// One sub-packet deeper, with no chunk open there.
  void goDeeper();
  /// One sub-packet up. The depth is not 0.
  void goUp() noexcept { --depth_; }
  [[nodiscard]] int depth() const noexcept { return depth_; }
  /// Whether a chunk is open at this depth.
  [[nodiscard]] bool chunkOpen() const noexcept { return chunkFlags_[depth_] != 0; }
  void setChunkOpen(bool open) noexcept { chunkFlags_[depth_] = open; }

  /// A packet that is not valid is never written, and need not define its reference when read.
  [[nodiscard]] bool packetValid() const noexcept { return packetValid_; }
  void invalidate() noexcept { packetValid_ = false; }
  [[nodiscard]] ioPacketType* packetType() const noexcept { return packetType_; }
  void setPacketType(ioPacketType* type) noexcept { packetType_ = type; }

private:
  std::unique_ptr<unsigned char[]> chunkFlags_;
  int flagCapacity_ = 10;
  int depth_ = 0;
  bool packetValid_ = true;
  ioPacketType* packetType_ = nullptr;
};
static_assert(sizeof(void*) != 8 || sizeof(ioPacketFileBuffer) == 40);

/// The type of the packet in `buffer`; null where there is no buffer or no type.
[[nodiscard]] inline ioPacketType* ioPacketTypeOf(const ioPacketFileBuffer* buffer) noexcept {
  return buffer ? buffer->packetType() : nullptr;
}
