#include "Base/Platform/qvPlatformProcess.h"

#include <unistd.h>

namespace qvPlatform {

int processId() noexcept { return static_cast<int>(::getpid()); }

std::string machineName() {
  char name[256] = "";
  return ::gethostname(name, sizeof name - 1) == 0 ? name : "";
}

} // namespace qvPlatform
