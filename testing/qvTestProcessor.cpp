#include "testing/qvTestProcessor.h"

#include "qvTestSystem.h"

namespace qvTest {

OneProcessor::OneProcessor() : before_(system::processors()) {
  if (before_) system::setProcessors(before_ & (~before_ + 1)); // the lowest one
}

OneProcessor::~OneProcessor() {
  if (before_) system::setProcessors(before_);
}

double processorSeconds() { return system::processorSeconds(); }

} // namespace qvTest
