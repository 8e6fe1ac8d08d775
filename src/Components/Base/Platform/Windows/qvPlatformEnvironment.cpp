#include "Base/Platform/qvPlatformEnvironment.h"

#include "Base/Platform/Windows/qvPlatformSystem.h"

#include <cstring>

namespace qvPlatform {

std::string environmentVariable(const char* name) {
  const std::wstring wideName(name, name + std::strlen(name)); // names are ASCII
  return nativeText(filledText([&](wchar_t* buffer, DWORD room) {
    return ::GetEnvironmentVariableW(wideName.c_str(), buffer, room);
  }));
}

} // namespace qvPlatform
