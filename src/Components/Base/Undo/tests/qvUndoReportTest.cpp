// The report, text by text and in order.
#include "Base/Undo/qvUndoReport.h"
#include "Base/Undo/qvUndoCommand.h"
#include "Base/Undo/qvUndoGroup.h"
#include "Base/Undo/qvUndoManager.h"
#include "testing/qvTestDirectory.h"
#include "testing/qvTestPlatform.h"

#include <gtest/gtest.h>

#include <memory>
#include <regex>
#include <string>

namespace {

class Step final : public qvUndo::Command {
public:
  using Command::Command;
  bool fails = false;
  bool doAction() override { return !fails; }
  bool undoAction() override { return !fails; }
};

class UndoReport : public testing::Test {
protected:
  ~UndoReport() override { qvUndoReportInit(nullptr); } // closes it

  /// What was reported, with each address as "@".
  [[nodiscard]] std::string report() const {
    return std::regex_replace(directory.readText("report"), std::regex("0x[0-9A-F]{16}"), "@");
  }

  qvTest::Directory directory;
  const std::string path = directory.path("report");
};

TEST_F(UndoReport, TellsEveryStep) {
  qvUndoReportInit(path.c_str());
  int object = 0;
  {
    const std::unique_ptr<qvUndo::Manager> manager(qvUndo::newManager());
    manager->undoIt();
    qvUndo::Group* group = manager->newGroup("move", false);
    Step* step = new Step(group, nullptr);
    group->doIt();
    manager->doIt();
    manager->newGroup("empty", true);
    manager->associateGroups(2, 2);
    manager->undoIt();
    manager->doIt();
    group = manager->newGroup("bad", false);
    step = new Step(group, "stuck");
    step->fails = true;
    group->doIt();
    group->doIt();
    group = manager->newGroup("worse", false);
    step = new Step(group, "stone");
    step->fails = true;
    manager->undoIt();
    manager->newGroup("dead", true)->declarePointer(&object);
    manager->pointerDestroyed(&object);
    manager->undoIt();
    manager->newGroup("last", false);
    manager->deleteLastGroup();
    const Step loose(nullptr, "loose");
  }
  EXPECT_EQ("\n" + report(), R"(

------------------------------

- qvUndo::Manager: undoIt() - 0 groups, 0 bytes used
- qvUndo::Manager: undoIt() - at beginning of queue.
--------------------------------------------------------
qvUndo::newGroup (move, dynamic = 0)
qvUndo::Manager: pruneTrailingInvalidGroups()
  qvUndo::Group: new group (move)
    qvUndo::Command: new ((null), @)
  + qvUndo::Group: doIt() - (move) 1 commands 1024 bytes.
    + qvUndo::Command: doIt ((null), @), 1024 bytes
+ qvUndo::Manager: doIt() - 1 groups, 1024 bytes used
+ qvUndo::Manager: doIt() - at end of queue.
--------------------------------------------------------
qvUndo::newGroup (empty, dynamic = 1)
qvUndo::Manager: pruneTrailingInvalidGroups()
  qvUndo::Group: new group (empty)
qvUndo::Manager: associateGroups (2, 2)
- qvUndo::Manager: undoIt() - 2 groups, 1024 bytes used
  - qvUndo::Group: undoIt() - (empty) 0 commands 0 bytes.
- qvUndo::Manager: undoIt() - empty group, undoing again.
- qvUndo::Manager: undoIt() - 2 groups, 1024 bytes used
  - qvUndo::Group: undoIt() - (move) 1 commands 1024 bytes.
    - qvUndo::Command: undoIt ((null), @), 1024 bytes
+ qvUndo::Manager: doIt() - 2 groups, 1024 bytes used
  + qvUndo::Group: doIt() - (move) 1 commands 1024 bytes.
    + qvUndo::Command: doIt ((null), @), 1024 bytes
--------------------------------------------------------
qvUndo::newGroup (bad, dynamic = 0)
qvUndo::Manager: pruneUndoneGroups()
  qvUndo::Group: delete group (empty) - 0 bytes
qvUndo::Manager: pruneTrailingInvalidGroups()
  qvUndo::Group: new group (bad)
    qvUndo::Command: new (stuck, @)
  + qvUndo::Group: doIt() - (bad) 1 commands 1024 bytes.
    + qvUndo::Command: doIt (stuck, @), 1024 bytes
    - qvUndo::Command: 'do' of stuck returned failure.  Marking invalid.
  ! qvUndo::Group: 'do' of command 0 (stuck) returnedfailure status
  ! qvUndo::Group: marking group (bad) invalid.
  + qvUndo::Group: doIt() - (bad) 1 commands 1024 bytes.
  ! qvUndo::Group: doIt() - (bad) invalid group.
--------------------------------------------------------
qvUndo::newGroup (worse, dynamic = 0)
qvUndo::Manager: pruneTrailingInvalidGroups()
  qvUndo::Group: delete group (bad) - 1024 bytes
    qvUndo::Command: delete (stuck, @)
  qvUndo::Group: new group (worse)
    qvUndo::Command: new (stone, @)
- qvUndo::Manager: undoIt() - 2 groups, 2048 bytes used
  - qvUndo::Group: undoIt() - (worse) 1 commands 1024 bytes.
    - qvUndo::Command: undoIt (stone, @), 1024 bytes
    - qvUndo::Command: undo of stone returned failure.  Marking invalid.
  ! qvUndo::Group: 'undo' of command 0 (stone) returnedfailure status
  ! qvUndo::Group: marking group (worse) invalid.
qvUndo::Manager: currentGroupIsInvalid()
qvUndo::Manager: clearAllGroups()
  qvUndo::Group: delete group (move) - 1024 bytes
    qvUndo::Command: delete ((null), @)
  qvUndo::Group: delete group (worse) - 1024 bytes
    qvUndo::Command: delete (stone, @)
--------------------------------------------------------
qvUndo::newGroup (dead, dynamic = 1)
qvUndo::Manager: pruneTrailingInvalidGroups()
  qvUndo::Group: new group (dead)
!   qvUndo::Group: pointer @ declared by group has been destroyed
!   qvUndo::Group: marking group (dead) invalid.
- qvUndo::Manager: undoIt() - 1 groups, 0 bytes used
  - qvUndo::Group: undoIt() - (dead) 0 commands 0 bytes.
  ! qvUndo::Group: undoIt() - (dead) invalid group.
qvUndo::Manager: currentGroupIsInvalid()
qvUndo::Manager: clearAllGroups()
  qvUndo::Group: delete group (dead) - 0 bytes
- qvUndo::Manager: undoIt() - empty group, undoing again.
- qvUndo::Manager: undoIt() - 0 groups, 0 bytes used
- qvUndo::Manager: undoIt() - at beginning of queue.
--------------------------------------------------------
qvUndo::newGroup (last, dynamic = 0)
qvUndo::Manager: pruneTrailingInvalidGroups()
  qvUndo::Group: new group (last)
qvUndo::Manager: deleteLastGroup()
  qvUndo::Group: delete group (last) - 0 bytes
qvUndo::Manager: clearAllGroups()
)");
}

TEST_F(UndoReport, TextsAreReadAsFormatsTwice) {
  qvUndoReport("nowhere yet");
  qvUndoReportInit(path.c_str());
  qvUndoReport("(%s) %d%%%%\n", "50%%, %s%n%*d%", 7);
  qvUndoReport("%01500d", 7); // cut
  qvUndoReportInit(directory.path("missing/report").c_str());
  qvUndoReport("nowhere now");
  const std::string rule = "\n------------------------------\n\n";
  EXPECT_EQ(report(), rule + "(50%, %s%n%*d%) 7%\n" + std::string(1023, '0'));
  {
    qvUndoReportInit(path.c_str()); // adds to what is there
    qvTest::PlatformScript script;
    script.failCall(0, 28, "write");
    qvUndoReport("lost");
    qvUndoReport("kept");
  }
  EXPECT_EQ(report().substr(rule.size() + 19 + 1023), rule + "kept");
}

} // namespace
