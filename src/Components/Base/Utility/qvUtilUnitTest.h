// A flag by which a host tells itself that it runs as a unit test. The library only keeps it.
#pragma once

#include "Base/qvBase.h"

/// Sets the flag for the whole process; nothing clears it.
extern "C" QV_BASE_API void setThisIsAUnitTest();

/// True once `setThisIsAUnitTest` was called.
extern "C" QV_BASE_API bool isThisAUnitTest();
