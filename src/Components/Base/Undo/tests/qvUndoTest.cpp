// What a host sees of the undo queue, through the shared library, where the random test beside this does not
// look: limits of ranges, states, and what slots and commands may ask for.
#include "Base/Undo/qvUndoCommand.h"
#include "Base/Undo/qvUndoGroup.h"
#include "Base/Undo/qvUndoManager.h"

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace {

using qvUndo::Group;
using qvUndo::Manager;

std::string trace; // "+a" done, "-a" undone, "!a" committed, "~a" deleted

class Letter final : public qvUndo::Command {
public:
  std::function<void()> inAction, inCommit;
  bool fails = false;
  int bytes = 0;

  Letter(Group* group, const char* name) : Command(group, name) {}
  ~Letter() override { tell('~'); }
  bool doAction() override { return act('+'); }
  bool undoAction() override { return act('-'); }
  [[nodiscard]] int getNumBytesUsed() const override { return bytes ? bytes : Command::getNumBytesUsed(); }
  void commit() override {
    tell('!');
    if (inCommit) inCommit();
  }

private:
  void tell(char what) { trace += what + std::string(getName()) + ' '; }
  bool act(char what) {
    if (inAction) inAction();
    tell(what); // after the action: the command must still be there
    return !fails;
  }
};

class Undo : public testing::Test {
protected:
  Undo() { trace.clear(); }

  /// A group with one command for each letter, done.
  Group* add(const std::string& letters, bool dynamic = false) {
    Group* const group = manager->newGroup(letters.c_str(), dynamic);
    for (const char letter : letters) last = new Letter(group, std::string(1, letter).c_str());
    group->doIt();
    return group;
  }
  /// The names of all groups; '|' is the cursor, and '=' stands before dynamic ones.
  [[nodiscard]] std::string queue() const {
    std::string result;
    for (int i = 0; Group* group = manager->getGroup(i); ++i) {
      result += group->isDynamic() ? "=" : i ? " " : "";
      if (group == manager->getCurrentGroup()) result += '|';
      result += group->getName();
    }
    return result;
  }

  std::unique_ptr<Manager> manager{qvUndo::newManager()};
  Letter* last = nullptr;
};

TEST_F(Undo, AnswersInEveryRange) {
  EXPECT_TRUE(!manager->getGroup(0) && !manager->getGroup(-1) && !manager->isWithinLastChain(1));
  Group* const groups[] = {add("a"), add("bcd", true), add("")};
  const struct {
    int index, group;
  } rows[] = {{0, 0}, {2, 2}, {-1, 2}, {-3, 0}, {3, -1}, {-4, -1}, {INT_MAX, -1}, {INT_MIN, -1}};
  for (const auto& row : rows)
    EXPECT_EQ(manager->getGroup(row.index), row.group < 0 ? nullptr : groups[row.group]) << row.index;
  for (const int position : {-1, 3, INT_MIN, INT_MAX}) EXPECT_EQ(groups[1]->getCommand(position), nullptr);
  EXPECT_EQ(groups[1]->getCommand(2)->getID(), 3);
  EXPECT_EQ(groups[2]->getCommand(0), nullptr);
  EXPECT_FALSE(manager->isWithinLastChain(2));
  EXPECT_TRUE(manager->undoIt()); // the empty group, and so the next chain as well
  EXPECT_TRUE(manager->undoIt()); // nothing is left
  EXPECT_EQ(std::exchange(trace, {}), "+a +b +c +d -d -c -b -a ");
  EXPECT_TRUE(manager->doIt());
  EXPECT_EQ(queue(), "a=bcd |");
  EXPECT_FALSE(manager->isWithinLastChain(0));
  EXPECT_TRUE(manager->isWithinLastChain(1));
  manager->deleteLastGroup(); // not while something is undone
  manager->associateGroups(4, 9);
  manager->pointerDestroyed(nullptr);
  groups[0]->declarePointer(nullptr);
  EXPECT_FALSE(groups[0]->hasPointer(nullptr));
  EXPECT_EQ(queue(), "a=bcd |");
}

TEST_F(Undo, CommandsRememberWhatCameLast) {
  const auto bits = [](const qvUndo::State& s) {
    return s.hasBeenDone() + 2 * s.hasBeenUndone() + 4 * s.lastWasDoIt() + 8 * s.lastWasUndoIt() +
           16 * s.isValid();
  };
  auto* const command = new Letter(nullptr, nullptr);
  EXPECT_STREQ(command->getName(), "noname");
  EXPECT_TRUE(command->getID() == 0 && bits(*command) == 16);
  EXPECT_TRUE(command->undoIt() && command->undoIt());
  EXPECT_EQ(bits(*command), 16 + 8 + 2);
  EXPECT_TRUE(command->doIt() && command->doIt());
  EXPECT_EQ(bits(*command), 16 + 4 + 2 + 1);
  command->fails = true;
  EXPECT_FALSE(command->undoIt() || command->doIt()); // marked, and invalid for ever
  EXPECT_EQ(bits(*command), 8 + 2 + 1);
  EXPECT_EQ(trace, "-noname +noname -noname ");
  Group* const group = manager->newGroup(nullptr, false);
  group->addCommand(command);
  group->addCommand(nullptr);
  EXPECT_TRUE(command->getID() == 1 && group->numCommands() == 1 && !group->getName());
  EXPECT_FALSE(group->doIt());
  EXPECT_EQ(bits(*group), 0);
}

TEST_F(Undo, LimitsInEveryRange) {
  EXPECT_EQ(manager->getMaxBytes(), 10000000);
  add("a")->setDeletable(false);
  add("bc");
  last->bytes = INT_MAX;
  EXPECT_EQ(manager->getGroup(-1)->numBytesUsed(), INT_MAX); // which also tells of more
  add("d");
  EXPECT_EQ(queue(), "a bc d") << "what may not go stops all pruning";
  manager->getGroup(0)->setDeletable(true);
  manager->undoIt();
  manager->setMaxBytes(INT_MAX);
  EXPECT_EQ(queue(), "a bc |d") << "a limit waits while something is undone";
  manager->doIt();
  manager->setMaxBytes(INT_MAX);
  EXPECT_EQ(queue(), "d") << "a sum beyond the range is over the greatest limit";
  manager->setMaxGroups(INT_MIN);
  EXPECT_EQ(queue(), "");
  EXPECT_EQ(manager->newGroup("none", false), nullptr);
}

TEST_F(Undo, SlotsAndCommandsMayAskForAnything) {
  using Act = std::function<void(Manager&)>;
  const Act acts[] = {[](Manager& m) { m.clearAllGroups(); },
                      [](Manager& m) { m.deleteLastGroup(); },
                      [](Manager& m) { m.newGroup("n", true); },
                      [](Manager& m) { m.setMaxGroups(INT_MIN); },
                      [](Manager& m) { m.setMaxGroups(1), m.newGroup("n", false); },
                      [](Manager& m) { m.setMaxBytes(1), m.newGroup("n", false); },
                      [](Manager& m) { m.undoIt(); },
                      [](Manager& m) { m.doIt(); },
                      [](Manager& m) { m.undoIt(), m.undoIt(), m.clearAllGroups(); },
                      [](Manager& m) { m.pointerDestroyed(&m), m.newGroup("n", false); }};
  const Act steps[] = {[](Manager& m) { m.undoIt(); },          [](Manager& m) { m.doIt(); },
                       [](Manager& m) { m.clearAllGroups(); },  [](Manager& m) { m.newGroup("o", false); },
                       [](Manager& m) { m.setMaxBytes(1); },    [](Manager& m) { delete m.getGroup(1); },
                       [](Manager& m) { delete m.getGroup(2); }};
  enum Place { activeOn, activeOff, groupDeleted, action, failingAction, commit, numPlaces };
  for (int row = 0; row < static_cast<int>(std::size(acts) * std::size(steps)) * numPlaces; ++row) {
    SCOPED_TRACE(row);
    const Act& act = acts[row / numPlaces / std::size(steps)];
    const int place = row % numPlaces;
    manager.reset(qvUndo::newManager());
    bool armed = false;
    const auto visit = [&](bool here) {
      if (here && std::exchange(armed, false)) act(*manager);
    };
    manager->sigActive.connect([&](bool active) { visit(place == (active ? activeOn : activeOff)); });
    manager->sigGroupDeleted.connect([&](Group*) { visit(place == groupDeleted); });
    for (const char* name : {"a", "b", "c", "d"}) {
      add(name, *name == 'c')->declarePointer(manager.get());
      last->inCommit = [&] { visit(place == commit); };
      last->inAction = [&, command = last] {
        command->fails = command->fails || (armed && place == failingAction);
        visit(place == action || place == failingAction);
      };
    }
    manager->undoIt(); // the step begins in the middle of the queue
    armed = true;
    steps[row / numPlaces % std::size(steps)](*manager);
    armed = false;
    // Whatever is left is whole: it can be walked in both ways, and extended.
    EXPECT_FALSE(manager->isActive());
    for (int i = 0; i < 4; ++i) manager->undoIt();
    EXPECT_FALSE(manager->canUndo());
    for (int i = 0; i < 4; ++i) manager->doIt();
    EXPECT_FALSE(manager->canRedo());
    manager->setMaxGroups(0);
    EXPECT_TRUE(add("z") == manager->getGroup(-1) && manager->undoIt());
    manager.reset(); // before what its slots hold
  }
}

TEST_F(Undo, ADroppedGroupFinishesFirst) {
  for (const char* name : {"a", "bc", "d"}) add(name);
  manager->undoIt();
  manager->undoIt();
  static_cast<Letter*>(manager->getGroup(1)->getCommand(0))->inAction = [this] {
    manager->newGroup("n", false);
  };
  trace.clear();
  EXPECT_TRUE(manager->doIt());
  EXPECT_EQ(trace, "!d ~d +b +c !b !c ~b ~c ");
  EXPECT_EQ(queue(), "a n");
}

TEST_F(Undo, ManyEmptyGroupsArePassedOver) {
  add("a");
  for (int i = 0; i < 2000; ++i) manager->newGroup("", false);
  EXPECT_TRUE(manager->undoIt() && manager->doIt() && manager->doIt());
  EXPECT_EQ(trace, "+a -a +a ");
  EXPECT_FALSE(manager->canRedo());
}

TEST(UndoManager, TheInstalledOneIsOwned) {
  Manager* const first = qvUndo::newManager();
  std::string told;
  first->sigActive.connect([&](bool active) { told += active ? '(' : ')'; });
  first->sigGroupDeleted.connect([&](Group* group) {
    told += group == first->getGroup(0) && group->numCommands() == 0 && !first->isActive() ? "deleted" : "?";
  });
  qvUndo::installManager(first);
  new Letter(first->newGroup("a", false), "a");
  qvUndo::installManager(first); // stays
  EXPECT_EQ(told, "");
  Manager* const second = qvUndo::newManager();
  qvUndo::installManager(second);
  EXPECT_EQ(told, "(deleted)");
  EXPECT_EQ(qvUndo::getInstalledManager(), second);
  delete second;
  EXPECT_EQ(qvUndo::getInstalledManager(), nullptr);
}

} // namespace
