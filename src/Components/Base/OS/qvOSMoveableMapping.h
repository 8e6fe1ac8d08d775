// A block of moveable memory.
#pragma once

#include "Base/Utility/qvReferenceCount.h"
#include "Base/qvBase.h"

#include <cstdint>

namespace qvOS {

/// Bytes that have an address only while they are mapped; each `map` may give another one. They keep their
/// content meanwhile; what they hold at first is undefined. Comes from `MoveableMemory::allocate` and goes
/// with its last holder, before that memory does. Threads as for `MoveableMemory`.
class QV_BASE_API MoveableMapping : public qv::ReferenceCount {
public:
  ~MoveableMapping() override;

  /// Bytes of the block: what was asked for, or more.
  [[nodiscard]] virtual std::uint64_t getSize() const = 0;
  /// The address, which is the same until `unmap`; null where the address space cannot hold the block.
  virtual void* map() = 0;
  /// Gives the address up. Nothing where there is none. Calls are not counted.
  virtual void unmap() = 0;
  /// The address now; null where it is not mapped.
  [[nodiscard]] virtual void* getPtr() const = 0;
  /// `FileMapping::flush` of the bytes from `begin` up to `end` while mapped, else nothing.
  virtual void flush(std::uint64_t begin, std::uint64_t end) = 0;
  /// `FileMapping::load` of these bytes while mapped, else nothing.
  virtual void load(std::uint64_t begin, std::uint64_t end) = 0;

protected:
  MoveableMapping() = default;
};

} // namespace qvOS
