#include "Base/Undo/qvUndoManager.h"

#include "Base/Undo/qvUndoManagerImpl.h"

namespace qvUndo {

namespace {
Manager* installed = nullptr;
}

Manager::Manager() = default;

Manager::~Manager() {
  if (installed == this) installed = nullptr;
}

Manager* newManager() { return new ManagerImpl; }

void installManager(Manager* manager) {
  if (installed != manager) delete installed;
  installed = manager;
}

Manager* getInstalledManager() noexcept { return installed; }

} // namespace qvUndo
