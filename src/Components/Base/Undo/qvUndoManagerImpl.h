// The one implementation of the undo queue.
#pragma once

#include "Base/Callback/qvRTBSignal.h"
#include "Base/Containers/qvList.h"
#include "Base/Undo/qvUndoManager.h"

#include <cstdint>

namespace qvUndo {

/// What `newManager` makes. Virtual and field order are part of the interface.
class QV_BASE_API ManagerImpl : public Manager {
public:
  ManagerImpl();
  ~ManagerImpl() override;

  bool undoIt() override;
  bool doIt() override;
  Group* newGroup(const char* name, bool dynamic) override;
  [[nodiscard]] Group* getGroup(int index) const override;
  [[nodiscard]] Group* getCurrentGroup() const override;
  [[nodiscard]] int numGroups(bool countChains) const override;
  [[nodiscard]] bool canUndo() const override;
  [[nodiscard]] bool canRedo() const override;
  [[nodiscard]] Group* findGroup(int number) const override;
  [[nodiscard]] bool isWithinLastChain(int number) const override;
  void deleteLastGroup() override;
  void clearAllGroups() override;
  void associateGroups(int first, int last) override;
  void pointerDestroyed(void* object) override;
  int nextGroupNumber() override;
  void setMaxGroups(int count) override;
  void setMaxBytes(int bytes) override;
  [[nodiscard]] int getMaxGroups() const override;
  [[nodiscard]] int getMaxBytes() const override;
  [[nodiscard]] bool isActive() const override;

  /// A group tells that it is being deleted: the queue forgets it.
  virtual void groupDestroyed(Group* group);

private:
  using Position = qv::list<Group*>::iterator;
  struct Step;

  Step runStep(void (ManagerImpl::*walk)(Step&));
  void undoChain(Step& step);
  void redoChain(Step& step);
  bool runGroup(bool (Group::*run)(), Step& step);
  void currentGroupIsInvalid();
  void pruneUndoneGroups();
  void pruneTrailingInvalidGroups();
  void enforceLimits(bool makingRoom);
  bool removeOldestChain();
  template <class First>
  void deleteGroupsFrom(First first);

  [[nodiscard]] bool allDone() const noexcept { return cursor_ == groups_.end(); }
  [[nodiscard]] bool allUndone() const noexcept { return cursor_ == groups_.begin(); }
  [[nodiscard]] std::int64_t numBytesUsed() const;
  [[nodiscard]] int numBytesToReport() const;

  qvRTB::SignalClient client_;
  qv::list<Group*> groups_;
  Position cursor_; // what is redone next; behind what is undone next
  std::int32_t lastGroupNumber_ = 0;
  std::int32_t maxGroups_ = 0;
  std::int32_t maxBytes_ = 10000000;
  bool active_ = false;
};

} // namespace qvUndo
