// The failure that the system's objects for threads give.
#pragma once

#include "Base/Platform/qvPlatformError.h"
#include "Base/Utility/qvUtilError.h"

namespace qvThread {

/// Throws code 1 with `format`, filled with the system's text for `number`, unless that is 0.
inline void throwSystemError(int number, const char* format = "%s") {
  if (number) throw qvUtil::Error(1, format, qvPlatform::systemErrorText(number).c_str());
}

} // namespace qvThread
