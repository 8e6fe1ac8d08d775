// One stream of text for a person, with a verbosity level and an indentation that applies where lines start.
#pragma once

#include "Base/String/qvStringIString.h"
#include "Base/Utility/qvImplBase.h"
#include "Base/qvBase.h"

#include <cstdarg>
#include <cstdio>

namespace qvOS {

/// A handle on a stream, closed at first. A copy is a second handle on the same stream and is good only while
/// the first one lives, which closes the stream when it goes.
///
/// Formats are those of qvStringFormat.h, in narrow text: `%s` takes narrow text and `%S` wide text. A closed
/// stream swallows all text, and a write that fails is not noticed. Not thread-safe: a host that writes from
/// several threads keeps the calls apart itself.
///
/// Indentation is applied to the format and not to the finished text: a newline that comes out of an argument
/// is not followed by blanks and does not count as the start of a line.
class AppOutputStream {
public:
  /// A closed stream of level 0 without indentation. What is written goes on to the system at once, unless
  /// `buffered`.
  QV_BASE_API explicit AppOutputStream(bool buffered);

  /// Opens the file of that name after closing what was open, and goes on at its end if `append`, or else
  /// empties it. "-" stands for the process's standard output. @return whether a stream is open now.
  QV_BASE_API bool open(const qvString::IString& name, bool append);
  /// Closes the stream; standard output stays open for others. Level and indentation stay.
  QV_BASE_API void close();
  /// True while a stream is open.
  [[nodiscard]] QV_BASE_API bool ok() const;

  /// Write formatted text, those with a level only if it is not above the stream's. A null format is empty.
  QV_BASE_API void operator()(const char* format, ...) const;
  QV_BASE_API void operator()(int level, const char* format, ...) const;
  QV_BASE_API void printf(const char* format, ...) const;
  QV_BASE_API void printf(int level, const char* format, ...) const;
  QV_BASE_API void printArg(const char* format, va_list args) const;
  QV_BASE_API void printArg(int level, const char* format, va_list args) const;
  /// Writes "Timestamp: " and the local date and time, as in "Fri Aug 05 18:56:00 2011", with a newline that
  /// counts as one from an argument.
  QV_BASE_API void timestamp() const;

  /// Sets the verbosity; nothing changes while the stream is closed.
  QV_BASE_API void setLevel(int level);
  [[nodiscard]] QV_BASE_API int getLevel() const;

  /// Sets the number of blanks in front of each line, 0 for a negative one; nothing changes while the stream
  /// is closed. @return the number before.
  QV_BASE_API int setIndentLevel(int blanks);
  /// The same, with 4 blanks more or fewer than now.
  QV_BASE_API int increaseIndentLevel();
  QV_BASE_API int decreaseIndentLevel();
  [[nodiscard]] QV_BASE_API int getIndentLevel() const;

  /// The C stream, which stays this stream's; null while it is closed.
  [[nodiscard]] QV_BASE_API std::FILE* getFile() const;

  /// The ending of a noun after that number: nothing for 1, otherwise "s".
  [[nodiscard]] static const char* plural(int count) { return count == 1 ? "" : "s"; }
  [[nodiscard]] static const char* aBool(bool value) { return value ? "true" : "false"; }
  /// A span of time as text: "59.500 seconds" below a minute, otherwise "02:05 minutes". Empty while the
  /// stream is closed. The text stands in one place for all streams, until the next call.
  [[nodiscard]] QV_BASE_API const char* elapsed(double seconds) const;

private:
  class Record;
  [[nodiscard]] Record& record() const;

  qv::ImplHandle handle_;
};

static_assert(sizeof(AppOutputStream) == 2 * sizeof(void*));

} // namespace qvOS
