#include "Base/IO/ioWriteContext.h"

#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/ioPacketEOF.h"
#include "Base/IO/ioPacketFileBuffer.h"
#include "Base/IO/ioPacketRegistry.h"
#include "Base/IO/ioPacketString.h"

ioWriteContext::~ioWriteContext() = default;

void ioWriteContext::writeReference(int reference, bool define) {
  if (define) getReferenceMap()->markDefined(reference, ioPacketTypeOf(currentBuffer()));
  writeUInt(static_cast<unsigned int>(reference));
}

int ioWriteContext::writeReference(const void* address, bool define) {
  int reference = getReferenceMap()->referenceOf(address);
  if (reference < 0) reference = getReferenceMap()->newReference(address);
  writeReference(reference, define);
  return reference;
}

void ioWriteContext::startFile() {
  fileStarted_ = true;
  if (!good()) return;
  if (!getRegistry()) return misused();
  makeHeader().writeHeader(*stream_);
  getRegistry()->init();
  getRegistry()->writeRegistry(*stream_, writeRegistryNames_);
  stringType_ = getRegistry()->lookup(ioPacketString::name);
  promoteStreamStatus(*stream_);
}

void ioWriteContext::endFile() {
  if (!good()) return;
  auto* const end =
      getRegistry() ? dynamic_cast<ioPacketEOF*>(getRegistry()->lookup(ioPacketEOF::name)) : nullptr;
  if (!end) return misused();
  if (currentBuffer()) misused();
  end->writeEndPacket(*this);
  promoteStreamStatus(*stream_);
  fileStarted_ = false;
}

void ioWriteContext::startPacket(const ioPacketType* type, const void* object) {
  pushPacket();
  ioPacketFileBuffer& buffer = *currentBuffer();
  buffer.reset();
  if (!type) { // the packet takes what is written into it and disappears
    buffer.invalidate();
    misused();
  }
  // Types belong to a registry, which holds them as variables.
  buffer.setPacketType(const_cast<ioPacketType*>(type));
  buffer.startPacket(*this, object != nullptr, type);
  if (object) writeReference(object, true);
  if (type) buffer.packetType()->used();
}

void ioWriteContext::startPacket(const char* typeName, const void* object) {
  startPacket(getRegistry() ? getRegistry()->lookup(typeName) : nullptr, object);
}

void ioWriteContext::endPacket() {
  if (!currentBuffer()) return misused();
  endOpenChunk();
  currentBuffer()->endPacket(*this, *stream_);
  popPacket();
}

void ioWriteContext::startChunk() {
  if (!currentBuffer()) return misused();
  endOpenChunk();
  currentBuffer()->setChunkOpen(true);
  currentBuffer()->startChunk(*this);
}

void ioWriteContext::endOpenChunk() {
  if (!currentBuffer()->chunkOpen()) return;
  currentBuffer()->setChunkOpen(false);
  currentBuffer()->endChunk(*this);
}

void ioWriteContext::startSubPacket() {
  if (!currentBuffer()) return misused();
  currentBuffer()->goDeeper();
  currentBuffer()->startSubPacket(*this);
}

void ioWriteContext::endSubPacket() {
  if (!currentBuffer() || currentBuffer()->depth() == 0) return misused();
  endOpenChunk();
  currentBuffer()->endSubPacket(*this);
  currentBuffer()->goUp();
}

void ioWriteContext::writeCStringPacket(const char* text) {
  if (!text) return;
  startPacket(stringType_, text);
  writeCString(text);
  endPacket();
}
