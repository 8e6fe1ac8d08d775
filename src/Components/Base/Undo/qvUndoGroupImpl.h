// The one implementation of a group.
#pragma once

#include "Base/Callback/qvRTBSignal.h"
#include "Base/Containers/qvSet.h"
#include "Base/Containers/qvVector.h"
#include "Base/Undo/qvUndoGroup.h"
#include "Base/Utility/qvReferenceCount.h"

#include <cstdint>
#include <memory>

namespace qvUndo {

class Name;

/// What `ManagerImpl::newGroup` makes. Virtual and field order are part of the interface.
class QV_BASE_API GroupImpl : public Group {
public:
  /// The commands are gone; the group goes next.
  qvRTB::SignalArg<Group*> sigDestroyed;

  /// Takes the next number of `manager`, which must outlive the group. An equal name of `neighbour`, which
  /// may be null, is kept once.
  GroupImpl(Manager* manager, const char* name, const GroupImpl* neighbour = nullptr);
  /// Must not be called while a command of this group runs; `release` waits for it.
  ~GroupImpl() override;

  bool doIt() override;
  bool undoIt() override;
  void addCommand(Command* command) override;
  [[nodiscard]] Command* getCommand(int position) const override;
  [[nodiscard]] int numCommands() const override;
  [[nodiscard]] int numBytesUsed() const override;
  [[nodiscard]] const char* getName() const override;
  [[nodiscard]] int getNumber() const override;
  int nextCommandId() override;
  void setDeletable(bool deletable) override;
  [[nodiscard]] bool isDeletable() const override;
  [[nodiscard]] bool isDynamic() const override;
  void setDynamic(bool dynamic) override;
  void declarePointer(void* object) override;
  [[nodiscard]] bool hasPointer(void* object) const override;
  void pointerDestroyed(void* object) override;
  void onChange() override;

  /// Deletes the group, or sees to it that it is deleted when its commands no longer run. Does nothing where
  /// that is under way.
  /// @return whether the group is gone.
  bool release();
  /// Whether the group is being deleted, or waits for it.
  [[nodiscard]] bool isLeaving() const noexcept { return leaving_; }

private:
  class Running;

  bool markInvalid();
  void deleteCommands();
  [[nodiscard]] int numBytesToReport() const;

  qv::vector<Command*> commands_;
  std::unique_ptr<qv::set<void*>> pointers_; // none until one is declared, as in most groups
  std::int32_t number_;
  std::int32_t lastCommandId_ = 0;
  Manager* manager_;
  qv::Reference<const Name> name_;
  bool dynamic_ = false;
  bool deletable_ = true;
  bool leaving_ = false;
  bool deleteWhenIdle_ = false;
  std::int32_t numRunning_ = 0; // calls of doIt and undoIt that are under way
};

} // namespace qvUndo
