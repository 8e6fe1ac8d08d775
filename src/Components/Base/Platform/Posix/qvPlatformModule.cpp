#include "Base/Platform/qvPlatformModule.h"

#include <cstdlib>
#include <dlfcn.h>

namespace qvPlatform {

namespace {

void* recorded = nullptr;
char* file = nullptr;

// The path may be relative to the directory in which the process started, so it is resolved while that is
// still the current one.
__attribute__((constructor(101))) void attach() {
  Dl_info info;
  if (dladdr(reinterpret_cast<void*>(&libraryModule), &info) == 0) return;
  recorded = info.dli_fbase;
  file = realpath(info.dli_fname, nullptr);
}

__attribute__((destructor(101))) void detach() {
  recorded = nullptr;
  std::free(file);
  file = nullptr;
}

} // namespace

void* libraryModule() noexcept { return recorded; }

std::string libraryPath() { return file ? file : ""; }

} // namespace qvPlatform
