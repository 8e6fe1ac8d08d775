// The process's text output: the streams through which the library and its host report to a person.
#pragma once

#include "Base/OS/qvOSAppOutputStream.h"
#include "Base/qvBase.h"

namespace qvOS {

/// Four streams, closed until the host opens them. `error` and `info` write to streams 0 and 1; what each is
/// for, and the use of the others, is the host's choice. Not thread-safe, as the streams are not.
class AppOutput {
public:
  static constexpr int streamCount = 4;

  /// The one instance, destroyed when the library goes.
  QV_BASE_API static AppOutput& getInstance();
  AppOutput(const AppOutput&) = delete;
  AppOutput& operator=(const AppOutput&) = delete;

  /// One of the streams, from 0 to 3; any other number gives stream 0.
  [[nodiscard]] AppOutputStream& getStream(int number) {
    return streams_[number >= 0 && number < streamCount ? number : 0];
  }
  /// Sets the verbosity of all streams that are open.
  QV_BASE_API void setLevel(int level);

  /// Write to stream 0 and then to stream 1. Both do exactly the same, and are meant to.
  QV_BASE_API void error(const char* format, ...);
  QV_BASE_API void error(int level, const char* format, ...);
  QV_BASE_API void info(const char* format, ...);
  QV_BASE_API void info(int level, const char* format, ...);

private:
  AppOutput() = default;
  ~AppOutput() = default;
  void report(const char* format, va_list args);
  void report(int level, const char* format, va_list args);

  AppOutputStream streams_[streamCount] = {AppOutputStream(false), AppOutputStream(false),
                                           AppOutputStream(false), AppOutputStream(false)};
};

/// Indents stream 0 as long as it lives, unless that stream's verbosity is below `level`.
class AppOutputStatusTab {
public:
  QV_BASE_API explicit AppOutputStatusTab(int level);
  QV_BASE_API ~AppOutputStatusTab();
  AppOutputStatusTab(const AppOutputStatusTab&) = delete;
  AppOutputStatusTab& operator=(const AppOutputStatusTab&) = delete;

private:
  bool active_;
};

} // namespace qvOS
