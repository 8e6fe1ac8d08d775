#include "Base/IO/ioReadContext.h"

#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/ioClientReadContext.h"
#include "Base/IO/ioPacketEOF.h"
#include "Base/IO/ioPacketFileBuffer.h"
#include "Base/IO/ioPacketFileError.h"
#include "Base/IO/ioPacketRegistry.h"

ioReadContext::~ioReadContext() = default;

void ioReadContext::definePacketReference(void* address) { defineReference(packetReference_, address); }

void ioReadContext::readReferenceUsage(void* slot, int extra) {
  resolveReference(readReference(), slot, extra);
}

void* ioReadContext::readReferenceUsage(int& reference) {
  reference = readReference();
  if (!isReferenceDefined(reference)) return nullptr;
  useReference(reference);
  return getReferenceDefinition(reference);
}

void* ioReadContext::readReferenceUsage() {
  int reference;
  return readReferenceUsage(reference);
}

int ioReadContext::readReferenceDefinition(void* address) {
  const int reference = readReference();
  defineReference(reference, address);
  return reference;
}

int ioReadContext::readReference() { return static_cast<int>(fetchUInt()); }

void ioReadContext::defineReference(int reference, void* address) { define(reference, address, false); }
void ioReadContext::defineReferenceAlias(int reference, void* address) { define(reference, address, true); }

void ioReadContext::define(int reference, void* address, bool alias) {
  getReferenceMap()->defineAddress(reference, address, alias);
  getReferenceMap()->markDefined(reference, ioPacketTypeOf(currentBuffer()));
  if (reference == packetReference_) packetReferenceDefined_ = true;
}

void ioReadContext::resolveReference(int reference, void* slot, int extra) {
  getReferenceMap()->resolveUsage(reference, slot, ioPacketTypeOf(currentBuffer()), extra);
}

void ioReadContext::useReference(const void* address) {
  useReference(getReferenceMap()->referenceOf(address));
}
void ioReadContext::useReference(int reference) {
  getReferenceMap()->useDefinition(reference, ioPacketTypeOf(currentBuffer()));
}

ioStatus ioReadContext::readFile(ioClientReadContext& client) {
  if (!getRegistry()) {
    setStatus(ioFailed);
    return getStatus();
  }
  getRegistry()->init();
  if (getRegistry()->readRegistry(*stream_) != ioOK) {
    setStatus(ioBadData);
    return getStatus();
  }
  endType_ = getRegistry()->lookup(ioPacketEOF::name);
  pushPacket();
  while (good() && !halted_) readPacket(client);
  popPacket();
  if (halted_) setStatus(ioHalted);
  if (getStatus() == ioAtEnd) {
    getReferenceMap()->reportRemaining(client);
    setStatus(ioOK);
  }
  return getStatus();
}

void ioReadContext::readPacket(ioClientReadContext& client) {
  ioPacketFileBuffer& buffer = *currentBuffer();
  buffer.reset();
  packetReference_ = 0;
  packetReferenceDefined_ = false;
  const int referenceMode = buffer.readPacketHeader(*this, *stream_);
  if (!stream_->good()) return promoteStreamStatus(*stream_);
  ioPacketType* const type = buffer.packetType();
  if (!type) return setStatus(ioBadData);
  type->used();
  if (type == endType_) {
    buffer.finishPacket(*this);
    return setStatus(ioAtEnd);
  }
  // Any other mode is for a later version: the packet is passed over unread.
  if (referenceMode == 0 || referenceMode == 1) readBody(client, referenceMode == 1);
  buffer.finishPacket(*this);
  if (packetReference_ != 0 && !packetReferenceDefined_ && buffer.packetValid()) stopUndefined();
  packetsRead_ = static_cast<int>(static_cast<unsigned int>(packetsRead_) + 1);
}

void ioReadContext::readBody(ioClientReadContext& client, bool hasReference) {
  if (hasReference) packetReference_ = readReference();
  client.prePacketRead();
  currentBuffer()->packetType()->read(client);
  client.postPacketRead();
}

void ioReadContext::stopUndefined() const {
  ioPacketFileError("ioPacketFile: A packet type: '%s'\n", ioPacketTypeOf(currentBuffer())->getName());
  ioPacketFileError("  had a reference associated with it but no \n");
  ioPacketFileError("  definition was provided by the client code.\n");
  // Prints whether the reference is defined, so always 0, and not its number.
  ioPacketFileError("  The undefined reference is: %d.\n", static_cast<int>(packetReferenceDefined_));
  fatalError();
}

bool ioReadContext::reusePacketFile() {
  ioHeader header;
  setStatus(ioOK);
  halted_ = false;
  if (header.readHeader(*stream_) && header.determineReadMethod() == readMethod_) return true;
  halted_ = true;
  return false;
}

void ioReadContext::nextChunk() {
  ioPacketFileBuffer* const buffer = currentBuffer();
  if (!buffer) return setStatus(ioFailed);
  if (buffer->chunkOpen()) {
    buffer->skipChunk(*this);
    buffer->setChunkOpen(false);
  }
  buffer->setChunkOpen(true);
  buffer->nextChunk(*this);
}

void ioReadContext::startSubPacket() {
  if (!currentBuffer()) return setStatus(ioFailed);
  currentBuffer()->goDeeper();
  currentBuffer()->startSubPacketRead(*this);
}

void ioReadContext::endSubPacket() {
  if (!currentBuffer() || currentBuffer()->depth() == 0) return setStatus(ioFailed);
  currentBuffer()->endSubPacketRead(*this);
  currentBuffer()->goUp();
}
