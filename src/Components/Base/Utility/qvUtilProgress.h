// Progress: how long work reports how far it is, and hears that it is no longer wanted.
#pragma once

#include "Base/qvBase.h"

namespace qvUtil {

/// What a host implements to show progress and to offer a way to stop. Not thread-safe: whoever does work in
/// several threads asks and reports in one of them only. Virtual order is part of the interface.
class QV_BASE_API Progress {
public:
  Progress() = default;
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  virtual ~Progress();

  /// Whether the user has asked to stop. Called often.
  [[nodiscard]] virtual bool cancelled() = 0;
  /// Takes how far the work is. Whose scale it is - parts of one, steps, bytes - the two sides agree on.
  virtual void set(double value) = 0;
};

static_assert(sizeof(Progress) == sizeof(void*));

} // namespace qvUtil
