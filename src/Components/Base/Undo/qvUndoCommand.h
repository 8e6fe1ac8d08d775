// The smallest step that can be undone. Hosts derive their changes from it.
#pragma once

#include "Base/Undo/qvUndoState.h"
#include "Base/Utility/qvReferenceCount.h"
#include "Base/qvBase.h"

#include <cstdint>

namespace qvUndo {

class Group;
class Name;

/// One change and the way back from it. It belongs to at most one group, which deletes it. Virtual order is
/// part of the interface.
///
/// An action runs under its group. It must not throw, nor delete that group, nor destroy the manager;
/// whatever it asks of the manager is safe, and a group that the manager would then drop stays until the
/// action's group is through. A host that calls `doIt` of a single command does without that safety.
class QV_BASE_API Command : public State {
public:
  /// Joins `group`, where that isn't null. `name` is copied; null is a name that is told as "noname".
  Command(Group* group, const char* name);
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;
  virtual ~Command();

  /// Performs the change. False where it failed: that command is then invalid for ever.
  virtual bool doAction() = 0;
  /// Reverts the change. False where it failed, likewise.
  virtual bool undoAction() = 0;
  /// What this command holds in memory, in bytes; 1024 by default. Asked often: nothing remembers the answer.
  [[nodiscard]] virtual int getNumBytesUsed() const;
  /// Called once, just before the command is deleted by its group: the change is now final, or, where it was
  /// undone, gone. Does nothing by default.
  virtual void commit();

  /// @{ Performs or reverts the change unless that was what came last; then nothing is to do, which counts as
  /// success. False where the action failed or the command is invalid.
  bool doIt();
  bool undoIt();
  /// @}

  /// Makes this the group's newest command, with the group's next number. To be called once, and only where
  /// the command was built with a null group. Ignores null.
  void addToGroup(Group* group);

  /// The name, or "noname".
  [[nodiscard]] const char* getName() const noexcept;
  /// The number in the group, from 1; 0 while it is in none.
  [[nodiscard]] int getID() const noexcept { return id_; }

private:
  static qv::Reference<const Name> nameFor(const Group* group, const char* name);
  [[nodiscard]] int numBytesToReport() const;

  std::int32_t id_ = 0;
  qv::Reference<const Name> name_;
};

static_assert(sizeof(Command) == 16 + sizeof(void*));

} // namespace qvUndo
