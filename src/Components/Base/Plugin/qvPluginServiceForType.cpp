#include "Base/Plugin/qvPluginServiceForType.h"

#include "Base/Containers/qvHashFunction.h"

#include <utility>

namespace qvPlugin {

namespace {

unsigned int hashOf(std::string_view name) {
  return qv::hashfunction(name.data(), name.data() + name.size());
}

} // namespace

int ServiceForType::find(std::string_view name) const {
  const unsigned int hash = hashOf(name);
  for (int i = 0; i < hashes_.size(); ++i)
    if (hashes_[i] == hash && services_[i]->getName() == name) return i;
  return -1;
}

void ServiceForType::append(Service* service) {
  services_.append(qv::Reference<Service>(service));
  hashes_.append(hashOf(service->getName()));
  service->sigDestroyed.connect(this, &ServiceForType::destroyedService, client_);
}

void ServiceForType::remove(int index) {
  // The service may go with this reference, and its slots find the list whole.
  const qv::Reference<Service> removed = std::move(services_[index]);
  services_.erase(services_.begin() + index);
  hashes_.erase(hashes_.begin() + index);
  removed->sigDestroyed.disconnectInstance(this);
}

void ServiceForType::destroyedService(Service* service) {
  const int index = find(service->getName());
  if (index >= 0) remove(index);
}

} // namespace qvPlugin
