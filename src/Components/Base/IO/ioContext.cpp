#include "Base/IO/ioContext.h"

#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/ioPacketFileBuffer.h"
#include "Base/IO/ioPacketFileError.h"
#include "Base/IO/ioPacketRegistry.h"
#include "Base/IO/ioPacketType.h"

#include <algorithm>

ioContext::ioContext() : referenceMap_(ioPacketFileNewReferenceMap()) {
  bufferStack_ = std::make_unique<std::unique_ptr<ioPacketFileBuffer>[]>(std::size_t(stackCapacity_));
}

ioContext::~ioContext() = default;

void ioContext::undefineReference(int reference) { referenceMap_->undefineNumber(reference); }
void ioContext::undefineReference(void* address) { referenceMap_->undefineAddress(address); }

ioPacketType* ioContext::lookupType(int id) const { return registry_ ? registry_->lookup(id) : nullptr; }

void ioContext::associateReferenceMap(ioReferenceMap* map) {
  referenceMap_ = map ? qv::Reference<ioReferenceMap>(map) : ioPacketFileNewReferenceMap();
}

bool ioContext::isReferenceDefined(int reference) const { return referenceMap_->isDefined(reference); }
bool ioContext::isReferenceDefined(const void* address) const {
  return referenceMap_->isDefined(referenceMap_->referenceOf(address));
}
int ioContext::getReference(const void* address) const { return referenceMap_->referenceOf(address); }
void* ioContext::getReferenceDefinition(int reference) const {
  return referenceMap_->definitionOf(reference);
}

void ioContext::reportUnresolvedPtrs(const ioPacketType* type, ioUnresolvedCallback callback) const {
  referenceMap_->reportUnresolved(type, callback);
}

void ioContext::invalidPacket() noexcept {
  if (currentBuffer_) currentBuffer_->invalidate();
}

void ioContext::fatalError() const {
  ioPacketFileError("ioPacketFile: Fatal error.  Aborting.\n");
  for (int level = 0; level < stackTop_; ++level) {
    const ioPacketType* const type = bufferStack_[level]->packetType();
    ioPacketFileError("  %d: %d\n", level, type ? type->getId() : -1);
  }
  ioPacketFileAbort();
}

void ioContext::growStack() {
  auto larger = std::make_unique<std::unique_ptr<ioPacketFileBuffer>[]>(std::size_t(stackCapacity_) * 2);
  std::move(bufferStack_.get(), bufferStack_.get() + stackCapacity_, larger.get());
  bufferStack_ = std::move(larger);
  stackCapacity_ *= 2;
}

void ioContext::makeBuffer() {
  bufferStack_[stackTop_] = newBuffer();
  currentBuffer_ = bufferStack_[stackTop_].get();
}

void ioContext::promoteStreamStatus(const ioBufferedStream& stream) noexcept {
  switch (stream.getStatus()) {
  case ioStreamOK:
    return;
  case ioStreamOpenFailed:
    return setStatus(ioOpenFailed);
  case ioStreamAtEnd:
  case ioStreamCompressedEnd:
    return setStatus(ioBadData);
  case ioStreamDiskFull:
    return setStatus(ioDiskFull);
  case ioStreamBadChecksum:
    return setStatus(ioBadChecksum);
  default:
    return setStatus(ioFailed);
  }
}
