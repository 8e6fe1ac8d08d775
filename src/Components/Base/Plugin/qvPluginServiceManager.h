// The registry of all services, by type and name.
#pragma once

#include "Base/Containers/qvVector.h"
#include "Base/Utility/qvReferenceCount.h"
#include "Base/qvBase.h"

namespace qvPlugin {

class Service;
class ServiceForType;

/// Holds the services of the process in the order of their registration. Not thread-safe: registration and
/// lookups belong to the main thread.
///
/// A null name or type counts as an empty one. A service that a lookup returns is held by the manager; who
/// keeps it longer takes a `qv::Reference`.
class QV_BASE_API ServiceManager {
public:
  /// The one manager, made in the first call. It is not destroyed when the process ends, where plug-ins may
  /// no longer be called. A host that wants to see its plug-ins go before that deletes the manager; the next
  /// call makes a new one.
  [[nodiscard]] static ServiceManager* getInstance();
  /// Drops all services and with them, unless somebody else holds them, the plug-ins that they come from.
  virtual ~ServiceManager();
  ServiceManager(const ServiceManager&) = delete;
  ServiceManager& operator=(const ServiceManager&) = delete;

  /// Loads every declaration library of the directories of `qvOS::AppMain::getPluginDirectories`, or of that
  /// subdirectory (UTF-8) of each, in the order in which the system lists them. Later calls on
  /// this manager do nothing. A library that cannot be loaded is told on the first stream of
  /// `qvOS::AppOutput`, one without services on the second, and the rest goes on.
  ///
  /// A declaration library is a file whose name begins with "serviceDecl_" and has at least one character
  /// more before its suffix, which is not one of files with debug symbols.
  void registerServices(const char* subdirectory);

  /// Adds a service, which the manager then holds. One of the same type and name that allows to be overridden
  /// makes room for it.
  /// @return false for null, and where the name is taken, which `qvOS::AppOutput` then shows as an error.
  bool addService(Service* service);
  /// Drops the service of the same type and name, if there is one. A type that was unknown is known from then
  /// on, without a service. Null is ignored.
  void removeService(Service* service);

  /// Types are numbered from 0 in the order of their first service, and keep their number.
  [[nodiscard]] int numServiceTypes() const;
  /// The name of a type. Unchecked.
  [[nodiscard]] const char* getServiceType(int type) const;
  /// The number of a type, or -1.
  [[nodiscard]] int getServiceIndex(const char* type) const;

  /// How many services the type has. Unchecked.
  [[nodiscard]] int getNumServices(int type) const;
  /// The same; -1 for an unknown type.
  [[nodiscard]] int getNumServices(const char* type) const;
  /// The service at an index from 0 to `getNumServices(type) - 1`. Both are unchecked.
  [[nodiscard]] Service* getService(int type, int index) const;
  /// The service of that name; null where there is no such type or name.
  [[nodiscard]] Service* getService(int type, const char* name) const;
  [[nodiscard]] Service* getService(const char* type, const char* name) const;

private:
  ServiceManager();

  ServiceForType& findOrAddType(const char* type);

  qv::vector<qv::Reference<ServiceForType>>* types_;
  bool registered_ = false;
};

} // namespace qvPlugin
