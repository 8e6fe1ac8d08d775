// What the host and its plug-ins agree on: a type of service that writes a circle in some format.
#pragma once

#include "Base/Plugin/qvPluginService.h"

#include <string>

class Exporter : public qvPlugin::Service {
public:
  using Service::Service;
  const char* getServiceType() const override { return "exporter"; }

  /// The circle as text; empty where the format's plug-in cannot be loaded.
  virtual std::string circle(double radius) = 0;
};

/// The function of the main plug-in that does the work.
using WriteCircle = void(double radius, std::string& text);
