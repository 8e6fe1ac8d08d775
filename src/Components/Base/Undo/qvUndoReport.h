// The report: a text file in which every step of every undo queue leaves a line. A side channel, without
// which everything works the same.
#pragma once

#include "Base/qvBase.h"

extern "C" {

/// Opens the file for appending and rules a line in it. Until that has worked, and after a failure, nothing
/// is reported. A report that was open is closed. `path` is in the default encoding; lines end as the
/// system's do.
QV_BASE_API void qvUndoReportInit(const char* path);

/// Adds a text, formatted by the rules of `QL_vsnprintf` and cut at 1023 characters, and flushes. The text is
/// then read as a format once more, without arguments: `%%` in it becomes `%`, and any other directive, as a
/// name may hold one, is printed as it stands. Failures to write are ignored.
QV_BASE_API void qvUndoReport(const char* format, ...);
}
