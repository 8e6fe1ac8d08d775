// A packet in the binary encoding, built or held whole in memory:
//
//   4  typeId         signed, the type's number in the type table
//   4  referenceMode  1 if the body starts with a reference, 0 if not
//   4  bodySize       bytes after this field
//      body           values without padding, chunks (",", size, content), sub-packets (".", size, content)
//
// in the writer's byte order. A chunk's or sub-packet's size counts its own bytes too.
#pragma once

#include "Base/IO/ioPacketBlock.h"
#include "Base/IO/ioPacketFileBuffer.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

/// Offsets are signed 32-bit: a packet of 2 GiB or more is given up, and the writer's context fails.
class ioPacketFileBinaryBuffer final : public ioPacketFileBuffer {
public:
  ~ioPacketFileBinaryBuffer() override;

  void startPacket(ioWriteContext& context, bool hasReference, const ioPacketType* type) override;
  void endPacket(ioWriteContext& context, ioBufferedStreamOutput& stream) override;
  void startChunk(ioWriteContext& context) override;
  void endChunk(ioWriteContext& context) override;
  void startSubPacket(ioWriteContext& context) override;
  void endSubPacket(ioWriteContext& context) override;
  int readPacketHeader(ioReadContext& context, ioBufferedStreamInput& stream) override;
  void finishPacket(ioReadContext& context) override;
  void nextChunk(ioReadContext& context) override;
  [[nodiscard]] bool moreInChunk() const override;
  void skipChunk(ioReadContext& context) override;
  void startSubPacketRead(ioReadContext& context) override;
  void endSubPacketRead(ioReadContext& context) override;

  /// For a writer's tests: lets the packet look large.
  void setCursor(int cursor) noexcept { cursor_ = cursor; }

  /// Puts the bytes of `value` at the cursor.
  template <class T>
  void put(T value) {
    if (!block_.makeRoom(cursor_, sizeof value)) return;
    std::memcpy(block_.data() + cursor_, &value, sizeof value);
    cursor_ += static_cast<int>(sizeof value);
  }
  void putBytes(const void* bytes, std::size_t size);

  /// Gets the value at the cursor, with zeros for what lies past the packet's end.
  template <class T>
  [[nodiscard]] T get() noexcept {
    T value;
    if (end_ - cursor_ < static_cast<int>(sizeof value)) [[unlikely]] {
      getBytes(&value, sizeof value);
      return value;
    }
    std::memcpy(&value, block_.data() + cursor_, sizeof value);
    cursor_ += static_cast<int>(sizeof value);
    return value;
  }
  void getBytes(void* bytes, std::size_t size) noexcept;
  /// Gets the text at the cursor, which ends with the packet at the latest. It lies in the buffer.
  [[nodiscard]] const char* getCString() noexcept;

private:
  /// One for each open packet or sub-packet.
  struct Level {
    int subPacketSizeAt = 0; // writer: where the size of the inner sub-packet stands
    int chunkSizeAt = 0;     // writer: where the size of the open chunk stands
    int endOffset = 0;       // reader: end of this packet or sub-packet
    int chunkEnd = 0;        // reader: end of the current chunk
    bool chunkHasData = false;
  };

  void patchSize(ioWriteContext& context, int at);
  /// The level of the packet itself, and no other, whatever the last packet left open.
  void startLevels() {
    levels_.resize(1);
    levels_[0] = Level();
  }
  void readBody(ioBufferedStreamInput& stream, int size);
  [[nodiscard]] int getEnd(ioReadContext& context);

  ioPacketBlock block_;
  int cursor_ = 0;
  std::vector<Level> levels_ = std::vector<Level>(1);
  int end_ = 0; // reader: bytes held
};
