#include "Base/Platform/qvPlatformProcess.h"

#include "Base/Platform/Windows/qvPlatformSystem.h"

namespace qvPlatform {

int processId() noexcept { return static_cast<int>(::GetCurrentProcessId()); }

std::string machineName() {
  wchar_t name[256];
  DWORD size = 256;
  return ::GetComputerNameExW(ComputerNameDnsHostname, name, &size) ? nativeText({name, size}) : "";
}

} // namespace qvPlatform
