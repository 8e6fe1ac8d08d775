// What an application or a plug-in offers under a type and a name.
#pragma once

#include "Base/Callback/qvRTBSignal.h"
#include "Base/Plugin/qvPluginPluginProxy.h"
#include "Base/String/qvStringCString.h"
#include "Base/Utility/qvReferenceCount.h"
#include "Base/qvBase.h"

namespace qvPlugin {

/// Base of all services. A host derives one abstract class for each type of service that it knows; plug-ins
/// derive from those. Services are made with `new`, registered, and held through `qv::Reference`. Virtual
/// order is part of the interface. Not thread-safe.
class QV_BASE_API Service : public qv::ReferenceCount {
public:
  /// A service of the application. With `allowOverride` a later service of its type and name takes its place.
  Service(const char* name, bool allowOverride);
  /// A service of a declaration library, which stays loaded as long as the service lives. It cannot be
  /// overridden.
  Service(const char* name, PluginProxy* proxy);
  Service(const Service&) = delete;
  Service& operator=(const Service&) = delete;
  ~Service() override;

  /// Hands this service to the `ServiceManager`. @return what `ServiceManager::addService` returns.
  virtual bool registerService();
  /// The type under which the service is found. It must not change.
  [[nodiscard]] virtual const char* getServiceType() const = 0;

  [[nodiscard]] const char* getName() const { return name_.asChar(); }
  [[nodiscard]] bool getAllowOverride() const { return allowOverride_; }
  /// Whether the service comes from a plug-in and not from the application.
  [[nodiscard]] bool isPlugin() const { return proxy_.get() != nullptr; }

  /// Takes a holder away, and deletes the service with the last one. The library that holds the code of its
  /// destructor is unloaded only after that has returned.
  void unref() const;

  /// Emitted when the service is destroyed; only this base is left of it then. A slot may take references for
  /// its own time; they don't keep the service.
  qvRTB::SignalArg<Service*> sigDestroyed;

protected:
  /// The declaration library, through which a service reaches its main plug-in; null for one of the
  /// application.
  [[nodiscard]] PluginProxy* getPluginProxy() const { return proxy_.get(); }

private:
  friend class ServiceManager;

  qvString::CString name_;
  qv::Reference<PluginProxy> proxy_;
  bool allowOverride_;
};

} // namespace qvPlugin
