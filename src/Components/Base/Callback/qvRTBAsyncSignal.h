// An emission packaged for another thread.
#pragma once

#include "Base/qvBase.h"

namespace qvRTB {

/// Carries a signal's emission, arguments included, to the thread that the signal belongs to. Whoever
/// delivers it calls `emit` there, once, and destroys it. Virtual order is part of the interface.
class QV_BASE_API AsyncSignal {
public:
  AsyncSignal() = default;
  AsyncSignal(const AsyncSignal&) = delete;
  AsyncSignal& operator=(const AsyncSignal&) = delete;
  virtual ~AsyncSignal();

  /// Performs the emission, in the receiving thread.
  virtual void emit() = 0;
};

} // namespace qvRTB
