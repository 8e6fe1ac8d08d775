#include "Base/IO/ioPacketFileBinaryBuffer.h"

#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/ioPacketType.h"
#include "Base/IO/ioReadContextBinary.h"
#include "Base/IO/ioWriteContext.h"

#include <limits>

namespace {

constexpr char chunkMark = ',';
constexpr char subPacketMark = '.';
constexpr int headerSize = 12;
constexpr int bodySizeAt = 8;
constexpr std::int64_t largest = std::numeric_limits<int>::max();

} // namespace

ioPacketFileBinaryBuffer::ioPacketFileBinaryBuffer() {
  data_ = std::make_unique_for_overwrite<char[]>(std::size_t(capacity_) + 1);
}

ioPacketFileBinaryBuffer::~ioPacketFileBinaryBuffer() = default;

/// Makes room for `size` bytes at the cursor. False where the packet would become too large.
bool ioPacketFileBinaryBuffer::makeRoom(std::size_t size) {
  if (size > static_cast<std::size_t>(largest - cursor_)) {
    tooLarge_ = true;
    return false;
  }
  const std::int64_t needed = cursor_ + static_cast<std::int64_t>(size);
  std::int64_t capacity = capacity_;
  while (capacity < needed) capacity *= 2;
  if (capacity > capacity_) reallocate(static_cast<int>(std::min(capacity, largest)));
  return true;
}

void ioPacketFileBinaryBuffer::reallocate(int capacity) {
  auto larger = std::make_unique_for_overwrite<char[]>(std::size_t(capacity) + 1);
  std::memcpy(larger.get(), data_.get(), std::size_t(capacity_));
  data_ = std::move(larger);
  capacity_ = capacity;
}

void ioPacketFileBinaryBuffer::putBytes(const void* bytes, std::size_t size) {
  if (size == 0 || !makeRoom(size)) return;
  std::memcpy(data_.get() + cursor_, bytes, size);
  cursor_ += static_cast<int>(size);
}

void ioPacketFileBinaryBuffer::getBytes(void* bytes, std::size_t size) noexcept {
  const std::size_t held = std::min(size, static_cast<std::size_t>(end_ - cursor_));
  if (held > 0) std::memcpy(bytes, data_.get() + cursor_, held);
  if (size > held) std::memset(static_cast<char*>(bytes) + held, 0, size - held);
  cursor_ += static_cast<int>(held);
}

const char* ioPacketFileBinaryBuffer::getCString() noexcept {
  const char* const text = data_.get() + cursor_;
  // The terminator behind the packet ends a text that has none.
  const auto* const last = static_cast<const char*>(std::memchr(text, 0, std::size_t(end_ - cursor_) + 1));
  cursor_ = std::min(static_cast<int>(last - data_.get()) + 1, end_);
  return text;
}

void ioPacketFileBinaryBuffer::startPacket(ioWriteContext&, bool hasReference, const ioPacketType* type) {
  const int header[3] = {type ? type->getId() : -1, hasReference, 0};
  static_assert(sizeof header == headerSize);
  std::memcpy(data_.get(), header, headerSize);
  cursor_ = headerSize;
  tooLarge_ = false;
  startLevels();
}

void ioPacketFileBinaryBuffer::endPacket(ioWriteContext& context, ioBufferedStreamOutput& stream) {
  const int bodySize = cursor_ - headerSize;
  std::memcpy(data_.get() + bodySizeAt, &bodySize, sizeof bodySize);
  if (tooLarge_)
    context.misused();
  else if (packetValid())
    stream.writeData(data_.get(), cursor_);
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
    cursor_ = end_;
    if (step > capacity_ - cursor_ && !makeRoom(static_cast<std::size_t>(step))) break;
    end_ += std::clamp(stream.readData(data_.get() + end_, step), 0, step);
  }
  data_[end_] = '\0';
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
