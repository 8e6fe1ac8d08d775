// What goes with the reading of a packet file through the client's own code: the context, and whatever a
// derived class adds.
#pragma once

#include "Base/qvBase.h"

class ioReadContext;

/// Goes with one read; every packet type gets it. Derive from it to carry the client's data. Virtual order is
/// part of the interface.
class QV_BASE_API ioClientReadContext {
public:
  /// The context stays the caller's.
  explicit ioClientReadContext(ioReadContext* context) noexcept : context_(context) {}
  ioClientReadContext(const ioClientReadContext&) = default;
  ioClientReadContext& operator=(const ioClientReadContext&) = default;
  virtual ~ioClientReadContext();

  /// Called before and after each packet that a type reads. They do nothing here.
  virtual void prePacketRead();
  virtual void postPacketRead();

  [[nodiscard]] ioReadContext& getContext() const noexcept { return *context_; }

private:
  ioReadContext* context_;
};
static_assert(sizeof(void*) != 8 || sizeof(ioClientReadContext) == 16);
