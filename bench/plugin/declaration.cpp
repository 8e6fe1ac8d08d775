// A small library that tells of one service, named after its file, for either side.
#include "bench/plugin/shape.h"

namespace {

class DeclaredShape final : public Shape {
public:
  explicit DeclaredShape(qvPlugin::PluginProxy* proxy) : Shape(proxy->getName(), proxy) {}
  double area(double size) override {
    return getPluginProxy()->getMainPlugin()->getFunction<double(double)>("squareArea")(size);
  }
};

} // namespace

QV_PLUGIN_EXPORT const char* getPluginProxyName() { return "square" LIBRARY_SUFFIX; }
QV_PLUGIN_EXPORT void installPluginServices(qvPlugin::PluginProxy* proxy) {
  (new DeclaredShape(proxy))->registerService();
}

#ifdef BENCH_QPluginLoader
class QtDeclaration : public QObject {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID "Declaration")
};
#include "declaration.moc"
#endif
