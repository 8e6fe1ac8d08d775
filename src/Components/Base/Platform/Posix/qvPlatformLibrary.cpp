#include "Base/Platform/qvPlatformLibrary.h"

#include "Base/Platform/qvPlatformCall.h"
#include "Base/Platform/qvPlatformError.h"

#include <cstring>
#include <dlfcn.h>

namespace qvPlatform {

namespace {

/// `result`, with the loader's text where it is null.
void* orFailure(void* result, std::string* failure) {
  if (result) return result;
  const char* const text = ::dlerror();
  *failure = text ? text : "";
  return nullptr;
}

} // namespace

void* loadLibrary(const char* path, std::string* failure) {
  if (const int error = beforeCall("loadLibrary")) {
    *failure = systemErrorText(error);
    return nullptr;
  }
  // A name without a directory would be looked for along the system's path of libraries.
  const std::string file = std::strchr(path, '/') ? path : std::string("./") + path;
  return orFailure(::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL), failure);
}

void* librarySymbol(void* library, const char* name, std::string* failure) {
  ::dlerror(); // forgets an older failure
  return orFailure(::dlsym(library, name), failure);
}

void unloadLibrary(void* library) noexcept { ::dlclose(library); }

} // namespace qvPlatform
