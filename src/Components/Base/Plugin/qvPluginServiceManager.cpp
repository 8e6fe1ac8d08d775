#include "Base/Plugin/qvPluginServiceManager.h"

#include "Base/OS/qvOSAppOutput.h"
#include "Base/Plugin/qvPluginService.h"
#include "Base/Plugin/qvPluginServiceForType.h"

#include <string_view>
#include <typeinfo>

namespace qvPlugin {

namespace {

ServiceManager* manager = nullptr;

std::string_view textOf(const char* text) { return text ? text : ""; }

/// Whether only the base is left of the service, which no longer tells its type.
bool isBeingDestroyed(const Service& service) { return typeid(service) == typeid(Service); }

} // namespace

ServiceManager* ServiceManager::getInstance() {
  if (!manager) manager = new ServiceManager;
  return manager;
}

ServiceManager::ServiceManager() : types_(new qv::vector<qv::Reference<ServiceForType>>) {}

ServiceManager::~ServiceManager() {
  manager = nullptr; // what a dying service calls must not come back here
  delete types_;
}

ServiceForType& ServiceManager::findOrAddType(const char* type) {
  const int index = getServiceIndex(type);
  if (index >= 0) return *(*types_)[index];
  return *types_->append(qv::Reference<ServiceForType>(new ServiceForType(textOf(type))));
}

bool ServiceManager::addService(Service* service) {
  if (!service || isBeingDestroyed(*service)) return false;
  ServiceForType& type = findOrAddType(service->getServiceType());
  const int index = type.find(service->getName());
  if (index >= 0 && !type.at(index)->getAllowOverride()) {
    qvOS::AppOutput::getInstance().error("Registration of a service failed.  The name is already used: %s\n",
                                         service->getName());
    return false;
  }
  const qv::Reference<Service> added(service); // which may be the one that makes room
  if (index >= 0) type.remove(index);
  type.append(service);
  if (PluginProxy* const proxy = service->getPluginProxy()) proxy->addService(service);
  return true;
}

void ServiceManager::removeService(Service* service) {
  if (!service || isBeingDestroyed(*service)) return;
  ServiceForType& type = findOrAddType(service->getServiceType());
  const int index = type.find(service->getName());
  if (index >= 0) type.remove(index);
}

int ServiceManager::numServiceTypes() const { return types_->size(); }

const char* ServiceManager::getServiceType(int type) const { return (*types_)[type]->typeName().asChar(); }

int ServiceManager::getServiceIndex(const char* type) const {
  const std::string_view name = textOf(type);
  for (int i = 0; i < types_->size(); ++i)
    if ((*types_)[i]->typeName().view() == name) return i;
  return -1;
}

int ServiceManager::getNumServices(int type) const { return (*types_)[type]->size(); }

int ServiceManager::getNumServices(const char* type) const {
  const int index = getServiceIndex(type);
  return index < 0 ? -1 : getNumServices(index);
}

Service* ServiceManager::getService(int type, int index) const { return (*types_)[type]->at(index); }

Service* ServiceManager::getService(int type, const char* name) const {
  if (type < 0 || type >= types_->size()) return nullptr;
  const ServiceForType& services = *(*types_)[type];
  const int index = services.find(textOf(name));
  return index < 0 ? nullptr : services.at(index);
}

Service* ServiceManager::getService(const char* type, const char* name) const {
  return getService(getServiceIndex(type), name);
}

} // namespace qvPlugin
