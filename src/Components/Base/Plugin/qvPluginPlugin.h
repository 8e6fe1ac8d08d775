// A loaded shared library, held through references and unloaded with the last of them.
#pragma once

#include "Base/Callback/qvRTBSignal.h"
#include "Base/Utility/qvReferenceCount.h"
#include "Base/qvBase.h"

namespace qvOS {
class Filename;
}

namespace qvPlugin {

class PluginImpl;

/// A shared library in this process. `PluginLoader` makes one; the last `qv::Reference` unloads it, so code
/// and data of the library must not be used longer than a reference is held.
///
/// A library may export these functions (see QV_PLUGIN_EXPORT), without arguments; one that is missing is
/// passed over:
/// - "initializePlugin" is called after the library was loaded,
/// - "uninitializePlugin" before it is unloaded.
///
/// Texts are UTF-8 and valid until the next call on the object. Not thread-safe: plug-ins belong to the main
/// thread.
class QV_BASE_API Plugin : public qv::ReferenceCount {
public:
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

  /// What the last call on this object has to report, in the system's words where it has any; empty where
  /// there is nothing. Looking for a function that the library may lack leaves a text behind, too.
  [[nodiscard]] virtual const char* getError() const;

  /// The library's file name without its directory and its suffix.
  [[nodiscard]] const char* getName() const;
  /// The library's file as it was given to the loader.
  [[nodiscard]] const char* getFilename() const;

  /// The address of an exported function or object; null, with an error, where there is none of that name.
  [[nodiscard]] void* getSymbol(const char* name);
  /// The same for a function of the type `F`, as in `getFunction<int(double)>("round")`.
  template <class F>
  [[nodiscard]] F* getFunction(const char* name) {
    return reinterpret_cast<F*>(getSymbol(name));
  }

  /// Whether the library is unloaded with this object, as it is from the start. One that cannot be unloaded
  /// safely stays in the process with false, and its "uninitializePlugin" is not called then.
  void finallyUnload(bool unload);

  /// Emitted when the last reference is gone, while the library is still loaded. A slot may take references
  /// for its own time; they don't keep the plug-in.
  qvRTB::SignalArg<Plugin*> sigDestroyed;

protected:
  explicit Plugin(const qvOS::Filename& file);
  ~Plugin() override;

  [[nodiscard]] const qvOS::Filename& file() const;

private:
  friend class PluginLoader;
  bool load();

  PluginImpl* impl_;
};

static_assert(sizeof(Plugin) == 4 * sizeof(void*));

} // namespace qvPlugin
