#include "Base/Thread/qvThreadKey.h"

#include "Base/Platform/qvPlatformThread.h"

namespace qvThread {

static_assert(noThreadKey == qvPlatform::noThreadKey);

unsigned createThreadKey() noexcept { return qvPlatform::createThreadKey(); }

bool freeThreadKey(unsigned key) noexcept { return qvPlatform::freeThreadKey(key); }

void* getThreadSpecificValue(unsigned key) noexcept { return qvPlatform::threadValue(key); }

bool setThreadSpecificValue(unsigned key, void* value) noexcept {
  return qvPlatform::setThreadValue(key, value);
}

} // namespace qvThread
