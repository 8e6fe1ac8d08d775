#include "Base/Plugin/qvPluginPluginLoader.h"

#include <utility>

namespace qvPlugin {

namespace {

qvOS::Filename filenameOf(const char* path) {
  return qvOS::Filename(qvString::IString(path, qvString::UTF8Encoding));
}

} // namespace

template <class T>
qv::Reference<T> PluginLoader::loaded(qv::Reference<T> plugin) {
  error_.erase();
  if (plugin->load()) return plugin;
  error_ = qvString::IString(plugin->getError(), qvString::UTF8Encoding);
  return nullptr;
}

qv::Reference<Plugin> PluginLoader::load(const char* path) { return load(filenameOf(path)); }

qv::Reference<Plugin> PluginLoader::load(const qvOS::Filename& file) {
  return loaded(qv::Reference<Plugin>(new Plugin(file)));
}

qv::Reference<PluginProxy> PluginLoader::loadProxy(const char* path) { return loadProxy(filenameOf(path)); }

qv::Reference<PluginProxy> PluginLoader::loadProxy(const qvOS::Filename& file) {
  qv::Reference<PluginProxy> proxy = loaded(qv::Reference<PluginProxy>(new PluginProxy(file)));
  if (proxy) proxy->readProxyFor();
  return proxy;
}

} // namespace qvPlugin
