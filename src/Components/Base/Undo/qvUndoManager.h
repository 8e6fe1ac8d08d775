// The undo queue as hosts see it. Start here.
#pragma once

#include "Base/Callback/qvRTBSignal.h"
#include "Base/qvBase.h"

namespace qvUndo {

class Group;

/// Groups in the order in which they were made, and a cursor between those that are done and those that were
/// undone. Groups are numbered from 1. A chain is a group with the dynamic groups that follow it; one step of
/// undo or redo covers a chain.
///
/// There is no way back inside a step: where a command fails, what later groups rest on can no longer be
/// trusted, and the whole queue is cleared.
///
/// Slots of both signals may ask the manager for anything, and delete any group but the one that is told to
/// them; they must not destroy the manager. Not thread-safe. Virtual and field order are part of the
/// interface.
class QV_BASE_API Manager {
public:
  /// True before a step of undo or redo and before the commands of a group are deleted; false after.
  qvRTB::SignalArg<bool> sigActive;
  /// A group is being deleted. It is still in the queue, but its commands are gone.
  qvRTB::SignalArg<Group*> sigGroupDeleted;

  Manager();
  Manager(const Manager&) = delete;
  Manager& operator=(const Manager&) = delete;
  /// Deletes all groups. The installed manager is then none, if it was this one.
  virtual ~Manager();

  /// @{ One step back, or forward again. Steps without commands are passed over. True also where there is
  /// nothing to do; false where a command failed, and the queue is then empty.
  virtual bool undoIt() = 0;
  virtual bool doIt() = 0;
  /// @}

  /// Starts a new action: discards what was undone, drops the oldest chains beyond the limits, and makes a
  /// group at the end of the queue, which counts as done. The host performs the action and adds its commands.
  /// A `dynamic` group is tied to the one before it. `name` is copied and may be null.
  /// @return the group, which the queue owns; null while undo is switched off.
  virtual Group* newGroup(const char* name, bool dynamic) = 0;

  /// The group at `index`: 0 is the oldest, -1 the newest; null where there is none.
  [[nodiscard]] virtual Group* getGroup(int index) const = 0;
  /// The group that would be redone next, or null.
  [[nodiscard]] virtual Group* getCurrentGroup() const = 0;
  /// How many groups there are, or how many chains.
  [[nodiscard]] virtual int numGroups(bool countChains) const = 0;
  [[nodiscard]] virtual bool canUndo() const = 0;
  [[nodiscard]] virtual bool canRedo() const = 0;
  /// The first group with that number, or null.
  [[nodiscard]] virtual Group* findGroup(int number) const = 0;
  /// Whether the next undo would reach back to group `number`, or beyond it.
  [[nodiscard]] virtual bool isWithinLastChain(int number) const = 0;

  /// Deletes the newest group if it has no commands; if it has, the queue cannot go on without it and is
  /// cleared. Does nothing where groups are undone.
  virtual void deleteLastGroup() = 0;
  /// Deletes all groups. Nothing is undone.
  virtual void clearAllGroups() = 0;
  /// Makes one chain of the groups with numbers from `first` to `last`.
  virtual void associateGroups(int first, int last) = 0;
  /// An object is gone: every group that declared it becomes invalid, and a step that comes to such a group
  /// clears the queue.
  virtual void pointerDestroyed(void* object) = 0;
  /// The number for the next group.
  virtual int nextGroupNumber() = 0;

  /// @{ How many chains, and bytes as the commands count them, are kept; 0 for no limit. At first there is no
  /// limit of chains, and 10,000,000 bytes. A negative count of chains switches undo off. While groups are
  /// undone a new limit waits for the next `newGroup`. Limits are enforced before a new group is filled, so
  /// that one alone may exceed them.
  virtual void setMaxGroups(int count) = 0;
  virtual void setMaxBytes(int bytes) = 0;
  [[nodiscard]] virtual int getMaxGroups() const = 0;
  [[nodiscard]] virtual int getMaxBytes() const = 0;
  /// @}

  /// Whether a step of undo or redo is under way: what changes now is no new action of the user.
  [[nodiscard]] virtual bool isActive() const = 0;
};

/// A new manager, which the caller owns.
[[nodiscard]] QV_BASE_API Manager* newManager();

/// Makes `manager`, which may be null, the one that the program shares, and takes ownership of it. One that
/// was installed before is deleted first.
QV_BASE_API void installManager(Manager* manager);
/// The one that was installed, or null.
[[nodiscard]] QV_BASE_API Manager* getInstalledManager() noexcept;

} // namespace qvUndo
