// What goes with the writing of a packet file, for clients whose objects write themselves.
#pragma once

class ioWriteContext;

/// The counterpart of `ioClientReadContext`.
class ioClientWriteContext {
public:
  /// The context stays the caller's.
  explicit ioClientWriteContext(ioWriteContext* context) noexcept : context_(context) {}

  [[nodiscard]] ioWriteContext& getContext() const noexcept { return *context_; }

private:
  ioWriteContext* context_;
};
