// Facts about the build of the library, written by the build itself.
#pragma once

#include "Base/qvBase.h"

#include <cstdint>

/// The build machine's name, a colon, and the build directory.
extern "C" QV_BASE_API const char* const gBuildDirectory;

/// The local date and time of the build: year, month, day, hour and minute, separated by blanks.
extern "C" QV_BASE_API const char* const gBuildDate;

/// The source change number as six digits; "000000" where none is known.
extern "C" QV_BASE_API const char* const gBuildChangeSet;

/// The moment of the build in seconds since 1970-01-01 00:00:00 UTC.
extern "C" QV_BASE_API const std::int64_t gBuildTime;
