// What the measured plug-ins offer, to this library and to the peer.
#pragma once

#include "Base/Plugin/qvPluginService.h"

class Shape : public qvPlugin::Service {
public:
  using Service::Service;
  const char* getServiceType() const override { return "shape"; }
  virtual double area(double size) = 0;
};

#ifdef BENCH_QPluginLoader
#include <QtCore/QObject>
#include <QtCore/QtPlugin>

class QtShape {
public:
  virtual ~QtShape() = default;
  virtual double area(double size) = 0;
};
#define QtShape_iid "Shape"
Q_DECLARE_INTERFACE(QtShape, QtShape_iid)
#endif
