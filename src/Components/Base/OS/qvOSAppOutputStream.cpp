#include "Base/OS/qvOSAppOutputStream.h"

#include "Base/OS/qvOSNativePath.h"
#include "Base/Platform/qvPlatformFile.h"
#include "Base/Platform/qvPlatformTime.h"
#include "Base/String/qvStringCString.h"
#include "Base/String/qvStringFormatEngine.h"
#include "Base/String/qvStringScratch.h"

#include <algorithm>
#include <climits>
#include <ctime>
#include <string>
#include <string_view>

namespace qvOS {

using qvString::CString;
using qvString::IString;

class AppOutputStream::Record : public qv::ImplBase {
public:
  explicit Record(bool unflushed) : buffered(unflushed) {}
  ~Record() override { close(); }

  void open(const IString& name, bool append) {
    atLineStart = true;
    close();
    if (name == IString(QV_W("-"))) {
      file = stdout;
      ownsFile = false;
      return;
    }
    ownsFile = true;
    static_cast<void>(qvPlatform::openStream(toNativePath(name).asChar(), append ? "at" : "wt", &file));
  }

  void close() {
    if (ownsFile && file) qvPlatform::closeStream(file);
    file = nullptr;
  }

  void write(const char* format, va_list args) {
    if (!file) return;
    const std::string_view text = format ? format : "";
    if (indent < 1) {
      if (!text.empty()) atLineStart = text.back() == '\n';
      put(text.data(), args);
    } else {
      put(indented(text).c_str(), args);
    }
    if (!buffered) static_cast<void>(qvPlatform::flushStream(file));
  }

  void setIndent(int blanks) {
    indent = std::max(blanks, 0);
    indentText = CString(static_cast<unsigned>(indent), ' ');
  }

  std::FILE* file = nullptr;
  int level = 0;
  int indent = 0;
  CString indentText;
  bool ownsFile = false;
  const bool buffered;
  bool atLineStart = true;

private:
  /// The format with blanks where its lines start.
  std::string indented(std::string_view format) {
    std::string result;
    while (!format.empty()) {
      const std::size_t newline = format.find('\n');
      const std::size_t length = newline == std::string_view::npos ? format.size() : newline + 1;
      if (atLineStart) result += indentText.view();
      result += format.substr(0, length);
      atLineStart = newline != std::string_view::npos;
      format.remove_prefix(length);
    }
    return result;
  }

  void put(const char* format, va_list args) const {
    qvString::Scratch<char> guess(512);
    const std::size_t length = qvString::formatText(guess.data(), guess.size(), format, args);
    if (length < guess.size()) return put(guess.data(), length);
    qvString::Scratch<char> whole(length + 1);
    qvString::formatText(whole.data(), whole.size(), format, args);
    put(whole.data(), length);
  }

  void put(const char* text, std::size_t length) const {
    static_cast<void>(qvPlatform::writeStream(file, text, length, nullptr));
  }
};

namespace {

/// Local date and time with a newline, in English whatever the locale is; empty where it cannot be told.
CString localTimeText() {
  static const char* const days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  static const char* const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  CString text;
  std::tm now;
  if (qvPlatform::localTime(qvPlatform::secondsNow(), &now))
    text.format("%s %s %02d %02d:%02d:%02d %d\n", days[now.tm_wday], months[now.tm_mon], now.tm_mday,
                now.tm_hour, now.tm_min, now.tm_sec, now.tm_year + 1900);
  return text;
}

} // namespace

AppOutputStream::AppOutputStream(bool buffered) : handle_(new Record(buffered)) {}

AppOutputStream::Record& AppOutputStream::record() const { return handle_.as<Record>(); }

bool AppOutputStream::open(const IString& name, bool append) {
  record().open(name, append);
  return ok();
}

void AppOutputStream::close() { record().close(); }

bool AppOutputStream::ok() const { return record().file != nullptr; }

void AppOutputStream::operator()(const char* format, ...) const {
  va_list args;
  va_start(args, format);
  printArg(format, args);
  va_end(args);
}

void AppOutputStream::operator()(int level, const char* format, ...) const {
  va_list args;
  va_start(args, format);
  printArg(level, format, args);
  va_end(args);
}

void AppOutputStream::printf(const char* format, ...) const {
  va_list args;
  va_start(args, format);
  printArg(format, args);
  va_end(args);
}

void AppOutputStream::printf(int level, const char* format, ...) const {
  va_list args;
  va_start(args, format);
  printArg(level, format, args);
  va_end(args);
}

void AppOutputStream::printArg(const char* format, va_list args) const { record().write(format, args); }

void AppOutputStream::printArg(int level, const char* format, va_list args) const {
  if (level <= record().level) printArg(format, args);
}

void AppOutputStream::timestamp() const { printf("Timestamp: %s", localTimeText().asChar()); }

void AppOutputStream::setLevel(int level) {
  if (ok()) record().level = level;
}

int AppOutputStream::getLevel() const { return record().level; }

int AppOutputStream::setIndentLevel(int blanks) {
  const int before = getIndentLevel();
  if (ok()) record().setIndent(blanks);
  return before;
}

namespace {

constexpr int indentStep = 4;

} // namespace

int AppOutputStream::increaseIndentLevel() {
  return setIndentLevel(std::min(getIndentLevel(), INT_MAX - indentStep) + indentStep);
}

int AppOutputStream::decreaseIndentLevel() { return setIndentLevel(getIndentLevel() - indentStep); }

int AppOutputStream::getIndentLevel() const { return record().indent; }

std::FILE* AppOutputStream::getFile() const { return record().file; }

const char* AppOutputStream::elapsed(double seconds) const {
  if (!ok()) return "";
  constexpr double mostSeconds = INT_MAX;
  static CString text;
  if (seconds >= 60) {
    const int whole = static_cast<int>(std::min(seconds, mostSeconds));
    text.format("%02d:%02d minutes", whole / 60, whole % 60);
  } else {
    text.format("%.3f seconds", seconds);
  }
  return text.asChar();
}

} // namespace qvOS
