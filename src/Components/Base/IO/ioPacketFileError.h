// Where the fatal faults of packet files are reported: two process-wide hooks that a host sets at start-up.
// They have no lock.
#pragma once

#include "Base/qvBase.h"

/// Takes one piece of a report. Pieces carry their own line ends; the text dies with the call.
using ioPacketFileErrorHook = void (*)(const char* text);
/// Runs before the process is aborted. It may leave by an exception, and then nothing is aborted.
using ioPacketFileAbortHook = void (*)();

/// Sends reports to `hook`; with null they go to standard error, as at start-up.
QV_BASE_API void ioPacketFileErrorInit(ioPacketFileErrorHook hook) noexcept;

/// Calls `hook` before a fatal fault aborts the process; null calls nothing.
QV_BASE_API void ioPacketFileAbortInit(ioPacketFileAbortHook hook) noexcept;

/// Reports a text, printed as `QL_vsnprintf` does and cut to 1023 characters.
QV_BASE_API void ioPacketFileError(const char* format, ...);

/// Calls the abort hook, if there is one, and then aborts.
[[noreturn]] QV_BASE_API void ioPacketFileAbort();
