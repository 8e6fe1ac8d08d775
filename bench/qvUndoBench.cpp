// A million commands in groups of ten: pushed, undone, redone and deleted, beside a QUndoStack with macros.
// Every action takes part in the result, so both must have acted in the same order.
#include "Base/Undo/qvUndoCommand.h"
#include "Base/Undo/qvUndoGroup.h"
#include "Base/Undo/qvUndoManager.h"
#include "bench/qvBench.h"

#include <cstdint>
#include <malloc.h>
#include <memory>

#ifdef BENCH_QUndoStack
#include <QtGui/qundostack.h>
#endif

namespace {

constexpr int numGroups = 100000;
constexpr int commandsInGroup = 10;

/// What the commands change.
struct Document {
  std::uint64_t value = 0, history = 0;

  void add(std::uint64_t number) {
    value += number;
    history = qvBench::mixed(history, value);
  }
};

class BaseQueue {
  class Add final : public qvUndo::Command {
  public:
    Add(qvUndo::Group* group, Document& document, std::uint64_t number)
        : Command(group, "add"), document_(document), number_(number) {}
    bool doAction() override { return document_.add(number_), true; }
    bool undoAction() override { return document_.add(-number_), true; }

  private:
    Document& document_;
    std::uint64_t number_;
  };

public:
  BaseQueue() { manager_->setMaxBytes(0); } // the peer knows no such limit
  void push(Document& document, std::uint64_t first) {
    qvUndo::Group* const group = manager_->newGroup("group", false);
    for (std::uint64_t i = 0; i < commandsInGroup; ++i) new Add(group, document, first + i);
    group->doIt();
  }
  void undo() { manager_->undoIt(); }
  void redo() { manager_->doIt(); }

private:
  std::unique_ptr<qvUndo::Manager> manager_{qvUndo::newManager()};
};

#ifdef BENCH_QUndoStack
class QtQueue {
  class Add final : public QUndoCommand {
  public:
    Add(const QString& name, Document& document, std::uint64_t number)
        : QUndoCommand(name), document_(document), number_(number) {}
    void redo() override { document_.add(number_); }
    void undo() override { document_.add(-number_); }

  private:
    Document& document_;
    std::uint64_t number_;
  };

public:
  void push(Document& document, std::uint64_t first) {
    stack_.beginMacro(group_);
    for (std::uint64_t i = 0; i < commandsInGroup; ++i) stack_.push(new Add(add_, document, first + i));
    stack_.endMacro();
  }
  void undo() { stack_.undo(); }
  void redo() { stack_.redo(); }

private:
  const QString group_ = "group", add_ = "add";
  QUndoStack stack_;
};
#endif

/// Joins the free blocks of the heap. Else a queue lies in the pieces in which the one before was freed, its
/// own or the peer's, and the order of these pieces weighs more than all that is measured.
void tidyHeap(benchmark::State& state) {
  state.PauseTiming();
  malloc_trim(0);
  state.ResumeTiming();
}

/// The commands' end belongs to it: a queue that made them also deletes them.
template <class Queue>
void pushUndoAndRedo(benchmark::State& state) {
  Document document;
  for (auto _ : state) {
    tidyHeap(state);
    document = {};
    Queue queue;
    for (int i = 0; i < numGroups; ++i) queue.push(document, static_cast<std::uint64_t>(i) * commandsInGroup);
    for (int i = 0; i < numGroups; ++i) queue.undo();
    for (int i = 0; i < numGroups; ++i) queue.redo();
  }
  qvBench::setResult(state, document.history);
}

BENCHMARK(pushUndoAndRedo<BaseQueue>)->Name("undo 1000000 commands/Base")->Unit(benchmark::kMillisecond);
#ifdef BENCH_QUndoStack
BENCHMARK(pushUndoAndRedo<QtQueue>)->Name("undo 1000000 commands/QUndoStack")->Unit(benchmark::kMillisecond);
#endif

} // namespace
