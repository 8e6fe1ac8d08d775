#include "Base/Plugin/qvPluginPluginImpl.h"

#include "Base/OS/qvOSFileOperations.h"
#include "Base/OS/qvOSNativePath.h"
#include "Base/Platform/qvPlatformLibrary.h"
#include "Base/Platform/qvPlatformTime.h"
#include "Base/String/qvStringCString.h"

#include <string>

namespace qvPlugin {

namespace {

// A scanner of new files may hold a library for a moment.
constexpr std::int64_t retryDelay = 10'000'000;

void* loadTwice(const char* path, std::string* failure) {
  if (void* const module = qvPlatform::loadLibrary(path, failure)) return module;
  qvPlatform::sleepNanoseconds(retryDelay);
  return qvPlatform::loadLibrary(path, failure);
}

/// The system's text, or where it has none `fallback`, a format, with `name`.
qvString::IString errorText(const std::string& failure, const char* fallback, const char* name) {
  qvString::CString text(failure);
  if (text.isEmpty()) text.format(fallback, name);
  return qvString::IString(text, qvString::UTF8Encoding);
}

} // namespace

bool PluginImpl::load() {
  error_.erase();
  if (!qvOS::doesFileExist(filename_)) return false;
  std::string failure;
  module_ = loadTwice(qvOS::toNativePath(filename_).asChar(), &failure);
  loaded_ = module_ != nullptr;
  if (loaded_)
    callIfExported("initializePlugin");
  else
    error_ = errorText(failure, "Plugin: could not load plugin: %s\n", filename_.name().asUTF8());
  return loaded_;
}

void PluginImpl::unload() {
  error_.erase();
  if (!loaded_ || !unloadOnDestroy_) return;
  callIfExported("uninitializePlugin");
  qvPlatform::unloadLibrary(module_);
  loaded_ = false;
  module_ = nullptr;
}

void* PluginImpl::getSymbol(const char* name) {
  error_.erase();
  if (!loaded_) return nullptr;
  if (!name) name = "";
  std::string failure;
  void* const symbol = qvPlatform::librarySymbol(module_, name, &failure);
  if (!symbol) error_ = errorText(failure, "Plugin: could not find symbol: %s\n", name);
  return symbol;
}

void PluginImpl::callIfExported(const char* name) {
  if (void* const function = getSymbol(name)) reinterpret_cast<void (*)()>(function)();
}

} // namespace qvPlugin
