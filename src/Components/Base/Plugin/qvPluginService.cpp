#include "Base/Plugin/qvPluginService.h"

#include "Base/Plugin/qvPluginServiceManager.h"

namespace qvPlugin {

Service::Service(const char* name, bool allowOverride) : name_(name), allowOverride_(allowOverride) {}

Service::Service(const char* name, PluginProxy* proxy) : name_(name), proxy_(proxy), allowOverride_(false) {}

Service::~Service() {
  ref(); // a slot that takes and drops a reference must not destroy this object once more
  sigDestroyed.emit(this);
}

bool Service::registerService() { return ServiceManager::getInstance()->addService(this); }

void Service::unref() const {
  const qv::Reference<PluginProxy> code = proxy_;
  ReferenceCount::unref();
}

} // namespace qvPlugin
