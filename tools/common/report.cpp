#include "report.h"

#include "printable.h"
#include "terminal.h"

#include <algorithm>
#include <cstdio>

namespace {

const char* programName = "";
bool failed = false;
bool barOnScreen = false;

void wipeBar() {
  if (barOnScreen) std::fprintf(stderr, "\r\033[K");
  barOnScreen = false;
}

} // namespace

void failAs(const char* program) { programName = program; }

void fail(const std::string& subject, const std::string& reason) {
  wipeBar();
  markFailed();
  std::fflush(stdout);
  std::fprintf(stderr, "%s: %s: %s\n", programName, printable(subject).c_str(), printable(reason).c_str());
}

void markFailed() { failed = true; }

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
