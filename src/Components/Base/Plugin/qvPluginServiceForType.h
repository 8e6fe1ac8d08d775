// The services of one type, as the manager keeps them.
#pragma once

#include "Base/Callback/qvRTBSignalBase.h"
#include "Base/Containers/qvVector.h"
#include "Base/Plugin/qvPluginService.h"
#include "Base/String/qvStringCString.h"
#include "Base/Utility/qvReferenceCount.h"

#include <string_view>

namespace qvPlugin {

/// Holds services in the order of their registration, no two of one name. One that is destroyed all the same
/// leaves by itself.
class ServiceForType : public qv::ReferenceCount {
public:
  explicit ServiceForType(std::string_view typeName) : typeName_(typeName) {}

  [[nodiscard]] const qvString::CString& typeName() const { return typeName_; }
  [[nodiscard]] int size() const { return services_.size(); }
  [[nodiscard]] Service* at(int index) const { return services_[index].get(); }
  /// The index of the service of that name, or -1.
  [[nodiscard]] int find(std::string_view name) const;

  void append(Service* service);
  void remove(int index);

private:
  ~ServiceForType() override = default;
  void destroyedService(Service* service);

  qvString::CString typeName_;
  qv::vector<qv::Reference<Service>> services_;
  qvRTB::SignalClient client_;
  qv::vector<unsigned int> hashes_; // of the names, in the same order: a search touches few of the services
};

} // namespace qvPlugin
