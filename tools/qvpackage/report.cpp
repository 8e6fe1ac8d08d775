#include "report.h"

#include "printable.h"
#include "terminal.h"

#include "Base/String/qvStringIString.h"

#include <algorithm>
#include <cstdio>
#include <ctime>

namespace {

bool failed = false;
bool barOnScreen = false;

void wipeBar() {
  if (barOnScreen) std::fprintf(stderr, "\r\033[K");
  barOnScreen = false;
}

} // namespace

void fail(const std::string& subject, const std::string& reason) {
  wipeBar();
  failed = true;
  std::fprintf(stderr, "qvpackage: %s: %s\n", printable(subject).c_str(), printable(reason).c_str());
}

int exitStatus() { return failed ? 1 : 0; }

Progress::Progress(const char* label, std::int64_t total)
    : label_(label), total_(total), visible_(total > 0 && errorsGoToTerminal()) {
  show(0);
}

Progress::~Progress() { wipeBar(); }

void Progress::show(std::int64_t done) {
  done_ = done;
  if (!visible_) return;
  const auto percent = static_cast<std::int64_t>(100.0 * static_cast<double>(std::min(done_, total_)) /
                                                 static_cast<double>(total_));
  if (percent == shown_) return;
  shown_ = percent;
  constexpr int width = 40;
  const std::string bar(static_cast<std::size_t>(percent * width / 100), '#');
  std::fprintf(stderr, "\r%s [%-*s] %3d%%", label_, width, bar.c_str(), static_cast<int>(percent));
  std::fflush(stderr);
  barOnScreen = true;
}

std::string jsonString(const std::string& text) {
  const qvString::IString decoded(text.c_str(), qvString::UTF8Encoding, nullptr);
  std::string out = "\"";
  for (const char* p = decoded.asUTF8(); *p; ++p) {
    if (*p == '"' || *p == '\\') {
      out += '\\';
      out += *p;
    } else if (static_cast<unsigned char>(*p) < 0x20) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(*p));
      out += escape;
    } else {
      out += *p;
    }
  }
  return out + '"';
}

std::string dateText(std::int64_t seconds) {
  const std::time_t time = static_cast<std::time_t>(seconds);
  char text[32];
  const std::tm* local = std::localtime(&time);
  if (seconds == noTime || !local || std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", local) == 0)
    return "-";
  return text;
}
