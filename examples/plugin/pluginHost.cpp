// A host that lets plug-ins write a drawing. It knows the type of service and no format; the formats come
// from the libraries in "plug-ins/drawing" beside this program.
#include "Base/OS/qvOSAppOutput.h"
#include "Base/Plugin/qvPluginServiceManager.h"
#include "exporter.h"

#include <cstdio>

int main() {
  for (int stream : {0, 1})
    qvOS::AppOutput::getInstance().getStream(stream).open("-", false); // for complaints

  qvPlugin::ServiceManager* const manager = qvPlugin::ServiceManager::getInstance();
  manager->registerServices("drawing");
  std::printf("formats: %d\n", manager->getNumServices("exporter"));

  auto* const svg = static_cast<Exporter*>(manager->getService("exporter", "svg"));
  if (!svg) return 1;
  const std::string drawn = svg->circle(2); // loads the main plug-in
  std::puts(drawn.c_str());

  delete manager; // unloads all plug-ins, in order
  return drawn == "<circle r=\"2.000000\"/>" ? 0 : 1;
}
