#include "Base/Plugin/qvPluginPluginProxy.h"

#include "Base/OS/qvOSFileOperations.h"
#include "Base/OS/qvOSFilename.h"
#include "Base/Plugin/qvPluginPluginLoader.h"
#include "Base/Plugin/qvPluginService.h"
#include "Base/String/qvStringIString.h"

namespace qvPlugin {

PluginProxy::PluginProxy(const qvOS::Filename& file) : Plugin(file) {}

PluginProxy::~PluginProxy() = default;

const char* PluginProxy::getError() const {
  return proxyError_.isEmpty() ? Plugin::getError() : proxyError_.asChar();
}

void PluginProxy::readProxyFor() {
  if (const auto name = getFunction<const char*()>("getPluginProxyName")) proxyFor_ = name();
}

bool PluginProxy::installServices() {
  if (!servicesInstalled_) {
    servicesInstalled_ = true;
    if (const auto install = getFunction<void(PluginProxy*)>("installPluginServices")) install(this);
  }
  return !services_.empty();
}

int PluginProxy::findService(const Service* service) const {
  for (int i = 0; i < services_.size(); ++i)
    if (services_[i] == service) return i;
  return -1;
}

void PluginProxy::addService(Service* service) {
  if (findService(service) >= 0) return; // one that was taken out of the registry and comes back
  services_.append(service);
  service->sigDestroyed.connect(this, &PluginProxy::destroyedService, client_);
}

void PluginProxy::destroyedService(Service* service) {
  const int index = findService(service);
  if (index >= 0) services_.erase(services_.begin() + index);
}

bool PluginProxy::loadMainPlugin() {
  proxyError_.erase();
  if (mainLoadAttempted_) return bool(mainPlugin_);
  mainLoadAttempted_ = true;
  const qvOS::Filename path(file().dirname(), qvString::IString(proxyFor_, qvString::UTF8Encoding));
  if (!qvOS::doesFileExist(path)) {
    proxyError_.format("The proxy plugin does not exist: %s", path.name().asUTF8());
    return false;
  }
  PluginLoader loader;
  mainPlugin_ = loader.load(path);
  if (!mainPlugin_) proxyError_ = loader.getError();
  return bool(mainPlugin_);
}

qv::Reference<Plugin> PluginProxy::getMainPlugin() {
  proxyError_.erase();
  if (!mainLoadAttempted_) loadMainPlugin();
  return mainPlugin_;
}

} // namespace qvPlugin
