#include "Base/Undo/qvUndoCommand.h"

#include "Base/Undo/qvUndoDetail.h"
#include "Base/Undo/qvUndoGroup.h"
#include "Base/Undo/qvUndoReport.h"

namespace qvUndo {

Command::Command(Group* group, const char* name) : name_(copyOfName(name)) { addToGroup(group); }

Command::~Command() {
  if (id_ != 0)
    qvUndoReport("    qvUndo::Command: delete (%s, 0x%p)\n", name_.get(), static_cast<void*>(this));
}

int Command::getNumBytesUsed() const { return 1024; }

void Command::commit() {}

void Command::addToGroup(Group* group) {
  if (!group) return;
  id_ = group->nextCommandId();
  group->addCommand(this);
  qvUndoReport("    qvUndo::Command: new (%s, 0x%p)\n", name_.get(), static_cast<void*>(this));
}

const char* Command::getName() const noexcept { return name_ ? name_.get() : "noname"; }

bool Command::doIt() {
  if (!isValid()) return false;
  bool succeeded = true;
  if (!lastWasDoIt()) {
    qvUndoReport("    + qvUndo::Command: doIt (%s, 0x%p), %d bytes\n", name_.get(), static_cast<void*>(this),
                 getNumBytesUsed());
    succeeded = doAction();
  }
  stateDone();
  if (!succeeded) {
    qvUndoReport("    - qvUndo::Command: 'do' of %s returned failure.  Marking invalid.\n", getName());
    stateInvalid();
  }
  return succeeded;
}

bool Command::undoIt() {
  if (!isValid()) return false;
  bool succeeded = true;
  if (!lastWasUndoIt()) {
    qvUndoReport("    - qvUndo::Command: undoIt (%s, 0x%p), %d bytes\n", name_.get(),
                 static_cast<void*>(this), getNumBytesUsed());
    succeeded = undoAction();
  }
  stateUndone();
  if (!succeeded) {
    qvUndoReport("    - qvUndo::Command: undo of %s returned failure.  Marking invalid.\n", getName());
    stateInvalid();
  }
  return succeeded;
}

} // namespace qvUndo
