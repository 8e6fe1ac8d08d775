#include "Base/Plugin/qvPluginPlugin.h"

#include "Base/Plugin/qvPluginPluginImpl.h"

#include <memory>

namespace qvPlugin {

Plugin::Plugin(const qvOS::Filename& file) : impl_(new PluginImpl(file)) {}

Plugin::~Plugin() {
  ref(); // a slot that takes and drops a reference must not destroy this object once more
  sigDestroyed.emit(this);
  // The library's own connections go while it is there to be called.
  std::destroy_at(&sigDestroyed);
  std::construct_at(&sigDestroyed);
  impl_->unload();
  delete impl_;
}

bool Plugin::load() { return impl_->load(); }

const char* Plugin::getError() const { return impl_->error(); }

const char* Plugin::getName() const { return file().baseTrunk().asUTF8(); }

const char* Plugin::getFilename() const { return file().name().asUTF8(); }

void* Plugin::getSymbol(const char* name) { return impl_->getSymbol(name); }

void Plugin::finallyUnload(bool unload) { impl_->finallyUnload(unload); }

const qvOS::Filename& Plugin::file() const { return impl_->filename(); }

} // namespace qvPlugin
