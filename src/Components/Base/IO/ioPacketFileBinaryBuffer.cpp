#include "Base/IO/ioPacketFileBinaryBuffer.h"

#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/ioPacketType.h"
#include "Base/IO/ioReadContextBinary.h"
#include "Base/IO/ioWriteContext.h"

namespace {

constexpr char chunkMark = ',';
constexpr char subPacketMark = '.';
constexpr int headerSize = 12;
constexpr int bodySizeAt = 8;

} // namespace

ioPacketFileBinaryBuffer::~ioPacketFileBinaryBuffer() = default;

void ioPacketFileBinaryBuffer::putBytes(const void* bytes, std::size_t size) {
  if (size == 0 || !block_.makeRoom(cursor_, size)) return;
  std::memcpy(block_.data() + cursor_, bytes, size);
  cursor_ += static_cast<int>(size);
}

void ioPacketFileBinaryBuffer::getBytes(void* bytes, std::size_t size) noexcept {
  const std::size_t held = std::min(size, static_cast<std::size_t>(end_ - cursor_));
  if (held > 0) std::memcpy(bytes, block_.data() + cursor_, held);
  if (size > held) std::memset(static_cast<char*>(bytes) + held, 0, size - held);
  cursor_ += static_cast<int>(held);
}

const char* ioPacketFileBinaryBuffer::getCString() noexcept {
  const char* const text = block_.data() + cursor_;
  // The terminator behind the packet ends a text that has none.
  const auto* const last = static_cast<const char*>(std::memchr(text, 0, std::size_t(end_ - cursor_) + 1));
  cursor_ = std::min(static_cast<int>(last - block_.data()) + 1, end_);
  return text;
}

void ioPacketFileBinaryBuffer::startPacket(ioWriteContext&, bool hasReference, const ioPacketType* type) {
  const int header[3] = {type ? type->getId() : -1, hasReference, 0};
  static_assert(sizeof header == headerSize);
  std::memcpy(block_.data(), header, headerSize);
  cursor_ = headerSize;
  block_.startPacket();
  startLevels();
}

void ioPacketFileBinaryBuffer::endPacket(ioWriteContext& context, ioBufferedStreamOutput& stream) {
  const int bodySize = cursor_ - headerSize;
  std::memcpy(block_.data() + bodySizeAt, &bodySize, sizeof bodySize);
  if (block_.tooLarge())
    context.misused();
  else if (packetValid())
    stream.writeData(block_.data(), cursor_);
}

/// Sizes go through the context, so that a tagged one gets its tag.
void ioPacketFileBinaryBuffer::patchSize(ioWriteContext& context, int at) {
  const int end = cursor_;
  cursor_ = at;
  context.writeInt(end - at);
  cursor_ = end;
}

void ioPacketFileBinaryBuffer::startChunk(ioWriteContext& context) {
  put(chunkMark);
  levels_.back().chunkSizeAt = cursor_;
  context.writeInt(0);
}

void ioPacketFileBinaryBuffer::endChunk(ioWriteContext& context) {
  patchSize(context, levels_.back().chunkSizeAt);
}

void ioPacketFileBinaryBuffer::startSubPacket(ioWriteContext& context) {
  put(subPacketMark);
  levels_.back().subPacketSizeAt = cursor_;
  context.writeInt(0);
  levels_.emplace_back();
}

void ioPacketFileBinaryBuffer::endSubPacket(ioWriteContext& context) {
  levels_.pop_back();
  patchSize(context, levels_.back().subPacketSizeAt);
}

int ioPacketFileBinaryBuffer::readPacketHeader(ioReadContext& context, ioBufferedStreamInput& stream) {
  const auto& binary = static_cast<const ioReadContextBinary&>(context);
  char header[headerSize] = {};
  stream.readData(header, headerSize);
  const int typeId = binary.readHeaderInt(header);
  const int referenceMode = binary.readHeaderInt(header + 4);
  const int bodySize = binary.readHeaderInt(header + bodySizeAt);
  setPacketType(nullptr);
  if (typeId < 0 || bodySize < 0) return 0;
  setPacketType(context.lookupType(typeId));
  readBody(stream, bodySize);
  cursor_ = 0;
  startLevels();
  levels_.back().endOffset = end_;
  return referenceMode;
}

/// The size may be a lie: memory grows with what the stream really holds.
void ioPacketFileBinaryBuffer::readBody(ioBufferedStreamInput& stream, int size) {
  constexpr int firstStep = 1 << 20;
  end_ = 0;
  while (end_ < size && stream.good()) {
    const int step = std::min(size - end_, std::max(end_, firstStep));
    if (!block_.makeRoom(end_, static_cast<std::size_t>(step))) break;
    end_ += std::clamp(stream.readData(block_.data() + end_, step), 0, step);
  }
  block_.data()[end_] = '\0';
}

void ioPacketFileBinaryBuffer::finishPacket(ioReadContext&) { startLevels(); }

/// Gets the size field of a chunk or sub-packet, and where its content ends: never before the content starts,
/// and never past the packet.
int ioPacketFileBinaryBuffer::getEnd(ioReadContext& context) {
  static_cast<void>(get<char>()); // the mark
  const std::int64_t start = cursor_;
  const std::int64_t end = start + context.fetchInt();
  return static_cast<int>(std::clamp<std::int64_t>(end, cursor_, end_));
}

void ioPacketFileBinaryBuffer::nextChunk(ioReadContext& context) {
  if (cursor_ >= levels_.back().endOffset) {
    cursor_ = levels_.back().endOffset;
    levels_.back().chunkHasData = false;
    return;
  }
  const int end = getEnd(context);
  levels_.back().chunkEnd = end;
  levels_.back().chunkHasData = cursor_ < end;
}

bool ioPacketFileBinaryBuffer::moreInChunk() const { return levels_.back().chunkHasData; }

void ioPacketFileBinaryBuffer::skipChunk(ioReadContext&) {
  if (moreInChunk()) cursor_ = levels_.back().chunkEnd;
}

void ioPacketFileBinaryBuffer::startSubPacketRead(ioReadContext& context) {
  levels_.emplace_back();
  const int end = getEnd(context);
  levels_.back().endOffset = end;
}

void ioPacketFileBinaryBuffer::endSubPacketRead(ioReadContext&) {
  cursor_ = levels_.back().endOffset;
  levels_.pop_back();
}
