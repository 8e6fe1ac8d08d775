// The two hooks of packet files and the only places that call them.
#include "Base/IO/ioPacketFileError.h"

#include "Base/String/qvStringFormat.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace {

ioPacketFileErrorHook errorHook = nullptr;
ioPacketFileAbortHook abortHook = nullptr;

} // namespace

void ioPacketFileErrorInit(ioPacketFileErrorHook hook) noexcept { errorHook = hook; }
void ioPacketFileAbortInit(ioPacketFileAbortHook hook) noexcept { abortHook = hook; }

void ioPacketFileError(const char* format, ...) {
  char text[1024];
  va_list args;
  va_start(args, format);
  QL_vsnprintf(text, sizeof text, format, args);
  va_end(args);
  text[sizeof text - 1] = '\0';
  if (errorHook)
    errorHook(text);
  else
    std::fputs(text, stderr);
}

void ioPacketFileAbort() {
  if (abortHook) abortHook();
  std::abort();
}
