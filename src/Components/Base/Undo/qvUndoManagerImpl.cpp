// Slots and commands may come back to the manager at any call that reaches them. So nothing here keeps a
// place in the queue across such a call but the cursor, which `groupDestroyed` keeps right.
#include "Base/Undo/qvUndoManagerImpl.h"

#include "Base/Undo/qvUndoDetail.h"
#include "Base/Undo/qvUndoGroupImpl.h"

#include <algorithm>
#include <utility>

namespace qvUndo {

namespace {

/// All groups of the queue come from `newGroup`.
GroupImpl& implOf(Group* group) { return *static_cast<GroupImpl*>(group); }

} // namespace

/// What a step of undo or redo has come to.
struct ManagerImpl::Step {
  std::int64_t numCommands = 0; ///< In the groups that it reached.
  bool succeeded = true;
};

ManagerImpl::ManagerImpl() : cursor_(groups_.end()) {}

ManagerImpl::~ManagerImpl() {
  maxGroups_ = -1; // no slot makes a new group now
  ManagerImpl::clearAllGroups();
}

// ---- Undo and redo -------------------------------------------------------------------------------------

bool ManagerImpl::doIt() {
  report("+ qvUndo::Manager: doIt() - %d groups, %d bytes used\n", numGroups(false), numBytesToReport());
  if (allDone()) {
    report("+ qvUndo::Manager: doIt() - at end of queue.\n");
    return true;
  }
  const Step step = runStep(&ManagerImpl::redoChain);
  if (step.numCommands != 0) return step.succeeded;
  report("+ qvUndo::Manager: doIt() - empty group, doing again.\n");
  return doIt();
}

bool ManagerImpl::undoIt() {
  report("- qvUndo::Manager: undoIt() - %d groups, %d bytes used\n", numGroups(false), numBytesToReport());
  if (allUndone()) {
    report("- qvUndo::Manager: undoIt() - at beginning of queue.\n");
    return true;
  }
  const Step step = runStep(&ManagerImpl::undoChain);
  if (step.numCommands != 0) return step.succeeded;
  report("- qvUndo::Manager: undoIt() - empty group, undoing again.\n");
  return undoIt();
}

ManagerImpl::Step ManagerImpl::runStep(void (ManagerImpl::*walk)(Step&)) {
  const bool wasActive = std::exchange(active_, true);
  sigActive.emit(true);
  Step step;
  (this->*walk)(step);
  sigActive.emit(false);
  active_ = wasActive;
  return step;
}

// A dynamic group is tied to the one before it: redo goes on to it, and undo goes on from it.
void ManagerImpl::redoChain(Step& step) {
  while (!allDone() && runGroup(&Group::doIt, step)) {
    ++cursor_;
    if (allDone() || !(*cursor_)->isDynamic()) break;
  }
}

void ManagerImpl::undoChain(Step& step) {
  while (!allUndone()) {
    --cursor_;
    if (!runGroup(&Group::undoIt, step) || !(*cursor_)->isDynamic()) break;
  }
}

/// Runs the group at the cursor. False where the step ends there, since the group failed, or since a command
/// changed the queue.
bool ManagerImpl::runGroup(bool (Group::*run)(), Step& step) {
  Group* const group = *cursor_;
  const int number = group->getNumber();
  step.numCommands += group->numCommands();
  step.succeeded = (group->*run)();
  if (!step.succeeded) currentGroupIsInvalid();
  return step.succeeded && !allDone() && *cursor_ == group && group->getNumber() == number;
}

void ManagerImpl::currentGroupIsInvalid() {
  if (groups_.empty()) return;
  report("qvUndo::Manager: currentGroupIsInvalid()\n");
  clearAllGroups();
}

// ---- New groups ----------------------------------------------------------------------------------------

Group* ManagerImpl::newGroup(const char* name, bool dynamic) {
  if (maxGroups_ < 0) return nullptr;
  report("--------------------------------------------------------\n");
  report("qvUndo::newGroup (%s, dynamic = %d)\n", name, static_cast<int>(dynamic));
  pruneUndoneGroups();
  pruneTrailingInvalidGroups();
  if (!groups_.empty()) groups_.back()->onChange();
  enforceLimits(true);
  auto* const group = new GroupImpl(this, name, groups_.empty() ? nullptr : &implOf(groups_.back()));
  group->setDynamic(dynamic);
  group->sigDestroyed.connect(this, &ManagerImpl::groupDestroyed, client_);
  groups_.append(group);
  cursor_ = groups_.end();
  return group;
}

void ManagerImpl::pruneUndoneGroups() {
  if (allDone()) return;
  report("qvUndo::Manager: pruneUndoneGroups()\n");
  deleteGroupsFrom([this] { return cursor_; });
}

void ManagerImpl::pruneTrailingInvalidGroups() {
  report("qvUndo::Manager: pruneTrailingInvalidGroups()\n");
  while (!groups_.empty()) {
    Group* const newest = groups_.back();
    if (newest->isValid() || !newest->isDeletable() || !implOf(newest).release()) return;
    cursor_ = groups_.end();
  }
}

void ManagerImpl::enforceLimits(bool makingRoom) {
  if (maxGroups_ != 0) {
    const std::int64_t limit = std::int64_t{maxGroups_} - (makingRoom ? 1 : 0);
    while (numGroups(true) > limit && removeOldestChain()) continue;
  }
  if (maxBytes_ != 0) {
    while (numBytesUsed() > maxBytes_ && removeOldestChain()) continue;
  }
  cursor_ = groups_.end();
}

/// A dynamic group at the front, left by an earlier removal, goes alone. False where nothing may be removed.
bool ManagerImpl::removeOldestChain() {
  if (groups_.empty()) return false;
  Group* const oldest = groups_.front();
  const bool tied = oldest->isDynamic();
  if (!oldest->isDeletable() || !implOf(oldest).release()) return false;
  while (!tied && !groups_.empty() && groups_.front()->isDynamic() && implOf(groups_.front()).release())
    continue;
  return true;
}

// ---- Deleting groups -----------------------------------------------------------------------------------

/// Deletes what stands from `first()` on. Slots may delete groups and make new ones at each deletion, so each
/// search begins anew, and ends after as many as there were.
template <class First>
void ManagerImpl::deleteGroupsFrom(First first) {
  for (int left = groups_.size(); left > 0; --left) {
    const Position next =
        std::find_if(first(), groups_.end(), [](Group* group) { return !implOf(group).isLeaving(); });
    if (next == groups_.end()) break;
    implOf(*next).release();
  }
  cursor_ = groups_.end();
}

void ManagerImpl::clearAllGroups() {
  report("qvUndo::Manager: clearAllGroups()\n");
  deleteGroupsFrom([this] { return groups_.begin(); });
}

void ManagerImpl::deleteLastGroup() {
  if (!allDone() || groups_.empty()) return;
  report("qvUndo::Manager: deleteLastGroup()\n");
  if (groups_.back()->numCommands() == 0)
    implOf(groups_.back()).release();
  else
    clearAllGroups();
}

void ManagerImpl::groupDestroyed(Group* group) {
  sigGroupDeleted.emit(group);
  const Position place = !allDone() && *cursor_ == group ? cursor_ : groups_.find(group);
  if (place == groups_.end()) return;
  if (place == cursor_) ++cursor_;
  groups_.erase(place);
}

// ---- Questions and settings ----------------------------------------------------------------------------

Group* ManagerImpl::getGroup(int index) const {
  const int position = index < 0 ? index + groups_.size() : index;
  if (position < 0 || position >= groups_.size()) return nullptr;
  return *std::next(groups_.begin(), position);
}

Group* ManagerImpl::getCurrentGroup() const { return canRedo() ? *cursor_ : nullptr; }

int ManagerImpl::numGroups(bool countChains) const {
  if (!countChains || groups_.empty()) return groups_.size();
  return 1 + static_cast<int>(std::count_if(std::next(groups_.begin()), groups_.end(),
                                            [](const Group* group) { return !group->isDynamic(); }));
}

bool ManagerImpl::canUndo() const { return groups_.begin() != cursor_; }

bool ManagerImpl::canRedo() const { return groups_.end() != cursor_; }

Group* ManagerImpl::findGroup(int number) const {
  const auto found = std::find_if(groups_.begin(), groups_.end(),
                                  [=](const Group* group) { return group->getNumber() == number; });
  return found == groups_.end() ? nullptr : *found;
}

bool ManagerImpl::isWithinLastChain(int number) const {
  for (qv::list<Group*>::const_iterator place = cursor_; place != groups_.begin();) {
    const Group* const group = *--place;
    if (group->getNumber() <= number) return true;
    if (!group->isDynamic()) return false;
  }
  return false;
}

void ManagerImpl::associateGroups(int first, int last) {
  report("qvUndo::Manager: associateGroups (%d, %d)\n", first, last);
  bool tied = false;
  for (Group* group : groups_) {
    if (group->getNumber() < first || group->getNumber() > last) continue;
    group->setDynamic(tied);
    tied = true;
  }
}

void ManagerImpl::pointerDestroyed(void* object) {
  for (Group* group : groups_) group->pointerDestroyed(object);
}

int ManagerImpl::nextGroupNumber() { return lastGroupNumber_ = numberAfter(lastGroupNumber_); }

void ManagerImpl::setMaxGroups(int count) {
  maxGroups_ = count;
  if (allDone()) enforceLimits(false);
}

void ManagerImpl::setMaxBytes(int bytes) {
  maxBytes_ = bytes;
  if (allDone()) enforceLimits(false);
}

int ManagerImpl::getMaxGroups() const { return maxGroups_; }

int ManagerImpl::getMaxBytes() const { return maxBytes_; }

bool ManagerImpl::isActive() const { return active_; }

std::int64_t ManagerImpl::numBytesUsed() const {
  std::int64_t sum = 0;
  for (const Group* group : groups_) sum += group->numBytesUsed();
  return sum;
}

/// Costs a call for each command, so it is made only for a report that is open.
int ManagerImpl::numBytesToReport() const { return isReporting() ? byteCount(numBytesUsed()) : 0; }

} // namespace qvUndo
