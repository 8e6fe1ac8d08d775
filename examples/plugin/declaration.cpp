// The declaration library, "serviceDecl_svg": small and loaded at start-up. It tells the host what there is,
// and asks for the main plug-in when the host first uses it.
#include "Base/Plugin/qvPluginPluginProxy.h"
#include "exporter.h"

namespace {

class SvgExporter final : public Exporter {
public:
  explicit SvgExporter(qvPlugin::PluginProxy* proxy) : Exporter("svg", proxy) {}

  std::string circle(double radius) override {
    std::string text;
    if (const qv::Reference<qvPlugin::Plugin> plugin = getPluginProxy()->getMainPlugin())
      if (const auto write = plugin->getFunction<WriteCircle>("writeCircle")) write(radius, text);
    return text;
  }
};

} // namespace

QV_PLUGIN_EXPORT const char* getPluginProxyName() { return "svg" LIBRARY_SUFFIX; }

QV_PLUGIN_EXPORT void installPluginServices(qvPlugin::PluginProxy* proxy) {
  Exporter* const exporter = new SvgExporter(proxy);
  if (!exporter->registerService()) delete exporter; // the name was taken
}
