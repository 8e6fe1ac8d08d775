// Reference numbers: objects that point to each other are written as small numbers, and a reader turns the
// numbers back into addresses, also where a reference is read before the object that it names.
#pragma once

#include "Base/Utility/qvReferenceCount.h"
#include "Base/qvBase.h"

class ioClientReadContext;
class ioPacketType;

/// Called for a pointer that still waits for its object: `slot` is the pointer's address, null where only a
/// use was counted, and `extra` the number that came with it.
using ioUnresolvedCallback = void (*)(void* slot, int extra);

/// The numbers and addresses of one packet file, or of several that refer to each other. The first number is
/// 1; 0 stands for null everywhere and enters no table, and neither does a negative number, which only a
/// damaged file holds. One thread at a time. Virtual order is part of the interface.
class QV_BASE_API ioReferenceMap : public qv::ReferenceCount {
public:
  /// Gives `address` the next number, also if it has one already.
  virtual int newReference(const void* address) = 0;
  /// Remembers that `reference` names `address`. A null address does nothing. `alias` marks a second number
  /// of an object that has one.
  virtual void defineAddress(int reference, void* address, bool alias) = 0;
  /// @return the number of `address`: 0 for null, -1 for an address that is unknown or was undefined.
  [[nodiscard]] virtual int referenceOf(const void* address) const = 0;
  /// Whether a packet has defined `reference` and nothing has undefined it since.
  [[nodiscard]] virtual bool isDefined(int reference) const = 0;
  /// @return the address that `reference` names, or null.
  [[nodiscard]] virtual void* definitionOf(int reference) const = 0;
  /// Declares `reference` defined by a packet of `type` and stores its address in every pointer that waits
  /// for it.
  virtual void markDefined(int reference, ioPacketType* type) = 0;
  /// Counts a use of `reference` by a packet of `type`.
  virtual void useDefinition(int reference, ioPacketType* type) = 0;
  /// Forgets the object of `reference`, for good: the number stays undefined.
  virtual void undefineNumber(int reference) = 0;
  virtual void undefineAddress(void* address) = 0;
  /// Counts a use of `reference` and stores its address in the pointer at `slot`: at once if it is defined,
  /// otherwise null now and the address when it is. The pointer must stay in its place until then. A null
  /// `slot` only counts.
  virtual void resolveUsage(int reference, void* slot, ioPacketType* type, int extra) = 0;
  /// Tells the packet types of every use that still waits and of every defined object that nobody used.
  virtual void reportRemaining(ioClientReadContext& client) = 0;
  /// Calls `callback` for every use by a packet of `type` that still waits.
  virtual void reportUnresolved(const ioPacketType* type, ioUnresolvedCallback callback) = 0;

protected:
  ioReferenceMap() = default;
  ~ioReferenceMap() override;
};

/// Makes an empty reference map.
[[nodiscard]] QV_BASE_API qv::Reference<ioReferenceMap> ioPacketFileNewReferenceMap();
