#include "Base/Undo/qvUndoCommand.h"

#include "Base/Undo/qvUndoDetail.h"
#include "Base/Undo/qvUndoGroup.h"
#include "Base/Undo/qvUndoName.h"

namespace qvUndo {

Command::Command(Group* group, const char* name) : name_(nameFor(group, name)) { addToGroup(group); }

Command::~Command() {
  if (id_ != 0) report("    qvUndo::Command: delete (%s, 0x%p)\n", textOf(name_), static_cast<void*>(this));
}

int Command::getNumBytesUsed() const { return 1024; }

void Command::commit() {}

void Command::addToGroup(Group* group) {
  if (!group) return;
  id_ = group->nextCommandId();
  group->addCommand(this);
  report("    qvUndo::Command: new (%s, 0x%p)\n", textOf(name_), static_cast<void*>(this));
}

const char* Command::getName() const noexcept { return name_ ? name_->text() : "noname"; }

/// Commands of one group often have one name.
qv::Reference<const Name> Command::nameFor(const Group* group, const char* name) {
  const Command* const newest = group ? group->getCommand(group->numCommands() - 1) : nullptr;
  return Name::make(name, newest ? newest->name_ : nullptr);
}

int Command::numBytesToReport() const { return isReporting() ? getNumBytesUsed() : 0; }

bool Command::doIt() {
  if (!isValid()) return false;
  bool succeeded = true;
  if (!lastWasDoIt()) {
    report("    + qvUndo::Command: doIt (%s, 0x%p), %d bytes\n", textOf(name_), static_cast<void*>(this),
           numBytesToReport());
    succeeded = doAction();
  }
  stateDone();
  if (!succeeded) {
    report("    - qvUndo::Command: 'do' of %s returned failure.  Marking invalid.\n", getName());
    stateInvalid();
  }
  return succeeded;
}

bool Command::undoIt() {
  if (!isValid()) return false;
  bool succeeded = true;
  if (!lastWasUndoIt()) {
    report("    - qvUndo::Command: undoIt (%s, 0x%p), %d bytes\n", textOf(name_), static_cast<void*>(this),
           numBytesToReport());
    succeeded = undoAction();
  }
  stateUndone();
  if (!succeeded) {
    report("    - qvUndo::Command: undo of %s returned failure.  Marking invalid.\n", getName());
    stateInvalid();
  }
  return succeeded;
}

} // namespace qvUndo
