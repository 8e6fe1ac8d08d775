// Thousands of random operations on a queue and on a simple model of it: a list, a cursor, two limits. Both
// write down every signal and every call of a command, and must agree in that and in every answer. Now and
// then a signal's slot deletes a group or the whole queue.
#include "Base/Undo/qvUndoCommand.h"
#include "Base/Undo/qvUndoGroupImpl.h"
#include "Base/Undo/qvUndoManagerImpl.h"
#include "testing/qvTestSeed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct CommandPlan {
  int id, bytes;
  bool failsDo, failsUndo;
};

enum Kind {
  add,
  undo,
  redo,
  deleteLast,
  clear,
  associate,
  destroyPointer,
  limitGroups,
  limitBytes,
  keep,
  kill
};
struct Operation {
  Kind kind = add;
  int a = 0, b = 0;
  bool dynamic = false, done = false, kept = false;
  std::vector<CommandPlan> commands;
};

char objects[4]; // what groups declare

/// What both sides have: the trace, and an operation that waits for a signal.
struct Side {
  virtual ~Side() = default;
  virtual bool apply(const Operation& operation) = 0;
  void tell(char what, int number) { trace << what << number << ' '; }
  void signal(char what, int number) {
    tell(what, number);
    if (--countdown == 0) apply(visitor);
  }
  std::ostringstream trace;
  int countdown = 0;
  Operation visitor;
};

class Model final : public Side {
  struct Item : CommandPlan {
    bool valid = true;
    int last = 0; // 1 done, -1 undone
  };
  struct Chunk {
    int number;
    bool dynamic;
    int object;
    std::vector<Item> commands;
    bool valid = true, deletable = true, leaving = false;
    int last = 0;
    [[nodiscard]] bool mayGo() const { return deletable && !leaving; }
  };

public:
  bool apply(const Operation& op) override {
    if (op.kind == add) return maxGroups >= 0 && addGroup(op);
    if (op.kind == undo || op.kind == redo) return step(op.kind == redo);
    if (op.kind == clear) return clearAll();
    if (op.kind == deleteLast && cursor == groups.size() && !groups.empty())
      return groups.back()->commands.empty() ? remove(groups.back()) : clearAll();
    if (op.kind == limitGroups) maxGroups = op.a;
    if (op.kind == limitBytes) maxBytes = op.a;
    if (op.kind == limitGroups || op.kind == limitBytes) return cursor != groups.size() || enforce(maxGroups);
    bool tied = false;
    const std::vector<Group> all = groups;
    for (const Group& group : all) {
      if (op.kind == associate && group->number >= op.a && group->number <= op.b)
        group->dynamic = std::exchange(tied, true);
      if (op.kind == destroyPointer && group->object == op.a) group->valid = false;
      if (op.kind == keep && group->number == op.a) group->deletable = op.dynamic;
      if (op.kind == kill && group->number == op.a) remove(group);
    }
    return true;
  }

  [[nodiscard]] std::string answers() const {
    std::ostringstream out;
    for (const auto& group : groups) {
      out << group->number << (group->dynamic ? "=" : " ") << group->valid << group->deletable
          << group->commands.size() << ' ';
    }
    out << "| " << (cursor < groups.size() ? groups[cursor]->number : 0) << ' ' << (cursor > 0) << ' '
        << chains();
    return out.str();
  }

private:
  using Group = std::shared_ptr<Chunk>;

  bool addGroup(const Operation& op) {
    while (cursor < groups.size()) remove(groups[cursor]);
    while (!groups.empty() && !groups.back()->valid && groups.back()->mayGo()) remove(groups.back());
    enforce(maxGroups - 1);
    groups.push_back(std::make_shared<Chunk>(Chunk{++lastNumber, op.dynamic, op.b, {}}));
    groups.back()->deletable = !op.kept;
    cursor = groups.size();
    for (const CommandPlan& plan : op.commands) groups.back()->commands.push_back({plan});
    return !op.done || run(*groups.back(), true);
  }
  bool step(bool forward) {
    if (cursor == (forward ? groups.size() : 0)) return true;
    signal('(', 0);
    std::size_t commands = 0;
    bool succeeded = true;
    while (cursor != (forward ? groups.size() : 0)) {
      const Group group = groups[forward ? cursor : --cursor];
      commands += group->commands.size();
      succeeded = run(*group, forward);
      if (!succeeded) clearAll();
      if (!succeeded || (!forward && !group->dynamic)) break;
      if (forward && (++cursor == groups.size() || !groups[cursor]->dynamic)) break;
    }
    signal(')', 0);
    return commands ? succeeded : step(forward);
  }
  bool run(Chunk& group, bool forward) {
    const int way = forward ? 1 : -1;
    if (!group.valid || group.last == way) return group.valid;
    for (std::size_t i = 0; i < group.commands.size(); ++i) {
      Item& item = group.commands[forward ? i : group.commands.size() - 1 - i];
      const bool acts = item.valid && item.last != way;
      if (acts) tell(forward ? '+' : '-', item.id);
      if (acts && (forward ? item.failsDo : item.failsUndo)) item.valid = false;
      item.last = way;
      if (!item.valid) return group.valid = false;
    }
    group.last = way;
    return true;
  }
  bool remove(Group group) {
    if (std::exchange(group->leaving, true)) return true;
    signal('(', 0);
    for (const Item& item : group->commands) tell('!', item.id);
    for (const Item& item : group->commands) tell('~', item.id);
    group->commands.clear();
    signal('D', group->number);
    const std::size_t place =
        static_cast<std::size_t>(std::find(groups.begin(), groups.end(), group) - groups.begin());
    groups.erase(groups.begin() + static_cast<std::ptrdiff_t>(place));
    if (place < cursor) --cursor;
    signal(')', 0);
    return true;
  }
  bool clearAll() {
    const auto stays = [](const Group& group) { return !group->leaving; };
    for (auto next = groups.begin();
         (next = std::find_if(groups.begin(), groups.end(), stays)) != groups.end();)
      remove(*next);
    cursor = groups.size();
    return true;
  }
  [[nodiscard]] int chains() const {
    int count = 0;
    for (const Group& group : groups) count += group == groups.front() || !group->dynamic;
    return count;
  }
  bool enforce(int limit) {
    const auto bytes = [this] {
      int sum = 0;
      for (const Group& group : groups)
        for (const Item& item : group->commands) sum += item.bytes;
      return sum;
    };
    while ((maxGroups && chains() > limit) && !groups.empty() && groups.front()->mayGo()) removeOldest();
    while ((maxBytes && bytes() > maxBytes) && !groups.empty() && groups.front()->mayGo()) removeOldest();
    cursor = groups.size();
    return true;
  }
  void removeOldest() {
    const bool alone = groups.front()->dynamic;
    remove(groups.front());
    while (!alone && !groups.empty() && groups.front()->dynamic && !groups.front()->leaving)
      remove(groups.front());
  }

  std::vector<Group> groups;
  std::size_t cursor = 0;
  int lastNumber = 0, maxGroups = 0, maxBytes = 10000000;
};

class Real final : public Side {
  class Planned final : public qvUndo::Command {
  public:
    Planned(qvUndo::Group* group, const CommandPlan& plan, Side& side)
        : Command(group, "x"), plan_(plan), side_(side) {}
    ~Planned() override { side_.tell('~', plan_.id); }
    bool doAction() override { return side_.tell('+', plan_.id), !plan_.failsDo; }
    bool undoAction() override { return side_.tell('-', plan_.id), !plan_.failsUndo; }
    [[nodiscard]] int getNumBytesUsed() const override { return plan_.bytes; }
    void commit() override { side_.tell('!', plan_.id); }

  private:
    CommandPlan plan_;
    Side& side_;
  };

public:
  Real() {
    manager->sigActive.connect([this](bool active) { signal(active ? '(' : ')', 0); });
    manager->sigGroupDeleted.connect([this](qvUndo::Group* group) { signal('D', group->getNumber()); });
  }

  bool apply(const Operation& op) override {
    qvUndo::Group* const group =
        op.kind == add ? manager->newGroup("g", op.dynamic) : manager->findGroup(op.a);
    if (op.kind == undo) return manager->undoIt();
    if (op.kind == redo) return manager->doIt();
    if (op.kind == deleteLast) manager->deleteLastGroup();
    if (op.kind == clear) manager->clearAllGroups();
    if (op.kind == associate) manager->associateGroups(op.a, op.b);
    if (op.kind == destroyPointer) manager->pointerDestroyed(objects + op.a);
    if (op.kind == limitGroups) manager->setMaxGroups(op.a);
    if (op.kind == limitBytes) manager->setMaxBytes(op.a);
    if (op.kind == keep && group) group->setDeletable(op.dynamic);
    if (op.kind == kill && group && !static_cast<qvUndo::GroupImpl*>(group)->isLeaving()) delete group;
    if (op.kind != add) return true;
    if (!group) return false;
    if (op.b >= 0) group->declarePointer(objects + op.b);
    group->setDeletable(!op.kept);
    for (const CommandPlan& plan : op.commands) new Planned(group, plan, *this);
    return !op.done || group->doIt();
  }

  [[nodiscard]] std::string answers() const {
    std::ostringstream out;
    for (int i = 0; const qvUndo::Group* group = manager->getGroup(i); ++i)
      out << group->getNumber() << (group->isDynamic() ? "=" : " ") << group->isValid()
          << group->isDeletable() << group->numCommands() << ' ';
    const qvUndo::Group* const current = manager->getCurrentGroup();
    EXPECT_EQ(current != nullptr, manager->canRedo());
    EXPECT_FALSE(manager->isActive());
    out << "| " << (current ? current->getNumber() : 0) << ' ' << manager->canUndo() << ' '
        << manager->numGroups(true);
    return out.str();
  }

private:
  std::unique_ptr<qvUndo::Manager> manager{qvUndo::newManager()};
};

Operation randomOperation(qvTest::Random& random, int step) {
  static constexpr Kind kinds[] = {add,        add,       add,         add,        add,   add,
                                   undo,       undo,      undo,        undo,       undo,  undo,
                                   redo,       redo,      redo,        redo,       kill,  keep,
                                   deleteLast, associate, limitGroups, limitBytes, clear, destroyPointer};
  Operation op;
  op.kind = kinds[random.below(std::size(kinds))];
  op.dynamic = random.oneIn(2);
  op.done = !random.oneIn(4);
  op.kept = random.oneIn(12);
  op.a = random.between(std::max(0, step / 8), step / 3);
  op.b = op.a + random.between(0, 5);
  if (op.kind == add) op.b = random.between(-6, 3);
  if (op.kind == keep) op.dynamic = !random.oneIn(3);
  if (op.kind == destroyPointer) op.a = random.between(0, 3);
  if (op.kind == limitGroups) op.a = random.oneIn(9) ? -1 : random.between(0, 9);
  if (op.kind == limitBytes) op.a = random.oneIn(3) ? 0 : random.between(10, 400);
  for (int i = random.between(0, 3); op.kind == add && i > 0; --i)
    op.commands.push_back({10 * step + i, random.between(0, 40), random.oneIn(40), random.oneIn(60)});
  return op;
}

TEST(UndoModel, RandomOperations) {
  qvTest::Random random(20);
  for (int round = 0; round < 60; ++round) {
    Model model;
    Real real;
    for (int step = 1; step <= 300; ++step) {
      const Operation operation = randomOperation(random, step);
      if (random.oneIn(3)) {
        real.countdown = model.countdown = random.between(1, 4);
        real.visitor.kind = model.visitor.kind = random.oneIn(4) ? clear : kill;
        real.visitor.a = model.visitor.a = random.between(step / 8, step / 3);
      }
      ASSERT_EQ(real.apply(operation), model.apply(operation)) << "round " << round << ", step " << step;
      ASSERT_EQ(real.trace.str(), model.trace.str()) << "round " << round << ", step " << step;
      ASSERT_EQ(real.answers(), model.answers()) << "round " << round << ", step " << step;
      real.trace.str({});
      model.trace.str({});
      real.countdown = model.countdown = 0;
    }
  }
}

} // namespace
