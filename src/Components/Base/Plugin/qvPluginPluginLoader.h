// Loads plug-ins.
#pragma once

#include "Base/OS/qvOSFilename.h"
#include "Base/Plugin/qvPluginPlugin.h"
#include "Base/Plugin/qvPluginPluginProxy.h"
#include "Base/String/qvStringIString.h"
#include "Base/Utility/qvReferenceCount.h"
#include "Base/qvBase.h"

namespace qvPlugin {

/// Loads libraries and keeps the error of the last call. A value; copies share nothing. Narrow paths are
/// UTF-8.
class PluginLoader {
public:
  PluginLoader() = default;

  /// Loads a library. A second attempt follows a failed one after ten milliseconds.
  /// @return null where it failed. The error is then the system's text, or empty where there is no such file.
  [[nodiscard]] QV_BASE_API qv::Reference<Plugin> load(const char* path);
  [[nodiscard]] QV_BASE_API qv::Reference<Plugin> load(const qvOS::Filename& file);
  /// Loads a declaration library in the same way. Its services are not installed yet.
  [[nodiscard]] QV_BASE_API qv::Reference<PluginProxy> loadProxy(const char* path);
  [[nodiscard]] QV_BASE_API qv::Reference<PluginProxy> loadProxy(const qvOS::Filename& file);

  /// The last call's error as UTF-8; empty where it succeeded. Valid until the next call.
  [[nodiscard]] const char* getError() const { return error_.asUTF8(); }

private:
  /// Loads `plugin`, and drops it where that failed.
  template <class T>
  qv::Reference<T> loaded(qv::Reference<T> plugin);

  qvString::IString error_;
};

} // namespace qvPlugin
