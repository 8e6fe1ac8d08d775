#include "Base/Undo/qvUndoReport.h"

#include "Base/OS/qvOSNativePath.h"
#include "Base/Platform/qvPlatformFile.h"
#include "Base/String/qvStringFormat.h"
#include "Base/String/qvStringFormatEngine.h"
#include "Base/String/qvStringIString.h"
#include "Base/Undo/qvUndoDetail.h"

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <string_view>

// Apart from its closer, so that groups that a host deletes after it still find a value.
constinit std::FILE* qvUndo::reportFile = nullptr;

namespace {

using qvUndo::reportFile;

void closeReport() {
  if (reportFile) qvPlatform::closeStream(reportFile);
  reportFile = nullptr;
}

/// Closes the report when the library goes.
const struct Closer {
  ~Closer() { closeReport(); }
} closer;

/// Lost texts are no one's failure.
void write(std::string_view text) {
  if (!qvPlatform::writeStream(reportFile, text.data(), text.size(), nullptr))
    (void)qvPlatform::flushStream(reportFile);
}

} // namespace

void qvUndoReportInit(const char* path) {
  closeReport();
  if (qvPlatform::openStream(qvOS::toNativePath(qvString::IString(path)).asChar(), "at", &reportFile)) return;
  write("\n------------------------------\n\n");
}

void qvUndoReport(const char* format, ...) {
  if (!reportFile) return;
  constexpr std::size_t size = 1024;
  char made[size];
  va_list args;
  va_start(args, format);
  (void)QL_vsnprintf(made, size, format, args); // a text that is too long comes cut and terminated
  va_end(args);
  char text[size]; // the second pass never makes it longer
  write({text, qvString::formatWithoutArguments(text, size, made)});
}
