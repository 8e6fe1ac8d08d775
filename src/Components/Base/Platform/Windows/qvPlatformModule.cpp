#include "Base/Platform/qvPlatformModule.h"

#include "Base/Platform/Windows/qvPlatformSystem.h"

namespace qvPlatform {

namespace {

HMODULE recorded = nullptr;

// The entry point that the loader runs is the runtime's, and it builds all statics before it would run one of
// ours. So the first of its constructors makes the record.
__attribute__((constructor(101))) void attach() {
  constexpr DWORD flags =
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  ::GetModuleHandleExW(flags, reinterpret_cast<const wchar_t*>(&libraryModule), &recorded);
}

__attribute__((destructor(101))) void detach() { recorded = nullptr; }

} // namespace

void* libraryModule() noexcept { return recorded; }

std::string libraryPath() {
  if (!recorded) return {};
  return nativeText(moduleFile(recorded));
}

} // namespace qvPlatform
