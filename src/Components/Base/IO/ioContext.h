// What reading and writing a packet file have in common: the registry, the reference map, the sticky status,
// and a stack with one buffer for each open packet, so that packets can nest.
#pragma once

#include "Base/IO/ioReferenceMap.h"
#include "Base/IO/ioStatus.h"
#include "Base/qvBase.h"

#include <cstddef>
#include <memory>

class ioBufferedStream;
class ioPacketFileBuffer;
class ioPacketRegistry;
class ioPacketType;

/// The common base of `ioWriteContext` and `ioReadContext`. Never throws; every failure lands in the status.
/// A context has no lock: one thread uses it at a time. Field and virtual order are part of the interface.
class QV_BASE_API ioContext {
public:
  ioContext(const ioContext&) = delete;
  ioContext& operator=(const ioContext&) = delete;
  virtual ~ioContext();

  /// Forgets the object of a number, or the number of an object: writing the object again takes a new number.
  virtual void undefineReference(int reference);
  virtual void undefineReference(void* address);

protected:
  /// Makes a buffer of this context's encoding.
  [[nodiscard]] virtual std::unique_ptr<ioPacketFileBuffer> newBuffer() const = 0;
  /// Tells the encoding which buffer is current: one that its `newBuffer` made, or null outside any packet.
  virtual void setBuffer(ioPacketFileBuffer* buffer) = 0;

public:
  /// The packet types to use. The registry stays the caller's and must outlive the context.
  void associateRegistry(ioPacketRegistry* registry) noexcept { registry_ = registry; }
  [[nodiscard]] ioPacketRegistry* getRegistry() const noexcept { return registry_; }
  /// The registry's type of that number, or null.
  [[nodiscard]] ioPacketType* lookupType(int id) const;

  /// Shares `map`, so that packet files can refer to each other's objects. Null gives a new map.
  void associateReferenceMap(ioReferenceMap* map);
  [[nodiscard]] ioReferenceMap* getReferenceMap() const noexcept { return referenceMap_.get(); }

  /// Whether the object's packet came by, or its address is known.
  [[nodiscard]] bool isReferenceDefined(int reference) const;
  [[nodiscard]] bool isReferenceDefined(const void* address) const;
  /// The number of `address`; 0 for null, -1 if it has none.
  [[nodiscard]] int getReference(const void* address) const;
  /// The object of a number, or null.
  [[nodiscard]] void* getReferenceDefinition(int reference) const;
  /// Calls `callback` for each pointer that a packet of `type` read and whose object has not come.
  void reportUnresolvedPtrs(const ioPacketType* type, ioUnresolvedCallback callback) const;

  /// Abandons the current packet: a writer drops it without a trace, a reader expects no more of it.
  void invalidPacket() noexcept;
  /// Reports the open packets, calls the abort hook and aborts.
  [[noreturn]] void fatalError() const;

  [[nodiscard]] ioStatus getStatus() const noexcept { return status_; }
  [[nodiscard]] bool good() const noexcept { return status_ == ioOK; }

protected:
  ioContext();

  /// Opens a packet: makes the next level's buffer current. The buffer is not reset.
  void pushPacket() {
    if (++stackTop_ == stackCapacity_) growStack();
    currentBuffer_ = bufferStack_[stackTop_].get();
    if (!currentBuffer_) makeBuffer();
    setBuffer(currentBuffer_);
  }
  /// Closes the current packet and goes back to the one around it.
  void popPacket() {
    --stackTop_;
    currentBuffer_ = stackTop_ < 0 ? nullptr : bufferStack_[stackTop_].get();
    setBuffer(currentBuffer_);
  }
  [[nodiscard]] ioPacketFileBuffer* currentBuffer() const noexcept { return currentBuffer_; }

  void setStatus(ioStatus status) noexcept { status_ = status; }
  /// Takes over the stream's status, if it has one. A stream that ended early is bad data.
  void promoteStreamStatus(const ioBufferedStream& stream) noexcept;

private:
  void growStack();
  void makeBuffer();

  ioPacketRegistry* registry_ = nullptr;
  ioPacketFileBuffer* currentBuffer_ = nullptr;
  qv::Reference<ioReferenceMap> referenceMap_;
  std::unique_ptr<std::unique_ptr<ioPacketFileBuffer>[]> bufferStack_;
  int stackCapacity_ = 10;
  int stackTop_ = -1;
  ioStatus status_ = ioOK;
};
static_assert(sizeof(void*) != 8 || sizeof(ioContext) == 56);
