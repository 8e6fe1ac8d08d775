#include "Base/OS/qvOSAppOutput.h"

namespace qvOS {

AppOutput& AppOutput::getInstance() {
  static AppOutput instance;
  return instance;
}

void AppOutput::setLevel(int level) {
  for (AppOutputStream& stream : streams_) stream.setLevel(level);
}

void AppOutput::error(const char* format, ...) {
  va_list args;
  va_start(args, format);
  report(format, args);
  va_end(args);
}

void AppOutput::error(int level, const char* format, ...) {
  va_list args;
  va_start(args, format);
  report(level, format, args);
  va_end(args);
}

void AppOutput::info(const char* format, ...) {
  va_list args;
  va_start(args, format);
  report(format, args);
  va_end(args);
}

void AppOutput::info(int level, const char* format, ...) {
  va_list args;
  va_start(args, format);
  report(level, format, args);
  va_end(args);
}

// A stream leaves the list as it was, so that both may read it.
void AppOutput::report(const char* format, va_list args) {
  streams_[0].printArg(format, args);
  streams_[1].printArg(format, args);
}

void AppOutput::report(int level, const char* format, va_list args) {
  streams_[0].printArg(level, format, args);
  streams_[1].printArg(level, format, args);
}

AppOutputStatusTab::AppOutputStatusTab(int level)
    : active_(AppOutput::getInstance().getStream(0).getLevel() >= level) {
  if (active_) AppOutput::getInstance().getStream(0).increaseIndentLevel();
}

AppOutputStatusTab::~AppOutputStatusTab() {
  if (active_) AppOutput::getInstance().getStream(0).decreaseIndentLevel();
}

} // namespace qvOS
