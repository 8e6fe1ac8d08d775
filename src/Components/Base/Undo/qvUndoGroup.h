// One action of the user, as the undo queue sees it.
#pragma once

#include "Base/Undo/qvUndoState.h"
#include "Base/qvBase.h"

namespace qvUndo {

class Command;
class Manager;

/// A list of commands that are done and undone as one. `Manager::newGroup` makes one and the manager's queue
/// owns it; a host may delete it earlier, which takes it out of the queue. Virtual order is part of the
/// interface.
class QV_BASE_API Group : public State {
public:
  /// Keeps nothing of `manager`.
  explicit Group(Manager* manager);
  Group(const Group&) = delete;
  Group& operator=(const Group&) = delete;
  /// Commits and deletes the commands, without undoing anything.
  virtual ~Group();

  /// @{ Performs all commands, first to last, or reverts them, last to first, unless that was what came last.
  /// False where the group is invalid, or where a command fails: the group is then invalid, what was handled
  /// stays as it is, and the rest is not tried.
  virtual bool doIt() = 0;
  virtual bool undoIt() = 0;
  /// @}

  /// Takes ownership of `command`. Ignores null.
  virtual void addCommand(Command* command) = 0;
  /// The command at a position from 0; null for any other.
  [[nodiscard]] virtual Command* getCommand(int position) const = 0;
  [[nodiscard]] virtual int numCommands() const = 0;
  /// What the commands hold now, at most 2^31 - 1. Cost: a call for each command.
  [[nodiscard]] virtual int numBytesUsed() const = 0;
  /// The name that it was made with; null where that was null.
  [[nodiscard]] virtual const char* getName() const = 0;
  /// Its number in the manager, from 1.
  [[nodiscard]] virtual int getNumber() const = 0;
  /// The number for the next command: 1, 2, ...
  virtual int nextCommandId() = 0;

  /// @{ Whether the limits of the queue, and the pruning of invalid groups, may delete this group; true at
  /// first. They stop at a group that they may not delete.
  virtual void setDeletable(bool deletable) = 0;
  [[nodiscard]] virtual bool isDeletable() const = 0;
  /// @}
  /// @{ Whether this group is tied to the one before it in the queue: both are done and undone together, and
  /// count as one chain.
  [[nodiscard]] virtual bool isDynamic() const = 0;
  virtual void setDynamic(bool dynamic) = 0;
  /// @}

  /// @{ The objects without which the group cannot be done or undone; null is none.
  virtual void declarePointer(void* object) = 0;
  [[nodiscard]] virtual bool hasPointer(void* object) const = 0;
  /// @}
  /// Makes the group invalid if `object` is one of them.
  virtual void pointerDestroyed(void* object) = 0;

  /// Called when the group gets a command, and when it stops being the newest group. Does nothing by default.
  virtual void onChange() = 0;
};

} // namespace qvUndo
