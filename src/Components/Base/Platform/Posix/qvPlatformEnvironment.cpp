#include "Base/Platform/qvPlatformEnvironment.h"

#include <cstdlib>

namespace qvPlatform {

std::string environmentVariable(const char* name) {
  const char* const value = std::getenv(name);
  return value ? value : "";
}

} // namespace qvPlatform
