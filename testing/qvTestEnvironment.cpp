#include "testing/qvTestEnvironment.h"

#include "qvTestSystem.h"

#include <cstdlib>

namespace qvTest {

const char* const temporaryPlaceVariable = system::temporaryPlaceVariable;

Environment::Environment(const char* name, const char* value) : name_(name) {
  if (const char* const before = std::getenv(name)) before_ = before;
  set(value);
}

Environment::~Environment() {
  if (before_)
    set(before_->c_str());
  else
    system::removeVariable(name_);
}

void Environment::set(const char* value) { system::setVariable(name_, value); }

} // namespace qvTest
