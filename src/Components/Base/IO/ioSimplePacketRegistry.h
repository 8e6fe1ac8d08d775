// A registry that needs no derived class: whoever has packet types connects a function to its signal.
#pragma once

#include "Base/Callback/qvRTBSignal.h"
#include "Base/IO/ioPacketRegistry.h"
#include "Base/qvBase.h"

/// A registry that asks the functions on its signal for the types when it is first used, the newest
/// connection first.
class QV_BASE_API ioSimplePacketRegistry : public ioPacketRegistry {
public:
  using Signal = qvRTB::SignalArg<ioSimplePacketRegistry&>;

  explicit ioSimplePacketRegistry(bool forReading);
  ~ioSimplePacketRegistry() override;

  /// Connect functions here that add their types; a connection must be made before the first file.
  [[nodiscard]] Signal& signal() noexcept { return signal_; }

  /// Declares a name for writing.
  void add(const char* name);
  /// Adds a type whose packets `function` reads. It is not null.
  void add(const char* name, void (*function)());

protected:
  void registerAllTypes() override;

private:
  Signal signal_;
};
