#include "Base/Undo/qvUndoGroupImpl.h"

#include "Base/Undo/qvUndoCommand.h"
#include "Base/Undo/qvUndoDetail.h"
#include "Base/Undo/qvUndoManager.h"
#include "Base/Undo/qvUndoName.h"

#include <utility>

namespace qvUndo {

/// Keeps the group in memory while its commands run; one that was released meanwhile goes with the last of
/// these.
class GroupImpl::Running {
public:
  explicit Running(GroupImpl* group) noexcept : group_(group) { ++group_->numRunning_; }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() {
    if (--group_->numRunning_ == 0 && group_->deleteWhenIdle_) delete group_;
  }

private:
  GroupImpl* group_;
};

GroupImpl::GroupImpl(Manager* manager, const char* name, const GroupImpl* neighbour)
    : Group(manager),
      number_(manager->nextGroupNumber()),
      manager_(manager),
      name_(Name::make(name, neighbour ? neighbour->name_ : nullptr)) {
  report("  qvUndo::Group: new group (%s)\n", name);
}

// Whatever is called here may come back to the group by way of the manager: it finds a group that is leaving,
// and never a command that is gone.
GroupImpl::~GroupImpl() {
  leaving_ = true;
  deleteWhenIdle_ = false;
  report("  qvUndo::Group: delete group (%s) - %d bytes\n", getName(), numBytesToReport());
  manager_->sigActive.emit(true);
  while (!commands_.empty()) deleteCommands();
  sigDestroyed.emit(this);
  name_ = nullptr;
  manager_->sigActive.emit(false);
}

void GroupImpl::deleteCommands() {
  for (int i = 0; i < commands_.size(); ++i) commands_[i]->commit();
  qv::vector<Command*> commands;
  commands.swap(commands_);
  for (Command* command : commands) delete command;
}

bool GroupImpl::release() {
  if (leaving_) return false;
  leaving_ = true;
  deleteWhenIdle_ = numRunning_ != 0;
  if (deleteWhenIdle_) return false;
  delete this;
  return true;
}

bool GroupImpl::doIt() {
  report("  + qvUndo::Group: doIt() - (%s) %d commands %d bytes.\n", getName(), numCommands(),
         numBytesToReport());
  if (!isValid()) {
    report("  ! qvUndo::Group: doIt() - (%s) invalid group.\n", getName());
    return false;
  }
  if (lastWasDoIt()) return true;
  const Running running(this);
  for (int i = 0; i < commands_.size(); ++i) {
    if (commands_[i]->doIt()) continue;
    report("  ! qvUndo::Group: 'do' of command %d (%s) returnedfailure status\n", i, commands_[i]->getName());
    return markInvalid();
  }
  stateDone();
  return true;
}

bool GroupImpl::undoIt() {
  report("  - qvUndo::Group: undoIt() - (%s) %d commands %d bytes.\n", getName(), numCommands(),
         numBytesToReport());
  if (!isValid()) {
    report("  ! qvUndo::Group: undoIt() - (%s) invalid group.\n", getName());
    return false;
  }
  if (lastWasUndoIt()) return true;
  const Running running(this);
  for (int i = commands_.size() - 1; i >= 0; --i) {
    if (commands_[i]->undoIt()) continue;
    report("  ! qvUndo::Group: 'undo' of command %d (%s) returnedfailure status\n", i,
           commands_[i]->getName());
    return markInvalid();
  }
  stateUndone();
  return true;
}

/// @return false, for the one who failed.
bool GroupImpl::markInvalid() {
  report("  ! qvUndo::Group: marking group (%s) invalid.\n", getName());
  stateInvalid();
  return false;
}

void GroupImpl::addCommand(Command* command) {
  if (!command) return;
  if (command->getID() == 0) return command->addToGroup(this); // which comes back with a number
  onChange();
  commands_.append(command);
}

Command* GroupImpl::getCommand(int position) const {
  return position >= 0 && position < commands_.size() ? commands_[position] : nullptr;
}

int GroupImpl::numCommands() const { return commands_.size(); }

int GroupImpl::numBytesUsed() const {
  std::int64_t sum = 0;
  for (const Command* command : commands_) sum += command->getNumBytesUsed();
  return byteCount(sum);
}

int GroupImpl::numBytesToReport() const { return isReporting() ? GroupImpl::numBytesUsed() : 0; }

const char* GroupImpl::getName() const { return textOf(name_); }

int GroupImpl::getNumber() const { return number_; }

int GroupImpl::nextCommandId() { return lastCommandId_ = numberAfter(lastCommandId_); }

void GroupImpl::setDeletable(bool deletable) { deletable_ = deletable; }

bool GroupImpl::isDeletable() const { return deletable_; }

bool GroupImpl::isDynamic() const { return dynamic_; }

void GroupImpl::setDynamic(bool dynamic) { dynamic_ = dynamic; }

void GroupImpl::declarePointer(void* object) {
  if (!object) return;
  if (!pointers_) pointers_ = std::make_unique<qv::set<void*>>();
  pointers_->insert(object);
}

bool GroupImpl::hasPointer(void* object) const { return pointers_ && pointers_->contains(object); }

void GroupImpl::pointerDestroyed(void* object) {
  if (!hasPointer(object)) return;
  report("!   qvUndo::Group: pointer 0x%p declared by group has been destroyed\n", object);
  report("!   qvUndo::Group: marking group (%s) invalid.\n", getName());
  stateInvalid();
}

void GroupImpl::onChange() {}

} // namespace qvUndo
