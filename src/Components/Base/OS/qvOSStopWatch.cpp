#include "Base/OS/qvOSStopWatch.h"

#include "Base/Platform/qvPlatformTime.h"

namespace qvOS {

void StopWatch::start() {
  if (running_) return;
  started_ = qvPlatform::steadyNanoseconds();
  running_ = true;
}

void StopWatch::stop() {
  counted_ += sinceStart();
  running_ = false;
}

void StopWatch::reset() {
  counted_ = 0;
  if (running_) started_ = qvPlatform::steadyNanoseconds();
}

double StopWatch::getElapsed() const { return static_cast<double>(counted_ + sinceStart()) * 1e-9; }

std::int64_t StopWatch::sinceStart() const {
  return running_ ? qvPlatform::steadyNanoseconds() - started_ : 0;
}

} // namespace qvOS
