#include "Base/Plugin/qvPluginServiceForType.h"

#include <utility>

namespace qvPlugin {

int ServiceForType::find(std::string_view name) const {
  for (int i = 0; i < services_.size(); ++i)
    if (services_[i]->getName() == name) return i;
  return -1;
}

void ServiceForType::append(Service* service) {
  services_.append(qv::Reference<Service>(service));
  service->sigDestroyed.connect(this, &ServiceForType::destroyedService, client_);
}

void ServiceForType::remove(int index) {
  // The service may go with this reference, and its slots find the list whole.
  const qv::Reference<Service> removed = std::move(services_[index]);
  services_.erase(services_.begin() + index);
  removed->sigDestroyed.disconnectInstance(this);
}

void ServiceForType::destroyedService(Service* service) {
  const int index = find(service->getName());
  if (index >= 0) remove(index);
}

} // namespace qvPlugin
