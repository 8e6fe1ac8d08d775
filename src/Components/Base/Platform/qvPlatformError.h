// What a system's error number means, and the one way of making a call that a signal may interrupt.
#pragma once

#include "Base/Platform/qvPlatformCall.h"

#include <string>

namespace qvPlatform {

/// The events that code above the platform tells apart. Interfaces that name an event by a number of another
/// system compare with these, so that the same event gives the same result everywhere.
enum class ErrorKind {
  none,
  notFound,     ///< No such file, or no directory on the way to it. Its own number is 2.
  notDirectory, ///< A name on the way is not a directory. See `isNotFound`.
  exists,       ///< The name is taken: its own number is 80, and 17 as a runtime's number.
  notEmpty,     ///< The directory holds entries: number 41 as a runtime's number.
  denied, ///< Permissions, ownership or a read-only file system forbid it: number 13 as a runtime's number.
  isDirectory, ///< A file was asked for and the name is a directory's.
  invalid,     ///< The arguments make no sense together: number 22 as a runtime's number.
  crossDevice, ///< Source and target lie on different file systems.
  noSpace,     ///< The disk or the quota is full.
  tooLong,     ///< The name or the path is too long for the system.
  badText,     ///< Text with no counterpart in the wanted encoding: number 1113.
  interrupted, ///< A signal came first.
  ioFailure,   ///< The device failed.
  other,
};

/// The event that `number` stands for; `none` for 0.
[[nodiscard]] ErrorKind errorKind(int number) noexcept;

/// The number that this system gives for `kind`; 0 for `none`, and a number of no other kind for `other`.
[[nodiscard]] int errorNumber(ErrorKind kind) noexcept;

/// True where `number` says that the name leads to nothing, because it or a directory on the way is missing.
[[nodiscard]] bool isNotFound(int number) noexcept;

/// The system's text for `number` in the default encoding, without a line end. Safe from any thread. A number
/// that the system does not know gives a text that says so.
[[nodiscard]] std::string systemErrorText(int number);

/// The number of the call of the system that failed last in this thread.
[[nodiscard]] int lastError() noexcept;

/// Announces the operation `name`, then makes the call, again as long as a signal interrupts it. `call`
/// answers a negative value and leaves a number for `lastError` where it fails; its last answer is stored in
/// `result`.
/// @return 0, or the system's number.
template <class Call, class Result>
[[nodiscard]] int retryCall(const char* name, Call call, Result& result) noexcept {
  for (;;) {
    int error = beforeCall(name);
    if (!error) {
      result = call();
      if (result >= 0) return 0;
      error = lastError();
    }
    if (errorKind(error) != ErrorKind::interrupted) return error;
  }
}

/// The same for a call whose answer only says whether it failed.
template <class Call>
[[nodiscard]] int retryCall(const char* name, Call call) noexcept {
  int result = 0;
  return retryCall(name, call, result);
}

} // namespace qvPlatform
