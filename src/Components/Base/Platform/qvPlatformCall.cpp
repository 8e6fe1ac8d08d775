#include "Base/Platform/qvPlatformCall.h"

namespace qvPlatform {

std::atomic<CallHook> callHook{nullptr};

} // namespace qvPlatform
