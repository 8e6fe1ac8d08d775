// A declaration library: small, loaded early, and standing for a large one, the main plug-in, that is loaded
// when something first asks for it.
#pragma once

#include "Base/Callback/qvRTBSignalBase.h"
#include "Base/Containers/qvVector.h"
#include "Base/Plugin/qvPluginPlugin.h"
#include "Base/String/qvStringCString.h"
#include "Base/Utility/qvReferenceCount.h"
#include "Base/qvBase.h"

namespace qvPlugin {

class Service;

/// A declaration library, made by `PluginLoader::loadProxy`. Beside the functions of every plug-in it may
/// export:
/// - `const char* getPluginProxyName()`: the file name of the main plug-in, which lies in the same directory;
/// - `void installPluginServices(qvPlugin::PluginProxy*)`: makes services of this proxy and registers them.
///
/// Services hold their proxy, and the proxy holds the main plug-in, so that both libraries go with the last
/// service.
class QV_BASE_API PluginProxy : public Plugin {
public:
  /// The file name of the main plug-in; empty where the library tells none.
  [[nodiscard]] const char* getProxyFor() const { return proxyFor_.asChar(); }

  /// The error of the main plug-in where there is one, else that of this library.
  [[nodiscard]] const char* getError() const override;

  /// Calls "installPluginServices" of the library, in the first call only.
  /// @return whether there are any services of this proxy.
  bool installServices();

  /// The services of this proxy that were registered and still live, in that order.
  [[nodiscard]] int getNumServices() const { return services_.size(); }
  /// The service at an index from 0 to `getNumServices() - 1`, unchecked. It is not held by the proxy.
  [[nodiscard]] Service* getService(int index) const { return services_[index]; }
  /// The index of a service, or -1.
  [[nodiscard]] int findService(const Service* service) const;

  /// Loads the main plug-in if nobody tried yet; there is one attempt. @return whether it is loaded. Where
  /// the attempt fails the error tells why; later calls clear it.
  bool loadMainPlugin();
  /// The main plug-in, loaded now if nobody tried yet; null where that failed.
  [[nodiscard]] qv::Reference<Plugin> getMainPlugin();

private:
  friend class PluginLoader;
  friend class ServiceManager;

  explicit PluginProxy(const qvOS::Filename& file);
  ~PluginProxy() override;

  /// Asks the library for the name of the main plug-in.
  void readProxyFor();
  void addService(Service* service);
  void destroyedService(Service* service);

  bool mainLoadAttempted_ = false;
  bool servicesInstalled_ = false;
  qvString::CString proxyFor_;
  qvString::CString proxyError_;
  qv::Reference<Plugin> mainPlugin_;
  qv::vector<Service*> services_;
  qvRTB::SignalClient client_;
};

} // namespace qvPlugin
