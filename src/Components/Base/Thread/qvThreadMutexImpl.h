// What a Mutex points to, for those that build on its kernel object.
#pragma once

#include "Base/Platform/qvPlatformThread.h"

namespace qvThread {

struct MutexImpl {
  explicit MutexImpl(bool isFast) noexcept : fast(isFast) {}

  const bool fast;
  qvPlatform::KernelMutex handle; // created where `fast` is false
  qvPlatform::CriticalSection section;
};

} // namespace qvThread
